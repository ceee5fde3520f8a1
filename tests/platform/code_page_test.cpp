#include <frontpanelhw/code_page.h>

#include <gtest/gtest.h>

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

TEST(CodePageTest, PanelSymbolsShowTheirGlyphs) {
    expectMapping(
        {{0x1E, U'▲'}, {0x1F, U'▼'}, {0xDB, U'█'}, {0xB0, U'░'}, {0xF8, U'°'}, {0xFB, U'√'}});
}

TEST(CodePageTest, CodeZeroIsABlank) { EXPECT_EQ(toUnicode(0x00), U' '); }

TEST(CodePageTest, ControlCodesShowTheirCodePageGlyphs) {
    expectMapping({{0x01, U'☺'}, {0x02, U'☻'}, {0x03, U'♥'}, {0x04, U'♦'}, {0x05, U'♣'},
                   {0x06, U'♠'}, {0x07, U'•'}, {0x08, U'◘'}, {0x09, U'○'}, {0x0A, U'◙'},
                   {0x0D, U'♪'}, {0x0F, U'☼'}, {0x10, U'►'}, {0x11, U'◄'}, {0x13, U'‼'},
                   {0x14, U'¶'}, {0x15, U'§'}, {0x18, U'↑'}, {0x19, U'↓'}, {0x1A, U'→'},
                   {0x1B, U'←'}, {0x1C, U'∟'}, {0x1D, U'↔'}});
}

TEST(CodePageTest, PrintableAsciiIsItself) {
    for (char16_t code = 0x20; code <= 0x7E; ++code) {
        EXPECT_EQ(toUnicode(code), char32_t{code}) << "display code 0x" << std::hex << int{code};
    }
}

TEST(CodePageTest, DeleteCodeIsAHouse) { EXPECT_EQ(toUnicode(0x7F), U'⌂'); }

TEST(CodePageTest, UpperHalfIsTheCodePageUpperHalf) {
    expectMapping({{0x80, U'Ç'}, {0x81, U'ü'}, {0x82, U'é'},     {0x8E, U'Ä'}, {0x99, U'Ö'},
                   {0x9A, U'Ü'}, {0x9E, U'₧'}, {0x9F, U'ƒ'},     {0xA4, U'ñ'}, {0xA9, U'⌐'},
                   {0xB1, U'▒'}, {0xB2, U'▓'}, {0xB3, U'│'},     {0xC4, U'─'}, {0xC5, U'┼'},
                   {0xCD, U'═'}, {0xDA, U'┌'}, {0xDC, U'▄'},     {0xDF, U'▀'}, {0xE0, U'α'},
                   {0xE1, U'ß'}, {0xE3, U'π'}, {0xE6, U'µ'},     {0xEA, U'Ω'}, {0xEC, U'∞'},
                   {0xF1, U'±'}, {0xF6, U'÷'}, {0xF7, U'≈'},     {0xFA, U'·'}, {0xFC, U'ⁿ'},
                   {0xFD, U'²'}, {0xFE, U'■'}, {0xFF, U'\u00A0'}});
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
