// Panel runtime benchmarks: post-to-display latency, coalesced publications from four threads,
// wake-ups of an idle panel, heap allocations per publication. Each runs a real panel on a
// thread of its own.
#include <frontpanelhw/display.h>
#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench_support.h"
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using frontpanelhw::drawing::DisplayBuffer;
using yxfrontpanel::runtime::Panel;
using yxfrontpanel::runtime::PanelOptions;
using yxfrontpanel::testing::ManualClock;
using namespace std::chrono_literals;

// A memory display that tells other threads how many draws returned and when the last did.
class StampingDisplay : public frontpanelhw::IDisplay {
public:
    unsigned getLines() const override { return 4; }
    unsigned getChars() const override { return 20; }
    bool draw(DisplayBuffer const& buffer) override {
        benchmark::DoNotOptimize(&buffer);
        lastReturn_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
        draws_.fetch_add(1, std::memory_order_release);
        return true;
    }
    long draws() const { return draws_.load(std::memory_order_acquire); }
    Clock::time_point lastReturn() const {
        return Clock::time_point{Clock::duration{lastReturn_.load(std::memory_order_relaxed)}};
    }

private:
    std::atomic<long> draws_{0};
    std::atomic<Clock::rep> lastReturn_{0};
};

// A key source that never has a key but counts how often the loop asked: once per turn.
class CountingQuietSource : public frontpanelhw::IKeySource {
public:
    CountingQuietSource() {
        if (::pipe2(pipe_, O_CLOEXEC) != 0) {
            pipe_[0] = pipe_[1] = -1;
        }
    }
    ~CountingQuietSource() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }
    std::optional<frontpanelhw::KeyEvent> poll(std::chrono::milliseconds /*timeout*/) override {
        polls_.fetch_add(1, std::memory_order_relaxed);
        return std::nullopt;
    }
    int waitDescriptor() const override { return pipe_[0]; }
    long polls() const { return polls_.load(std::memory_order_relaxed); }

private:
    int pipe_[2] = {-1, -1};
    std::atomic<long> polls_{0};
};

// A panel with a plain menu, running on its own thread for the object's life.
class RunningPanel {
public:
    explicit RunningPanel(PanelOptions options = {},
                          std::shared_ptr<yxfrontpanel::runtime::IClock> clock = nullptr)
        : panel(display, options, std::move(clock)),
          menu(yxfp_bench::plainMenu(panel.provider(), 8)) {
        panel.setRoot(*menu);
        panel.addKeySource(keys);
        thread_ = std::thread([this] { panel.run(); });
        // The first frame tells that the loop runs.
        while (display.draws() == 0) {
            std::this_thread::yield();
        }
    }
    ~RunningPanel() {
        panel.stop();
        thread_.join();
        menu->clearItems();
    }
    RunningPanel(RunningPanel const&) = delete;
    RunningPanel& operator=(RunningPanel const&) = delete;

    StampingDisplay display;
    std::shared_ptr<CountingQuietSource> keys = std::make_shared<CountingQuietSource>();
    Panel panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> menu;

private:
    std::thread thread_;
};

double percentile(std::vector<double> values, double fraction) {
    if (values.empty()) {
        return 0;
    }
    auto const index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + static_cast<long>(index), values.end());
    return values[index];
}

// From post on this thread to the display's draw returning on the panel's thread, the loop
// otherwise idle. The hand-moved clock gives the frame limiter a quiet second before each
// post, so each change is drawn at once as a lone key press would be.
void BM_PanelPostToDisplayLatency(benchmark::State& state) {
    auto const clock = std::make_shared<ManualClock>();
    RunningPanel running({}, clock);
    std::vector<double> micros;
    bool down = true;
    for (auto _ : state) {
        // Move the clock and let the loop take the turn that wakes, so that it waits again.
        long const turnsBefore = running.keys->polls();
        clock->advance(1s);
        while (running.keys->polls() == turnsBefore) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(200us);  // the loop is back in poll(2): a real wake-up
        long const drawsBefore = running.display.draws();
        auto* menu = running.menu.get();
        auto const posted = Clock::now();
        running.panel.post([menu, down] { down ? menu->moveDown() : menu->moveUp(); });
        while (running.display.draws() == drawsBefore) {
            std::this_thread::yield();
        }
        double const seconds =
            std::chrono::duration<double>(running.display.lastReturn() - posted).count();
        state.SetIterationTime(seconds);
        micros.push_back(seconds * 1e6);
        down = !down;
    }
    state.counters["median_us"] = percentile(micros, 0.5);
    state.counters["p99_us"] = percentile(micros, 0.99);
}

// Four threads publish as fast as they can, each under its own key, to a panel at 30 frames a
// second whose published work moves the cursor (a new screen each run). Counts publications
// accepted per second and draws per frame period.
void BM_PanelCoalescedPublications(benchmark::State& state) {
    constexpr int kThreads = 4;
    auto const perThread = static_cast<long>(state.range(0));
    RunningPanel running;
    double published = 0;
    double seconds = 0;
    long const drawsBefore = running.display.draws();
    for (auto _ : state) {
        std::atomic<bool> go{false};
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&running, &go, perThread, thread] {
                std::string const key = "reading " + std::to_string(thread);
                auto* menu = running.menu.get();
                while (!go.load()) {
                }
                for (long count = 0; count < perThread; ++count) {
                    running.panel.publish(
                        key, [menu, count] { count % 2 == 0 ? menu->moveDown() : menu->moveUp(); });
                }
            });
        }
        auto const start = Clock::now();
        go.store(true);
        for (auto& thread : threads) {
            thread.join();
        }
        double const elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(elapsed);
        seconds += elapsed;
        published += static_cast<double>(kThreads * perThread);
    }
    double const framePeriods = seconds * 30.0;
    state.counters["publications_per_s"] = published / seconds;
    state.counters["draws_per_frame"] =
        static_cast<double>(running.display.draws() - drawsBefore) / framePeriods;
}

// An idle panel (no keys, no timers, no posts) over a fixed interval: the loop's turns, counted
// by a key source it asks once per turn, per second.
void BM_PanelIdleWakeups(benchmark::State& state) {
    RunningPanel running;
    std::this_thread::sleep_for(50ms);  // let the start settle
    long turns = 0;
    double seconds = 0;
    for (auto _ : state) {
        long const before = running.keys->polls();
        auto const start = Clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(state.range(0)));
        double const elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(elapsed);
        turns += running.keys->polls() - before;
        seconds += elapsed;
    }
    state.counters["wakeups_per_s"] = static_cast<double>(turns) / seconds;
}

// One thread publishes to one key, over and over, while the panel takes the newest once per
// frame: heap allocations per publication in the whole process (both threads) once warmed up.
void BM_PanelPublishAllocations(benchmark::State& state) {
    RunningPanel running;
    std::atomic<long> shown{-1};
    // Warm up until the panel has taken a publication: its list of work to run has room then.
    for (long warm = 0; shown.load() < 0; ++warm) {
        running.panel.publish("reading", [&shown, warm] { shown.store(warm); });
        std::this_thread::yield();
    }
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    long count = 0;
    for (auto _ : state) {
        running.panel.publish("reading", [&shown, count] { shown.store(count); });
        ++count;
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

}  // namespace

BENCHMARK(BM_PanelPostToDisplayLatency)
    ->UseManualTime()
    ->Iterations(5000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PanelCoalescedPublications)
    ->ArgName("per_thread")
    ->Arg(250000)
    ->UseManualTime()
    ->Iterations(4)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PanelIdleWakeups)
    ->ArgName("ms")
    ->Arg(500)
    ->UseManualTime()
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PanelPublishAllocations);
