#include <frontpanelhw/display_types.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

#include "display_lines.h"
#include "recording_provider.h"

namespace {

using namespace frontpanelhw::drawing;
using yxfp_test::inversionOf;
using yxfp_test::invertedLine;

TEST(DisplayCharTest, ComparesCharacterAndInversion) {
    EXPECT_EQ((DisplayChar{u'A', false}), (DisplayChar{u'A', false}));
    EXPECT_NE((DisplayChar{u'A', false}), (DisplayChar{u'A', true}));
    EXPECT_NE((DisplayChar{u'A', false}), (DisplayChar{u'B', false}));
}

TEST(DisplayLineTest, StartsEmpty) {
    DisplayLine line;
    EXPECT_EQ(line.size(), 0U);
    EXPECT_EQ(line.getString(), u"");
}

TEST(DisplayLineTest, AddCharacterAppends) {
    DisplayLine line;
    line.addCharacter(DisplayChar{u'a', false});
    line.addCharacter(DisplayChar{u'b', true});
    EXPECT_EQ(line.getString(), u"ab");
    EXPECT_EQ(inversionOf(line), ".#");
}

TEST(DisplayLineTest, SetLineReplacesCellsWithoutInversion) {
    DisplayLine line;
    line.addCharacter(DisplayChar{u'x', true});
    line.setLine(u"hello");
    EXPECT_EQ(line.getString(), u"hello");
    EXPECT_EQ(inversionOf(line), ".....");
}

TEST(DisplayLineTest, SetCharacterReplacesOneCellAndChecksTheIndex) {
    DisplayLine line;
    line.setLine(u"abc");
    line.setCharacter(1, DisplayChar{u'X', true});
    EXPECT_EQ(line.getString(), u"aXc");
    EXPECT_EQ(inversionOf(line), ".#.");
    EXPECT_THROW(line.setCharacter(3, DisplayChar{u'Y', false}), std::out_of_range);
    EXPECT_THROW((void)line.getCharacter(3), std::out_of_range);
    EXPECT_EQ(line.getCharacter(2), (DisplayChar{u'c', false}));
}

TEST(DisplayLineTest, SetInvertedCoversBothEndsAndClips) {
    DisplayLine line;
    line.setLine(u"abcdef");
    line.setInverted(1, 3, true);
    EXPECT_EQ(inversionOf(line), ".###..");
    line.setInverted(4, 100, true);
    EXPECT_EQ(inversionOf(line), ".#####");
    line.setInverted(0, 5, false);
    EXPECT_EQ(inversionOf(line), "......");
}

TEST(DisplayLineTest, SetInvertedWithFirstAfterLastChangesNothing) {
    DisplayLine line;
    line.setLine(u"abc");
    line.setInverted(2, 1, true);
    EXPECT_EQ(inversionOf(line), "...");
}

TEST(DisplayLineTest, SetInvertedOnEmptyLineWithWrappedLastIsHarmless) {
    DisplayLine line;
    line.setInverted(0, std::numeric_limits<unsigned>::max(), true);
    EXPECT_EQ(line.size(), 0U);
}

TEST(DisplayBufferTest, StartsBlankAndNotInverted) {
    DisplayBuffer buffer(5, 2);
    EXPECT_EQ(buffer.getChars(), 5U);
    EXPECT_EQ(buffer.getLineCount(), 2U);
    EXPECT_EQ(buffer.getLineString(0), u"     ");
    EXPECT_EQ(inversionOf(buffer, 1), ".....");
}

// More cells than the address space holds is refused, also where size_t has 32 bits and the
// cell count would otherwise wrap around to a small buffer behind large dimensions.
TEST(DisplayBufferTest, DimensionsBeyondTheAddressSpaceThrowLengthError) {
    unsigned const most = std::numeric_limits<unsigned>::max();
    EXPECT_THROW(DisplayBuffer(most, most), std::length_error);
}

TEST(DisplayBufferTest, SetLineContentClipsAtRightEdge) {
    DisplayBuffer buffer(5, 1);
    buffer.setLineContent(0, 0, u"-----");
    buffer.setLineContent(0, 3, u"abc");
    EXPECT_EQ(buffer.getLineString(0), u"---ab");
}

TEST(DisplayBufferTest, SetLineContentIgnoresColumnsPastTheWidth) {
    DisplayBuffer buffer(4, 1);
    buffer.setLineContent(0, 0, u"----");
    for (unsigned column : {4U, 5U, std::numeric_limits<unsigned>::max()}) {
        buffer.setLineContent(0, column, u"x");
        EXPECT_EQ(buffer.getLineString(0), u"----") << "column=" << column;
    }
}

TEST(DisplayBufferTest, SetLineContentIgnoresLinesPastTheLast) {
    DisplayBuffer buffer(3, 1);
    buffer.setLineContent(1, 0, u"abc");
    buffer.setLineContent(std::numeric_limits<unsigned>::max(), 0, u"abc");
    EXPECT_EQ(buffer.getLineString(0), u"   ");
}

TEST(DisplayBufferTest, SetLineContentLeavesInversionUntouched) {
    DisplayBuffer buffer(4, 1);
    buffer.setDisplayLine(0, invertedLine(u"abcd", 0, 3));
    buffer.setLineContent(0, 1, u"XY");
    EXPECT_EQ(buffer.getLineString(0), u"aXYd");
    EXPECT_EQ(inversionOf(buffer, 0), "####");
}

TEST(DisplayBufferTest, SetDisplayLinePadsShortLinesWithBlankCells) {
    DisplayBuffer buffer(5, 1);
    buffer.setLineContent(0, 0, u"xxxxx");
    DisplayLine line;
    line.addCharacter(DisplayChar{u'a', true});
    buffer.setDisplayLine(0, line);
    EXPECT_EQ(buffer.getLineString(0), u"a    ");
    EXPECT_EQ(inversionOf(buffer, 0), "#....");
    EXPECT_EQ(buffer.getLine(0).size(), 5U);
}

TEST(DisplayBufferTest, SetDisplayLineCutsLongLinesAndIgnoresLinesPastTheLast) {
    DisplayBuffer buffer(3, 1);
    DisplayLine line;
    line.setLine(u"abcdef");
    buffer.setDisplayLine(1, line);
    EXPECT_EQ(buffer.getLineString(0), u"   ");
    buffer.setDisplayLine(0, line);
    EXPECT_EQ(buffer.getLineString(0), u"abc");
}

TEST(DisplayBufferTest, LineAccessPastTheLastThrows) {
    DisplayBuffer buffer(3, 2);
    EXPECT_THROW((void)buffer.getLine(2), std::out_of_range);
    EXPECT_THROW((void)buffer.getLineString(2), std::out_of_range);
    EXPECT_THROW((void)buffer.getCell(3, 0), std::out_of_range);
}

TEST(DisplayBufferTest, ClearBlanksEveryCellAndKeepsTheSize) {
    DisplayBuffer buffer(3, 2);
    buffer.setDisplayLine(1, invertedLine(u"abc", 0, 2));
    buffer.clear();
    EXPECT_EQ(buffer.getLineString(1), u"   ");
    EXPECT_EQ(inversionOf(buffer, 1), "...");
    EXPECT_EQ(buffer.getChars(), 3U);
    EXPECT_EQ(buffer.getLineCount(), 2U);
}

TEST(DisplayBufferTest, CopiesAreIndependent) {
    DisplayBuffer original(3, 1);
    DisplayBuffer copy = original;
    copy.setLineContent(0, 0, u"abc");
    EXPECT_EQ(original.getLineString(0), u"   ");
    EXPECT_EQ(copy.getLineString(0), u"abc");
}

TEST(DisplayBufferTest, ZeroSizedBufferIsHarmless) {
    DisplayBuffer buffer(0, 0);
    buffer.clear();
    buffer.setLineContent(0, 0, u"abc");
    EXPECT_EQ(buffer.getLineCount(), 0U);
    EXPECT_THROW((void)buffer.getLine(0), std::out_of_range);
}

}  // namespace
