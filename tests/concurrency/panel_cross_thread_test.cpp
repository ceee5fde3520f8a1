// Four threads post and publish to a running panel while keys are pressed: every post runs
// once and in order per thread, every coalesced key ends on its newest value, and screens are
// composed and drawn on the panel's thread only, never two at once. Built for
// ThreadSanitizer; the counts keep the plain and AddressSanitizer runs short.
#include <frontpanelhw/display.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "menu_test_items.h"
#include "queued_key_source.h"

namespace {

using frontpanelhw::PanelKey;
using frontpanelhw::drawing::DisplayBuffer;
using yxfrontpanel::runtime::Panel;
using yxfrontpanel::testing::ManualClock;
using namespace std::chrono_literals;

constexpr int kThreads = 4;
constexpr int kPostsPerThread = 100'000;
constexpr int kKeyPresses = 2'000;
// Bounds every waiting loop of the test thread; reached only when the panel stopped serving.
constexpr long kMostWaitingRounds = 50'000'000;

// Counts calls that overlap one another and calls made off the expected thread.
class OverlapGuard {
public:
    class Scope {
    public:
        explicit Scope(OverlapGuard& guard) : guard_(guard) {
            if (guard_.busy_.exchange(true)) {
                guard_.overlaps_.fetch_add(1);
            }
            if (std::this_thread::get_id() != guard_.owner_.load()) {
                guard_.foreign_.fetch_add(1);
            }
            guard_.calls_.fetch_add(1);
        }
        ~Scope() { guard_.busy_.store(false); }
        Scope(Scope const&) = delete;
        Scope& operator=(Scope const&) = delete;

    private:
        OverlapGuard& guard_;
    };

    void setOwner(std::thread::id owner) { owner_.store(owner); }
    long overlaps() const { return overlaps_.load(); }
    long foreign() const { return foreign_.load(); }
    long calls() const { return calls_.load(); }

private:
    std::atomic<bool> busy_{false};
    std::atomic<std::thread::id> owner_{};
    std::atomic<long> overlaps_{0};
    std::atomic<long> foreign_{0};
    std::atomic<long> calls_{0};
};

// The display: a memory display behind the guard.
class GuardedDisplay : public frontpanelhw::IDisplay {
public:
    explicit GuardedDisplay(OverlapGuard& guard) : guard_(guard) {}
    unsigned getLines() const override { return memory_.getLines(); }
    unsigned getChars() const override { return memory_.getChars(); }
    bool draw(DisplayBuffer const& buffer) override {
        OverlapGuard::Scope const scope(guard_);
        return memory_.draw(buffer);
    }

private:
    OverlapGuard& guard_;
    frontpanelhw::MemoryDisplay memory_{20, 4};
};

// The provider the menus compose on: forwards to the panel's provider behind the guard.
class GuardedProvider : public yxfrontpanel::IDrawingProvider {
public:
    GuardedProvider(yxfrontpanel::IDrawingProvider const& panel, OverlapGuard& guard)
        : panel_(panel), guard_(guard) {}
    void enableDrawing(bool /*enable*/) override {}
    bool draw(DisplayBuffer const& buffer) const override {
        OverlapGuard::Scope const scope(guard_);
        return panel_.draw(buffer);
    }
    unsigned getLines() const override { return panel_.getLines(); }
    unsigned getChars() const override { return panel_.getChars(); }

private:
    yxfrontpanel::IDrawingProvider const& panel_;
    OverlapGuard& guard_;
};

// What the panel's thread saw; read by the test thread only after joining it, except for the
// atomics that tell it when to stop waiting.
struct PanelSide {
    std::array<int, kThreads> nextPost{};  // the sequence number each thread's next post must have
    std::array<long, kThreads> postsOutOfOrder{};
    std::array<int, kThreads> newestValue{};
    std::array<long, kThreads> valuesGoingBack{};
    std::array<long, kThreads> publicationRuns{};
    std::atomic<int> postsRun{0};
    std::atomic<int> finalValuesSeen{0};
    std::atomic<int> keysSeen{0};
};

TEST(PanelCrossThreadTest, PostsPublicationsAndKeysFromManyThreads) {
    OverlapGuard drawGuard;
    OverlapGuard composeGuard;
    GuardedDisplay display(drawGuard);
    auto const clock = std::make_shared<ManualClock>();
    Panel panel(display, {}, clock);
    GuardedProvider provider(panel.provider(), composeGuard);
    auto const tree = yxfrontpanel::MenuTreeFactory().create(provider);
    std::vector<std::shared_ptr<yxfp_test::TestItem>> readings;
    for (int thread = 0; thread < kThreads; ++thread) {
        readings.push_back(
            std::make_shared<yxfp_test::TestItem>(u"Reading " + std::u16string(1, u'0' + thread)));
        tree->addItem(readings.back());
    }
    panel.setRoot(*tree);
    auto const keys = std::make_shared<yxfp_test::QueuedKeySource>();
    panel.addKeySource(keys);

    PanelSide side;
    for (int thread = 0; thread < kThreads; ++thread) {
        side.newestValue[thread] = -1;
    }
    panel.setEventHandler([&side](frontpanelhw::KeyEvent const& event) {
        if (event.kind == frontpanelhw::KeyEvent::Kind::Panel) {
            side.keysSeen.fetch_add(1);
        }
        return false;
    });

    std::thread panelThread([&] {
        drawGuard.setOwner(std::this_thread::get_id());
        composeGuard.setOwner(std::this_thread::get_id());
        panel.run();
    });

    std::atomic<int> publishersDone{0};
    std::vector<std::thread> publishers;
    publishers.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        publishers.emplace_back([&, thread] {
            std::string const key = "reading " + std::to_string(thread);
            for (int sequence = 0; sequence < kPostsPerThread; ++sequence) {
                panel.post([&side, thread, sequence] {
                    if (side.nextPost[thread] != sequence) {
                        ++side.postsOutOfOrder[thread];
                    }
                    side.nextPost[thread] = sequence + 1;
                    side.postsRun.fetch_add(1);
                });
                panel.publish(key, [&side, &readings, thread, sequence] {
                    if (sequence <= side.newestValue[thread]) {
                        ++side.valuesGoingBack[thread];
                    }
                    side.newestValue[thread] = sequence;
                    ++side.publicationRuns[thread];
                    readings[thread]->updateOwnText(u"R" + std::u16string(1, u'0' + thread) + u" " +
                                                    std::u16string(1, u'0' + sequence % 10));
                    if (sequence == kPostsPerThread - 1) {
                        side.finalValuesSeen.fetch_add(1);
                    }
                });
            }
            publishersDone.fetch_add(1);
        });
    }

    // Keys and frame periods while the publishers run; then until everything was served.
    long framePeriods = 0;
    auto const nextFrame = [&] {
        clock->advance(34ms);
        ++framePeriods;
        std::this_thread::yield();
    };
    for (int press = 0; press < kKeyPresses; ++press) {
        keys->press(press % 2 == 0 ? PanelKey::Down : PanelKey::Up);
        nextFrame();
    }
    long rounds = 0;
    while (publishersDone.load() < kThreads && ++rounds < kMostWaitingRounds) {
        nextFrame();
    }
    for (auto& publisher : publishers) {
        publisher.join();
    }
    while ((side.postsRun.load() < kThreads * kPostsPerThread ||
            side.finalValuesSeen.load() < kThreads || side.keysSeen.load() < kKeyPresses) &&
           ++rounds < kMostWaitingRounds) {
        nextFrame();
    }
    panel.stop();
    panelThread.join();

    ASSERT_LT(rounds, kMostWaitingRounds) << "the panel stopped serving";
    EXPECT_EQ(side.postsRun.load(), kThreads * kPostsPerThread);
    EXPECT_EQ(side.keysSeen.load(), kKeyPresses);
    for (int thread = 0; thread < kThreads; ++thread) {
        EXPECT_EQ(side.nextPost[thread], kPostsPerThread) << "thread " << thread;
        EXPECT_EQ(side.postsOutOfOrder[thread], 0) << "thread " << thread;
        EXPECT_EQ(side.newestValue[thread], kPostsPerThread - 1) << "thread " << thread;
        EXPECT_EQ(side.valuesGoingBack[thread], 0) << "thread " << thread;
        // Coalesced: at most one run per frame period (and one for the first frame).
        EXPECT_LE(side.publicationRuns[thread], framePeriods + 1) << "thread " << thread;
    }
    EXPECT_GT(composeGuard.calls(), 0);
    EXPECT_GT(drawGuard.calls(), 0);
    EXPECT_EQ(composeGuard.overlaps(), 0);
    EXPECT_EQ(composeGuard.foreign(), 0);
    EXPECT_EQ(drawGuard.overlaps(), 0);
    EXPECT_EQ(drawGuard.foreign(), 0);
    EXPECT_LE(drawGuard.calls(), framePeriods + 1) << "more than one draw per frame period";
    tree->clearItems();
}

}  // namespace
