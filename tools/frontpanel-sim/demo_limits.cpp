#include "demo_limits.h"

namespace frontpanelsim {

namespace {
// The IPv4 editor needs 15 columns plus the menu's scrollbar; the menu needs two lines to show
// an item with its neighbour. The upper limits keep the panel on an ordinary terminal.
constexpr unsigned kMinChars = 16;
constexpr unsigned kMaxChars = 80;
constexpr unsigned kMinLines = 2;
constexpr unsigned kMaxLines = 20;
}  // namespace

std::string demoSizeProblem(unsigned chars, unsigned lines) {
    if (chars < kMinChars || chars > kMaxChars || lines < kMinLines || lines > kMaxLines) {
        return "the demo needs " + demoSizeRange() + "; " + std::to_string(chars) + "x" +
               std::to_string(lines) + " does not fit";
    }
    return {};
}

std::string demoSizeRange() {
    return std::to_string(kMinChars) + " to " + std::to_string(kMaxChars) + " columns and " +
           std::to_string(kMinLines) + " to " + std::to_string(kMaxLines) + " lines";
}

}  // namespace frontpanelsim
