#include <frontpanelhw/code_page.h>
#include <frontpanelhw/hd44780_charset.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "hd44780_rom_tables.h"

namespace frontpanelhw {

namespace {

constexpr unsigned kFirstRomCode = 0x10;  // below are the CGRAM codes

// Unicode character to ROM code, sorted by character; where a ROM shows one character twice
// the lower code wins, so ASCII letters keep their ASCII codes.
using ReverseIndex = std::vector<std::pair<char32_t, std::uint8_t>>;

ReverseIndex buildReverseIndex(Hd44780Rom rom) {
    auto const& table = detail::romGlyphTable(rom);
    ReverseIndex index;
    for (unsigned code = kFirstRomCode; code < table.size(); ++code) {
        // Blank codes all look like the space; only the space itself stands for it.
        if (table[code] != U' ' || code == u' ') {
            index.emplace_back(table[code], static_cast<std::uint8_t>(code));
        }
    }
    std::stable_sort(index.begin(), index.end(),
                     [](auto const& lhs, auto const& rhs) { return lhs.first < rhs.first; });
    return index;
}

ReverseIndex const& reverseIndex(Hd44780Rom rom) {
    static ReverseIndex const a00 = buildReverseIndex(Hd44780Rom::A00);
    static ReverseIndex const a02 = buildReverseIndex(Hd44780Rom::A02);
    return rom == Hd44780Rom::A00 ? a00 : a02;
}

bool findRomCode(Hd44780Rom rom, char32_t character, std::uint8_t& code) {
    auto const& index = reverseIndex(rom);
    auto const found = std::lower_bound(
        index.begin(), index.end(), character,
        [](std::pair<char32_t, std::uint8_t> const& entry, char32_t c) { return entry.first < c; });
    if (found == index.end() || found->first != character) {
        return false;
    }
    code = found->second;
    return true;
}

Hd44780CustomGlyph const* findCustomGlyph(char32_t character) {
    auto const& glyphs = hd44780CustomGlyphs();
    auto const found = std::find_if(glyphs.begin(), glyphs.end(), [character](auto const& glyph) {
        return glyph.character == character;
    });
    return found == glyphs.end() ? nullptr : &*found;
}

}  // namespace

char const* hd44780RomName(Hd44780Rom rom) { return rom == Hd44780Rom::A00 ? "a00" : "a02"; }

Hd44780Mapping mapHd44780Character(char16_t code, Hd44780Rom rom) {
    char32_t const character = toUnicode(code);
    std::uint8_t romCode = 0;
    if (findRomCode(rom, character, romCode)) {
        return {Hd44780Mapping::Kind::Rom, romCode, nullptr};
    }
    if (auto const* custom = findCustomGlyph(character)) {
        return {Hd44780Mapping::Kind::Custom, 0, custom};
    }
    for (auto const& lookalike : detail::romLookalikes()) {
        if (lookalike.wanted == character && findRomCode(rom, lookalike.shown, romCode)) {
            return {Hd44780Mapping::Kind::Rom, romCode, nullptr};
        }
    }
    return {Hd44780Mapping::Kind::Replacement, 0, nullptr};
}

char32_t hd44780RomGlyph(Hd44780Rom rom, std::uint8_t code) {
    return detail::romGlyphTable(rom)[code];
}

Hd44780CustomGlyph const* findHd44780CustomGlyph(std::array<std::uint8_t, 8> const& rows) {
    auto const& glyphs = hd44780CustomGlyphs();
    auto const found = std::find_if(glyphs.begin(), glyphs.end(), [&rows](auto const& glyph) {
        for (unsigned row = 0; row < rows.size(); ++row) {
            if ((rows[row] & 0x1F) != glyph.rows[row]) {
                return false;
            }
        }
        return true;
    });
    return found == glyphs.end() ? nullptr : &*found;
}

}  // namespace frontpanelhw
