// DeviceFile: which kind of file a bus path is, and how it is written.
#include <frontpanelhw/device_file.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "temp_directory.h"
#include <sys/stat.h>

namespace {

using frontpanelhw::DeviceFile;
using frontpanelhw::DeviceFileError;
using frontpanelhw::DeviceFileKind;
using frontpanelhw::DeviceFileNaming;

DeviceFileNaming naming() {
    return {"test bus", " (plug it in)", " (ask for access)", " (nobody answers)"};
}

std::string contents(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(DeviceFileTest, RegularFileIsACaptureAndIsAppendedTo) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("capture");
    std::ofstream(path) << "ab";
    DeviceFile file(path, naming());
    EXPECT_EQ(file.kind(), DeviceFileKind::RegularFile);
    EXPECT_EQ(file.description(), "capture file " + path);
    file.write("cd", 2);
    EXPECT_EQ(contents(path), "abcd");
}

TEST(DeviceFileTest, CharacterDeviceIsADevice) {
    DeviceFile file("/dev/null", naming());
    EXPECT_EQ(file.kind(), DeviceFileKind::Device);
    EXPECT_EQ(file.description(), "test bus /dev/null");
    file.write("x", 1);
}

TEST(DeviceFileTest, MissingPathGetsTheMissingHint) {
    try {
        DeviceFile file("/dev/no-such-bus-97", naming());
        FAIL() << "no exception";
    } catch (DeviceFileError const& error) {
        EXPECT_STREQ(
            error.what(),
            "cannot open test bus /dev/no-such-bus-97: No such file or directory (plug it in)");
    }
}

TEST(DeviceFileTest, FifoWithoutAReaderIsRefusedAtOnce) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    try {
        DeviceFile file(path, naming());
        FAIL() << "a FIFO without a reader was opened";
    } catch (DeviceFileError const& error) {
        EXPECT_NE(std::string(error.what()).find("start the reader first"), std::string::npos);
    }
}

}  // namespace
