#include "builtin_fonts.h"

#include <frontpanelhw/code_page.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

namespace {

using frontpanelhw::toUnicode;
using frontpanelhw::graphic::detail::font6x8GlyphCount;
using frontpanelhw::graphic::detail::font6x8Glyphs;
using frontpanelhw::graphic::detail::font8x16GlyphCount;
using frontpanelhw::graphic::detail::font8x16Glyphs;
using frontpanelhw::graphic::detail::Glyph6x8;
using frontpanelhw::graphic::detail::Glyph8x16;

// The display codes the toolkit and the runtime write besides ASCII.
constexpr char16_t kToolkitCodes[] = {
    0x1E,  // ▲ scroll mark "more above", the slider's cursor
    0x1F,  // ▼ scroll mark "more below"
    0xB0,  // ░ the progress bar's empty cell
    0xDB,  // █ the progress bar's filled cell
    0xF8,  // ° the degree sign of the Celsius unit
    0xFB,  // √ the trigger item's success mark
};

// The 6x8 font's letters whose descender reaches into row 7.
constexpr char32_t kDescenders6x8[] = {U'g', U'j', U'p', U'q', U'y', U'Ç',
                                       U'ç', U'µ', U'ý', U'þ', U'ÿ', U'μ'};

// The glyphs that may fill their whole cell, so that they join the glyphs beside them: box
// drawing, block elements, the inverse bullet and circle and the two halves of the integral.
bool isCellFilling(char32_t code) {
    return (code >= 0x2500 && code <= 0x259F) || code == 0x25D8 || code == 0x25D9 ||
           code == 0x2320 || code == 0x2321;
}

template <typename Glyph>
struct Font {
    Glyph const* glyphs;
    std::size_t count;

    Glyph const* begin() const { return glyphs; }
    Glyph const* end() const { return glyphs + count; }

    Glyph const* find(char32_t code) const {
        Glyph const* found =
            std::lower_bound(begin(), end(), code,
                             [](Glyph const& glyph, char32_t key) { return glyph.code < key; });
        return found != end() && found->code == code ? found : nullptr;
    }
};

Font<Glyph6x8> font6x8() { return {font6x8Glyphs(), font6x8GlyphCount()}; }
Font<Glyph8x16> font8x16() { return {font8x16Glyphs(), font8x16GlyphCount()}; }

template <typename Glyph>
bool isBlank(Glyph const& glyph) {
    return std::all_of(glyph.rows.begin(), glyph.rows.end(),
                       [](std::uint8_t row) { return row == 0; });
}

std::string hex(char32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
    return text;
}

// Every character the panel's character set shows: the code page's 0x01-0xFF.
std::vector<char32_t> codePageCharacters() {
    std::vector<char32_t> characters;
    for (char16_t code = 0x01; code <= 0xFF; ++code) {
        characters.push_back(toUnicode(code));
    }
    return characters;
}

std::vector<char32_t> printableAsciiAndLatin1() {
    std::vector<char32_t> characters;
    for (char32_t code = 0x20; code <= 0x7E; ++code) {
        characters.push_back(code);
    }
    for (char32_t code = 0xA0; code <= 0xFF; ++code) {
        characters.push_back(code);
    }
    return characters;
}

template <typename Glyph>
void expectSortedAndUnique(Font<Glyph> const& font) {
    ASSERT_GT(font.count, 0U);
    for (std::size_t i = 1; i < font.count; ++i) {
        EXPECT_LT(font.glyphs[i - 1].code, font.glyphs[i].code) << "at index " << i;
    }
}

template <typename Glyph>
void expectPresent(Font<Glyph> const& font, std::vector<char32_t> const& characters) {
    for (char32_t const character : characters) {
        EXPECT_NE(font.find(character), nullptr) << hex(character);
    }
}

template <typename Glyph>
void expectAsciiGlyphsDistinct(Font<Glyph> const& font) {
    std::set<decltype(Glyph::rows)> seen;
    for (char32_t code = 0x20; code <= 0x7E; ++code) {
        Glyph const* glyph = font.find(code);
        ASSERT_NE(glyph, nullptr) << hex(code);
        EXPECT_TRUE(seen.insert(glyph->rows).second) << hex(code) << " looks like another one";
    }
}

template <typename Glyph>
void expectLettersDrawn(Font<Glyph> const& font) {
    std::vector<char32_t> letters;
    for (char32_t code = U'A'; code <= U'Z'; ++code) {
        letters.push_back(code);
        letters.push_back(code + 0x20);
    }
    for (char32_t code = 0xC0; code <= 0xFF; ++code) {
        if (code != 0xD7 && code != 0xF7) {  // × and ÷ are not letters
            letters.push_back(code);
        }
    }
    for (char32_t const letter : letters) {
        Glyph const* glyph = font.find(letter);
        ASSERT_NE(glyph, nullptr) << hex(letter);
        EXPECT_FALSE(isBlank(*glyph)) << hex(letter);
    }
}

template <typename Glyph>
void expectSpacesBlankAndReplacementVisible(Font<Glyph> const& font) {
    for (char32_t const space : {U' ', U'\u00A0'}) {
        Glyph const* glyph = font.find(space);
        ASSERT_NE(glyph, nullptr) << hex(space);
        EXPECT_TRUE(isBlank(*glyph)) << hex(space);
    }
    Glyph const* replacement = font.find(0xFFFD);
    ASSERT_NE(replacement, nullptr);
    EXPECT_FALSE(isBlank(*replacement));
    EXPECT_NE(replacement->rows, font.find(U'?')->rows);
}

TEST(BuiltinFontsTest, CodesAreSortedAndUnique) {
    expectSortedAndUnique(font6x8());
    expectSortedAndUnique(font8x16());
}

TEST(BuiltinFontsTest, EveryPrintableAsciiAndLatin1CharacterIsPresent) {
    expectPresent(font6x8(), printableAsciiAndLatin1());
    expectPresent(font8x16(), printableAsciiAndLatin1());
}

TEST(BuiltinFontsTest, EveryGlyphTheToolkitDrawsIsPresentAndVisible) {
    for (char16_t const code : kToolkitCodes) {
        char32_t const character = toUnicode(code);
        ASSERT_NE(font6x8().find(character), nullptr) << hex(character);
        ASSERT_NE(font8x16().find(character), nullptr) << hex(character);
        EXPECT_FALSE(isBlank(*font6x8().find(character))) << hex(character);
        EXPECT_FALSE(isBlank(*font8x16().find(character))) << hex(character);
    }
}

TEST(BuiltinFontsTest, EveryCharacterOfTheCodePageIsPresent) {
    expectPresent(font6x8(), codePageCharacters());
    expectPresent(font8x16(), codePageCharacters());
}

TEST(BuiltinFontsTest, SpacesAreBlankAndTheReplacementGlyphIsVisible) {
    expectSpacesBlankAndReplacementVisible(font6x8());
    expectSpacesBlankAndReplacementVisible(font8x16());
}

TEST(BuiltinFontsTest, PrintableAsciiGlyphsAreDistinct) {
    expectAsciiGlyphsDistinct(font6x8());
    expectAsciiGlyphsDistinct(font8x16());
}

TEST(BuiltinFontsTest, LettersAreDrawn) {
    expectLettersDrawn(font6x8());
    expectLettersDrawn(font8x16());
}

TEST(BuiltinFontsTest, SixByEightGlyphsLeaveTheGapBetweenCellsBlank) {
    std::set<char32_t> const descenders(std::begin(kDescenders6x8), std::end(kDescenders6x8));
    for (Glyph6x8 const& glyph : font6x8()) {
        if (isCellFilling(glyph.code)) {
            continue;
        }
        for (std::uint8_t const row : glyph.rows) {
            EXPECT_EQ(row & 0x04, 0) << hex(glyph.code) << " uses column 5";
        }
        if (descenders.count(glyph.code) == 0) {
            EXPECT_EQ(glyph.rows[7], 0) << hex(glyph.code) << " uses row 7";
        }
    }
    for (char32_t const letter : descenders) {
        ASSERT_NE(font6x8().find(letter), nullptr) << hex(letter);
        EXPECT_NE(font6x8().find(letter)->rows[7], 0) << hex(letter) << " has no descender";
    }
}

TEST(BuiltinFontsTest, EightBySixteenGlyphsLeaveTheLastColumnBlank) {
    for (Glyph8x16 const& glyph : font8x16()) {
        if (isCellFilling(glyph.code)) {
            continue;
        }
        for (std::uint8_t const row : glyph.rows) {
            EXPECT_EQ(row & 0x01, 0) << hex(glyph.code) << " uses column 7";
        }
    }
}

TEST(BuiltinFontsTest, CellFillingGlyphsReachTheCellsEdges) {
    // The full block and the box drawing's lines join the neighbouring cells.
    auto const full6x8 = font6x8().find(0x2588);
    auto const full8x16 = font8x16().find(0x2588);
    ASSERT_NE(full6x8, nullptr);
    ASSERT_NE(full8x16, nullptr);
    for (std::uint8_t const row : full6x8->rows) {
        EXPECT_EQ(row, 0xFC);
    }
    for (std::uint8_t const row : full8x16->rows) {
        EXPECT_EQ(row, 0xFF);
    }
    auto const horizontal = font6x8().find(0x2500);  // ─
    auto const vertical = font8x16().find(0x2502);   // │
    ASSERT_NE(horizontal, nullptr);
    ASSERT_NE(vertical, nullptr);
    EXPECT_TRUE(std::any_of(horizontal->rows.begin(), horizontal->rows.end(),
                            [](std::uint8_t row) { return row == 0xFC; }));
    EXPECT_TRUE(std::all_of(vertical->rows.begin(), vertical->rows.end(), [&](std::uint8_t row) {
        return row == vertical->rows[0] && row != 0;
    }));
}

}  // namespace
