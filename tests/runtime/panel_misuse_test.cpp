#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <future>
#include <stdexcept>
#include <thread>

#include "panel_fixture.h"

namespace {

using yxfp_test::PanelFixture;
using namespace std::chrono_literals;

using PanelMisuseTest = PanelFixture;

// A panel without a root menu refuses to run.
TEST(PanelSetupTest, RunWithoutRootThrows) {
    frontpanelhw::MemoryDisplay display(16, 2);
    yxfrontpanel::runtime::Panel panel(display);
    EXPECT_THROW(panel.run(), std::logic_error);
    EXPECT_THROW(panel.runOnce(0ms), std::logic_error);
}

// run from a second thread while the first runs throws; so does a turn from inside the loop.
TEST_F(PanelMisuseTest, RunWhileRunningThrows) {
    std::thread runner([this] { panel.run(); });
    bool innerThrew = false;
    bool outerThrew = false;
    std::promise<void> checked;
    ASSERT_TRUE(panel.post([&] {
        try {
            panel.runOnce(0ms);
        } catch (std::logic_error const&) {
            innerThrew = true;
        }
        try {
            std::thread([&] {
                try {
                    panel.run();
                } catch (std::logic_error const&) {
                    outerThrew = true;
                }
            }).join();
        } catch (...) {
        }
        checked.set_value();
    }));
    checked.get_future().wait();
    panel.stop();
    runner.join();
    EXPECT_TRUE(innerThrew);
    EXPECT_TRUE(outerThrew);
}

// After stop, posts, publications, key presses are refused and run returns at once.
TEST_F(PanelMisuseTest, PostAfterStopIsRefused) {
    turn();
    panel.stop();
    bool ran = false;
    EXPECT_FALSE(panel.post([&ran] { ran = true; }));
    EXPECT_FALSE(panel.publish("value", [&ran] { ran = true; }));
    EXPECT_FALSE(panel.pressKey(frontpanelhw::PanelKey::Down));
    EXPECT_FALSE(panel.runOnce(0ms));
    panel.run();
    EXPECT_FALSE(ran);
    EXPECT_TRUE(panel.isStopped());
}

// A timer period of zero or less is refused; a delay of zero or less runs at the next turn.
TEST_F(PanelMisuseTest, NonPositiveTimerPeriodThrows) {
    EXPECT_THROW(panel.every(0ms, [] {}), std::invalid_argument);
    EXPECT_THROW(panel.every(-5ms, [] {}), std::invalid_argument);
    int runs = 0;
    EXPECT_NE(panel.after(-5ms, [&runs] { ++runs; }), 0U);
    turn();
    EXPECT_EQ(runs, 1);
}

// stopOnSignals: a signal stops the loop that waits in the kernel.
TEST_F(PanelMisuseTest, SignalStopsTheLoop) {
    auto const guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR1});
    std::thread runner([this] { panel.run(); });
    // Raised once the loop has taken a turn, so that it is known to be waiting or about to.
    std::promise<void> running;
    panel.post([&running] { running.set_value(); });
    running.get_future().wait();
    std::raise(SIGUSR1);
    runner.join();
    yxfrontpanel::runtime::clearSignalStop();
    EXPECT_TRUE(panel.isStopped());
}

}  // namespace
