#include <frontpanelhw/display.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <memory>

#include "sanitized_build.h"
#include <signal.h>

namespace {

using yxfrontpanel::runtime::Panel;

std::atomic<int> applicationHandlerCalls{0};

extern "C" void countingHandler(int /*signal*/) { ++applicationHandlerCalls; }

// Installs countingHandler for `number` while it lives, as an application's own handler.
class ApplicationHandler {
public:
    explicit ApplicationHandler(int number) : number_(number) {
        struct sigaction action {};
        action.sa_handler = countingHandler;
        sigemptyset(&action.sa_mask);
        ::sigaction(number_, &action, &previous_);
        applicationHandlerCalls = 0;
    }
    ~ApplicationHandler() { ::sigaction(number_, &previous_, nullptr); }
    ApplicationHandler(ApplicationHandler const&) = delete;
    ApplicationHandler& operator=(ApplicationHandler const&) = delete;

private:
    int number_;
    struct sigaction previous_ {};
};

struct sigaction installed(int number) {
    struct sigaction current {};
    ::sigaction(number, nullptr, &current);
    return current;
}

class SignalStopTest : public ::testing::Test {
protected:
    SignalStopTest()
        : panel(display), root(yxfrontpanel::MenuTreeFactory().create(panel.provider())) {
        panel.setRoot(*root);
    }

    frontpanelhw::MemoryDisplay display{20, 4};
    Panel panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> root;
};

TEST_F(SignalStopTest, HandlersRestartInterruptedSystemCalls) {
    ApplicationHandler const application(SIGUSR2);
    auto const guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR2});
    struct sigaction const current = installed(SIGUSR2);
    EXPECT_NE(current.sa_handler, countingHandler);
    EXPECT_NE(current.sa_flags & SA_RESTART, 0);
}

TEST_F(SignalStopTest, SignalStopsTheAttachedPanel) {
    ApplicationHandler const application(SIGUSR2);
    auto const guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR2});
    std::raise(SIGUSR2);
    EXPECT_TRUE(panel.isStopped());
    EXPECT_EQ(applicationHandlerCalls.load(), 0);
}

TEST_F(SignalStopTest, GuardPutsThePreviousHandlersBack) {
    ApplicationHandler const application(SIGUSR2);
    {
        auto const guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR2});
        EXPECT_NE(installed(SIGUSR2).sa_handler, countingHandler);
    }
    EXPECT_EQ(installed(SIGUSR2).sa_handler, countingHandler);
    std::raise(SIGUSR2);
    EXPECT_EQ(applicationHandlerCalls.load(), 1);
    EXPECT_FALSE(panel.isStopped());
}

// After clearSignalStop, or once the panel is gone, a signal does what it did before: Ctrl-C
// is never dead.
TEST_F(SignalStopTest, WithoutAPanelThePreviousDispositionRuns) {
    ApplicationHandler const application(SIGUSR2);
    auto const guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR2});
    yxfrontpanel::runtime::clearSignalStop();
    std::raise(SIGUSR2);
    EXPECT_EQ(applicationHandlerCalls.load(), 1);
    EXPECT_FALSE(panel.isStopped());
}

TEST_F(SignalStopTest, WithoutAPanelTheDefaultActionRuns) {
#ifdef YXFP_TEST_SANITIZED
    // A sanitizer may run threads of its own: the child starts the program afresh. Not
    // elsewhere: under qemu-user the emulated program cannot execute itself again.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
#endif
    EXPECT_EXIT(
        {
            ::signal(SIGUSR2, SIG_DFL);
            auto guard = yxfrontpanel::runtime::stopOnSignals(panel, {SIGUSR2});
            yxfrontpanel::runtime::clearSignalStop();
            std::raise(SIGUSR2);
            std::_Exit(0);  // reached only when the signal did nothing
        },
        ::testing::KilledBySignal(SIGUSR2), "");
}

}  // namespace
