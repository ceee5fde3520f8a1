#include <frontpanelhw/screen_text.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using frontpanelhw::ColumnRange;
using frontpanelhw::drawing::DisplayBuffer;

DisplayBuffer frameWithInvertedColumns(std::vector<unsigned> const& columns) {
    DisplayBuffer frame(8, 2);
    frame.setLineContent(0, 0, u"abcdefgh");
    auto line = frame.getLine(0);
    for (unsigned const column : columns) {
        line.setInverted(column, column, true);
    }
    frame.setDisplayLine(0, line);
    return frame;
}

// Runs of inverted cells come as first-last ranges, single cells as first == last.
TEST(ScreenTextTest, InvertedRangesGroupRuns) {
    auto const frame = frameWithInvertedColumns({0, 1, 2, 4, 7});
    EXPECT_EQ(frontpanelhw::invertedRanges(frame, 0),
              (std::vector<ColumnRange>{{0, 2}, {4, 4}, {7, 7}}));
    EXPECT_TRUE(frontpanelhw::invertedRanges(frame, 1).empty());
    EXPECT_TRUE(frontpanelhw::invertedRanges(frame, 2).empty());  // no such line
}

// The glyphs of the panel's character set come out as UTF-8.
TEST(ScreenTextTest, LineTextMapsGlyphs) {
    DisplayBuffer frame(4, 1);
    frame.setLineContent(0, 0, u"a\x1e\xdb");
    EXPECT_EQ(frontpanelhw::lineText(frame, 0), "a\u25b2\u2588 ");
    EXPECT_EQ(frontpanelhw::lineText(frame, 1), "");
}

}  // namespace
