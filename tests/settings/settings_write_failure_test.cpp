#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "platform_capture.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"
#include "temp_directory.h"
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Saves that the file system refuses, made with real operating-system faults that also hold
// for root: the previous file stays intact, the values in memory stay, the reason is reported
// and logged, and the next save after the fault is cleared succeeds.
namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;

constexpr int kErrorLevel = 3;

bool loggedError(LogCapture const& log, std::string const& words) {
    for (auto const& record : log.records()) {
        if (record.level <= kErrorLevel && record.message.find(words) != std::string::npos) {
            return true;
        }
    }
    return false;
}

// A store on `path` with a first version saved (channel 5) and an unsaved change (channel 6),
// making its calls through `fs`.
std::unique_ptr<SettingsStore> storeWithUnsavedChange(
    std::string const& path,
    std::shared_ptr<IFileSystem> const& fs = yxfrontpanel::settings::posixFileSystem()) {
    auto store = yxfp_test::benchStoreOn(path, fs);
    store->load();
    store->set("channel", std::int64_t{5});
    EXPECT_TRUE(store->saveNow());
    store->set("channel", std::int64_t{6});
    return store;
}

// A store in the folder "config" of `dir`, with a saved file and an unsaved change, whose
// folder is then moved to "config.kept": the store's folder is gone, its saved file kept there
// to compare.
struct FolderMovedAside {
    std::string folder;
    std::string keptFile;
    std::string oldContent;
    std::unique_ptr<SettingsStore> store;
};

FolderMovedAside storeWithFolderMovedAside(TempDirectory const& dir) {
    FolderMovedAside moved{dir.file("config"), dir.file("config.kept/settings.json"), {}, {}};
    EXPECT_TRUE(std::filesystem::create_directory(moved.folder));
    moved.store = storeWithUnsavedChange(moved.folder + "/settings.json");
    moved.oldContent = readFile(moved.folder + "/settings.json");
    std::filesystem::rename(moved.folder, dir.file("config.kept"));
    return moved;
}

// Saves `store` while the fault holds and checks what every refused save must leave behind.
void expectSaveRefused(SettingsStore& store, std::string const& oldFile,
                       std::string const& oldContent, std::string const& reason) {
    LogCapture log;
    SaveResult const result = store.saveNow();
    EXPECT_FALSE(result.ok);
    EXPECT_NE(result.error.find(reason), std::string::npos) << result.error;
    EXPECT_NE(result.error.find(store.path()), std::string::npos) << result.error;
    EXPECT_TRUE(loggedError(log, reason));
    EXPECT_EQ(readFile(oldFile), oldContent);
    EXPECT_EQ(store.integer("channel"), 6);
    EXPECT_TRUE(store.hasUnsavedChanges());
}

void expectSavedAfterwards(SettingsStore& store) {
    ASSERT_TRUE(store.saveNow());
    EXPECT_EQ(savedChannel(store.path()), 6);
}

// A file-size limit makes writes fail as on a full disk (EFBIG, SIGXFSZ ignored). The limit is
// set in a child so that the test process keeps writing freely; the child reports by exit code.
TEST(SettingsWriteFailureTest, AFileSizeLimitLikeAFullDiskKeepsTheOldFile) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    auto store = storeWithUnsavedChange(path);
    std::string const oldContent = readFile(path);

    LogCapture log;        // the child's expected error line stays off the console
    std::fflush(nullptr);  // the child must not write the parent's buffered output again
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        rlimit const small{16, limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        SaveResult const refused = store->saveNow();
        if (refused.ok) {
            ::_exit(10);
        }
        if (refused.error.find("File too large") == std::string::npos) {
            ::_exit(11);
        }
        if (readFile(path) != oldContent || store->integer("channel") != 6 ||
            !store->hasUnsavedChanges() || std::filesystem::exists(path + ".tmp")) {
            ::_exit(12);
        }
        ::setrlimit(RLIMIT_FSIZE, &limit);
        if (!store->saveNow().ok || store->hasUnsavedChanges()) {
            ::_exit(13);
        }
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "child ended by signal " << WTERMSIG(status);
    // 10: saved despite the limit; 11: another reason; 12: old file, memory or temporary file
    // not as before; 13: the save after lifting the limit failed.
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(savedChannel(path), 6);
}

// A directory the store may not write to. Root ignores directory permissions, so for root the
// same refusal comes from the file-system layer: creating the temporary file is denied.
TEST(SettingsWriteFailureTest, AReadOnlyDirectoryKeepsTheOldFile) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    auto fs =
        std::make_shared<yxfp_test::FaultyFileSystem>(yxfrontpanel::settings::posixFileSystem());
    auto store = storeWithUnsavedChange(path, fs);
    std::string const oldContent = readFile(path);

    ASSERT_EQ(::chmod(dir.path().c_str(), 0555), 0);
    if (::access(dir.path().c_str(), W_OK) == 0) {
        fs->fail(yxfp_test::FileCall::Open, EACCES, 1, ".tmp");
    }
    expectSaveRefused(*store, path, oldContent, "Permission denied");
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    expectSavedAfterwards(*store);
}

TEST(SettingsWriteFailureTest, ADirectoryRemovedUnderTheStoreIsReportedAndRetried) {
    TempDirectory dir;
    auto const moved = storeWithFolderMovedAside(dir);
    expectSaveRefused(*moved.store, moved.keptFile, moved.oldContent, "No such file or directory");
    ASSERT_TRUE(std::filesystem::create_directory(moved.folder));
    expectSavedAfterwards(*moved.store);
}

TEST(SettingsWriteFailureTest, ADirectoryReplacedByAFileIsReportedAndRetried) {
    TempDirectory dir;
    auto const moved = storeWithFolderMovedAside(dir);
    yxfp_test::writeFile(moved.folder, "not a directory");
    expectSaveRefused(*moved.store, moved.keptFile, moved.oldContent, "Not a directory");
    std::filesystem::remove(moved.folder);
    std::filesystem::rename(dir.file("config.kept"), moved.folder);
    expectSavedAfterwards(*moved.store);
    EXPECT_EQ(readFile(moved.folder + "/settings.json.bak"), moved.oldContent);
}

}  // namespace
