#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "panel_fixture.h"
#include "platform_capture.h"

namespace {

using yxfp_test::PanelFixture;
using namespace std::chrono_literals;

using PanelThrowTest = PanelFixture;

// The records of `capture` whose message contains `text`.
std::size_t recordsNaming(yxfp_test::LogCapture const& capture, std::string const& text) {
    std::size_t count = 0;
    for (auto const& record : capture.records()) {
        count += record.message.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

TEST_F(PanelThrowTest, OtherTimersOfTheTurnRunWhenOneThrows) {
    yxfp_test::LogCapture const capture;
    int periods = 0;
    int shots = 0;
    auto const throwing = panel.every(1s, [] { throw std::runtime_error("sensor gone"); });
    auto const counting = panel.every(1s, [&periods] { ++periods; });
    panel.after(1s, [&shots] { ++shots; });
    clock->advance(1s);
    EXPECT_THROW(panel.runOnce(0ms), std::runtime_error);
    EXPECT_EQ(periods, 1) << "the timer due with the throwing one ran in the same turn";
    EXPECT_EQ(shots, 1);
    // Each periodic timer keeps its period; the throwing one throws again each time.
    for (int period = 0; period < 9; ++period) {
        clock->advance(1s);
        EXPECT_THROW(panel.runOnce(0ms), std::runtime_error);
    }
    EXPECT_EQ(periods, 10);
    EXPECT_EQ(shots, 1);
    EXPECT_EQ(recordsNaming(capture, "timer " + std::to_string(throwing)), 10U);
    EXPECT_EQ(recordsNaming(capture, "sensor gone"), 10U);
    EXPECT_TRUE(panel.cancel(counting));
    EXPECT_TRUE(panel.cancel(throwing));
}

TEST_F(PanelThrowTest, CancelTellsTheTruthAfterAThrow) {
    int ran = 0;
    auto const first = panel.after(1s, [] { throw std::runtime_error("first"); });
    auto const second = panel.after(1s, [&ran] { ++ran; });
    clock->advance(1s);
    EXPECT_THROW(panel.runOnce(0ms), std::runtime_error);
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(panel.cancel(first)) << "a one-shot timer that threw has run";
    EXPECT_FALSE(panel.cancel(second)) << "a one-shot timer that ran";
}

TEST_F(PanelThrowTest, EveryStopListenerRunsWhenOneThrows) {
    yxfp_test::LogCapture const capture;
    std::vector<int> ran;
    panel.addStopListener([&ran] { ran.push_back(1); });
    auto const throwing = panel.addStopListener([] { throw std::runtime_error("disk full"); });
    panel.addStopListener([&ran] { ran.push_back(3); });  // e.g. the settings' final save
    panel.stop();
    EXPECT_THROW(panel.runOnce(0ms), std::runtime_error);
    EXPECT_EQ(ran, (std::vector<int>{1, 3}));
    EXPECT_EQ(recordsNaming(capture, "stop listener " + std::to_string(throwing)), 1U);
    EXPECT_EQ(recordsNaming(capture, "disk full"), 1U);
    EXPECT_FALSE(panel.runOnce(0ms)) << "the listeners ran once";
    EXPECT_EQ(ran, (std::vector<int>{1, 3}));
}

// The web panel's teardown cancels its timers from another thread and then frees what they
// use: cancel must not return while the callback still runs.
TEST_F(PanelThrowTest, CancelFromAnotherThreadWaitsForTheRunningCallback) {
    std::promise<void> started;
    std::promise<void> release;
    std::atomic<bool> finished{false};
    auto const id = panel.every(1s, [&] {
        started.set_value();
        release.get_future().wait();
        finished.store(true);
    });
    clock->advance(1s);
    std::thread loop([this] { panel.runOnce(0ms); });
    started.get_future().wait();
    std::atomic<bool> returned{false};
    bool finishedWhenReturned = false;
    std::thread canceller([&] {
        EXPECT_TRUE(panel.cancel(id));
        finishedWhenReturned = finished.load();
        returned.store(true);
    });
    // Give a cancel that does not wait every chance to return first (bounded, no sleep).
    for (int spin = 0; spin < 100000 && !returned.load(); ++spin) {
        std::this_thread::yield();
    }
    release.set_value();
    canceller.join();
    loop.join();
    EXPECT_TRUE(finishedWhenReturned);
}

TEST_F(PanelThrowTest, ATimerMayCancelItselfWhileItRuns) {
    int ran = 0;
    yxfrontpanel::runtime::Panel::TimerId id = 0;
    id = panel.every(1s, [&] {
        ++ran;
        EXPECT_TRUE(panel.cancel(id));  // on the panel's thread: no wait for itself
    });
    clock->advance(1s);
    turn();
    clock->advance(1s);
    turn();
    EXPECT_EQ(ran, 1);
}

}  // namespace
