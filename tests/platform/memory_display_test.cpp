#include <frontpanelhw/display.h>

#include <gtest/gtest.h>

namespace {

using frontpanelhw::MemoryDisplay;
using frontpanelhw::drawing::DisplayBuffer;

TEST(MemoryDisplayTest, ReportsItsSize) {
    MemoryDisplay display(20, 4);
    EXPECT_EQ(display.getChars(), 20U);
    EXPECT_EQ(display.getLines(), 4U);
}

TEST(MemoryDisplayTest, LastFrameIsBlankBeforeTheFirstDraw) {
    MemoryDisplay display(3, 2);
    EXPECT_EQ(display.getDrawCount(), 0U);
    EXPECT_EQ(display.getLastFrame().getChars(), 3U);
    EXPECT_EQ(display.getLastFrame().getLineCount(), 2U);
    EXPECT_EQ(display.getLastFrame().getLineString(1), u"   ");
}

TEST(MemoryDisplayTest, KeepsACopyOfTheLastFrameAndCountsDraws) {
    MemoryDisplay display(3, 1);
    DisplayBuffer frame(3, 1);
    frame.setLineContent(0, 0, u"one");
    EXPECT_TRUE(display.draw(frame));
    frame.setLineContent(0, 0, u"two");
    EXPECT_EQ(display.getLastFrame().getLineString(0), u"one");
    EXPECT_TRUE(display.draw(frame));
    EXPECT_EQ(display.getLastFrame().getLineString(0), u"two");
    EXPECT_EQ(display.getDrawCount(), 2U);
}

}  // namespace
