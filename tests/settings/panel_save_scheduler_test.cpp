#include <frontpanelhw/display.h>
#include <yxfrontpanel/settings.h>
#include <yxfrontpanel/testing/manual_clock.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "recording_provider.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"
#include "temp_directory.h"

// The store's saves on a real panel's timers, with a hand-moved clock: a user turning through
// values commits many times, the file is written at most once per save delay, and stopping the
// panel leaves nothing unsaved.
namespace {

using namespace std::chrono_literals;
using frontpanelhw::PanelKey;
using namespace yxfp_test;
using namespace yxfrontpanel::settings;
using yxfrontpanel::runtime::Panel;
using yxfrontpanel::testing::ManualClock;

// A panel whose root menu holds the voltage editor bound to a bench store.
class PanelSaveSchedulerTest : public ::testing::Test {
protected:
    PanelSaveSchedulerTest()
        : panel(display, {}, clock),
          tree(yxfrontpanel::MenuTreeFactory().create(panel.provider())),
          voltage(std::make_shared<yxfrontpanel::ValueEditorMenuItem>(panel.provider(), u"Voltage",
                                                                      0.0, 30.0)) {
        store->load();
        voltage->setPrecision(2);
        voltage->setCloseAfterApply(false);
        binding = bindSetting(*store, "voltage", *voltage);
        tree->addItem(voltage);
        tree->setLocal(true);
        panel.setRoot(*tree);
    }

    // One turn of the panel, then waits for the saves it handed to the writer thread.
    void turn() {
        ASSERT_TRUE(panel.runOnce(0ms));
        store->waitForSaves();
    }
    void press(PanelKey key) {
        ASSERT_TRUE(panel.pressKey(key));
        turn();
    }
    // Opens the voltage editor, raises the value and commits it; returns the committed value.
    double commitOneEdit() {
        turn();
        press(PanelKey::Enter);
        press(PanelKey::Up);
        press(PanelKey::Enter);
        return voltage->getEditor().getValue();
    }
    double savedVoltage() const {
        auto reloaded = benchStore(path);
        reloaded->load();
        return reloaded->number("voltage");
    }

    TempDirectory dir;
    std::string path = dir.file("settings.json");
    std::shared_ptr<yxfp_test::GatedFileSystem> gate =
        std::make_shared<yxfp_test::GatedFileSystem>(yxfrontpanel::settings::posixFileSystem());
    std::unique_ptr<SettingsStore> store = yxfp_test::benchStoreOn(path, gate);
    frontpanelhw::MemoryDisplay display{20, 4};
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    Panel panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltage;
    SettingBinding binding;
};

TEST_F(PanelSaveSchedulerTest, AHundredCommitsInOneSecondWriteTheFileAtMostTwice) {
    PanelSaveScheduler scheduler(panel, *store);
    turn();
    press(PanelKey::Enter);  // opens the editor, which stays open after each apply
    for (int commit = 0; commit < 100; ++commit) {
        press(commit % 2 == 0 ? PanelKey::Up : PanelKey::Down);
        press(PanelKey::Enter);
        clock->advance(10ms);
        turn();
    }
    double const last = voltage->getEditor().getValue();
    EXPECT_EQ(store->number("voltage"), last);
    for (int i = 0; i < 5; ++i) {
        clock->advance(1s);
        turn();
    }
    EXPECT_GE(store->writeCount(), 1U);
    EXPECT_LE(store->writeCount(), 2U);
    EXPECT_FALSE(store->hasUnsavedChanges());
    EXPECT_EQ(savedVoltage(), last);
}

TEST_F(PanelSaveSchedulerTest, NothingIsWrittenBeforeTheDelayAndOnceAfterIt) {
    PanelSaveScheduler scheduler(panel, *store);
    double const committed = commitOneEdit();
    clock->advance(1999ms);
    turn();
    EXPECT_EQ(store->writeCount(), 0U);
    clock->advance(1ms);
    turn();
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedVoltage(), committed);
}

TEST_F(PanelSaveSchedulerTest, KeysAreServedWhileASaveIsHeldOnTheDevice) {
    PanelSaveScheduler scheduler(panel, *store);
    double const committed = commitOneEdit();
    gate->hold();
    clock->advance(2s);
    ASSERT_TRUE(panel.runOnce(0ms));  // hands the save to the writer thread
    gate->waitUntilHeld();            // which is now inside a write that does not end
    auto const before = yxfp_test::screenOf(display.getLastFrame());
    for (PanelKey const key : {PanelKey::Down, PanelKey::Down, PanelKey::Enter}) {
        ASSERT_TRUE(panel.pressKey(key));
        clock->advance(100ms);  // a frame is due
        ASSERT_TRUE(panel.runOnce(0ms));
    }
    auto const after = yxfp_test::screenOf(display.getLastFrame());
    EXPECT_NE(after, before) << "three key presses served during the save";
    EXPECT_EQ(store->number("voltage"), voltage->getEditor().getValue()) << "and committed";
    EXPECT_NE(voltage->getEditor().getValue(), committed);
    EXPECT_EQ(store->writeCount(), 0U);
    gate->release();
    store->waitForSaves();
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedVoltage(), committed);
    EXPECT_EQ(gate->syncingThreads().count(std::this_thread::get_id()), 0U)
        << "the panel's thread called fsync";
}

TEST_F(PanelSaveSchedulerTest, StoppingThePanelWritesWhatIsUnsaved) {
    PanelSaveScheduler scheduler(panel, *store);
    double const edited = commitOneEdit();
    EXPECT_EQ(store->writeCount(), 0U) << "inside the save delay";
    panel.stop();
    EXPECT_FALSE(panel.runOnce(0ms));
    store->waitForSaves();
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedVoltage(), edited);
    EXPECT_FALSE(panel.runOnce(0ms));
    store->waitForSaves();
    EXPECT_EQ(store->writeCount(), 1U) << "once";
    EXPECT_TRUE(scheduler.finish());
    EXPECT_EQ(store->writeCount(), 1U) << "nothing left to write";
}

TEST_F(PanelSaveSchedulerTest, DestroyingTheSchedulerAfterTheRunWritesWhatIsUnsaved) {
    {
        PanelSaveScheduler scheduler(panel, *store);
        commitOneEdit();
        panel.stop();
    }
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_EQ(savedVoltage(), voltage->getEditor().getValue());
    // Later changes are no longer scheduled on the stopped panel.
    store->set("voltage", 1.0);
    EXPECT_TRUE(store->hasUnsavedChanges());
}

}  // namespace
