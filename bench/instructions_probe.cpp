// Presses keys a given number of times, for counting instructions per press with callgrind:
// the difference between two run lengths cancels the set-up cost.
//   instructions_probe menu|value-editor PRESSES [ITEMS]
// (The memory of a menu is measured by menu_memory_probe.)
#include <cstdlib>
#include <iostream>
#include <string>

#include "bench_support.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: instructions_probe menu|value-editor PRESSES [ITEMS]\n";
        return 2;
    }
    std::string const what = argv[1];
    long const presses = std::atol(argv[2]);
    long const items = argc > 3 ? std::atol(argv[3]) : 1000;
    yxfp_bench::DiscardingProvider const provider(20, 4);
    if (what == "menu") {
        auto menu = yxfp_bench::plainMenu(provider, static_cast<std::size_t>(items));
        // Down and up in turn: every press moves the cursor and redraws the whole panel.
        for (long press = 0; press < presses; ++press) {
            if (press % 2 == 0) {
                menu->moveDown();
            } else {
                menu->moveUp();
            }
        }
        return 0;
    }
    if (what == "value-editor") {
        auto const editor = yxfp_bench::openVoltageEditor(provider);
        for (long press = 0; press < presses; ++press) {
            editor->changeValue(press % 2 == 0 ? 1 : -1);
        }
        return 0;
    }
    std::cerr << "instructions_probe: unknown probe '" << what << "'\n";
    return 2;
}
