#include <frontpanelhw/display_types.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/drawing_provider.h>

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <stdexcept>

#include "runners.h"

namespace {

using frontpanelhw::PanelKey;
using frontpanelsim::PrintMode;
using frontpanelsim::SimOptions;

// Draws one frame per event naming it; "fails" on the back key; sleeps an hour on tick.
class EchoApp : public frontpanelsim::PanelApp {
public:
    explicit EchoApp(yxfrontpanel::IDrawingProvider const& provider) : provider_(provider) {}

    void start() override { show(u"start"); }
    void press(PanelKey key) override {
        if (key == PanelKey::Back) {
            throw std::runtime_error("no way back");
        }
        show(key == PanelKey::Up ? u"up" : u"other");
    }
    void setLocal(bool local) override {
        local_ = local;
        show(local ? u"local" : u"remote");
    }
    bool isLocal() const override { return local_; }
    void tick() override {
        yxbase2::system::this_thread::sleep_for(std::chrono::hours(1));
        show(u"tick");
    }

private:
    void show(std::u16string const& text) const {
        frontpanelhw::drawing::DisplayBuffer frame(provider_.getChars(), provider_.getLines());
        frame.setLineContent(0, 0, text);
        provider_.draw(frame);
    }

    yxfrontpanel::IDrawingProvider const& provider_;
    bool local_ = true;
};

struct RunResult {
    int status;
    std::string out;
    std::string err;
};

RunResult run(std::string const& keys, PrintMode print) {
    SimOptions options;
    options.chars = 6;
    options.lines = 1;
    options.keyScript = keys;
    options.keyScriptSource = "--keys";
    options.print = print;
    std::ostringstream out;
    std::ostringstream err;
    int const status = frontpanelsim::runHeadless(
        options,
        [](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<EchoApp>(provider);
        },
        out, err);
    return RunResult{status, out.str(), err.str()};
}

TEST(HeadlessRunnerTest, PrintsEveryFrameWithItsStep) {
    RunResult const result = run("up remote", PrintMode::All);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "frame 1 after step 0: start\n+------+\n|start |\n+------+\n"
              "frame 2 after step 1: up\n+------+\n|up    |\n+------+\n"
              "frame 3 after step 2: remote\n+------+\n|remote|\n+------+\n");
    EXPECT_EQ(result.err, "");
}

TEST(HeadlessRunnerTest, PrintsOnlyTheLastFrame) {
    RunResult const result = run("up down", PrintMode::Last);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "frame 3 after step 2: down\n+------+\n|other |\n+------+\n");
}

TEST(HeadlessRunnerTest, PrintsNothingWithoutPrintMode) {
    RunResult const result = run("up", PrintMode::None);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(HeadlessRunnerTest, TimedWaitsPassAtOnce) {
    auto const before = std::chrono::steady_clock::now();
    RunResult const result = run("tick tick", PrintMode::Last);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::minutes(1));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("|tick  |"), std::string::npos);
}

TEST(HeadlessRunnerTest, UnknownWordFailsBeforeAnythingRuns) {
    RunResult const result = run("up sideways", PrintMode::All);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("--keys: unknown key 'sideways' at position 2"), std::string::npos)
        << result.err;
}

TEST(HeadlessRunnerTest, FailingStepIsReportedWithItsPosition) {
    RunResult const result = run("up back", PrintMode::All);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("step 2 failed: no way back"), std::string::npos) << result.err;
}

}  // namespace
