#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

using frontpanelhw::drawing::DisplayBuffer;

constexpr int kDrawsEach = 2000;

// A panel that notices overlapping draws: each draw enters, spins a little so that a second
// caller has a chance to come in, and keeps the highest number of draws seen at once.
class OverlapDetectingDisplay : public frontpanelhw::IDisplay {
public:
    unsigned getLines() const override { return 4; }
    unsigned getChars() const override { return 20; }

    bool draw(DisplayBuffer const& /*buffer*/) override {
        int const inside = inDraw_.fetch_add(1) + 1;
        int seen = maxInDraw_.load();
        while (inside > seen && !maxInDraw_.compare_exchange_weak(seen, inside)) {
        }
        for (int spin = 0; spin < 200; ++spin) {
            spins_.fetch_add(1, std::memory_order_relaxed);
        }
        draws_.fetch_add(1);
        inDraw_.fetch_sub(1);
        return true;
    }

    int maxInDraw() const { return maxInDraw_.load(); }
    int draws() const { return draws_.load(); }

private:
    std::atomic<int> inDraw_{0};
    std::atomic<int> maxInDraw_{0};
    std::atomic<int> draws_{0};
    std::atomic<long> spins_{0};
};

// Draws one screen through `provider` `kDrawsEach` times on each of two threads; returns the
// number of draws that reached the device according to the provider.
int drawFromTwoThreads(yxfrontpanel::DrawingProvider const& provider) {
    std::atomic<int> accepted{0};
    auto drawMany = [&provider, &accepted] {
        DisplayBuffer const screen(20, 4);
        for (int i = 0; i < kDrawsEach; ++i) {
            if (provider.draw(screen)) {
                accepted.fetch_add(1);
            }
        }
    };
    std::thread first(drawMany);
    std::thread second(drawMany);
    first.join();
    second.join();
    return accepted.load();
}

TEST(DrawingProviderSerialisationTest, DrawsFromTwoThreadsNeverOverlapOnTheDevice) {
    OverlapDetectingDisplay display;
    yxfrontpanel::DrawingProvider const provider(display);

    drawFromTwoThreads(provider);

    EXPECT_EQ(display.maxInDraw(), 1);
}

TEST(DrawingProviderSerialisationTest, EveryDrawFromTwoThreadsReachesTheDevice) {
    OverlapDetectingDisplay display;
    yxfrontpanel::DrawingProvider const provider(display);

    int const accepted = drawFromTwoThreads(provider);

    EXPECT_EQ(accepted, 2 * kDrawsEach);
    EXPECT_EQ(display.draws(), 2 * kDrawsEach);
}

TEST(DrawingProviderSerialisationTest, DisablingFromAnotherThreadStopsDrawsWithoutOverlap) {
    OverlapDetectingDisplay display;
    yxfrontpanel::DrawingProvider provider(display);
    std::thread switcher([&provider] {
        for (int i = 0; i < kDrawsEach; ++i) {
            provider.enableDrawing(i % 2 == 0);
        }
    });

    int const accepted = drawFromTwoThreads(provider);
    switcher.join();

    EXPECT_EQ(display.maxInDraw(), std::min(display.draws(), 1));
    EXPECT_EQ(display.draws(), accepted);
    EXPECT_FALSE(provider.getDrawingEnabled());
}

}  // namespace
