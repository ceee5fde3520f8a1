#pragma once

#include <cstddef>
#include <string>

namespace yxfp_test {

/** The display codes that bars and slider scales are drawn with. */
constexpr char16_t kFullCell = 0xDB;
constexpr char16_t kEmptyCell = 0xB0;
constexpr char16_t kScaleArrow = 0x1E;
constexpr char16_t kScaleTick = 0x27;
/** For `scaleRow`: a row without the arrow. */
constexpr int kNoArrow = -1;

/** A bar of `width` cells whose first `filled` cells are full. */
inline std::u16string barCells(unsigned filled, unsigned width) {
    return std::u16string(filled, kFullCell) + std::u16string(width - filled, kEmptyCell);
}

/** A slider scale of `width` ticks with the arrow at column `arrow` (none for kNoArrow). */
inline std::u16string scaleRow(unsigned width, int arrow = kNoArrow) {
    std::u16string row(width, kScaleTick);
    if (arrow >= 0 && static_cast<unsigned>(arrow) < width) {
        row[static_cast<std::size_t>(arrow)] = kScaleArrow;
    }
    return row;
}

}  // namespace yxfp_test
