// Editor benchmarks: stepping a digit and moving the caret, each with its redraw.
#include "bench_support.h"
#include <benchmark/benchmark.h>

namespace {

using yxfp_bench::DiscardingProvider;

// Steps the digit under the caret up and down in turn on an open, editable editor.
template <class Editor>
void stepDigit(benchmark::State& state, Editor& editor) {
    int direction = 1;
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor.changeValue(direction);
        direction = -direction;
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

// Moves the caret one place to the right, wrapping round at the end of the value.
template <class Editor>
void moveCaret(benchmark::State& state, Editor& editor) {
    std::size_t const allocationsBefore = yxfp_bench::allocationCount();
    for (auto _ : state) {
        editor.moveMarker(1);
    }
    yxfp_bench::reportAllocations(state, allocationsBefore);
}

void BM_ValueEditorChangeValue(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    stepDigit(state, *yxfp_bench::openVoltageEditor(provider));
}

void BM_ValueEditorMoveMarker(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    moveCaret(state, *yxfp_bench::openVoltageEditor(provider));
}

void BM_IpEditorChangeValue(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    stepDigit(state, *yxfp_bench::openAddressEditor(provider));
}

void BM_IpEditorMoveMarker(benchmark::State& state) {
    DiscardingProvider const provider(20, 4);
    moveCaret(state, *yxfp_bench::openAddressEditor(provider));
}

}  // namespace

BENCHMARK(BM_ValueEditorChangeValue);
BENCHMARK(BM_ValueEditorMoveMarker);
BENCHMARK(BM_IpEditorChangeValue);
BENCHMARK(BM_IpEditorMoveMarker);
