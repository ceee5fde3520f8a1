#include <frontpanelhw/display.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "long_run.h"

namespace {

using namespace std::chrono_literals;
namespace this_thread = yxbase2::system::this_thread;

// An application's own sleep hook, recognisable in what setSleepHook hands back.
struct CountingHook {
    int* calls;
    void operator()(std::chrono::nanoseconds /*duration*/) const { ++*calls; }
};

// Runs `turns` turns of a panel on a 20x4 memory display with an empty menu, with
// CountingHook installed around them; then reports the hook chain: the number of hook calls
// one sleep_for(0) makes and whether the hook installed afterwards is the application's own.
struct HookChain {
    int callsPerSleep;
    bool ownHookInstalled;
};

HookChain hookChainAfter(std::size_t turns) {
    int calls = 0;
    this_thread::SleepHook const outer = this_thread::setSleepHook(CountingHook{&calls});
    {
        frontpanelhw::MemoryDisplay display(20, 4);
        yxfrontpanel::runtime::Panel panel(display);
        auto const root = yxfrontpanel::MenuTreeFactory().create(panel.provider());
        panel.setRoot(*root);
        for (std::size_t turn = 0; turn < turns; ++turn) {
            EXPECT_TRUE(panel.runOnce(0ms));
        }
    }
    this_thread::sleep_for(0ns);
    this_thread::SleepHook const installed = this_thread::setSleepHook(outer);
    return HookChain{calls, installed.target<CountingHook>() != nullptr};
}

TEST(PanelLongRunTest, OneTurnLeavesTheSleepHookAsItWas) {
    HookChain const chain = hookChainAfter(1);
    EXPECT_EQ(chain.callsPerSleep, 1);
    EXPECT_TRUE(chain.ownHookInstalled) << "the panel left a layer of its own installed";
}

// A program that runs its own loop turns it for years: no turn may leave anything behind.
TEST(PanelLongRunTest, AMillionTurnsLeaveTheSleepHookAsOneTurnDoes) {
    HookChain const chain = hookChainAfter(yxfp_test::longRunCount(1'000'000));
    EXPECT_EQ(chain.callsPerSleep, 1);
    EXPECT_TRUE(chain.ownHookInstalled) << "the panel left layers of its own installed";
}

}  // namespace
