#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include "panel_fixture.h"

namespace {

using yxfp_test::PanelFixture;
using yxfrontpanel::runtime::Panel;
using namespace std::chrono_literals;

using PanelPostTest = PanelFixture;
using PanelTimerTest = PanelFixture;

// Posted work runs once, in order, on the next turn.
TEST_F(PanelPostTest, PostsRunOnceInOrder) {
    std::vector<int> order;
    for (int task = 0; task < 5; ++task) {
        ASSERT_TRUE(panel.post([&order, task] { order.push_back(task); }));
    }
    turn();
    turn();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

// Work posted while a form is open runs too, and the form stays open.
TEST_F(PanelPostTest, PostsRunWhileAFormIsOpen) {
    turn();
    keys->press(frontpanelhw::PanelKey::Down);
    keys->press(frontpanelhw::PanelKey::Enter);
    advance(1s);
    bool ran = false;
    panel.post([&ran] { ran = true; });
    turn();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(tree->itemHasFocus());
}

// Only the newest publication per key runs, at most once per frame period.
TEST_F(PanelPostTest, PublicationsAreCoalescedPerKey) {
    turn();  // first frame drawn now: the next one is due a frame period later
    std::vector<int> values;
    std::vector<std::string> others;
    for (int value = 0; value < 100; ++value) {
        panel.publish("reading", [&values, value] { values.push_back(value); });
    }
    panel.publish("other", [&others] { others.push_back("first"); });
    panel.publish("other", [&others] { others.push_back("second"); });
    turn();  // inside the frame period: not yet
    EXPECT_TRUE(values.empty());
    advance(34ms);
    EXPECT_EQ(values, std::vector<int>{99});
    EXPECT_EQ(others, std::vector<std::string>{"second"});
    panel.publish("reading", [&values] { values.push_back(100); });
    advance(34ms);
    EXPECT_EQ(values, (std::vector<int>{99, 100}));
}

// every: first after one period, then on its rhythm; a late timer runs once, no burst.
// Stop listeners run once, in order, on the panel's thread, after the work of the turn that
// sees the stop; a removed one does not run.
TEST_F(PanelPostTest, StopListenersRunOnceAfterTheLastTurnsWork) {
    std::vector<std::string> events;
    panel.addStopListener([&events] { events.push_back("first listener"); });
    auto const removed = panel.addStopListener([&events] { events.push_back("removed"); });
    panel.addStopListener([&events] { events.push_back("second listener"); });
    panel.removeStopListener(removed);
    panel.removeStopListener(12345);  // unknown: ignored
    turn();
    EXPECT_TRUE(events.empty());
    panel.post([this, &events] {
        events.push_back("post");
        panel.stop();  // e.g. a "Power off" item
    });
    EXPECT_FALSE(panel.runOnce(0ms));
    EXPECT_FALSE(panel.runOnce(0ms));
    panel.run();  // returns at once
    EXPECT_EQ(events, (std::vector<std::string>{"post", "first listener", "second listener"}));
}

TEST_F(PanelTimerTest, EveryKeepsItsRhythm) {
    int runs = 0;
    auto const id = panel.every(100ms, [&runs] { ++runs; });
    EXPECT_NE(id, 0U);
    turn();
    EXPECT_EQ(runs, 0);
    advance(99ms);
    EXPECT_EQ(runs, 0);
    advance(1ms);
    EXPECT_EQ(runs, 1);
    advance(350ms);  // late by three and a half periods
    EXPECT_EQ(runs, 2);
    advance(49ms);  // at 499: not yet
    EXPECT_EQ(runs, 2);
    advance(1ms);  // at 500, the rhythm's next
    EXPECT_EQ(runs, 3);
    EXPECT_TRUE(panel.cancel(id));
    EXPECT_FALSE(panel.cancel(id));
    advance(1s);
    EXPECT_EQ(runs, 3);
}

// after: once; cancelled before it is due it never runs.
TEST_F(PanelTimerTest, AfterRunsOnceAndCanBeCancelled) {
    int once = 0;
    int never = 0;
    auto const onceId = panel.after(50ms, [&once] { ++once; });
    auto const neverId = panel.after(50ms, [&never] { ++never; });
    EXPECT_TRUE(panel.cancel(neverId));
    advance(50ms);
    advance(1s);
    EXPECT_EQ(once, 1);
    EXPECT_EQ(never, 0);
    EXPECT_FALSE(panel.cancel(onceId));
}

// A timer may cancel another timer due in the same turn, and itself.
TEST_F(PanelTimerTest, TimerCancelsAnotherDueInTheSameTurn) {
    int second = 0;
    Panel::TimerId secondId = 0;
    Panel::TimerId firstId = 0;
    firstId = panel.every(10ms, [&] {
        panel.cancel(secondId);
        panel.cancel(firstId);
    });
    secondId = panel.every(10ms, [&second] { ++second; });
    advance(10ms);
    advance(10ms);
    EXPECT_EQ(second, 0);
}

// A periodic timer's callable keeps its state from run to run (it is not copied per run).
TEST_F(PanelTimerTest, PeriodicTimerKeepsTheStateOfItsCallable) {
    std::vector<int> counts;
    panel.every(10ms, [&counts, count = 0]() mutable { counts.push_back(++count); });
    advance(10ms);
    advance(10ms);
    advance(10ms);
    EXPECT_EQ(counts, (std::vector<int>{1, 2, 3}));
}

// Work that throws leaves the turn with its exception; the posts behind it still run, once
// and in order, in the next turn, and the panel goes on.
TEST_F(PanelPostTest, ThrowingWorkLeavesTheTurnAndTheRestRunsNext) {
    std::vector<int> order;
    panel.post([&order] { order.push_back(1); });
    panel.post([] { throw std::runtime_error("broken task"); });
    panel.post([&order] { order.push_back(3); });
    EXPECT_THROW(panel.runOnce(0ms), std::runtime_error);
    EXPECT_EQ(order, std::vector<int>{1});
    panel.post([&order] { order.push_back(4); });
    turn();
    EXPECT_EQ(order, (std::vector<int>{1, 3, 4}));
    turn();
    EXPECT_EQ(order, (std::vector<int>{1, 3, 4}));
}

}  // namespace
