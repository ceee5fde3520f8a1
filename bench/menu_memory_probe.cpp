// Memory of a menu of plain items, measured in a fresh process where no freed memory of earlier
// work hides the growth. Needs nothing but the toolkit, so it runs on the instrument's
// processors too (bench/footprint.sh runs the cross-built one under qemu-user).
//   menu_memory_probe ITEMS
// Prints the resident bytes and the heap bytes per item that building the menu added.
#include <cstdlib>
#include <iostream>
#include <string>

#include "menu_fixture.h"

int main(int argc, char** argv) {
    if (argc != 2 || std::string(argv[1]) == "--help") {
        std::cerr << "usage: menu_memory_probe ITEMS\n"
                     "Builds a focused menu of ITEMS plain items (\"Item 1\"..) and prints the "
                     "resident and heap bytes per item it added.\n";
        return argc == 2 ? 0 : 2;
    }
    char* end = nullptr;
    long const items = std::strtol(argv[1], &end, 10);
    if (*end != '\0' || items <= 0) {
        std::cerr << "menu_memory_probe: ITEMS must be a positive number, not '" << argv[1]
                  << "'\n";
        return 2;
    }
    yxfp_bench::DiscardingProvider const provider(20, 4);
    std::size_t const residentBefore = yxfp_bench::residentBytes();
    std::size_t const heapBefore = yxfp_bench::heapBytesInUse();
    auto const menu = yxfp_bench::plainMenu(provider, static_cast<std::size_t>(items));
    std::size_t const residentAfter = yxfp_bench::residentBytes();
    std::size_t const heapAfter = yxfp_bench::heapBytesInUse();
    auto const perItem = [items](std::size_t before, std::size_t after) {
        return static_cast<double>(after - before) / static_cast<double>(items);
    };
    std::cout << "resident bytes per item: " << perItem(residentBefore, residentAfter) << '\n'
              << "heap bytes per item: " << perItem(heapBefore, heapAfter) << '\n';
    return menu->allItemCount() == static_cast<unsigned>(items) ? 0 : 1;
}
