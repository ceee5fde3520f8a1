#pragma once

// The glyphs of the built-in fonts, keyed by Unicode code point and sorted by code. Each row is
// one byte with bit 7 the leftmost pixel; a glyph for U+FFFD is the replacement of missing ones.

#include <array>
#include <cstddef>
#include <cstdint>

namespace frontpanelhw::graphic {

/** A glyph of the 6x8 font: 8 rows, the 6 pixels of a row in bits 7..2. */
struct Glyph6x8 {
    char32_t code;
    std::array<std::uint8_t, 8> rows;
};

/** A glyph of the 8x16 font: 16 rows of 8 pixels. */
struct Glyph8x16 {
    char32_t code;
    std::array<std::uint8_t, 16> rows;
};

/** The glyphs of the 6x8 font, font6x8GlyphCount() of them, sorted by code. */
Glyph6x8 const* font6x8Glyphs();
/** Number of glyphs of the 6x8 font. */
std::size_t font6x8GlyphCount();
/** The glyphs of the 8x16 font, font8x16GlyphCount() of them, sorted by code. */
Glyph8x16 const* font8x16Glyphs();
/** Number of glyphs of the 8x16 font. */
std::size_t font8x16GlyphCount();

}  // namespace frontpanelhw::graphic
