#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

using yxfrontpanel::testing::ManualClock;

// What one round's listener sees; shared, so that a late call in a faulty clock stays defined.
struct Round {
    std::atomic<bool> removed{false};
    std::atomic<int> calls{0};
    std::atomic<int> lateCalls{0};
};

// An object that goes away after removing its listener (as a panel does in its destructor)
// must never be called afterwards, whatever another thread's advance is doing.
TEST(ManualClockThreadsTest, ARemovedListenerIsNeverCalledAfterRemoveReturns) {
    ManualClock clock;
    // Called before each round's listener: widens the time between an advance taking its
    // listeners and calling the round's one, where a removal must still take effect.
    std::atomic<int> work{0};
    clock.addAdvanceListener([&work] {
        for (int spin = 0; spin < 20000; ++spin) {
            work.fetch_add(1, std::memory_order_relaxed);
        }
    });
    std::atomic<bool> done{false};
    std::atomic<long> advances{0};
    std::thread mover([&] {
        for (int step = 0; step < 10'000'000 && !done.load(); ++step) {
            clock.advance(std::chrono::milliseconds{1});
            ++advances;
        }
    });
    int lateCalls = 0;
    for (int round = 0; round < 200; ++round) {
        auto const state = std::make_shared<Round>();
        std::size_t const id = clock.addAdvanceListener([state] {
            ++state->calls;
            if (state->removed.load()) {
                ++state->lateCalls;
            }
        });
        // Removed while the mover's advances call it (bounded; the mover may have ended).
        for (int spin = 0; spin < 100000 && state->calls.load() == 0; ++spin) {
            std::this_thread::yield();
        }
        clock.removeAdvanceListener(id);
        state->removed.store(true);
        // Two more advances: a late call from one that started before the removal has
        // happened by then (bounded; the mover may have ended).
        long const seen = advances.load();
        for (int spin = 0; spin < 100000 && advances.load() < seen + 2; ++spin) {
            std::this_thread::yield();
        }
        lateCalls += state->lateCalls.load();
    }
    done.store(true);
    mover.join();
    EXPECT_EQ(lateCalls, 0);
}

}  // namespace
