#include <frontpanelhw/code_page.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {

using frontpanelhw::toUnicode;
using frontpanelhw::toUtf8;

using Mapping = std::vector<std::pair<char16_t, char32_t>>;

void expectMapping(Mapping const& mapping) {
    for (auto const& [code, expected] : mapping) {
        EXPECT_EQ(toUnicode(code), expected) << "display code 0x" << std::hex << int{code};
    }
}

// Each display code in `codes` shows the glyph at the same place in `glyphs`.
void expectGlyphs(std::u16string const& codes, std::u32string const& glyphs) {
    ASSERT_EQ(codes.size(), glyphs.size());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        EXPECT_EQ(toUnicode(codes[i]), glyphs[i]) << "display code 0x" << std::hex << int{codes[i]};
    }
}

TEST(CodePageTest, PanelSymbolsShowTheirGlyphs) {
    expectGlyphs(u"\x1E\x1F\xDB\xB0\xF8\xFB", U"▲▼█░°√");
}

TEST(CodePageTest, CodeZeroIsABlankAndDeleteCodeIsAHouse) {
    expectGlyphs(std::u16string{u'\0', u'\x7F'}, U" ⌂");
}

TEST(CodePageTest, ControlCodesShowTheirCodePageGlyphs) {
    expectGlyphs(u"\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0D\x0F",  //
                 U"☺☻♥♦♣♠•◘○◙♪☼");
    expectGlyphs(u"\x10\x11\x13\x14\x15\x18\x19\x1A\x1B\x1C\x1D",  //
                 U"►◄‼¶§↑↓→←∟↔");
}

TEST(CodePageTest, PrintableAsciiIsItself) {
    for (char16_t code = 0x20; code <= 0x7E; ++code) {
        EXPECT_EQ(toUnicode(code), char32_t{code}) << "display code 0x" << std::hex << int{code};
    }
}

TEST(CodePageTest, UpperHalfIsTheCodePageUpperHalf) {
    expectGlyphs(u"\x80\x81\x82\x8E\x99\x9A\x9E\x9F\xA4\xA9\xB1\xB2\xB3\xC4\xC5\xCD",
                 U"ÇüéÄÖÜ₧ƒñ⌐▒▓│─┼═");
    expectGlyphs(u"\xDA\xDC\xDF\xE0\xE1\xE3\xE6\xEA\xEC\xF1\xF6\xF7\xFA\xFC\xFD\xFE\xFF",
                 U"┌▄▀αßπµΩ∞±÷≈·ⁿ²■\u00A0");
}

TEST(CodePageTest, CodesAboveTheCodePageAreTheirUnicodeCharacter) {
    expectMapping({{0x100, U'Ā'},
                   {0x20AC, U'€'},
                   {0x2191, U'↑'},
                   {0x4E2D, U'中'},
                   {0xFFFD, U'\uFFFD'},
                   {0xFFFF, char32_t{0xFFFF}}});
}

TEST(CodePageTest, SurrogateCodesGiveTheReplacementCharacter) {
    expectMapping(
        {{0xD800, U'\uFFFD'}, {0xDBFF, U'\uFFFD'}, {0xDC00, U'\uFFFD'}, {0xDFFF, U'\uFFFD'}});
}

TEST(CodePageTest, Utf8OfOneByteCharacters) {
    EXPECT_EQ(toUtf8(U'A'), "A");
    EXPECT_EQ(toUtf8(0x00), std::string(1, '\0'));
    EXPECT_EQ(toUtf8(0x7F), "\x7F");
}

TEST(CodePageTest, Utf8OfTwoByteCharacters) {
    EXPECT_EQ(toUtf8(U'°'), "\xC2\xB0");
    EXPECT_EQ(toUtf8(U'é'), "\xC3\xA9");
    EXPECT_EQ(toUtf8(0x80), "\xC2\x80");
    EXPECT_EQ(toUtf8(0x7FF), "\xDF\xBF");
}

TEST(CodePageTest, Utf8OfThreeByteCharacters) {
    EXPECT_EQ(toUtf8(U'▲'), "\xE2\x96\xB2");
    EXPECT_EQ(toUtf8(U'√'), "\xE2\x88\x9A");
    EXPECT_EQ(toUtf8(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(toUtf8(0xFFFF), "\xEF\xBF\xBF");
}

TEST(CodePageTest, Utf8OfFourByteCharacters) {
    EXPECT_EQ(toUtf8(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(toUtf8(U'😀'), "\xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(CodePageTest, Utf8OfValuesThatAreNoCharacterIsTheReplacementCharacter) {
    EXPECT_EQ(toUtf8(0xD800), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(0xDFFF), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(0x110000), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(0xFFFFFFFF), "\xEF\xBF\xBD");
}

TEST(CodePageTest, Utf8OfEveryPanelGlyphDecodesAsUtf8) {
    for (char32_t code = 0; code <= 0xFF; ++code) {
        std::string const bytes = toUtf8(toUnicode(static_cast<char16_t>(code)));
        ASSERT_FALSE(bytes.empty());
        auto const lead = static_cast<unsigned char>(bytes[0]);
        std::size_t const expectedLength = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        EXPECT_EQ(bytes.size(), expectedLength) << "display code 0x" << std::hex << code;
    }
}

}  // namespace
