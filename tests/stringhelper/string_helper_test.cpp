#include <yxfrontpanel/string_helper.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace sh = yxfrontpanel::stringhelper;
using Lines = std::vector<std::u16string>;

// --- toU16 / toStr -------------------------------------------------------------------------

TEST(StringHelperTest, ToU16WidensHighByteToSameCodeUnit) {
    EXPECT_EQ(sh::toU16("\xF8"), u"\u00F8");
}

TEST(StringHelperTest, ToU16KeepsAsciiText) { EXPECT_EQ(sh::toU16("Ab 1:"), u"Ab 1:"); }

TEST(StringHelperTest, ToU16WidensUtf8SequenceByteByByte) {
    std::u16string const widened = sh::toU16("\xC3\xA9");  // UTF-8 for e-acute
    EXPECT_EQ(widened, u"\u00C3\u00A9");
}

TEST(StringHelperTest, ToU16KeepsLengthIncludingEmbeddedNul) {
    std::u16string const widened = sh::toU16(std::string("a\0b", 3));
    ASSERT_EQ(widened.size(), 3u);
    EXPECT_EQ(widened[1], u'\0');
    EXPECT_EQ(widened[2], u'b');
}

TEST(StringHelperTest, ToU16OfEmptyTextIsEmpty) { EXPECT_TRUE(sh::toU16("").empty()); }

TEST(StringHelperTest, ToStrKeepsLowByteOfCodeUnit) { EXPECT_EQ(sh::toStr(u"\u20AC"), "\xAC"); }

TEST(StringHelperTest, ToStrKeepsLength) {
    EXPECT_EQ(sh::toStr(u"a\u20ACb\u0141"), (std::string{'a', '\xAC', 'b', 'A'}));
}

TEST(StringHelperTest, ToStrReversesToU16ForEveryByte) {
    std::string allBytes;
    for (int value = 0; value < 256; ++value) {
        allBytes.push_back(static_cast<char>(value));
    }
    std::u16string const widened = sh::toU16(allBytes);
    for (std::size_t index = 0; index < widened.size(); ++index) {
        EXPECT_EQ(widened[index], static_cast<char16_t>(index)) << "index=" << index;
    }
    EXPECT_EQ(sh::toStr(widened), allBytes);
}

// --- rTrim ---------------------------------------------------------------------------------

TEST(StringHelperTest, RTrimRemovesOnlyTrailingWhitespace) {
    std::pair<std::u16string, std::u16string> const cases[] = {
        {u" ab \t\r\n", u" ab"},  // keeps leading whitespace
        {u"  ", u""},             // text made only of whitespace
        {u"a \tb\n", u"a \tb"},   // keeps whitespace inside
        {u"", u""},
        // Other blank-like characters are left alone.
        {u"ab\v", u"ab\v"},
        {u"ab\f", u"ab\f"},
        {u"ab\u00A0", u"ab\u00A0"},
        {u"ab\u3000", u"ab\u3000"},
    };
    for (auto const& [original, trimmed] : cases) {
        std::u16string text = original;
        sh::rTrim(text);
        EXPECT_EQ(text, trimmed) << std::string(original.begin(), original.end());
    }
}

// --- split ---------------------------------------------------------------------------------

// split: `text` cut at `delimiter` into `before` gives `parts` (what was there is cleared).
struct SplitCase {
    std::u16string text;
    char16_t delimiter;
    Lines before;
    Lines parts;
};

TEST(StringHelperTest, SplitCutsAtEveryDelimiter) {
    SplitCase const cases[] = {
        {u"a,,b,", u',', {}, {u"a", u"", u"b", u""}},  // empty pieces between and after
        {u"", u',', {}, {u""}},                        // empty text: one empty piece
        {u"a b", u',', {}, {u"a b"}},                  // no delimiter: the whole text
        {u";x", u';', {}, {u"", u"x"}},                // leading delimiter: empty first piece
        {u"new", u',', {u"old", u"older", u"oldest"}, {u"new"}},  // clears parts first
    };
    for (SplitCase const& split : cases) {
        SCOPED_TRACE(std::string(split.text.begin(), split.text.end()));
        Lines parts = split.before;
        EXPECT_EQ(sh::split(split.text, parts, split.delimiter), split.parts.size());
        EXPECT_EQ(parts, split.parts);
    }
}

// --- SplitLineAtWhitespaces ----------------------------------------------------------------

// SplitLineAtWhitespaces: `text` at `width`, appended to `before`, leaves `after` and returns
// `rest`, the last line, which it does not append.
struct SplitLineCase {
    char const* why;
    std::u16string text;
    std::size_t width;
    Lines before;
    std::u16string rest;
    Lines after;
};

TEST(StringHelperTest, SplitLineAppendsAllButTheLastLine) {
    SplitLineCase const cases[] = {
        {"single word appended unchanged", u"abcdefgh", 5, {}, u"", {u"abcdefgh"}},
        {"last line returned", u"one two three", 7, {}, u"three", {u"one two"}},
        {"appends to lines already there",
         u"one two three",
         7,
         {u"kept"},
         u"three",
         {u"kept", u"one two"}},
        // The separating blank is not counted, so a joined line may reach the full width.
        {"joins while the lengths sum below the width", u"ab cd", 5, {}, u"ab cd", {}},
        {"wraps when they do not", u"ab cd", 4, {}, u"cd", {u"ab"}},
        {"empty line before a long first word", u"abcdefgh ij", 5, {}, u"ij", {u"", u"abcdefgh"}},
        {"overlong word alone on its line", u"ab abcdefgh cd", 5, {}, u"cd", {u"ab", u"abcdefgh"}},
        {"keeps a run of spaces inside a line", u"ab  cd ef", 6, {}, u"ef", {u"ab  cd"}},
        {"drops spaces at the start of a line", u"  ab cd", 4, {}, u"cd", {u"ab"}},
        {"trims spaces at the end of an emitted line", u"ab  cdefg", 6, {}, u"cdefg", {u"ab"}},
        {"leaves the returned line untrimmed", u"ab cd ", 4, {}, u"cd ", {u"ab"}},
    };
    for (SplitLineCase const& split : cases) {
        SCOPED_TRACE(split.why);
        Lines lines = split.before;
        EXPECT_EQ(sh::SplitLineAtWhitespaces(split.text, split.width, lines), split.rest);
        EXPECT_EQ(lines, split.after);
    }
}

// --- splitStringToLines --------------------------------------------------------------------

// splitStringToLines: `text` wrapped at `width` gives `lines`.
struct WrapCase {
    char const* why;
    std::u16string text;
    std::size_t width;
    Lines lines;
};

TEST(StringHelperTest, SplitStringToLinesWrapsEachRawLine) {
    WrapCase const cases[] = {
        {"wraps greedily", u"one two three", 7, {u"one two", u"three"}},
        {"empty line before a long first word", u"abcdefgh ij", 5, {u"", u"abcdefgh", u"ij"}},
        {"keeps a double space inside a wrapped line", u"ab  cd ef", 6, {u"ab  cd", u"ef"}},
        {"drops leading spaces of a wrapped line", u"  ab cd", 4, {u"ab", u"cd"}},
        {"keeps an overlong single word", u"abcdefgh", 5, {u"abcdefgh"}},
        {"keeps empty lines and a trailing line feed", u"a\n\nb\n", 10, {u"a", u"", u"b", u""}},
        {"empty text gives one empty line", u"", 10, {u""}},
        {"keeps leading spaces of a line that fits", u"  abc  ", 7, {u"  abc"}},
        // A line of exactly the width fits; one more character sends it through wrapping.
        {"a line of the width fits", u"  abc", 5, {u"  abc"}},
        {"a longer line is wrapped", u"  abc", 4, {u"abc"}},
        {"drops the carriage return of CR LF", u"ab\r\ncd\r\n", 10, {u"ab", u"cd", u""}},
        {"trims the last wrapped line", u"ab cd ", 4, {u"ab", u"cd"}},
        {"wraps each raw line on its own",
         u"one two three\nfour five",
         7,
         {u"one two", u"three", u"four", u"five"}},
        {"width zero wraps every non-empty line", u"ab cd", 0, {u"", u"ab", u"cd"}},
        {"width zero keeps empty lines", u"a\n\nb c", 0, {u"a", u"", u"", u"b", u"c"}},
    };
    for (WrapCase const& wrap : cases) {
        EXPECT_EQ(sh::splitStringToLines(wrap.text, wrap.width), wrap.lines) << wrap.why;
    }
}

}  // namespace
