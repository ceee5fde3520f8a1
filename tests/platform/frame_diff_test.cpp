#include <frontpanelhw/frame_diff.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

using namespace frontpanelhw::drawing;

std::vector<CellPosition> allCells(unsigned chars, unsigned lines) {
    std::vector<CellPosition> cells;
    for (unsigned line = 0; line < lines; ++line) {
        for (unsigned column = 0; column < chars; ++column) {
            cells.push_back(CellPosition{column, line});
        }
    }
    return cells;
}

DisplayBuffer frameWith(std::u16string const& line0, std::u16string const& line1) {
    DisplayBuffer frame(4, 2);
    frame.setLineContent(0, 0, line0);
    frame.setLineContent(1, 0, line1);
    return frame;
}

TEST(FrameDiffTest, FirstFrameChangesEveryCell) {
    EXPECT_EQ(changedCells(std::nullopt, frameWith(u"ab", u"cd")), allCells(4, 2));
}

TEST(FrameDiffTest, UnchangedFrameChangesNothing) {
    DisplayBuffer const frame = frameWith(u"ab", u"cd");
    EXPECT_TRUE(changedCells(frame, frame).empty());
}

TEST(FrameDiffTest, OneChangedCharacterIsTheOnlyChange) {
    EXPECT_EQ(changedCells(frameWith(u"ab", u"cd"), frameWith(u"ab", u"cX")),
              (std::vector<CellPosition>{{1, 1}}));
}

TEST(FrameDiffTest, OneChangedInversionIsTheOnlyChange) {
    DisplayBuffer const previous = frameWith(u"ab", u"cd");
    DisplayBuffer next = previous;
    DisplayLine line = next.getLine(0);
    line.setInverted(2, 2, true);
    next.setDisplayLine(0, line);
    EXPECT_EQ(changedCells(previous, next), (std::vector<CellPosition>{{2, 0}}));
}

TEST(FrameDiffTest, ChangesAreListedLineByLineFromTheLeft) {
    EXPECT_EQ(changedCells(frameWith(u"abcd", u"efgh"), frameWith(u"Xbc", u"YfgZ")),
              (std::vector<CellPosition>{{0, 0}, {3, 0}, {0, 1}, {3, 1}}));
}

TEST(FrameDiffTest, SizeChangeChangesEveryCellOfTheNewFrame) {
    DisplayBuffer const previous(4, 2);
    EXPECT_EQ(changedCells(previous, DisplayBuffer(3, 2)), allCells(3, 2));
    EXPECT_EQ(changedCells(previous, DisplayBuffer(4, 3)), allCells(4, 3));
}

TEST(FrameDiffTest, CellPositionsCompareColumnAndLine) {
    EXPECT_EQ((CellPosition{1, 2}), (CellPosition{1, 2}));
    EXPECT_NE((CellPosition{1, 2}), (CellPosition{2, 1}));
    EXPECT_NE((CellPosition{1, 2}), (CellPosition{1, 3}));
}

}  // namespace
