#include "key_script.h"

#include <frontpanelhw/key_source.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using frontpanelhw::PanelKey;
using yxfrontpanel::testing::KeyScriptError;

// Notes what the simulator's words did to the application.
class NotingApp : public frontpanelsim::PanelApp {
public:
    void start() override { calls.push_back("start"); }
    void press(PanelKey key) override { calls.push_back(frontpanelhw::panelKeyName(key)); }
    void setLocal(bool local) override {
        local_ = local;
        calls.push_back(local ? "local" : "remote");
    }
    bool isLocal() const override { return local_; }
    void tick() override { calls.push_back("tick"); }

    std::vector<std::string> calls;

private:
    bool local_ = true;
};

TEST(SimulatorKeyScriptTest, EveryWordReachesTheApplication) {
    NotingApp app;
    auto const script =
        frontpanelsim::simulatorKeyScript([&app]() -> frontpanelsim::PanelApp& { return app; });
    script.run("up down left right enter back local remote tick");
    EXPECT_EQ(app.calls, (std::vector<std::string>{"up", "down", "left", "right", "enter", "back",
                                                   "local", "remote", "tick"}));
}

TEST(SimulatorKeyScriptTest, ParsingDoesNotNeedTheApplication) {
    auto const script = frontpanelsim::simulatorKeyScript(
        []() -> frontpanelsim::PanelApp& { throw std::logic_error("asked for the application"); });
    auto const steps = script.parse("# open the output menu\n  enter\tdown # to current\n\ntick");
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[2].word, "tick");
    EXPECT_EQ(steps[2].position, 3U);
}

TEST(SimulatorKeyScriptTest, UnknownWordNamesEveryKnownWord) {
    auto const script = frontpanelsim::simulatorKeyScript(
        []() -> frontpanelsim::PanelApp& { throw std::logic_error("asked for the application"); });
    try {
        script.parse("down down jump enter");
        FAIL() << "expected KeyScriptError";
    } catch (KeyScriptError const& error) {
        EXPECT_STREQ(error.what(),
                     "unknown key 'jump' at position 3 of the key script (known: up down left "
                     "right enter back local remote tick)");
    }
}

TEST(SimulatorKeyScriptTest, HelpListsEveryWordInOneColumn) {
    EXPECT_EQ(frontpanelsim::keyScriptHelp(),
              "    up      the up key\n"
              "    down    the down key\n"
              "    left    the left key\n"
              "    right   the right key\n"
              "    enter   the enter (action) key\n"
              "    back    the back key\n"
              "    local   switch to local mode (front-panel edits allowed)\n"
              "    remote  switch to remote mode (front-panel edits refused)\n"
              "    tick    let half a second pass (one measurement update)\n");
}

}  // namespace
