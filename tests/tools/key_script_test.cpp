#include "key_script.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using frontpanelsim::parseKeyScript;
using frontpanelsim::ScriptAction;
using frontpanelsim::ScriptError;

TEST(KeyScriptTest, ParsesEveryWordInOrder) {
    auto const steps = parseKeyScript("up down left right enter back local remote tick");
    std::vector<ScriptAction> actions(steps.size());
    std::transform(steps.begin(), steps.end(), actions.begin(),
                   [](auto const& step) { return step.action; });
    EXPECT_EQ(actions, (std::vector<ScriptAction>{
                           ScriptAction::Up, ScriptAction::Down, ScriptAction::Left,
                           ScriptAction::Right, ScriptAction::Enter, ScriptAction::Back,
                           ScriptAction::Local, ScriptAction::Remote, ScriptAction::Tick}));
    EXPECT_EQ(steps[4].word, "enter");
    EXPECT_EQ(steps[4].position, 5U);
}

TEST(KeyScriptTest, WordsMaySpanLinesAndCarryComments) {
    auto const steps = parseKeyScript("# open the output menu\n  enter\tdown # to current\n\nback");
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].action, ScriptAction::Enter);
    EXPECT_EQ(steps[1].action, ScriptAction::Down);
    EXPECT_EQ(steps[2].action, ScriptAction::Back);
    EXPECT_EQ(steps[2].position, 3U);
}

TEST(KeyScriptTest, EmptyScriptHasNoSteps) {
    EXPECT_TRUE(parseKeyScript("").empty());
    EXPECT_TRUE(parseKeyScript("  # nothing\n").empty());
}

TEST(KeyScriptTest, UnknownWordIsNamedWithItsPosition) {
    try {
        parseKeyScript("down down jump enter");
        FAIL() << "expected ScriptError";
    } catch (ScriptError const& error) {
        EXPECT_NE(std::string(error.what()).find("unknown key 'jump' at position 3"),
                  std::string::npos)
            << error.what();
    }
}

TEST(KeyScriptTest, WaitCarriesItsSeconds) {
    auto const steps = parseKeyScript("wait:60 wait:0.25 wait:0");
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].action, ScriptAction::Wait);
    EXPECT_EQ(steps[0].duration, std::chrono::milliseconds{60000});
    EXPECT_EQ(steps[1].duration, std::chrono::milliseconds{250});
    EXPECT_EQ(steps[2].duration, std::chrono::milliseconds{0});
    EXPECT_EQ(steps[1].word, "wait:0.25");
    EXPECT_EQ(parseKeyScript("tick")[0].duration, std::chrono::milliseconds{0});
}

TEST(KeyScriptTest, BadWaitIsNamedWithItsPosition) {
    for (char const* bad : {"wait:", "wait:-1", "wait:soon", "wait:5s", "wait:90000"}) {
        try {
            parseKeyScript(std::string("up ") + bad);
            FAIL() << "expected ScriptError for " << bad;
        } catch (ScriptError const& error) {
            EXPECT_NE(
                std::string(error.what()).find(std::string("bad wait '") + bad + "' at position 2"),
                std::string::npos)
                << error.what();
        }
    }
}

TEST(KeyScriptTest, WordsAreCaseSensitive) { EXPECT_THROW(parseKeyScript("Enter"), ScriptError); }

TEST(KeyScriptTest, HelpListsEveryWord) {
    std::string const help = frontpanelsim::keyScriptHelp();
    for (char const* word :
         {"up", "down", "left", "right", "enter", "back", "local", "remote", "tick"}) {
        EXPECT_NE(help.find(std::string("    ") + word + " "), std::string::npos) << word;
    }
    EXPECT_NE(help.find("    wait:SECONDS"), std::string::npos);
}

}  // namespace
