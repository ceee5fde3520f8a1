// Presses keys a given number of times, for counting instructions per press with callgrind:
// the difference between two run lengths cancels the set-up cost.
//   instructions_probe menu|value-editor PRESSES [ITEMS]
// Counts the heap allocations of the presses alone (set-up excluded), per press:
//   instructions_probe allocations menu|value-editor PRESSES [ITEMS]
// (The memory of a menu is measured by menu_memory_probe.)
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

#include "bench_support.h"

namespace {

// Runs `presses` key presses of the probe `what` on a 20x4 panel; false for an unknown probe.
bool runPresses(std::string const& what, long presses, long items,
                std::function<void()> const& beforeFirstPress) {
    yxfp_bench::DiscardingProvider const provider(20, 4);
    if (what == "menu") {
        auto menu = yxfp_bench::plainMenu(provider, static_cast<std::size_t>(items));
        beforeFirstPress();
        // Down and up in turn: every press moves the cursor and redraws the whole panel.
        for (long press = 0; press < presses; ++press) {
            if (press % 2 == 0) {
                menu->moveDown();
            } else {
                menu->moveUp();
            }
        }
        return true;
    }
    if (what == "value-editor") {
        auto const editor = yxfp_bench::openVoltageEditor(provider);
        beforeFirstPress();
        for (long press = 0; press < presses; ++press) {
            editor->changeValue(press % 2 == 0 ? 1 : -1);
        }
        return true;
    }
    std::cerr << "instructions_probe: unknown probe '" << what << "'\n";
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: instructions_probe menu|value-editor PRESSES [ITEMS]\n"
                     "       instructions_probe allocations menu|value-editor PRESSES [ITEMS]\n";
        return 2;
    }
    std::string const mode = argv[1];
    if (mode == "allocations") {
        if (argc < 4) {
            std::cerr
                << "usage: instructions_probe allocations menu|value-editor PRESSES [ITEMS]\n";
            return 2;
        }
        long const presses = std::atol(argv[3]);
        long const items = argc > 4 ? std::atol(argv[4]) : 1000;
        std::size_t start = 0;
        if (!runPresses(argv[2], presses, items,
                        [&start] { start = yxfp_bench::allocationCount(); })) {
            return 2;
        }
        std::size_t const made = yxfp_bench::allocationCount() - start;
        std::cout << static_cast<double>(made) / static_cast<double>(presses) << '\n';
        return 0;
    }
    long const presses = std::atol(argv[2]);
    long const items = argc > 3 ? std::atol(argv[3]) : 1000;
    return runPresses(mode, presses, items, [] {}) ? 0 : 2;
}
