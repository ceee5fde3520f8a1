#include <yxbase2/this_thread.h>

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "platform_capture.h"

namespace {

using namespace std::chrono_literals;
namespace this_thread = yxbase2::system::this_thread;

TEST(ThisThreadTest, HookReceivesTheDurationInsteadOfSleeping) {
    yxfp_test::SleepCapture capture;
    auto const before = std::chrono::steady_clock::now();
    this_thread::sleep_for(std::chrono::hours(1));
    this_thread::sleep_for(250ms);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(10));
    auto const sleeps = capture.sleeps();
    ASSERT_EQ(sleeps.size(), 2U);
    EXPECT_EQ(sleeps[0], std::chrono::hours(1));
    EXPECT_EQ(sleeps[1], 250ms);
}

TEST(ThisThreadTest, EmptyHookRestoresRealSleeping) {
    int hookCalls = 0;
    this_thread::setSleepHook([&hookCalls](std::chrono::nanoseconds) { ++hookCalls; });
    this_thread::setSleepHook({});
    auto const before = std::chrono::steady_clock::now();
    this_thread::sleep_for(2ms);
    EXPECT_GE(std::chrono::steady_clock::now() - before, 2ms);
    EXPECT_EQ(hookCalls, 0);
}

TEST(ThisThreadTest, SettingAHookReturnsTheOneItReplaces) {
    EXPECT_FALSE(this_thread::setSleepHook({})) << "real sleeping has no hook";
    int outerCalls = 0;
    this_thread::setSleepHook([&outerCalls](std::chrono::nanoseconds) { ++outerCalls; });
    this_thread::SleepHook const outer = this_thread::setSleepHook({});
    ASSERT_TRUE(outer);
    outer(1ms);
    EXPECT_EQ(outerCalls, 1);
}

// A hook of a type the test can recognise in what setSleepHook hands back.
struct CountingHook {
    int* calls;
    void operator()(std::chrono::nanoseconds /*duration*/) const { ++*calls; }
};

TEST(ThisThreadTest, PuttingTheReturnedHookBackRestoresItExactly) {
    int calls = 0;
    this_thread::SleepHook const outer = this_thread::setSleepHook(CountingHook{&calls});
    // What a helper that installs its own hook for a while does, many times over: every swap
    // must put back the very hook it found, not a wrapper around it.
    for (int round = 0; round < 1000; ++round) {
        this_thread::SleepHook const found =
            this_thread::setSleepHook([](std::chrono::nanoseconds) {});
        this_thread::setSleepHook(found);
    }
    this_thread::sleep_for(0ns);
    EXPECT_EQ(calls, 1);
    this_thread::SleepHook const installed = this_thread::setSleepHook(outer);
    EXPECT_NE(installed.target<CountingHook>(), nullptr) << "a wrapper was left installed";
}

TEST(ThisThreadTest, NestedCapturePutsTheOuterHookBack) {
    yxfp_test::SleepCapture outer;
    {
        yxfp_test::SleepCapture inner;
        this_thread::sleep_for(1h);
        EXPECT_EQ(inner.sleeps().size(), 1U);
    }
    this_thread::sleep_for(2h);
    EXPECT_EQ(outer.sleeps(), std::vector<std::chrono::nanoseconds>{2h});
}

TEST(ThisThreadTest, CaptureRunsItsActionForEachSleep) {
    std::chrono::nanoseconds seen{0};
    {
        yxfp_test::SleepCapture capture([&seen](std::chrono::nanoseconds d) { seen = d; });
        this_thread::sleep_for(1000ms);
    }
    EXPECT_EQ(seen, 1000ms);
}

}  // namespace
