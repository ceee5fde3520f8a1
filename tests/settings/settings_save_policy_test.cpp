#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "manual_save_scheduler.h"
#include "platform_capture.h"
#include "settings_test_store.h"
#include "temp_directory.h"

// Saving after changes, coalesced on a hand-moved clock: at most one write per save delay,
// and within the delay of the last change.
namespace {

using namespace std::chrono_literals;
using yxfp_test::benchStore;
using yxfp_test::ManualSaveScheduler;
using yxfp_test::TempDirectory;
using yxfrontpanel::runtime::ManualClock;

std::int64_t savedChannel(std::string const& path) {
    auto store = benchStore(path);
    store->load();
    return store->integer("channel");
}

TEST(SettingsSavePolicyTest, AHundredCommitsInOneSecondGiveAtMostTwoWrites) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    store->setScheduler(&scheduler);
    for (int i = 0; i < 100; ++i) {
        store->set("voltage", 0.25 * i);
        clock.advance(10ms);
    }
    clock.advance(3s);
    EXPECT_LE(store->writeCount(), 2U);
    EXPECT_GE(store->writeCount(), 1U);
    EXPECT_FALSE(store->hasUnsavedChanges());
    auto reloaded = benchStore(dir.file("settings.json"));
    reloaded->load();
    EXPECT_EQ(reloaded->number("voltage"), 0.25 * 99);
    EXPECT_EQ(scheduler.pending(), 0U);
}

TEST(SettingsSavePolicyTest, TheFileIsWrittenWithinTheDelayOfTheFirstUnsavedChange) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    store->setScheduler(&scheduler);
    store->set("channel", std::int64_t{7});
    clock.advance(1999ms);
    EXPECT_EQ(store->writeCount(), 0U);
    clock.advance(1ms);
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedChannel(dir.file("settings.json")), 7);
    // A later change starts a new period; without changes nothing more is written.
    clock.advance(10s);
    EXPECT_EQ(store->writeCount(), 1U);
    store->set("channel", std::int64_t{8});
    clock.advance(2s);
    EXPECT_EQ(store->writeCount(), 2U);
    EXPECT_EQ(savedChannel(dir.file("settings.json")), 8);
}

TEST(SettingsSavePolicyTest, TheDelayFollowsTheOptions) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto options = yxfp_test::benchOptions();
    options.saveDelay = 500ms;
    yxfrontpanel::settings::SettingsStore store(dir.file("settings.json"), options,
                                                yxfp_test::benchDefinitions());
    store.setScheduler(&scheduler);
    store.set("output", true);
    clock.advance(499ms);
    EXPECT_EQ(store.writeCount(), 0U);
    clock.advance(1ms);
    EXPECT_EQ(store.writeCount(), 1U);
}

TEST(SettingsSavePolicyTest, FlushWritesPendingChangesAndCancelsTheScheduledSave) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    store->setScheduler(&scheduler);
    store->set("channel", std::int64_t{11});
    EXPECT_EQ(scheduler.pending(), 1U);
    ASSERT_TRUE(store->flush());
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(scheduler.pending(), 0U);
    EXPECT_EQ(savedChannel(dir.file("settings.json")), 11);
    clock.advance(5s);
    EXPECT_EQ(store->writeCount(), 1U);
}

TEST(SettingsSavePolicyTest, UnchangedValuesScheduleNothing) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto store = benchStore(dir.file("settings.json"));
    store->setScheduler(&scheduler);
    store->set("channel", std::int64_t{3});
    EXPECT_EQ(scheduler.scheduledCount(), 0U);
    clock.advance(5s);
    EXPECT_EQ(store->writeCount(), 0U);
}

TEST(SettingsSavePolicyTest, AFailedScheduledSaveIsRetriedByTheNextChange) {
    TempDirectory dir;
    std::string const folder = dir.file("config");
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    auto store = benchStore(folder + "/settings.json");
    store->setScheduler(&scheduler);
    yxfp_test::LogCapture log;
    store->set("channel", std::int64_t{4});
    clock.advance(2s);
    EXPECT_EQ(store->writeCount(), 0U);
    EXPECT_TRUE(store->hasUnsavedChanges());
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    store->set("channel", std::int64_t{5});
    clock.advance(2s);
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedChannel(folder + "/settings.json"), 5);
}

TEST(SettingsSavePolicyTest, DestroyingTheStoreCancelsItsScheduledSave) {
    TempDirectory dir;
    ManualClock clock;
    ManualSaveScheduler scheduler(clock);
    {
        auto store = benchStore(dir.file("settings.json"));
        store->setScheduler(&scheduler);
        store->set("channel", std::int64_t{9});
        EXPECT_EQ(scheduler.pending(), 1U);
    }
    EXPECT_EQ(scheduler.pending(), 0U);
    clock.advance(5s);
}

}  // namespace
