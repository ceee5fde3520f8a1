#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "menu_keys.h"
#include "platform_capture.h"
#include "test_menu.h"

namespace {

using yxfp_test::Key;
using yxfp_test::press;
using yxfrontpanel::InlineEditorMenuItem;
using yxfrontpanel::TriggerMenuItem;

// An odd number of switches, so that the last one stores `true`.
constexpr int kSwitches = 2001;

// Calls `change(i % 2 == 0)` for i = 0 .. kSwitches-1 on a second thread while the key thread
// moves up and down through `tree`; returns after both are done.
void switchWhileMoving(yxfrontpanel::IMenuTree& tree, std::function<void(bool)> const& change) {
    std::thread switcher([&change] {
        for (int i = 0; i < kSwitches; ++i) {
            change(i % 2 == 0);
        }
    });
    for (int round = 0; round < 200; ++round) {
        press(tree, {Key::Down, Key::Down, Key::Down, Key::Up, Key::Up, Key::Up});
    }
    switcher.join();
}

// A 20x4 menu with a trigger and an inline item among plain items; the cursor passes over both.
struct ModeMenu {
    ModeMenu() {
        menu.add(u"Alpha");
        trigger = std::make_shared<TriggerMenuItem>(u"Reset", std::chrono::milliseconds(500));
        trigger->action = [this] {
            ++actions;
            return true;
        };
        menu.tree->addItem(trigger);
        inlineItem = std::make_shared<InlineEditorMenuItem>(u"Mode");
        inlineItem->addValue(1, u"On");
        inlineItem->addValue(2, u"Off");
        inlineItem->setValue(1);
        inlineItem->valueCallback = [this](int key) { lastKey = key; };
        menu.tree->addItem(inlineItem);
        menu.add(u"Omega");
        menu.tree->setFocus(true);
    }

    yxfp_test::TestMenu menu{20, 4};
    std::shared_ptr<TriggerMenuItem> trigger;
    std::shared_ptr<InlineEditorMenuItem> inlineItem;
    int actions = 0;
    int lastKey = 0;
};

TEST(ModeSwitchTest, TriggerKeepsTheLastLocalFlagSetFromAnotherThread) {
    ModeMenu panel;

    switchWhileMoving(*panel.menu.tree, [&panel](bool local) { panel.trigger->setLocal(local); });

    EXPECT_TRUE(panel.trigger->getLocal());
}

TEST(ModeSwitchTest, TriggerRunsItsActionAfterLocalModeWasSwitchedOnFromAnotherThread) {
    ModeMenu panel;
    yxfp_test::SleepCapture const sleeps;

    switchWhileMoving(*panel.menu.tree, [&panel](bool local) { panel.trigger->setLocal(local); });
    panel.trigger->enter();

    EXPECT_EQ(panel.actions, 1);
}

TEST(ModeSwitchTest, InlineItemStepsAfterLocalModeWasSwitchedOnFromAnotherThread) {
    ModeMenu panel;
    yxfp_test::SleepCapture const sleeps;

    switchWhileMoving(*panel.menu.tree,
                      [&panel](bool local) { panel.inlineItem->setLocal(local); });
    panel.inlineItem->enter();

    EXPECT_EQ(panel.lastKey, 2);
    EXPECT_TRUE(sleeps.sleeps().empty());
}

TEST(ModeSwitchTest, InlineItemRefusesAfterLocalModeWasSwitchedOffFromAnotherThread) {
    ModeMenu panel;
    yxfp_test::SleepCapture const sleeps;

    switchWhileMoving(*panel.menu.tree,
                      [&panel](bool local) { panel.inlineItem->setLocal(!local); });
    panel.inlineItem->enter();

    EXPECT_EQ(panel.lastKey, 0);
    EXPECT_EQ(sleeps.sleeps().size(), 1U);
}

TEST(ModeSwitchTest, EditorModeOfAnEditorNotOnScreenEndsAsLastSwitched) {
    ModeMenu panel;
    yxfrontpanel::ValueEditor editor(panel.menu.provider, u"Voltage", 0.0, 10.0);
    editor.setValue(5.0);

    switchWhileMoving(*panel.menu.tree, [&editor](bool on) { editor.setEditorMode(on); });

    EXPECT_TRUE(editor.getEditorMode());
    EXPECT_EQ(panel.menu.provider.line(0), panel.menu.line(u"Alpha", u' '));
}

TEST(ModeSwitchTest, EditorModeOfASliderNotOnScreenEndsAsLastSwitched) {
    ModeMenu panel;
    yxfrontpanel::Slider slider(panel.menu.provider, u"Level", u"Lo", u"Hi", 4, 12, 0);
    slider.setValue(3);

    switchWhileMoving(*panel.menu.tree, [&slider](bool on) { slider.setEditorMode(!on); });

    EXPECT_FALSE(slider.getEditorMode());
    EXPECT_FALSE(slider.moveRight());
    EXPECT_EQ(slider.getValue(), 3);
}

}  // namespace
