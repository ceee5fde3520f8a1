#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/testing/frame_text.h>

#include <gtest/gtest.h>

#include "display_lines.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;

TEST(FrameTextTest, DrawsTheLinesInsideAFrame) {
    DisplayBuffer frame(5, 2);
    frame.setLineContent(0, 0, u"ab");
    frame.setLineContent(1, 1, u"xyz");
    EXPECT_EQ(yxfrontpanel::testing::formatFrame(frame),
              "+-----+\n"
              "|ab   |\n"
              "| xyz |\n"
              "+-----+\n");
}

TEST(FrameTextTest, ShowsThePanelGlyphsAsUtf8) {
    DisplayBuffer frame(6, 1);
    frame.setLineContent(0, 0,
                         {char16_t{0x1E}, char16_t{0x1F}, char16_t{0xDB}, char16_t{0xB0},
                          char16_t{0xF8}, char16_t{0xFB}});
    EXPECT_EQ(yxfrontpanel::testing::formatFrame(frame), "+------+\n|▲▼█░°√|\n+------+\n");
}

TEST(FrameTextTest, MarksInvertedColumnsAfterTheLine) {
    DisplayBuffer frame(10, 2);
    frame.setDisplayLine(0, yxfp_test::invertedLine(u"0123456789", 0, 8));
    DisplayLine line = yxfp_test::invertedLine(u"0123456789", 3, 3);
    line.setInverted(6, 8, true);
    frame.setDisplayLine(1, line);
    EXPECT_EQ(yxfrontpanel::testing::formatFrame(frame),
              "+----------+\n"
              "|0123456789| < inverted 0-8\n"
              "|0123456789| < inverted 3, 6-8\n"
              "+----------+\n");
}

TEST(FrameTextTest, InvertedColumnsOfAPlainLineAreEmpty) {
    DisplayBuffer frame(3, 1);
    EXPECT_EQ(yxfrontpanel::testing::invertedColumns(frame, 0), "");
}

}  // namespace
