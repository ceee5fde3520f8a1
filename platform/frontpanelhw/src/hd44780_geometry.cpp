#include <frontpanelhw/hd44780_display.h>

#include <stdexcept>
#include <string>

namespace frontpanelhw {

namespace {

constexpr unsigned kMaxCells = 80;       // one controller's DDRAM
constexpr unsigned kTwoLineLength = 40;  // 0x00-0x27 and 0x40-0x67
constexpr std::uint8_t kSecondLine = 0x40;
constexpr std::uint8_t kFirstLineEnd = 0x27;   // two-line mode
constexpr std::uint8_t kSecondLineEnd = 0x67;  // two-line mode
constexpr std::uint8_t kOneLineEnd = 0x4F;     // one-line mode

std::string sizeText(unsigned chars, unsigned lines) {
    return std::to_string(chars) + "x" + std::to_string(lines);
}

}  // namespace

Hd44780Geometry Hd44780Geometry::standard(unsigned chars, unsigned lines) {
    std::string const size = sizeText(chars, lines);
    if (chars == 0 || lines == 0) {
        throw std::invalid_argument("HD44780 module " + size + ": a module has at least one cell");
    }
    if (lines == 4 && chars > kTwoLineLength / 2 && chars <= kTwoLineLength) {
        throw std::invalid_argument(
            "HD44780 module " + size +
            ": modules with more than 20 characters on four lines have two controllers with "
            "two enable lines, which this driver does not support; use a module of at most "
            "80 cells with one enable line (e.g. 20x4 or 40x2)");
    }
    if (chars * lines > kMaxCells || lines == 3 || lines > 4) {
        throw std::invalid_argument("HD44780 module " + size +
                                    ": one controller drives 1, 2 or 4 lines of at most 80 "
                                    "cells in all");
    }
    Hd44780Geometry geometry;
    geometry.chars = chars;
    geometry.lines = lines;
    auto const widthAddress = static_cast<std::uint8_t>(chars);
    geometry.lineAddresses = {0x00, kSecondLine, widthAddress,
                              static_cast<std::uint8_t>(kSecondLine + widthAddress)};
    geometry.twoLineMode = lines > 1;
    return geometry;
}

std::uint8_t Hd44780Geometry::address(unsigned column, unsigned line) const {
    return static_cast<std::uint8_t>(lineAddresses.at(line) + column);
}

std::uint8_t Hd44780Geometry::nextAddress(std::uint8_t address) const {
    if (twoLineMode) {
        if (address == kFirstLineEnd) {
            return kSecondLine;
        }
        if (address == kSecondLineEnd) {
            return 0x00;
        }
        return static_cast<std::uint8_t>(address + 1);
    }
    return address == kOneLineEnd ? 0x00 : static_cast<std::uint8_t>(address + 1);
}

}  // namespace frontpanelhw
