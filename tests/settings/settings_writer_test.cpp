#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/settings_store.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "manual_save_scheduler.h"
#include "platform_capture.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"
#include "temp_directory.h"

// Scheduled saves on the store's writer thread, their retries after a failure on a hand-moved
// clock, the last error and its listeners, and callbacks made with no lock held.
namespace {

using namespace std::chrono_literals;
using namespace yxfp_test;
using namespace yxfrontpanel::settings;
using yxfrontpanel::testing::ManualClock;

// A bench store on a temporary file, its calls going through a layer that can fail them, saved
// by a scheduler on a hand-moved clock; every error it reports is collected.
class SettingsWriterTest : public ::testing::Test {
public:
    ~SettingsWriterTest() override {
        store->setScheduler(nullptr);
        store->waitForSaves();
    }

protected:
    SettingsWriterTest() {
        store->load();
        store->setScheduler(&scheduler);
        store->subscribeErrors([this](std::string const& error) { errors.push_back(error); });
    }

    // Moves the clock and waits for the writer thread to finish what that started.
    void advance(std::chrono::milliseconds step) {
        clock.advance(step);
        store->waitForSaves();
    }

    LogCapture log;  // the expected error lines stay off the console
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    std::shared_ptr<FaultyFileSystem> fs = std::make_shared<FaultyFileSystem>(posixFileSystem());
    std::unique_ptr<SettingsStore> store = benchStoreOn(path, fs);
    ManualClock clock;
    ManualSaveScheduler scheduler{clock};
    std::vector<std::string> errors;  // written on the writer thread, read after waitForSaves
};

TEST_F(SettingsWriterTest, AScheduledSaveIsWrittenAndSyncedOnTheWriterThread) {
    store->set("channel", std::int64_t{7});
    advance(2s);
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedChannel(path), 7);
    std::size_t syncs = 0;
    for (auto const& call : fs->calls()) {
        if (call.call == FileCall::Fsync || call.call == FileCall::Write) {
            EXPECT_NE(call.thread, std::this_thread::get_id()) << "the clock's thread wrote";
            ++syncs;
        }
    }
    EXPECT_GE(syncs, 3U) << "a write, the file's fsync and the directory's";
}

TEST_F(SettingsWriterTest, AFailedSaveIsRetriedWithADoublingDelayUntilItSucceeds) {
    fs->fail(FileCall::Open, ENOSPC, 3, ".tmp");
    store->set("channel", std::int64_t{7});
    advance(2s);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_NE(errors[0].find("No space left on device"), std::string::npos) << errors[0];
    EXPECT_NE(errors[0].find(path), std::string::npos) << errors[0];
    EXPECT_EQ(store->lastError(), errors[0]);
    // Retries after 1 s, then 2 s more, then 4 s more; the third retry succeeds.
    struct Step {
        std::chrono::milliseconds advance;
        std::size_t errors;
        std::uint64_t writes;
    };
    for (Step const step : {Step{999ms, 1, 0}, Step{1ms, 2, 0}, Step{1999ms, 2, 0}, Step{1ms, 3, 0},
                            Step{3999ms, 3, 0}, Step{1ms, 3, 1}}) {
        advance(step.advance);
        EXPECT_EQ(errors.size(), step.errors) << "after " << clock.now().time_since_epoch().count();
        EXPECT_EQ(store->writeCount(), step.writes);
    }
    EXPECT_EQ(store->lastError(), "");
    EXPECT_FALSE(store->hasUnsavedChanges());
    EXPECT_EQ(savedChannel(path), 7);
    EXPECT_EQ(scheduler.pending(), 0U);
}

TEST_F(SettingsWriterTest, TheRetryDelayStopsGrowingAtTheLongestDelay) {
    fs->fail(FileCall::Open, EIO, 100, ".tmp");
    store->set("channel", std::int64_t{7});
    advance(2s);
    // 1 + 2 + 4 + ... + 32 s, then every 60 s.
    for (int second = 0; second < 63 + 3 * 60; ++second) {
        advance(1s);
    }
    EXPECT_EQ(errors.size(), 1U + 6U + 3U);
}

TEST_F(SettingsWriterTest, SaveInBackgroundWritesOnTheWriterThreadAndReportsItsFailure) {
    fs->fail(FileCall::Rename, EROFS, 1, "settings.json");
    store->saveInBackground();
    EXPECT_FALSE(store->waitForSaves().ok);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_NE(errors[0].find("Read-only file system"), std::string::npos) << errors[0];
    store->saveInBackground();
    EXPECT_TRUE(store->waitForSaves().ok);
    EXPECT_EQ(store->writeCount(), 1U);
}

TEST(SettingsWriterFsyncTest, ADescriptorWhoseFsyncFailedIsNeverSyncedAgain) {
    LogCapture log;
    auto model = std::make_shared<ModelFileSystem>("/model");
    auto fs = std::make_shared<FaultyFileSystem>(model);
    auto store = benchStoreOn("/model/settings.json", fs);
    store->load();
    store->set("channel", std::int64_t{7});
    fs->fail(FileCall::Fsync, EIO);
    SaveResult const failed = store->saveNow();
    EXPECT_FALSE(failed.ok);
    EXPECT_NE(failed.error.find("Input/output error"), std::string::npos) << failed.error;
    ASSERT_EQ(fs->failedSyncs().size(), 1U);
    int const failedFd = fs->failedSyncs()[0];
    EXPECT_TRUE(store->saveNow());
    int syncs = 0;
    for (auto const& call : fs->calls()) {
        syncs += call.call == FileCall::Fsync && call.fd == failedFd ? 1 : 0;
    }
    EXPECT_EQ(syncs, 1) << "only the failed call";
    auto reloaded = benchStoreOn("/model/settings.json", model);
    reloaded->load();
    EXPECT_EQ(reloaded->integer("channel"), 7) << "rewritten from memory";
}

// A scheduler that asks the store something while it is being called: the store must not hold
// its lock then.
class AskingScheduler final : public ISaveScheduler {
public:
    explicit AskingScheduler(SettingsStore*& store) : store_(store) {}
    Handle schedule(std::chrono::nanoseconds /*delay*/, Task task) override {
        unsaved = store_->hasUnsavedChanges();
        task_ = std::move(task);
        return 1;
    }
    void cancel(Handle /*handle*/) override { readOnly = store_->isReadOnly(); }
    void run() { task_(); }

    bool unsaved = false;
    bool readOnly = true;

private:
    SettingsStore*& store_;
    Task task_;
};

TEST(SettingsCallbackTest, TheSchedulerIsCalledWithoutTheStoresLock) {
    TempDirectory dir;
    auto store = yxfp_test::benchStore(dir.file("settings.json"));
    SettingsStore* asked = store.get();
    AskingScheduler scheduler(asked);
    store->load();
    store->setScheduler(&scheduler);
    store->set("channel", std::int64_t{7});
    EXPECT_TRUE(scheduler.unsaved);
    EXPECT_TRUE(store->saveNow());  // cancels the scheduled save
    EXPECT_FALSE(scheduler.readOnly);
    scheduler.run();  // a save that was due anyway finds nothing to write
    store->waitForSaves();
    EXPECT_EQ(store->writeCount(), 1U);
    store->setScheduler(nullptr);
}

// A listener that saves whenever it hears a change, for each way a change reaches it.
struct ListenerCase {
    char const* name;
    void (*change)(SettingsStore& store, std::string const& path);
};

TEST(SettingsCallbackTest, AListenerThatFlushesDoesNotDeadlock) {
    std::vector<ListenerCase> const cases{
        {"set",
         [](SettingsStore& store, std::string const&) { store.set("channel", std::int64_t{7}); }},
        {"load",
         [](SettingsStore& store, std::string const& path) {
             yxfp_test::writeFile(path, yxfp_test::benchFile());
             store.load();
         }},
        {"factory reset",
         [](SettingsStore& store, std::string const&) {
             store.set("channel", std::int64_t{7});
             store.resetToDefaults();
         }},
    };
    for (auto const& entry : cases) {
        TempDirectory dir;
        std::string const path = dir.file("settings.json");
        auto store = yxfp_test::benchStore(path);
        store->load();
        int heard = 0;
        store->subscribe("channel", [&](auto const&) {
            ++heard;
            EXPECT_TRUE(store->flush()) << entry.name;
        });
        entry.change(*store, path);
        EXPECT_GE(heard, 1) << entry.name;
        EXPECT_FALSE(store->hasUnsavedChanges()) << entry.name;
    }
}

}  // namespace
