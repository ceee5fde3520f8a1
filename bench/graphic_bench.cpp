// Rendering a character panel into the pixels of a 128x64 graphic module with the 6x8 font
// (21x8 cells): a whole frame (every cell drawn, as after a screen change) and a frame where one
// line changed (a selection move). The target is at most 50 us per full frame and no heap
// allocation per frame once the first has been drawn ("allocs").
#include <frontpanelhw/graphic/cell_renderer.h>

#include "bench_support.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;
using frontpanelhw::graphic::CellRenderer;
using frontpanelhw::graphic::Font;
using frontpanelhw::graphic::MonoBitmap;

/** A full menu screen of 21x8 cells with the selected line inverted. */
DisplayBuffer menuScreen(unsigned selected) {
    DisplayBuffer buffer(21, 8);
    char16_t const* const lines[] = {u"Main menu          1",  u"> Output       12.50V",
                                     u"  Measurement       >", u"  Trigger      Manual",
                                     u"  Display           >", u"  Network           >",
                                     u"  System            >", u"  Status     \u00B0C 23.4"};
    for (unsigned line = 0; line < 8; ++line) {
        buffer.setLineContent(line, 0, lines[line]);
    }
    DisplayLine line = buffer.getLine(selected);
    line.setInverted(0, 20, true);
    buffer.setDisplayLine(selected, line);
    return buffer;
}

void BM_GraphicFullFrame128x64(benchmark::State& state) {
    CellRenderer renderer(Font::builtin6x8());
    MonoBitmap bitmap(128, 64);
    DisplayBuffer const screen = menuScreen(1);
    renderer.render(screen, bitmap, 1, 0);
    std::size_t const start = yxfp_bench::allocationCount();
    for (auto _ : state) {
        renderer.invalidate();
        benchmark::DoNotOptimize(renderer.render(screen, bitmap, 1, 0));
        benchmark::ClobberMemory();
    }
    yxfp_bench::reportAllocations(state, start);
}

void BM_GraphicSelectionMove128x64(benchmark::State& state) {
    CellRenderer renderer(Font::builtin6x8());
    MonoBitmap bitmap(128, 64);
    DisplayBuffer const first = menuScreen(1);
    DisplayBuffer const second = menuScreen(2);
    renderer.render(first, bitmap, 1, 0);
    std::size_t const start = yxfp_bench::allocationCount();
    bool odd = false;
    for (auto _ : state) {
        odd = !odd;
        benchmark::DoNotOptimize(renderer.render(odd ? second : first, bitmap, 1, 0));
        benchmark::ClobberMemory();
    }
    yxfp_bench::reportAllocations(state, start);
}

BENCHMARK(BM_GraphicFullFrame128x64);
BENCHMARK(BM_GraphicSelectionMove128x64);

}  // namespace
