#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/testing/key_script.h>
#include <yxfrontpanel/testing/recording_display.h>
#include <yxfrontpanel/trigger_menu_item.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using frontpanelhw::PanelKey;
using yxfrontpanel::testing::KeyScript;
using yxfrontpanel::testing::KeyScriptError;

// A script whose keys are noted by name.
struct NotedKeys {
    std::vector<std::string> pressed;
    KeyScript script{
        [this](PanelKey key) { pressed.emplace_back(frontpanelhw::panelKeyName(key)); }};
};

std::string errorOf(KeyScript const& script, std::string const& text) {
    try {
        script.parse(text);
    } catch (KeyScriptError const& error) {
        return error.what();
    }
    return "no error";
}

TEST(KitKeyScriptTest, SixKeyWordsPressTheirKeysInOrder) {
    NotedKeys keys;
    keys.script.run("up down left right enter back");
    EXPECT_EQ(keys.pressed,
              (std::vector<std::string>{"up", "down", "left", "right", "enter", "back"}));
}

TEST(KitKeyScriptTest, WordsMaySpanLinesAndCarryComments) {
    NotedKeys keys;
    auto const steps = keys.script.parse("# open the menu\n  enter\tdown # to current\n\nback");
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[1].word, "down");
    EXPECT_EQ(steps[2].position, 3U);
    EXPECT_TRUE(keys.pressed.empty()) << "parsing presses nothing";
    steps[2].perform();
    EXPECT_EQ(keys.pressed, (std::vector<std::string>{"back"}));
}

TEST(KitKeyScriptTest, EmptyScriptHasNoSteps) {
    NotedKeys keys;
    EXPECT_TRUE(keys.script.parse("").empty());
    EXPECT_TRUE(keys.script.parse("  # nothing\n").empty());
}

TEST(KitKeyScriptTest, UnknownWordStopsTheScriptBeforeTheFirstKey) {
    NotedKeys keys;
    EXPECT_THROW(keys.script.run("down jump"), KeyScriptError);
    EXPECT_TRUE(keys.pressed.empty());
    EXPECT_EQ(errorOf(keys.script, "down down jump enter"),
              "unknown key 'jump' at position 3 of the key script (known: up down left right "
              "enter back)");
}

TEST(KitKeyScriptTest, WordsAreCaseSensitive) {
    NotedKeys keys;
    EXPECT_THROW(keys.script.parse("Enter"), KeyScriptError);
}

TEST(KitKeyScriptTest, ControlBytesOfAnUnknownWordAreEscaped) {
    NotedKeys keys;
    EXPECT_EQ(errorOf(keys.script, std::string("up \x01\x1b[31mx\x7f")),
              "unknown key '\\x01\\x1B[31mx\\x7F' at position 2 of the key script (known: up "
              "down left right enter back)");
}

TEST(KitKeyScriptTest, ProgramWordsRunTheirActions) {
    NotedKeys keys;
    int ticks = 0;
    keys.script.addWord("tick", "half a second", [&ticks] { ++ticks; });
    keys.script.run("tick down tick");
    EXPECT_EQ(ticks, 2);
    EXPECT_EQ(keys.pressed, (std::vector<std::string>{"down"}));
    EXPECT_EQ(keys.script.knownWords(), "up down left right enter back tick");
}

TEST(KitKeyScriptTest, WordsWithAnArgumentBindItWhileParsing) {
    NotedKeys keys;
    std::vector<double> waits;
    keys.script.addWordWithArgument("wait", "SECONDS", "let time pass",
                                    [&waits](std::string const& argument) -> KeyScript::Action {
                                        double const seconds = std::stod(argument);
                                        return [&waits, seconds] { waits.push_back(seconds); };
                                    });
    auto const steps = keys.script.parse("wait:1.5 up wait:2");
    EXPECT_TRUE(waits.empty());
    for (auto const& step : steps) {
        step.perform();
    }
    EXPECT_EQ(waits, (std::vector<double>{1.5, 2.0}));
    EXPECT_EQ(steps[0].word, "wait:1.5");
    EXPECT_EQ(keys.script.knownWords(), "up down left right enter back wait:SECONDS");
    EXPECT_NE(errorOf(keys.script, "wait").find("unknown key 'wait' at position 1"),
              std::string::npos);
}

TEST(KitKeyScriptTest, RefusedArgumentNamesWordPositionAndReason) {
    NotedKeys keys;
    keys.script.addWordWithArgument(
        "wait", "SECONDS", "let time pass", [](std::string const& argument) -> KeyScript::Action {
            throw std::invalid_argument("'" + argument + "' is not a number");
        });
    EXPECT_EQ(errorOf(keys.script, "up wait:soon"),
              "bad wait 'wait:soon' at position 2 of the key script: 'soon' is not a number");
}

TEST(KitKeyScriptTest, BadOrRepeatedWordsAreRefusedWhenAdded) {
    NotedKeys keys;
    auto const nothing = [] {};
    EXPECT_THROW(keys.script.addWord("up", "again", nothing), std::invalid_argument);
    EXPECT_THROW(keys.script.addWord("", "empty", nothing), std::invalid_argument);
    EXPECT_THROW(keys.script.addWord("two words", "blank", nothing), std::invalid_argument);
    EXPECT_THROW(keys.script.addWord("a:b", "colon", nothing), std::invalid_argument);
    EXPECT_THROW(keys.script.addWord("a#b", "hash", nothing), std::invalid_argument);
    EXPECT_THROW(keys.script.addWordWithArgument("wait", "", "no name",
                                                 [](std::string const&) { return [] {}; }),
                 std::invalid_argument);
}

TEST(KitKeyScriptTest, HelpPutsMeaningsInOneColumnAndLongWordsOnTheirOwnLine) {
    NotedKeys keys;
    keys.script.addWord("remote", "switch to remote mode", [] {});
    keys.script.addWordWithArgument(
        "wait", "SECONDS",
        "let SECONDS pass (decimals allowed): timers, measurements, the idle home screen",
        [](std::string const&) { return [] {}; });
    EXPECT_EQ(keys.script.help(),
              "    up      the up key\n"
              "    down    the down key\n"
              "    left    the left key\n"
              "    right   the right key\n"
              "    enter   the enter (action) key\n"
              "    back    the back key\n"
              "    remote  switch to remote mode\n"
              "    wait:SECONDS\n"
              "            let SECONDS pass (decimals allowed): timers, measurements, the idle\n"
              "            home screen\n");
}

TEST(KitKeyScriptTest, StepsNameTheirWordAndArgument) {
    NotedKeys keys;
    keys.script.addWordWithArgument("wait", "SECONDS", "let time pass",
                                    [](std::string const&) { return [] {}; });
    auto const steps = keys.script.parse("down wait:2.5");
    EXPECT_EQ(steps[0].name, "down");
    EXPECT_EQ(steps[0].argument, "");
    EXPECT_EQ(steps[1].name, "wait");
    EXPECT_EQ(steps[1].argument, "2.5");
}

TEST(KitKeyScriptTest, TreeScriptUsesThePanelKeyMapping) {
    yxfrontpanel::testing::RecordingDisplay display(21, 4);
    auto tree = yxfrontpanel::MenuTreeFactory().create(display);
    for (char16_t const* name : {u"First", u"Second", u"Third"}) {
        tree->addItem(
            std::make_shared<yxfrontpanel::TriggerMenuItem>(name, std::chrono::milliseconds(0)));
    }
    tree->setFocus(true);
    yxfrontpanel::testing::pressKeys(*tree, "down down up");
    EXPECT_EQ(display.line(1).substr(0, 6), u"Second");
    EXPECT_EQ(display.inversion(1).substr(0, 6), "######");
    EXPECT_EQ(display.drawCount(), 4U);
    EXPECT_THROW(yxfrontpanel::testing::pressKeys(*tree, "down tick"), KeyScriptError);
    EXPECT_EQ(display.drawCount(), 4U) << "nothing runs before the script is known good";
}

}  // namespace
