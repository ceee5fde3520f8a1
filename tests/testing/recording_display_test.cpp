#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/testing/recording_display.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using yxfrontpanel::testing::RecordingDisplay;

DisplayBuffer frameShowing(std::u16string const& text) {
    DisplayBuffer frame(4, 2);
    frame.setLineContent(0, 0, text);
    return frame;
}

TEST(RecordingDisplayTest, BeforeTheFirstDrawShowsABlankPanelOfItsSize) {
    RecordingDisplay const display(4, 2);
    EXPECT_EQ(display.getChars(), 4U);
    EXPECT_EQ(display.getLines(), 2U);
    EXPECT_EQ(display.drawCount(), 0U);
    EXPECT_EQ(display.screen(), (std::vector<std::u16string>{u"    ", u"    "}));
}

TEST(RecordingDisplayTest, KeepsEveryFrameInOrder) {
    RecordingDisplay display(4, 2);
    yxfrontpanel::IDrawingProvider const& provider = display;
    EXPECT_TRUE(provider.draw(frameShowing(u"one")));
    EXPECT_TRUE(provider.draw(frameShowing(u"two")));
    ASSERT_EQ(display.drawCount(), 2U);
    EXPECT_EQ(display.frames()[0].getLineString(0), u"one ");
    EXPECT_EQ(display.line(0), u"two ");
    EXPECT_EQ(display.text(), "+----+\n|two |\n|    |\n+----+\n");
}

TEST(RecordingDisplayTest, DisabledProviderRefusesFramesAndKeepsNone) {
    RecordingDisplay display(4, 2);
    display.enableDrawing(false);
    yxfrontpanel::IDrawingProvider const& provider = display;
    EXPECT_FALSE(provider.draw(frameShowing(u"lost")));
    EXPECT_EQ(display.drawCount(), 0U);
    display.enableDrawing(true);
    EXPECT_TRUE(provider.draw(frameShowing(u"kept")));
    EXPECT_EQ(display.line(0), u"kept");
}

TEST(RecordingDisplayTest, WorksAsTheDeviceBehindADrawingProvider) {
    RecordingDisplay display(4, 2);
    yxfrontpanel::DrawingProvider provider(display);
    EXPECT_EQ(provider.getChars(), 4U);
    EXPECT_TRUE(provider.draw(frameShowing(u"dev")));
    EXPECT_EQ(display.drawCount(), 1U);
    EXPECT_EQ(display.line(0), u"dev ");
}

TEST(RecordingDisplayTest, InversionMarksEachCell) {
    RecordingDisplay display(4, 2);
    frontpanelhw::drawing::DisplayLine line;
    line.setLine(u"abcd");
    line.setInverted(1, 2, true);
    DisplayBuffer frame(4, 2);
    frame.setDisplayLine(1, line);
    static_cast<yxfrontpanel::IDrawingProvider&>(display).draw(frame);
    EXPECT_EQ(display.inversion(0), "....");
    EXPECT_EQ(display.inversion(1), ".##.");
    EXPECT_THROW((void)display.inversion(2), std::out_of_range);
}

TEST(RecordingDisplayTest, ResetForgetsTheFramesAndTheCount) {
    RecordingDisplay display(4, 2);
    static_cast<yxfrontpanel::IDrawingProvider&>(display).draw(frameShowing(u"old"));
    display.reset();
    EXPECT_EQ(display.drawCount(), 0U);
    EXPECT_EQ(display.line(0), u"    ");
}

}  // namespace
