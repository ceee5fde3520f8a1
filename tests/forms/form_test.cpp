#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using frontpanelhw::drawing::DisplayChar;
using frontpanelhw::drawing::DisplayLine;
using namespace yxfp_test;
using namespace yxfrontpanel;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;

// A control that paints its cells itself: `text` on line 0 with the cells in `inverted` marked
// inverted, and `below` on line 1 (a line a form never shows). Counts its draws.
class PaintedControl : public Control {
public:
    PaintedControl(Point location, Rectangle size) : Control(location, size) {}

    void paint(std::u16string const& text, std::string const& inverted,
               std::u16string const& below) {
        DisplayLine line;
        for (std::size_t i = 0; i < text.size(); ++i) {
            line.addCharacter(DisplayChar{text[i], i < inverted.size() && inverted[i] == '#'});
        }
        buffer().setDisplayLine(0, line);
        if (buffer().getLineCount() > 1) {
            buffer().setLineContent(1, 0, below);
        }
    }

    void draw(bool redrawParent) override {
        ++draws;
        Control::draw(redrawParent);
    }

    int draws = 0;
};

std::vector<std::u16string> blankScreen() {
    return std::vector<std::u16string>(kLines, padded(u"", kChars));
}

TEST(FormTest, ConstructorDrawsNothingAndSizesTheBufferFromTheProvider) {
    RecordingProvider provider(17, 3);
    Form form(provider);
    EXPECT_FALSE(form.getFocus());
    EXPECT_EQ(provider.drawCount(), 0U);
    EXPECT_EQ(form.getDisplayBuffer().getChars(), 17U);
    EXPECT_EQ(form.getDisplayBuffer().getLineCount(), 3U);
}

TEST(FormTest, DrawWithoutFocusDoesNotReachTheProvider) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label label(Point{0, 0}, 5, u"abc");
    form.addControl(&label);
    form.draw();
    label.setText(u"xyz");
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(FormTest, FirstSetFocusTrueDrawsExactlyOnce) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    form.setFocus(true);
    EXPECT_TRUE(form.getFocus());
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST(FormTest, SetFocusTrueTwiceDrawsOnce) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    form.setFocus(true);
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 1U);
}

TEST(FormTest, SetFocusFalseNeverDraws) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    form.setFocus(false);
    EXPECT_EQ(provider.drawCount(), 0U);
    form.setFocus(true);
    form.setFocus(false);
    EXPECT_FALSE(form.getFocus());
    EXPECT_EQ(provider.drawCount(), 1U);
}

TEST(FormTest, RegainingTheFocusDrawsAgain) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    form.setFocus(true);
    form.setFocus(false);
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 2U);
}

TEST(FormTest, AddControlRefusesNullAndChangesNothing) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    EXPECT_FALSE(form.addControl(nullptr));
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST(FormTest, ControlTextAppearsAtItsLocation) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label first(Point{2, 1}, 6, u"abc");
    Label second(Point{0, 3}, 20, u"last line");
    EXPECT_TRUE(form.addControl(&first));
    EXPECT_TRUE(form.addControl(&second));
    form.setFocus(true);
    EXPECT_EQ(provider.screen(),
              (std::vector<std::u16string>{padded(u"", kChars), padded(u"  abc", kChars),
                                           padded(u"", kChars), padded(u"last line", kChars)}));
}

TEST(FormTest, ChangingAFocusedControlRedrawsTheFormOnce) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label label(Point{1, 0}, 8, u"old text");
    form.addControl(&label);
    form.setFocus(true);
    provider.reset();
    label.setText(u"new");
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.line(0), padded(u" new", kChars));
}

TEST(FormTest, RedrawClearsWhatAControlNoLongerShows) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label label(Point{0, 2}, 10, u"0123456789");
    form.addControl(&label);
    form.setFocus(true);
    label.setText(u"ab");
    EXPECT_EQ(provider.line(2), padded(u"ab", kChars));
}

TEST(FormTest, InvisibleControlLeavesBlankCells) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label background(Point{0, 1}, 20, u"####################");
    Label hidden(Point{4, 2}, 6, u"hidden");
    form.addControl(&background);
    form.addControl(&hidden);
    form.setFocus(true);
    EXPECT_EQ(provider.line(2), padded(u"    hidden", kChars));
    provider.reset();
    hidden.setVisible(false);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.line(1), u"####################");
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
    form.draw();
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
}

TEST(FormTest, InversionOfAControlIsNotCarriedOver) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    PaintedControl control(Point{3, 1}, Rectangle{4, 1});
    control.paint(u"wxyz", "####", u"");
    ASSERT_EQ(yxfp_test::inversionOf(control.getBuffer(), 0), "####");
    form.addControl(&control);
    form.setFocus(true);
    EXPECT_EQ(provider.line(1), padded(u"   wxyz", kChars));
    EXPECT_EQ(provider.inversion(1), std::string(kChars, '.'));
}

TEST(FormTest, OnlyTheFirstLineOfAControlIsShown) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    PaintedControl control(Point{0, 1}, Rectangle{5, 2});
    control.paint(u"top", "", u"below");
    form.addControl(&control);
    form.setFocus(true);
    EXPECT_EQ(provider.line(1), padded(u"top", kChars));
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
}

TEST(FormTest, ControlWithoutLinesShowsNothingAndDoesNotFail) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    PaintedControl control(Point{0, 0}, Rectangle{5, 0});
    form.addControl(&control);
    EXPECT_NO_THROW(form.setFocus(true));
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST(FormTest, LaterControlsOverwriteEarlierOnes) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label under(Point{0, 0}, 8, u"aaaaaaaa");
    Label over(Point{2, 0}, 3, u"bbb");
    form.addControl(&under);
    form.addControl(&over);
    form.setFocus(true);
    EXPECT_EQ(provider.line(0), padded(u"aabbbaaa", kChars));
}

TEST(FormTest, ControlAddedTwiceIsDrawnTwice) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    PaintedControl control(Point{0, 0}, Rectangle{3, 1});
    control.paint(u"abc", "", u"");
    EXPECT_TRUE(form.addControl(&control));
    EXPECT_TRUE(form.addControl(&control));
    form.setFocus(true);
    EXPECT_EQ(control.draws, 2);
    EXPECT_EQ(provider.line(0), padded(u"abc", kChars));
}

TEST(FormTest, FormDrawDoesNotAskControlsToRedrawTheirParent) {
    RecordingProvider provider(kChars, kLines);
    Form form(provider);
    Label label(Point{0, 0}, 3, u"abc");
    form.addControl(&label);
    form.setFocus(true);
    form.draw();
    // One frame per form draw: a control asking for a parent redraw would add more.
    EXPECT_EQ(provider.drawCount(), 2U);
}

TEST(FormTest, DestroyingAFormLeavesItsControlsUntouched) {
    RecordingProvider provider(kChars, kLines);
    Label label(Point{2, 1}, 6, u"keep");
    label.setTextAllignment(yxfrontpanel::drawing::TextAllignment::Right);
    {
        Form form(provider);
        form.addControl(&label);
        form.setFocus(true);
    }
    EXPECT_EQ(label.getText(), u"keep");
    EXPECT_TRUE(label.getVisible());
    EXPECT_EQ(label.getLocation(), (Point{2, 1}));
    EXPECT_EQ(label.getSize(), (Rectangle{6, 1}));
    EXPECT_EQ(label.getBuffer().getLineString(0), u"  keep");
    std::size_t const draws = provider.drawCount();
    // The control outlives the form: its callbacks now do nothing.
    label.setText(u"later");
    label.setVisible(false);
    EXPECT_EQ(provider.drawCount(), draws);
    EXPECT_EQ(label.getBuffer().getLineString(0), u" later");
}

}  // namespace
