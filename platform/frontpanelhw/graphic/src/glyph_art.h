#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Compile-time reading of the glyph pictures the built-in fonts are written as: one string
// literal per pixel row, '#' for a lit pixel and '.' for a dark one.
namespace frontpanelhw::graphic::detail {

/** The pixel rows of a glyph drawn as Rows x Columns characters of '#' and '.' (row by row, no
 *  separators); bit 7 of each row is its leftmost pixel. A picture of the wrong size does not
 *  compile, nor does any other character when evaluated at compile time. */
template <std::size_t Rows, std::size_t Columns, std::size_t N>
constexpr std::array<std::uint8_t, Rows> parseGlyphArt(char const (&art)[N]) {
    static_assert(Columns <= 8, "a row is one byte");
    static_assert(N == Rows * Columns + 1, "the picture must have exactly Rows x Columns pixels");
    std::array<std::uint8_t, Rows> rows{};
    for (std::size_t row = 0; row < Rows; ++row) {
        unsigned bits = 0;
        for (std::size_t column = 0; column < Columns; ++column) {
            char const pixel = art[row * Columns + column];
            if (pixel == '#') {
                bits |= 0x80U >> column;
            } else if (pixel != '.') {
                throw "a glyph picture holds only '#' and '.'";
            }
        }
        rows[row] = static_cast<std::uint8_t>(bits);
    }
    return rows;
}

/** Whether the glyphs' codes strictly increase, so that a binary search finds each one. */
template <typename Glyph, std::size_t N>
constexpr bool isSortedByCode(Glyph const (&glyphs)[N]) {
    for (std::size_t i = 1; i < N; ++i) {
        if (!(glyphs[i - 1].code < glyphs[i].code)) {
            return false;
        }
    }
    return true;
}

}  // namespace frontpanelhw::graphic::detail
