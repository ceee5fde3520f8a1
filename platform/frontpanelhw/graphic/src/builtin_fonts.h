#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// The two fonts built into the graphic displays, keyed by Unicode code point. Internal to the
// display library: the renderer looks glyphs up here; nothing public exposes these types.
namespace frontpanelhw::graphic::detail {

/** One glyph of the 6x8 font: a 5x7 glyph in a 6x8 cell. rows[r] bit 7 is the leftmost pixel of
 *  row r. Columns 0..4 carry the glyph and column 5 stays blank (the gap between cells). Rows
 *  0..6 carry the glyph and row 7 stays blank, except for the descenders of the letters that
 *  have one (g j p q y, ç Ç ý ÿ þ, the micro sign and μ), which reach into row 7 (a 5x8 design for
 * those), and for the cell-filling glyphs (block elements, box drawing, the inverse bullet and
 * circle, the integral halves), which may use the whole cell so that they join their neighbours. */
struct Glyph6x8 {
    char32_t code;                     ///< the Unicode character this glyph shows
    std::array<std::uint8_t, 8> rows;  ///< the pixel rows, top first; bit 7 is the leftmost pixel
};

/** One glyph of the 8x16 font. rows[r] bit 7 is the leftmost pixel of row r. Capitals stand on
 *  rows 3..12 (baseline row 12), the lower case's x-height is rows 6..12, descenders reach rows
 *  13-14 and accents over capitals use rows 0-1. Column 7 stays blank except for the
 *  cell-filling glyphs, as in the 6x8 font. */
struct Glyph8x16 {
    char32_t code;                      ///< the Unicode character this glyph shows
    std::array<std::uint8_t, 16> rows;  ///< the pixel rows, top first; bit 7 is the leftmost pixel
};

/** The 6x8 font's glyphs, sorted by code point (for binary search), font6x8GlyphCount() of them.
 *  U+FFFD is the glyph for characters the font lacks. */
Glyph6x8 const* font6x8Glyphs();
/** The number of glyphs font6x8Glyphs() points at. */
std::size_t font6x8GlyphCount();

/** The 8x16 font's glyphs, sorted by code point, font8x16GlyphCount() of them. U+FFFD is the
 *  glyph for characters the font lacks. */
Glyph8x16 const* font8x16Glyphs();
/** The number of glyphs font8x16Glyphs() points at. */
std::size_t font8x16GlyphCount();

}  // namespace frontpanelhw::graphic::detail
