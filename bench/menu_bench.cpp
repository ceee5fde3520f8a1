// Menu benchmarks: key presses, sub-menus, visibility changes and building, at several sizes.
// Resident memory per item is measured in a fresh process by `instructions_probe memory N`
// (see bench/instructions.sh), where freed memory of earlier benchmarks cannot hide it.
#include <frontpanelhw/display.h>

#include "bench_support.h"
#include <benchmark/benchmark.h>

namespace {

using yxfp_bench::DiscardingProvider;

// Moves the cursor down through the first items and back up, so that the list scrolls too.
class CursorCycle {
public:
    explicit CursorCycle(std::size_t count) : span_(std::min<std::size_t>(count, 40)) {}
    void press(yxfrontpanel::IMenuTree& menu) {
        if (down_) {
            menu.moveDown();
        } else {
            menu.moveUp();
        }
        position_ += down_ ? 1 : -1;
        if (position_ + 1 >= static_cast<long>(span_) || position_ <= 0) {
            down_ = !down_;
        }
    }

private:
    std::size_t span_;
    long position_ = 0;
    bool down_ = true;
};

void menuKeyPress(benchmark::State& state, yxfrontpanel::IDrawingProvider const& provider) {
    auto const count = static_cast<std::size_t>(state.range(0));
    auto menu = yxfp_bench::plainMenu(provider, count);
    CursorCycle cycle(count);
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        cycle.press(*menu);
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_MenuKeyPress(benchmark::State& state) {
    DiscardingProvider const provider(static_cast<unsigned>(state.range(1)), 4);
    menuKeyPress(state, provider);
}

void BM_MenuKeyPressOnMemoryDisplay(benchmark::State& state) {
    frontpanelhw::MemoryDisplay display(static_cast<unsigned>(state.range(1)), 4);
    yxfrontpanel::DrawingProvider const provider(display);
    menuKeyPress(state, provider);
}

void BM_SubMenuEnterAndLeave(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto root = yxfrontpanel::MenuTreeFactory().create(provider);
    auto sub = std::make_shared<yxfrontpanel::TreeMenuItem>(provider, u"Sub-menu");
    for (long index = 0; index < state.range(0); ++index) {
        sub->addItem(std::make_shared<yxfp_bench::PlainItem>(u"Entry"));
    }
    root->addItem(sub);
    root->setFocus(true);
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        root->action();
        root->backToMenu();
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_VisibilityChange(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const count = static_cast<std::size_t>(state.range(0));
    auto menu = yxfp_bench::plainMenu(provider, count);
    yxfrontpanel::MenuItem* item = menu->getItem(static_cast<unsigned>(count / 2));
    bool visible = true;
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        visible = !visible;
        item->setVisible(visible);
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_AddItem(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const count = static_cast<std::size_t>(state.range(0));
    std::size_t allocations = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto menu = yxfrontpanel::MenuTreeFactory().create(provider);
        std::size_t const allocationsBefore = yxfp_bench::allocationCount();
        state.ResumeTiming();
        for (std::size_t index = 0; index < count; ++index) {
            menu->addItem(std::make_shared<yxfp_bench::PlainItem>(u"Item"));
        }
        state.PauseTiming();
        allocations += yxfp_bench::allocationCount() - allocationsBefore;
        menu.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
    state.counters["allocs/item"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations() * count);
}

}  // namespace

BENCHMARK(BM_MenuKeyPress)
    ->ArgNames({"items", "chars"})
    ->ArgsProduct({{10, 1000, 100000, 1000000}, {20, 40}});
BENCHMARK(BM_MenuKeyPressOnMemoryDisplay)->ArgNames({"items", "chars"})->Args({1000, 20});
BENCHMARK(BM_SubMenuEnterAndLeave)->ArgName("items")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(BM_VisibilityChange)->ArgName("items")->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);
BENCHMARK(BM_AddItem)
    ->ArgName("items")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
