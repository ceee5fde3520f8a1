// The I2C and SPI panel buses: the capture records, the lines of an SPI bus, and the messages
// for devices that are missing or wrong.
#include <frontpanelhw/graphic/panel_bus.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "capture_records.h"
#include "temp_directory.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::graphic::IPanelLine;
using frontpanelhw::graphic::PanelBusError;
using Bytes = std::vector<std::uint8_t>;

std::string emptyFile(yxfp_test::TempDirectory const& directory) {
    std::string path = directory.file("capture");
    std::ofstream const created(path);
    return path;
}

template <class Open>
std::string messageOf(Open&& open) {
    try {
        (void)open();
    } catch (PanelBusError const& error) {
        return error.what();
    }
    return "no error";
}

/** A line that writes its levels down as 'H' and 'L' after its name's letter. */
class RecordingLine : public IPanelLine {
public:
    RecordingLine(std::string& log, char name) : log_(log), name_(name) {}
    void set(bool high) override {
        log_ += name_;
        log_ += high ? 'H' : 'L';
    }

private:
    std::string& log_;
    char name_;
};

TEST(PanelBusTest, I2cCaptureRecordsTheControlByteAndTheBytes) {
    yxfp_test::TempDirectory const directory;
    std::string const path = emptyFile(directory);
    auto bus = frontpanelhw::graphic::openI2cPanelBus(path, 0x3C);
    Bytes const commands = {0xAE, 0xA8, 0x3F};
    Bytes const data = {0x01, 0x80};
    bus->write(false, commands.data(), commands.size());
    bus->write(true, data.data(), data.size());
    EXPECT_EQ(yxfp_models::readFileFrom(path, 0),
              (Bytes{4, 0, 0x00, 0xAE, 0xA8, 0x3F, 3, 0, 0x40, 0x01, 0x80}));
}

TEST(PanelBusTest, SpiCaptureRecordsTheDataCommandLevelAndDrivesTheLines) {
    yxfp_test::TempDirectory const directory;
    std::string const path = emptyFile(directory);
    std::string lines;
    auto bus = frontpanelhw::graphic::openSpiPanelBus(path, {},
                                                      std::make_unique<RecordingLine>(lines, 'D'),
                                                      std::make_unique<RecordingLine>(lines, 'R'));
    EXPECT_TRUE(bus->setReset(true));
    EXPECT_TRUE(bus->setReset(false));
    Bytes const commands = {0xAF};
    Bytes const data = {0x55, 0xAA, 0xFF};
    bus->write(false, commands.data(), commands.size());
    bus->write(true, data.data(), data.size());
    EXPECT_EQ(lines, "RLRHDLDH") << "reset is active low; D/C low for commands";
    EXPECT_EQ(yxfp_models::readFileFrom(path, 0),
              (Bytes{2, 0, 0, 0xAF, 4, 0, 1, 0x55, 0xAA, 0xFF}));
}

TEST(PanelBusTest, SpiBusWithoutResetLineSaysSo) {
    yxfp_test::TempDirectory const directory;
    auto bus = frontpanelhw::graphic::openSpiPanelBus(emptyFile(directory), {}, nullptr, nullptr);
    EXPECT_FALSE(bus->setReset(true));
}

TEST(PanelBusTest, CaptureIsAppendedToAnExistingFile) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("capture");
    std::ofstream(path) << "ab";
    auto bus = frontpanelhw::graphic::openI2cPanelBus(path, 0x3D);
    Bytes const commands = {0xE3};
    bus->write(false, commands.data(), commands.size());
    EXPECT_EQ(yxfp_models::readFileFrom(path, 0), (Bytes{'a', 'b', 2, 0, 0x00, 0xE3}));
}

TEST(PanelBusTest, FifoCaptureReachesTheReader) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    int const reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    auto bus = frontpanelhw::graphic::openI2cPanelBus(path, 0x3C);
    Bytes const data = {0x0F};
    bus->write(true, data.data(), data.size());
    std::uint8_t received[8] = {};
    EXPECT_EQ(::read(reader, received, sizeof received), 4);
    EXPECT_EQ(Bytes(received, received + 4), (Bytes{2, 0, 0x40, 0x0F}));
    bus.reset();
    ::close(reader);
}

TEST(PanelBusTest, FifoWithoutReaderIsRefusedAtOnce) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::string const message =
        messageOf([&] { return frontpanelhw::graphic::openI2cPanelBus(path, 0x3C); });
    EXPECT_NE(message.find(path), std::string::npos) << message;
    EXPECT_NE(message.find("start the reader first"), std::string::npos) << message;
}

TEST(PanelBusTest, MissingI2cDeviceNamesItAndSaysToLoadI2cDev) {
    std::string const message =
        messageOf([] { return frontpanelhw::graphic::openI2cPanelBus("/dev/i2c-97", 0x3C); });
    EXPECT_EQ(message,
              "cannot open I2C device /dev/i2c-97: No such file or directory (load the I2C device "
              "interface: modprobe i2c-dev, and enable the bus)");
}

TEST(PanelBusTest, MissingSpiDeviceNamesItAndSaysToEnableSpidev) {
    std::string const message = messageOf([] {
        return frontpanelhw::graphic::openSpiPanelBus("/dev/spidev9.7", {}, nullptr, nullptr);
    });
    EXPECT_NE(message.find("cannot open SPI device /dev/spidev9.7: No such file or directory"),
              std::string::npos)
        << message;
    EXPECT_NE(message.find("(enable the SPI bus and its spidev device"), std::string::npos)
        << message;
}

TEST(PanelBusTest, ADirectoryIsNeitherDeviceNorCapture) {
    yxfp_test::TempDirectory const directory;
    std::string const message =
        messageOf([&] { return frontpanelhw::graphic::openI2cPanelBus(directory.path(), 0x3C); });
    EXPECT_EQ(message, "cannot use " + directory.path() +
                           ": neither an I2C device nor a regular file nor a FIFO");
}

TEST(PanelBusTest, ACharacterDeviceThatIsNoI2cAdapterIsNamed) {
    std::string const message =
        messageOf([] { return frontpanelhw::graphic::openI2cPanelBus("/dev/null", 0x3C); });
    EXPECT_NE(message.find("cannot select address 0x3C on /dev/null"), std::string::npos)
        << message;
    EXPECT_NE(message.find("not an I2C adapter"), std::string::npos) << message;
}

TEST(PanelBusTest, ACharacterDeviceThatIsNoSpiDeviceIsNamed) {
    std::string const message = messageOf(
        [] { return frontpanelhw::graphic::openSpiPanelBus("/dev/null", {}, nullptr, nullptr); });
    EXPECT_NE(message.find("cannot set SPI mode 0 on SPI device /dev/null"), std::string::npos)
        << message;
    EXPECT_NE(message.find("not an SPI device"), std::string::npos) << message;
}

TEST(PanelBusTest, AnAddressOutsideTheSevenBitRangeIsRefused) {
    yxfp_test::TempDirectory const directory;
    std::string const path = emptyFile(directory);
    std::string const message =
        messageOf([&] { return frontpanelhw::graphic::openI2cPanelBus(path, 0x78); });
    EXPECT_NE(message.find("0x78"), std::string::npos) << message;
}

TEST(PanelBusTest, ATransferOfNoBytesIsRefused) {
    yxfp_test::TempDirectory const directory;
    auto bus = frontpanelhw::graphic::openI2cPanelBus(emptyFile(directory), 0x3C);
    std::uint8_t const none[1] = {};
    EXPECT_THROW(bus->write(true, none, 0), PanelBusError);
    EXPECT_EQ(bus->maxTransferBytes(), 4096U);
}

}  // namespace
