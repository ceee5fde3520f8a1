// Editor benchmarks: stepping a digit and moving the caret, each with its redraw.
#include "bench_support.h"
#include <benchmark/benchmark.h>

namespace {

using yxfp_bench::DiscardingProvider;

void BM_ValueEditorChangeValue(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const editor = yxfp_bench::openVoltageEditor(provider);
    int direction = 1;
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor->changeValue(direction);
        direction = -direction;
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_ValueEditorMoveMarker(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const editor = yxfp_bench::openVoltageEditor(provider);
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor->moveMarker(1);
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_IpEditorChangeValue(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const editor = yxfp_bench::openAddressEditor(provider);
    int direction = 1;
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor->changeValue(direction);
        direction = -direction;
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_IpEditorMoveMarker(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    auto const editor = yxfp_bench::openAddressEditor(provider);
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor->moveMarker(1);
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

}  // namespace

BENCHMARK(BM_ValueEditorChangeValue);
BENCHMARK(BM_ValueEditorMoveMarker);
BENCHMARK(BM_IpEditorChangeValue);
BENCHMARK(BM_IpEditorMoveMarker);
