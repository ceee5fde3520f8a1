#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/testing/key_script.h>
#include <yxfrontpanel/testing/recording_display.h>
#include <yxfrontpanel/testing/script_transcript.h>
#include <yxfrontpanel/trigger_menu_item.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

namespace {

using yxfrontpanel::testing::KeyScript;
using yxfrontpanel::testing::KeyScriptError;
using yxfrontpanel::testing::RecordingDisplay;
using yxfrontpanel::testing::recordKeyScript;

// A focused two-item menu on a 6x2 panel: its first screen is already recorded.
struct TwoItemMenu {
    TwoItemMenu() {
        for (char16_t const* name : {u"One", u"Two"}) {
            tree->addItem(std::make_shared<yxfrontpanel::TriggerMenuItem>(
                name, std::chrono::milliseconds(0)));
        }
        tree->setFocus(true);
    }
    RecordingDisplay display{6, 2};
    std::unique_ptr<yxfrontpanel::IMenuTree> tree = yxfrontpanel::MenuTreeFactory().create(display);
};

TEST(ScriptTranscriptTest, HeadsEachFrameWithTheStepThatDrewIt) {
    TwoItemMenu menu;
    EXPECT_EQ(recordKeyScript(KeyScript(*menu.tree), "down down up", menu.display),
              "frame 1 after step 0: start\n"
              "+------+\n"
              "|One   | < inverted 0-4\n"
              "|Two   |\n"
              "+------+\n"
              "frame 2 after step 1: down\n"
              "+------+\n"
              "|One   |\n"
              "|Two   | < inverted 0-4\n"
              "+------+\n"
              "frame 3 after step 3: up\n"
              "+------+\n"
              "|One   | < inverted 0-4\n"
              "|Two   |\n"
              "+------+\n");
}

TEST(ScriptTranscriptTest, UnknownWordRunsNothing) {
    TwoItemMenu menu;
    EXPECT_THROW(recordKeyScript(KeyScript(*menu.tree), "down fly", menu.display), KeyScriptError);
    EXPECT_EQ(menu.display.drawCount(), 1U);
}

}  // namespace
