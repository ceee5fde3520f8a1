#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"
#include "temp_directory.h"
#include <sys/stat.h>
#include <unistd.h>

// What the store does with a file it must not trust or must not lose: a file it cannot read is
// kept (read-only, reported), an oversize one is moved aside, anything but a regular file is
// refused at once, a planted symbolic link is never followed, the file's mode is kept and a
// second store is kept off the file.
namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;

// A file (the bench file) and an older backup in a temporary folder.
class SettingsFileSafetyTest : public ::testing::Test {
protected:
    SettingsFileSafetyTest() {
        writeFile(path, good);
        writeFile(path + ".bak", older);
    }

    // Loads a store and checks that it refused the file: read-only, defaults, the reason
    // naming the path and containing `reason`, told to the error listener.
    std::unique_ptr<SettingsStore> expectRefused(std::unique_ptr<SettingsStore> store,
                                                 std::string const& reason) {
        std::vector<std::string> errors;
        auto const listener = store->subscribeErrors(
            [&errors](std::string const& error) { errors.push_back(error); });
        LoadResult const result = store->load();
        EXPECT_EQ(result.source, LoadResult::Source::Unreadable);
        EXPECT_TRUE(result.readOnly);
        EXPECT_TRUE(store->isReadOnly());
        EXPECT_NE(result.detail.find(path), std::string::npos) << result.detail;
        EXPECT_NE(result.detail.find(reason), std::string::npos) << result.detail;
        EXPECT_EQ(store->integer("channel"), 3) << "the defaults";
        EXPECT_EQ(store->lastError(), result.detail);
        EXPECT_EQ(errors, std::vector<std::string>{result.detail});
        store->unsubscribe(listener);
        return store;
    }

    // Nothing was moved, written or rolled back: the file and the backup are as they were,
    // also after two saves (which are refused).
    void expectFilesKept(SettingsStore& store) {
        store.set("channel", std::int64_t{12});
        EXPECT_FALSE(store.saveNow());
        EXPECT_FALSE(store.flush());
        EXPECT_TRUE(filesStartingWith(dir.path(), "settings.json.corrupt-").empty());
        EXPECT_EQ(readFile(path + ".bak"), older);
    }

    LogCapture log;
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    std::string const good = benchFile();
    std::string const older = benchFile(1);
};

TEST_F(SettingsFileSafetyTest, AReadErrorMakesTheStoreReadOnlyInsteadOfRollingBack) {
    struct ReadFault {
        FileCall call;
        int error;
        char const* reason;
    };
    for (auto const& fault : {ReadFault{FileCall::Read, EIO, "Input/output error"},
                              ReadFault{FileCall::Open, EACCES, "Permission denied"},
                              ReadFault{FileCall::Status, EIO, "Input/output error"}}) {
        SCOPED_TRACE(fault.reason);
        auto fs = std::make_shared<FaultyFileSystem>(posixFileSystem());
        fs->failOn(path, fault.call, fault.error);
        auto store = expectRefused(benchStoreOn(path, fs), fault.reason);
        expectFilesKept(*store);
        EXPECT_EQ(readFile(path), good);
        // Once the fault is gone, a new load reads the file and saving works again.
        EXPECT_EQ(store->load().source, LoadResult::Source::File);
        EXPECT_FALSE(store->isReadOnly());
        EXPECT_EQ(store->lastError(), "");
        EXPECT_EQ(store->integer("channel"), 9);
    }
}

TEST_F(SettingsFileSafetyTest, AFileOverTheSizeLimitIsMovedAsideLikeACorruptOne) {
    auto store = benchStoreOn(path, nullptr,
                              [](SettingsStoreOptions& options) { options.maxFileSize = 100; });
    writeFile(path + ".bak",
              R"({"application": "bench-supply", "schemaVersion": 2, "values": {"channel": 4}})");
    LoadResult const result = store->load();
    EXPECT_EQ(result.source, LoadResult::Source::Backup);
    EXPECT_NE(result.detail.find("larger than 100 bytes"), std::string::npos) << result.detail;
    ASSERT_EQ(result.movedAside.size(), 1U);
    EXPECT_EQ(readFile(result.movedAside[0]), good);
    EXPECT_EQ(store->integer("channel"), 4);
}

TEST_F(SettingsFileSafetyTest, AnythingButARegularFileIsRefusedAtOnce) {
    struct Intruder {
        char const* name;
        std::function<void(std::string const&)> make;
        char const* reason;
    };
    std::vector<Intruder> const intruders{
        {"FIFO", [](std::string const& at) { ASSERT_EQ(::mkfifo(at.c_str(), 0644), 0); },
         "is a FIFO"},
        {"directory", [](std::string const& at) { ASSERT_EQ(::mkdir(at.c_str(), 0755), 0); },
         "is a directory"},
        {"device", [](std::string const& at) { ASSERT_EQ(::symlink("/dev/null", at.c_str()), 0); },
         "is a device"},
    };
    for (auto const& intruder : intruders) {
        SCOPED_TRACE(intruder.name);
        std::filesystem::remove(path);
        intruder.make(path);
        auto store = expectRefused(benchStore(path), intruder.reason);
        expectFilesKept(*store);
        EXPECT_FALSE(std::filesystem::is_regular_file(path));
        std::filesystem::remove(path);
    }
}

TEST_F(SettingsFileSafetyTest, APlantedSymbolicLinkIsNeverFollowed) {
    std::string const victim = dir.file("victim");
    writeFile(victim, "precious");
    for (std::string const name : {".tmp", ".bak.tmp", ".lock.tmp"}) {
        ASSERT_EQ(::symlink(victim.c_str(), (path + name).c_str()), 0);
    }
    auto store = benchStore(path);
    store->load();
    store->set("channel", std::int64_t{11});
    ASSERT_TRUE(store->saveNow());
    EXPECT_EQ(readFile(victim), "precious");
    EXPECT_EQ(yxfp_test::savedChannel(path), 11);
    EXPECT_EQ(readFile(path + ".bak"), good);
}

TEST_F(SettingsFileSafetyTest, TheFirstSaveRemovesTemporaryFilesACrashLeftBehind) {
    for (std::string const name : {".tmp-a1B2c3", ".bak.tmp-Zz9yX8"}) {
        writeFile(path + name, "{\"applic");
    }
    writeFile(path + ".tmp-notmine", "kept");
    writeFile(dir.file("other.json.tmp-a1B2c3"), "kept");
    auto store = benchStore(path);
    store->load();
    EXPECT_EQ(filesStartingWith(dir.path(), "settings.json.tmp-"),
              (std::vector<std::string>{"settings.json.tmp-a1B2c3", "settings.json.tmp-notmine"}))
        << "loading removes nothing";
    ASSERT_TRUE(store->saveNow());
    EXPECT_EQ(filesStartingWith(dir.path(), "settings.json.tmp-"),
              (std::vector<std::string>{"settings.json.tmp-notmine"}));
    EXPECT_TRUE(filesStartingWith(dir.path(), "settings.json.bak.tmp-").empty());
    EXPECT_EQ(readFile(dir.file("other.json.tmp-a1B2c3")), "kept");
}

TEST_F(SettingsFileSafetyTest, ASaveKeepsTheFilesModeAndANewFileIsReadableByAll) {
    ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
    auto store = benchStore(path);
    store->load();
    store->set("channel", std::int64_t{11});
    ASSERT_TRUE(store->saveNow());
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);

    ::mode_t const previous = ::umask(077);
    auto fresh = benchStore(dir.file("fresh.json"));
    fresh->load();
    bool const saved = fresh->saveNow().ok;
    ::umask(previous);
    ASSERT_TRUE(saved);
    ASSERT_EQ(::stat(dir.file("fresh.json").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
}

TEST_F(SettingsFileSafetyTest, ASecondStoreMayReadTheFileButNotWriteIt) {
    for (bool const fileExists : {true, false}) {
        SCOPED_TRACE(fileExists ? "file" : "no file");
        if (!fileExists) {
            std::filesystem::remove(path);
        }
        auto first = benchStore(path);
        auto second = benchStore(path);
        first->load();
        second->load();
        first->set("channel", std::int64_t{13});
        ASSERT_TRUE(first->saveNow());
        std::string const written = readFile(path);
        second->set("channel", std::int64_t{12});
        SaveResult const refused = second->saveNow();
        EXPECT_FALSE(refused.ok);
        EXPECT_NE(refused.error.find(path + " is in use by another settings store"),
                  std::string::npos)
            << refused.error;
        EXPECT_EQ(second->lastError(), refused.error);
        EXPECT_EQ(readFile(path), written);
        // A third store reads what the first wrote; once the first is gone, it may write.
        auto third = benchStore(path);
        EXPECT_EQ(third->load().source, LoadResult::Source::File);
        EXPECT_EQ(third->integer("channel"), 13);
        second.reset();
        first.reset();
        EXPECT_TRUE(third->saveNow());
    }
}

}  // namespace
