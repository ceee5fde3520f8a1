#pragma once

#include <frontpanelhw/export.h>

#include <array>
#include <cstdint>
#include <string>

namespace frontpanelhw {

/** The character ROM of an HD44780-compatible controller. A00 ("Japanese standard") has ASCII
 *  except the yen sign at 0x5C and the arrows at 0x7E/0x7F, half-width katakana and some Greek
 *  and mathematical signs; A02 ("European") has ASCII, arrows and triangles in 0x10-0x1F, some
 *  Cyrillic and Greek letters and most of Latin-1. */
enum class Hd44780Rom { A00, A02 };

/** The name of a ROM as the command line spells it: "a00" or "a02". */
FRONTPANELHW_EXPORT char const* hd44780RomName(Hd44780Rom rom);

/** A character the ROMs may lack, drawn into one of the eight CGRAM slots: its Unicode value,
 *  its 5x8 bitmap (eight rows from the top, bit 4 the leftmost dot) and the ASCII character
 *  shown instead when a frame needs more custom glyphs than there are slots. */
struct Hd44780CustomGlyph {
    /** The Unicode character the glyph draws. */
    char32_t character;
    /** The 5x8 bitmap: eight rows from the top, bit 4 the leftmost dot. */
    std::array<std::uint8_t, 8> rows;
    /** The ASCII character shown instead when the glyph gets no CGRAM slot. */
    char fallback;
};

/** How one cell code of the toolkit reaches the module. */
struct Hd44780Mapping {
    /** Which way a cell reaches the module. */
    enum class Kind {
        Rom,         // `romCode` is a character of the ROM that shows the cell's glyph
        Custom,      // `custom` is the glyph to load into a CGRAM slot
        Replacement  // the ROM has no such glyph and no custom glyph draws it
    };
    /** A ROM character, a custom glyph or the replacement. */
    Kind kind;
    /** For Rom: the ROM code (0x10-0xFF); 0 otherwise. */
    std::uint8_t romCode;
    /** For Custom: an entry of hd44780CustomGlyphs(); nullptr otherwise. */
    Hd44780CustomGlyph const* custom;
};

/** Maps the toolkit's cell code `code` (see toUnicode: code page 437 below 0x100, Unicode above)
 *  to the module with ROM `rom`: the ROM's own character where it has the glyph (ASCII included),
 *  else a custom glyph where one is defined, else Replacement. Never throws. */
FRONTPANELHW_EXPORT Hd44780Mapping mapHd44780Character(char16_t code, Hd44780Rom rom);

/** The Unicode character nearest to the glyph of ROM code `code` (0x10-0xFF) of `rom`;
 *  U+0020 for codes whose glyph is blank, and 0 for the CGRAM codes 0x00-0x0F. Never throws. */
FRONTPANELHW_EXPORT char32_t hd44780RomGlyph(Hd44780Rom rom, std::uint8_t code);

/** Every custom glyph the library can draw, in a fixed order. */
FRONTPANELHW_EXPORT std::array<Hd44780CustomGlyph, 18> const& hd44780CustomGlyphs();

/** The custom glyph whose bitmap is `rows` (only the low five bits of each row count), or
 *  nullptr when no custom glyph has that bitmap. */
FRONTPANELHW_EXPORT Hd44780CustomGlyph const* findHd44780CustomGlyph(
    std::array<std::uint8_t, 8> const& rows);

}  // namespace frontpanelhw
