#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include "bar_cells.h"
#include "recording_provider.h"

namespace {

using yxfrontpanel::PowerWidget;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;

TEST(PowerWidgetTest, LaysOutSymbolBarAndRightAlignedReading) {
    PowerWidget widget(Point{0, 3}, 8, 6, 0, 8, u'P', u"5 W");
    EXPECT_EQ(widget.getSize(), (Rectangle{15, 1}));
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(0, 8) + u"   5 W");
    EXPECT_EQ(widget.getBuffer().getLineString(0), widget.getText());
}

TEST(PowerWidgetTest, SetValueMovesTheBarAndTheReading) {
    PowerWidget widget(Point{0, 0}, 8, 6, 0, 8, u'P', u"");
    widget.setValue(4, u"12.5W");
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(4, 8) + u" 12.5W");
    widget.setValue(8, u"max");
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(8, 8) + u"   max");
}

TEST(PowerWidgetTest, EmptyReadingLeavesTheTextColumnsBlank) {
    PowerWidget widget(Point{0, 0}, 4, 3, 0, 4, char16_t{0x0F}, u"");
    EXPECT_EQ(widget.getText(),
              std::u16string(1, char16_t{0x0F}) + yxfp_test::barCells(0, 4) + u"   ");
}

TEST(PowerWidgetTest, SetMaxShowsOnlyFromTheNextSetValue) {
    PowerWidget widget(Point{0, 0}, 8, 6, 0, 8, u'P', u"");
    widget.setValue(4, u"a");
    std::u16string const before = widget.getText();
    widget.setMax(16);
    EXPECT_EQ(widget.getBar().getMax(), 16);
    EXPECT_EQ(widget.getText(), before);
    widget.setValue(4, u"a");
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(2, 8) + u"     a");
}

TEST(PowerWidgetTest, OverlongReadingIsDroppedByTheRightAlignedLabel) {
    PowerWidget widget(Point{0, 0}, 4, 3, 0, 4, u'P', u"toolong");
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(0, 4) + u"   ");
}

TEST(PowerWidgetTest, BarFollowsItsOwnRangeAndClamps) {
    PowerWidget widget(Point{0, 0}, 10, 4, 10, 20, u'P', u"");
    widget.setValue(15, u"15");
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(5, 10) + u"  15");
    widget.setValue(99, u"99");
    EXPECT_EQ(widget.getBar().getValue(), 20);
    EXPECT_EQ(widget.getText(), u"P" + yxfp_test::barCells(10, 10) + u"  99");
}

TEST(PowerWidgetTest, ShowsItsComposedLineOnAForm) {
    yxfp_test::RecordingProvider provider(20, 4);
    yxfrontpanel::Form form(provider);
    PowerWidget widget(Point{2, 1}, 8, 6, 0, 8, u'P', u"1 W");
    form.addControl(&widget);
    form.setFocus(true);
    EXPECT_EQ(provider.line(1), u"  P" + yxfp_test::barCells(0, 8) + u"   1 W   ");
    widget.setValue(8, u"8 W");
    EXPECT_EQ(provider.line(1), u"  P" + yxfp_test::barCells(8, 8) + u"   8 W   ");
    EXPECT_EQ(provider.drawCount(), 2U);
}

}  // namespace
