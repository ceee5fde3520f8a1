#pragma once

#include <frontpanelhw/hd44780_charset.h>

#include <array>

namespace frontpanelhw::detail {

/** The glyph of every code of one character ROM as the nearest Unicode character: 0 for the
 *  CGRAM codes 0x00-0x0F, U+0020 for codes whose glyph is blank. */
using RomGlyphTable = std::array<char32_t, 256>;

/** The table of `rom`. */
RomGlyphTable const& romGlyphTable(Hd44780Rom rom);

/** Characters a ROM shows with the glyph of another character: {wanted, shown}. */
struct RomLookalike {
    char32_t wanted;
    char32_t shown;
};

/** The lookalikes tried when a ROM lacks a character itself. */
std::array<RomLookalike, 2> const& romLookalikes();

}  // namespace frontpanelhw::detail
