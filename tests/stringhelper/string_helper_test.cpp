#include <yxfrontpanel/string_helper.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
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

TEST(StringHelperTest, RTrimRemovesTrailingWhitespaceAndKeepsLeading) {
    std::u16string text = u" ab \t\r\n";
    sh::rTrim(text);
    EXPECT_EQ(text, u" ab");
}

TEST(StringHelperTest, RTrimEmptiesTextMadeOnlyOfWhitespace) {
    std::u16string text = u"  ";
    sh::rTrim(text);
    EXPECT_EQ(text, u"");
}

TEST(StringHelperTest, RTrimKeepsWhitespaceInsideText) {
    std::u16string text = u"a \tb\n";
    sh::rTrim(text);
    EXPECT_EQ(text, u"a \tb");
}

TEST(StringHelperTest, RTrimLeavesOtherBlankLikeCharactersAlone) {
    for (std::u16string const original : {u"ab\v", u"ab\f", u"ab\u00A0", u"ab\u3000"}) {
        std::u16string text = original;
        sh::rTrim(text);
        EXPECT_EQ(text, original);
    }
}

TEST(StringHelperTest, RTrimOfEmptyTextStaysEmpty) {
    std::u16string text;
    sh::rTrim(text);
    EXPECT_EQ(text, u"");
}

// --- split ---------------------------------------------------------------------------------

TEST(StringHelperTest, SplitKeepsEmptyPiecesBetweenAndAfterDelimiters) {
    Lines parts;
    EXPECT_EQ(sh::split(u"a,,b,", parts, u','), 4u);
    EXPECT_EQ(parts, (Lines{u"a", u"", u"b", u""}));
}

TEST(StringHelperTest, SplitOfEmptyTextGivesOneEmptyPiece) {
    Lines parts;
    EXPECT_EQ(sh::split(u"", parts, u','), 1u);
    EXPECT_EQ(parts, Lines{u""});
}

TEST(StringHelperTest, SplitWithoutDelimiterGivesWholeText) {
    Lines parts;
    EXPECT_EQ(sh::split(u"a b", parts, u','), 1u);
    EXPECT_EQ(parts, Lines{u"a b"});
}

TEST(StringHelperTest, SplitGivesEmptyFirstPieceForLeadingDelimiter) {
    Lines parts;
    EXPECT_EQ(sh::split(u";x", parts, u';'), 2u);
    EXPECT_EQ(parts, (Lines{u"", u"x"}));
}

TEST(StringHelperTest, SplitClearsPartsFirst) {
    Lines parts{u"old", u"older", u"oldest"};
    EXPECT_EQ(sh::split(u"new", parts, u','), 1u);
    EXPECT_EQ(parts, Lines{u"new"});
}

// --- SplitLineAtWhitespaces ----------------------------------------------------------------

TEST(StringHelperTest, SplitLineAppendsSingleWordUnchangedAndReturnsEmpty) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"abcdefgh", 5, lines), u"");
    EXPECT_EQ(lines, Lines{u"abcdefgh"});
}

TEST(StringHelperTest, SplitLineReturnsLastLineWithoutAppendingIt) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"one two three", 7, lines), u"three");
    EXPECT_EQ(lines, Lines{u"one two"});
}

TEST(StringHelperTest, SplitLineAppendsToLinesAlreadyThere) {
    Lines lines{u"kept"};
    sh::SplitLineAtWhitespaces(u"one two three", 7, lines);
    EXPECT_EQ(lines, (Lines{u"kept", u"one two"}));
}

// The separating blank is not counted, so a joined line may reach the full width.
TEST(StringHelperTest, SplitLineJoinsWordOnlyWhileLengthsSumBelowWidth) {
    Lines joined;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab cd", 5, joined), u"ab cd");
    EXPECT_TRUE(joined.empty());

    Lines wrapped;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab cd", 4, wrapped), u"cd");
    EXPECT_EQ(wrapped, Lines{u"ab"});
}

TEST(StringHelperTest, SplitLineEmitsEmptyLineBeforeLongFirstWord) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"abcdefgh ij", 5, lines), u"ij");
    EXPECT_EQ(lines, (Lines{u"", u"abcdefgh"}));
}

TEST(StringHelperTest, SplitLinePutsOverlongWordAloneOnItsLine) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab abcdefgh cd", 5, lines), u"cd");
    EXPECT_EQ(lines, (Lines{u"ab", u"abcdefgh"}));
}

TEST(StringHelperTest, SplitLineKeepsRunOfSpacesInsideLine) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab  cd ef", 6, lines), u"ef");
    EXPECT_EQ(lines, Lines{u"ab  cd"});
}

TEST(StringHelperTest, SplitLineDropsSpacesAtStartOfLine) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"  ab cd", 4, lines), u"cd");
    EXPECT_EQ(lines, Lines{u"ab"});
}

TEST(StringHelperTest, SplitLineTrimsSpacesAtEndOfEmittedLine) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab  cdefg", 6, lines), u"cdefg");
    EXPECT_EQ(lines, Lines{u"ab"});
}

TEST(StringHelperTest, SplitLineLeavesReturnedLineUntrimmed) {
    Lines lines;
    EXPECT_EQ(sh::SplitLineAtWhitespaces(u"ab cd ", 4, lines), u"cd ");
    EXPECT_EQ(lines, Lines{u"ab"});
}

// --- splitStringToLines --------------------------------------------------------------------

TEST(StringHelperTest, SplitStringToLinesWrapsGreedily) {
    EXPECT_EQ(sh::splitStringToLines(u"one two three", 7), (Lines{u"one two", u"three"}));
}

TEST(StringHelperTest, SplitStringToLinesEmitsEmptyLineBeforeLongFirstWord) {
    EXPECT_EQ(sh::splitStringToLines(u"abcdefgh ij", 5), (Lines{u"", u"abcdefgh", u"ij"}));
}

TEST(StringHelperTest, SplitStringToLinesKeepsDoubleSpaceInsideWrappedLine) {
    EXPECT_EQ(sh::splitStringToLines(u"ab  cd ef", 6), (Lines{u"ab  cd", u"ef"}));
}

TEST(StringHelperTest, SplitStringToLinesDropsLeadingSpacesOfWrappedLine) {
    EXPECT_EQ(sh::splitStringToLines(u"  ab cd", 4), (Lines{u"ab", u"cd"}));
}

TEST(StringHelperTest, SplitStringToLinesKeepsOverlongSingleWord) {
    EXPECT_EQ(sh::splitStringToLines(u"abcdefgh", 5), Lines{u"abcdefgh"});
}

TEST(StringHelperTest, SplitStringToLinesKeepsEmptyLinesAndTrailingLineFeed) {
    EXPECT_EQ(sh::splitStringToLines(u"a\n\nb\n", 10), (Lines{u"a", u"", u"b", u""}));
}

TEST(StringHelperTest, SplitStringToLinesOfEmptyTextGivesOneEmptyLine) {
    EXPECT_EQ(sh::splitStringToLines(u"", 10), Lines{u""});
}

TEST(StringHelperTest, SplitStringToLinesKeepsLeadingSpacesOfLineThatFits) {
    EXPECT_EQ(sh::splitStringToLines(u"  abc  ", 7), Lines{u"  abc"});
}

// A line of exactly the width fits; one more character sends it through wrapping.
TEST(StringHelperTest, SplitStringToLinesWrapsOnlyLinesLongerThanWidth) {
    EXPECT_EQ(sh::splitStringToLines(u"  abc", 5), Lines{u"  abc"});
    EXPECT_EQ(sh::splitStringToLines(u"  abc", 4), Lines{u"abc"});
}

TEST(StringHelperTest, SplitStringToLinesDropsCarriageReturnOfCrLf) {
    EXPECT_EQ(sh::splitStringToLines(u"ab\r\ncd\r\n", 10), (Lines{u"ab", u"cd", u""}));
}

TEST(StringHelperTest, SplitStringToLinesTrimsLastWrappedLine) {
    EXPECT_EQ(sh::splitStringToLines(u"ab cd ", 4), (Lines{u"ab", u"cd"}));
}

TEST(StringHelperTest, SplitStringToLinesWrapsEachRawLineOnItsOwn) {
    EXPECT_EQ(sh::splitStringToLines(u"one two three\nfour five", 7),
              (Lines{u"one two", u"three", u"four", u"five"}));
}

TEST(StringHelperTest, SplitStringToLinesWithWidthZeroWrapsEveryNonEmptyLine) {
    EXPECT_EQ(sh::splitStringToLines(u"ab cd", 0), (Lines{u"", u"ab", u"cd"}));
    EXPECT_EQ(sh::splitStringToLines(u"a\n\nb c", 0), (Lines{u"a", u"", u"", u"b", u"c"}));
}

}  // namespace
