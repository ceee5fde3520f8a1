#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/settings_store.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "manual_save_scheduler.h"
#include "platform_capture.h"
#include "settings_test_store.h"
#include "temp_directory.h"

// Saving after changes, coalesced on a hand-moved clock: at most one write per save delay,
// and within the delay of the last change.
namespace {

using namespace std::chrono_literals;
using namespace yxfp_test;
using namespace yxfrontpanel::settings;
using yxfrontpanel::testing::ManualClock;

// A temporary settings file and the scheduler that saves it when the test moves the clock.
class SettingsSavePolicyTest : public ::testing::Test {
protected:
    // `store`, saving through the scheduler; `advance` waits for its writer thread.
    std::unique_ptr<SettingsStore> scheduled(std::unique_ptr<SettingsStore> store) {
        store->setScheduler(&scheduler_);
        watched_ = store.get();
        return store;
    }
    // Moves the clock and waits until the watched store has written what that started.
    void advance(std::chrono::nanoseconds step) {
        clock_.advance(step);
        watched_->waitForSaves();
    }
    // The bench store on the fixture's file, loaded as an application starts, saving through
    // the scheduler.
    std::unique_ptr<SettingsStore> loadedStore() {
        auto store = benchStore(path_);
        store->load();
        return scheduled(std::move(store));
    }

    TempDirectory dir_;
    std::string const path_ = dir_.file("settings.json");
    ManualClock clock_;
    ManualSaveScheduler scheduler_{clock_};
    SettingsStore* watched_ = nullptr;
};

TEST_F(SettingsSavePolicyTest, AHundredCommitsInOneSecondGiveAtMostTwoWrites) {
    auto store = loadedStore();
    for (int i = 0; i < 100; ++i) {
        store->set("voltage", 0.25 * i);
        advance(10ms);
    }
    advance(3s);
    EXPECT_LE(store->writeCount(), 2U);
    EXPECT_GE(store->writeCount(), 1U);
    EXPECT_FALSE(store->hasUnsavedChanges());
    auto reloaded = benchStore(path_);
    reloaded->load();
    EXPECT_EQ(reloaded->number("voltage"), 0.25 * 99);
    EXPECT_EQ(scheduler_.pending(), 0U);
}

TEST_F(SettingsSavePolicyTest, TheFileIsWrittenWithinTheDelayOfTheFirstUnsavedChange) {
    auto store = loadedStore();
    store->set("channel", std::int64_t{7});
    advance(1999ms);
    EXPECT_EQ(store->writeCount(), 0U);
    advance(1ms);
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedChannel(path_), 7);
    // A later change starts a new period; without changes nothing more is written.
    advance(10s);
    EXPECT_EQ(store->writeCount(), 1U);
    store->set("channel", std::int64_t{8});
    advance(2s);
    EXPECT_EQ(store->writeCount(), 2U);
    EXPECT_EQ(savedChannel(path_), 8);
}

TEST_F(SettingsSavePolicyTest, TheDelayFollowsTheOptions) {
    auto options = yxfp_test::benchOptions();
    options.saveDelay = 500ms;
    SettingsStore store(path_, options, yxfp_test::benchDefinitions());
    store.setScheduler(&scheduler_);
    watched_ = &store;
    store.set("output", true);
    advance(499ms);
    EXPECT_EQ(store.writeCount(), 0U);
    advance(1ms);
    EXPECT_EQ(store.writeCount(), 1U);
}

TEST_F(SettingsSavePolicyTest, FlushWritesPendingChangesAndCancelsTheScheduledSave) {
    auto store = loadedStore();
    store->set("channel", std::int64_t{11});
    EXPECT_EQ(scheduler_.pending(), 1U);
    ASSERT_TRUE(store->flush());
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(scheduler_.pending(), 0U);
    EXPECT_EQ(savedChannel(path_), 11);
    advance(5s);
    EXPECT_EQ(store->writeCount(), 1U);
}

TEST_F(SettingsSavePolicyTest, UnchangedValuesScheduleNothing) {
    auto store = scheduled(benchStore(path_));
    store->set("channel", std::int64_t{3});
    EXPECT_EQ(scheduler_.scheduledCount(), 0U);
    advance(5s);
    EXPECT_EQ(store->writeCount(), 0U);
}

TEST_F(SettingsSavePolicyTest, AFailedScheduledSaveIsRetried) {
    std::string const folder = dir_.file("config");
    auto store = scheduled(benchStore(folder + "/settings.json"));
    yxfp_test::LogCapture log;
    store->set("channel", std::int64_t{4});
    advance(2s);
    EXPECT_EQ(store->writeCount(), 0U);
    EXPECT_TRUE(store->hasUnsavedChanges());
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    store->set("channel", std::int64_t{5});
    advance(2s);
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedChannel(folder + "/settings.json"), 5);
}

TEST_F(SettingsSavePolicyTest, DestroyingTheStoreCancelsItsScheduledSave) {
    {
        auto store = scheduled(benchStore(path_));
        store->set("channel", std::int64_t{9});
        EXPECT_EQ(scheduler_.pending(), 1U);
    }
    EXPECT_EQ(scheduler_.pending(), 0U);
    clock_.advance(5s);
}

}  // namespace
