#include <frontpanelhw/code_page.h>
#include <frontpanelhw/hd44780_charset.h>

#include <gtest/gtest.h>

#include <set>

namespace {

using frontpanelhw::findHd44780CustomGlyph;
using frontpanelhw::Hd44780Mapping;
using frontpanelhw::Hd44780Rom;
using frontpanelhw::hd44780RomGlyph;
using frontpanelhw::mapHd44780Character;
using Kind = frontpanelhw::Hd44780Mapping::Kind;

constexpr Hd44780Rom kRoms[] = {Hd44780Rom::A00, Hd44780Rom::A02};

// Spot checks of the A00 table against the datasheet's character table.
TEST(Hd44780CharsetTest, RomA00HasTheJapaneseStandardGlyphs) {
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x00), 0U) << "CGRAM";
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x10), U' ');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x41), U'A');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x5C), U'¥');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x7E), U'→');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0x7F), U'←');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xA1), U'｡');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xB1), U'ｱ');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xDF), U'ﾟ');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xE8), U'√');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xF4), U'Ω');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A00, 0xFF), U'█');
}

// Spot checks of the A02 table against the datasheet's character table.
TEST(Hd44780CharsetTest, RomA02HasTheEuropeanGlyphs) {
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x0F), 0U) << "CGRAM";
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x1E), U'▲');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x1F), U'▼');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x5C), U'\\');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x7E), U'~');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0x7F), U'⌂');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0xB0), U'°');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0xC4), U'Ä');
    EXPECT_EQ(hd44780RomGlyph(Hd44780Rom::A02, 0xFF), U'ÿ');
}

// Whatever a mapping picks shows the glyph the toolkit meant: a ROM code whose glyph is the
// code's character (or its declared lookalike), or a custom glyph of that character.
TEST(Hd44780CharsetTest, EveryMappedCodeShowsTheCharacterMeant) {
    for (Hd44780Rom const rom : kRoms) {
        for (unsigned value = 0; value <= 0xFFFF; ++value) {
            auto const code = static_cast<char16_t>(value);
            char32_t const meant = frontpanelhw::toUnicode(code);
            Hd44780Mapping const mapping = mapHd44780Character(code, rom);
            if (mapping.kind == Kind::Rom) {
                ASSERT_GE(mapping.romCode, 0x10) << "never a CGRAM code, code " << value;
                char32_t const shown = hd44780RomGlyph(rom, mapping.romCode);
                bool const micro =
                    (meant == U'µ' || meant == U'μ') && (shown == U'µ' || shown == U'μ');
                ASSERT_TRUE(shown == meant || micro) << "code " << value;
            } else if (mapping.kind == Kind::Custom) {
                ASSERT_EQ(mapping.custom->character, meant) << "code " << value;
            }
        }
    }
}

// The codes the toolkit writes: ASCII, the arrows, the bar cells, the tick and the degree sign.
TEST(Hd44780CharsetTest, EveryCharacterTheToolkitWritesHasAGlyphOnBothRoms) {
    std::u16string toolkit = u"\x1E\x1F\xDB\xB0\xFB\xF8'";
    for (char16_t ascii = 0x20; ascii < 0x7F; ++ascii) {
        toolkit.push_back(ascii);
    }
    for (Hd44780Rom const rom : kRoms) {
        for (char16_t const code : toolkit) {
            EXPECT_NE(mapHd44780Character(code, rom).kind, Kind::Replacement)
                << "code " << static_cast<unsigned>(code) << " rom " << hd44780RomName(rom);
        }
    }
}

TEST(Hd44780CharsetTest, RomGlyphsAreUsedWhereTheRomHasThem) {
    auto const romCode = [](char16_t code, Hd44780Rom rom) {
        auto const mapping = mapHd44780Character(code, rom);
        EXPECT_EQ(mapping.kind, Kind::Rom) << static_cast<unsigned>(code);
        return mapping.romCode;
    };
    EXPECT_EQ(romCode(0xDB, Hd44780Rom::A00), 0xFF);  // █
    EXPECT_EQ(romCode(0xFB, Hd44780Rom::A00), 0xE8);  // √
    EXPECT_EQ(romCode(u'g', Hd44780Rom::A00), 0x67) << "the ASCII letter, not the descender form";
    EXPECT_EQ(romCode(0xE6, Hd44780Rom::A00), 0xE4) << "µ shows as the Greek mu";
    EXPECT_EQ(romCode(0x1E, Hd44780Rom::A02), 0x1E);  // ▲
    EXPECT_EQ(romCode(0x1F, Hd44780Rom::A02), 0x1F);  // ▼
    EXPECT_EQ(romCode(0xF8, Hd44780Rom::A02), 0xB0);  // °
    EXPECT_EQ(romCode(0x1A, Hd44780Rom::A00), 0x7E);  // →
    EXPECT_EQ(romCode(0x1A, Hd44780Rom::A02), 0x1A);  // →
}

TEST(Hd44780CharsetTest, CustomGlyphsFillTheGapsOfEachRom) {
    auto const custom = [](char16_t code, Hd44780Rom rom) {
        auto const mapping = mapHd44780Character(code, rom);
        EXPECT_EQ(mapping.kind, Kind::Custom) << static_cast<unsigned>(code);
        return mapping.kind == Kind::Custom ? mapping.custom->character : char32_t{0};
    };
    EXPECT_EQ(custom(0x1E, Hd44780Rom::A00), U'▲');
    EXPECT_EQ(custom(0x1F, Hd44780Rom::A00), U'▼');
    EXPECT_EQ(custom(0xB0, Hd44780Rom::A00), U'░');
    EXPECT_EQ(custom(0xF8, Hd44780Rom::A00), U'°');
    EXPECT_EQ(custom(u'\\', Hd44780Rom::A00), U'\\');
    EXPECT_EQ(custom(0xDB, Hd44780Rom::A02), U'█');
    EXPECT_EQ(custom(0xB0, Hd44780Rom::A02), U'░');
    EXPECT_EQ(custom(0xFB, Hd44780Rom::A02), U'√');
}

TEST(Hd44780CharsetTest, CodesWithoutAnyGlyphAreReplaced) {
    for (Hd44780Rom const rom : kRoms) {
        EXPECT_EQ(mapHd44780Character(u'中', rom).kind, Kind::Replacement);
        EXPECT_EQ(mapHd44780Character(0x263A, rom).kind, Kind::Replacement) << "☺";
    }
    EXPECT_EQ(mapHd44780Character(0x82, Hd44780Rom::A00).kind, Kind::Replacement) << "é";
    EXPECT_EQ(mapHd44780Character(0x82, Hd44780Rom::A02).kind, Kind::Rom) << "é";
}

TEST(Hd44780CharsetTest, CustomGlyphsAreDistinctFiveDotBitmapsWithAsciiFallbacks) {
    std::set<std::array<std::uint8_t, 8>> bitmaps;
    for (auto const& glyph : frontpanelhw::hd44780CustomGlyphs()) {
        for (std::uint8_t const row : glyph.rows) {
            EXPECT_LE(row, 0x1F);
        }
        EXPECT_TRUE(bitmaps.insert(glyph.rows).second) << "duplicate bitmap";
        EXPECT_EQ(findHd44780CustomGlyph(glyph.rows), &glyph);
        for (Hd44780Rom const rom : kRoms) {
            EXPECT_EQ(mapHd44780Character(static_cast<char16_t>(glyph.fallback), rom).kind,
                      Kind::Rom)
                << "fallback " << glyph.fallback;
        }
    }
    EXPECT_EQ(findHd44780CustomGlyph({1, 2, 3, 4, 5, 6, 7, 8}), nullptr);
}

}  // namespace
