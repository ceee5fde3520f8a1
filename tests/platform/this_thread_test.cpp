#include <yxbase2/this_thread.h>

#include <gtest/gtest.h>

#include <chrono>

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

TEST(ThisThreadTest, CaptureRunsItsActionForEachSleep) {
    std::chrono::nanoseconds seen{0};
    {
        yxfp_test::SleepCapture capture([&seen](std::chrono::nanoseconds d) { seen = d; });
        this_thread::sleep_for(1000ms);
    }
    EXPECT_EQ(seen, 1000ms);
}

}  // namespace
