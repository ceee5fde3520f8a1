#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <initializer_list>
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

/** Each test has a 20 x 4 panel and a form on it. */
class FormTest : public ::testing::Test {
protected:
    /** Adds `controls` in order, each accepted, and gives the form the focus. */
    void show(std::initializer_list<Control*> controls) {
        for (Control* control : controls) {
            EXPECT_TRUE(form.addControl(control));
        }
        form.setFocus(true);
    }

    RecordingProvider provider{kChars, kLines};
    Form form{provider};
};

std::vector<std::u16string> blankScreen() {
    return std::vector<std::u16string>(kLines, padded(u"", kChars));
}

TEST_F(FormTest, ConstructorDrawsNothingAndSizesTheBufferFromTheProvider) {
    RecordingProvider small(17, 3);
    Form sized(small);
    EXPECT_FALSE(sized.getFocus());
    EXPECT_EQ(small.drawCount(), 0U);
    EXPECT_EQ(sized.getDisplayBuffer().getChars(), 17U);
    EXPECT_EQ(sized.getDisplayBuffer().getLineCount(), 3U);
}

TEST_F(FormTest, DrawWithoutFocusDoesNotReachTheProvider) {
    Label label(Point{0, 0}, 5, u"abc");
    form.addControl(&label);
    form.draw();
    label.setText(u"xyz");
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST_F(FormTest, FirstSetFocusTrueDrawsExactlyOnce) {
    form.setFocus(true);
    EXPECT_TRUE(form.getFocus());
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST_F(FormTest, SetFocusTrueTwiceDrawsOnce) {
    form.setFocus(true);
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 1U);
}

TEST_F(FormTest, SetFocusFalseNeverDraws) {
    form.setFocus(false);
    EXPECT_EQ(provider.drawCount(), 0U);
    form.setFocus(true);
    form.setFocus(false);
    EXPECT_FALSE(form.getFocus());
    EXPECT_EQ(provider.drawCount(), 1U);
}

TEST_F(FormTest, RegainingTheFocusDrawsAgain) {
    form.setFocus(true);
    form.setFocus(false);
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 2U);
}

TEST_F(FormTest, AddControlRefusesNullAndChangesNothing) {
    EXPECT_FALSE(form.addControl(nullptr));
    form.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST_F(FormTest, ControlTextAppearsAtItsLocation) {
    Label first(Point{2, 1}, 6, u"abc");
    Label second(Point{0, 3}, 20, u"last line");
    show({&first, &second});
    EXPECT_EQ(provider.screen(),
              (std::vector<std::u16string>{padded(u"", kChars), padded(u"  abc", kChars),
                                           padded(u"", kChars), padded(u"last line", kChars)}));
}

TEST_F(FormTest, ChangingAFocusedControlRedrawsTheFormOnce) {
    Label label(Point{1, 0}, 8, u"old text");
    show({&label});
    provider.reset();
    label.setText(u"new");
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.line(0), padded(u" new", kChars));
}

TEST_F(FormTest, RedrawClearsWhatAControlNoLongerShows) {
    Label label(Point{0, 2}, 10, u"0123456789");
    show({&label});
    label.setText(u"ab");
    EXPECT_EQ(provider.line(2), padded(u"ab", kChars));
}

TEST_F(FormTest, InvisibleControlLeavesBlankCells) {
    Label background(Point{0, 1}, 20, u"####################");
    Label hidden(Point{4, 2}, 6, u"hidden");
    show({&background, &hidden});
    EXPECT_EQ(provider.line(2), padded(u"    hidden", kChars));
    provider.reset();
    hidden.setVisible(false);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.line(1), u"####################");
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
    form.draw();
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
}

TEST_F(FormTest, InversionOfAControlIsNotCarriedOver) {
    PaintedControl control(Point{3, 1}, Rectangle{4, 1});
    control.paint(u"wxyz", "####", u"");
    ASSERT_EQ(yxfp_test::inversionOf(control.getBuffer(), 0), "####");
    show({&control});
    EXPECT_EQ(provider.line(1), padded(u"   wxyz", kChars));
    EXPECT_EQ(provider.inversion(1), std::string(kChars, '.'));
}

TEST_F(FormTest, OnlyTheFirstLineOfAControlIsShown) {
    PaintedControl control(Point{0, 1}, Rectangle{5, 2});
    control.paint(u"top", "", u"below");
    show({&control});
    EXPECT_EQ(provider.line(1), padded(u"top", kChars));
    EXPECT_EQ(provider.line(2), padded(u"", kChars));
}

TEST_F(FormTest, ControlWithoutLinesShowsNothingAndDoesNotFail) {
    PaintedControl control(Point{0, 0}, Rectangle{5, 0});
    form.addControl(&control);
    EXPECT_NO_THROW(form.setFocus(true));
    EXPECT_EQ(provider.screen(), blankScreen());
}

TEST_F(FormTest, LaterControlsOverwriteEarlierOnes) {
    Label under(Point{0, 0}, 8, u"aaaaaaaa");
    Label over(Point{2, 0}, 3, u"bbb");
    show({&under, &over});
    EXPECT_EQ(provider.line(0), padded(u"aabbbaaa", kChars));
}

TEST_F(FormTest, ControlAddedTwiceIsDrawnTwice) {
    PaintedControl control(Point{0, 0}, Rectangle{3, 1});
    control.paint(u"abc", "", u"");
    show({&control, &control});
    EXPECT_EQ(control.draws, 2);
    EXPECT_EQ(provider.line(0), padded(u"abc", kChars));
}

TEST_F(FormTest, FormDrawDoesNotAskControlsToRedrawTheirParent) {
    Label label(Point{0, 0}, 3, u"abc");
    show({&label});
    form.draw();
    // One frame per form draw: a control asking for a parent redraw would add more.
    EXPECT_EQ(provider.drawCount(), 2U);
}

TEST_F(FormTest, DestroyingAFormLeavesItsControlsUntouched) {
    Label label(Point{2, 1}, 6, u"keep");
    label.setTextAllignment(yxfrontpanel::drawing::TextAllignment::Right);
    {
        Form scoped(provider);
        scoped.addControl(&label);
        scoped.setFocus(true);
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
