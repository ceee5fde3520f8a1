#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <stdexcept>

#include "recording_provider.h"

namespace {

using yxfp_test::padded;
using yxfp_test::RecordingProvider;
using yxfrontpanel::ScrollableLabel;
using yxfrontpanel::drawing::TextAllignment;

constexpr char16_t kUp = 0x1E;
constexpr char16_t kDown = 0x1F;

// Ten short lines "line0".."line9", one per wrapped line.
std::u16string tenLines() {
    std::u16string text;
    for (char digit = '0'; digit <= '9'; ++digit) {
        text += u"line";
        text += static_cast<char16_t>(digit);
        if (digit != '9') {
            text += u'\n';
        }
    }
    return text;
}

// A left-aligned text line of the 19 text columns plus the indicator cell.
std::u16string row(std::u16string const& text, char16_t indicator = u' ') {
    return padded(text, 19) + indicator;
}

class ScrollableLabelTest : public ::testing::Test {
protected:
    /** Gives the view the focus and then `text`. */
    void show(std::u16string const& text, TextAllignment allignment = TextAllignment::Left) {
        view_.setFocus(true);
        view_.setText(text, allignment);
    }

    RecordingProvider provider_{20, 4};
    ScrollableLabel view_{provider_};
};

TEST_F(ScrollableLabelTest, WrapsAtTheWidthLessTheIndicatorColumn) {
    show(u"aaaa bbbb cccc dddd eeee");
    EXPECT_EQ(view_.getLines(), (std::vector<std::u16string>{u"aaaa bbbb cccc dddd", u"eeee"}));
    EXPECT_EQ(provider_.screen(), (std::vector<std::u16string>{row(u"aaaa bbbb cccc dddd"),
                                                               row(u"eeee"), row(u""), row(u"")}));
}

TEST_F(ScrollableLabelTest, CentresEachLineWithinTheTextWidth) {
    show(u"abc", TextAllignment::Center);
    EXPECT_EQ(provider_.line(0), u"        abc         ");
}

TEST_F(ScrollableLabelTest, TextThatFitsHasNoIndicatorAndDoesNotScroll) {
    show(u"1\n2\n3\n4");
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{row(u"1"), row(u"2"), row(u"3"), row(u"4")}));
    std::size_t const draws = provider_.drawCount();
    view_.moveDown();
    EXPECT_EQ(view_.getFirstLine(), 0U);
    EXPECT_EQ(provider_.drawCount(), draws);
}

TEST_F(ScrollableLabelTest, TenLinesScrollToTheLastWithIndicators) {
    show(tenLines());
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{row(u"line0"), row(u"line1"), row(u"line2"),
                                           row(u"line3", kDown)}));
    for (int i = 0; i < 6; ++i) {
        view_.moveDown();
    }
    EXPECT_EQ(view_.getFirstLine(), 6U);
    EXPECT_EQ(provider_.screen(), (std::vector<std::u16string>{row(u"line6", kUp), row(u"line7"),
                                                               row(u"line8"), row(u"line9")}));
    std::size_t const draws = provider_.drawCount();
    view_.moveDown();
    EXPECT_EQ(view_.getFirstLine(), 6U);
    EXPECT_EQ(provider_.drawCount(), draws);
}

TEST_F(ScrollableLabelTest, BothIndicatorsWhileInTheMiddleAndNeverInverted) {
    show(tenLines());
    view_.moveDown();
    EXPECT_EQ(provider_.line(0), row(u"line1", kUp));
    EXPECT_EQ(provider_.line(3), row(u"line4", kDown));
    EXPECT_EQ(provider_.inversion(0), std::string(20, '.'));
    EXPECT_EQ(provider_.inversion(3), std::string(20, '.'));
}

TEST_F(ScrollableLabelTest, MoveUpAtTheTopNeitherChangesNorRedraws) {
    show(tenLines());
    std::size_t const draws = provider_.drawCount();
    view_.moveUp();
    EXPECT_EQ(view_.getFirstLine(), 0U);
    EXPECT_EQ(provider_.drawCount(), draws);
}

TEST_F(ScrollableLabelTest, MoveUpScrollsBackAndRedrawsOnce) {
    show(tenLines());
    view_.moveDown();
    view_.moveDown();
    std::size_t const draws = provider_.drawCount();
    view_.moveUp();
    EXPECT_EQ(view_.getFirstLine(), 1U);
    EXPECT_EQ(provider_.drawCount(), draws + 1);
    EXPECT_EQ(provider_.line(0), row(u"line1", kUp));
}

TEST_F(ScrollableLabelTest, LinesBelowAShortTextAreBlank) {
    show(u"only");
    EXPECT_EQ(provider_.line(1), row(u""));
    EXPECT_EQ(provider_.line(3), row(u""));
}

TEST_F(ScrollableLabelTest, EmptyTextIsOneBlankLine) {
    show(u"");
    EXPECT_EQ(view_.getLines(), std::vector<std::u16string>{u""});
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.line(0), row(u""));
}

TEST_F(ScrollableLabelTest, OverlongWordFollowsTheLabelRules) {
    show(u"abcdefghijklmnopqrstuvwxyz", TextAllignment::Center);
    EXPECT_EQ(view_.getLines(), std::vector<std::u16string>{u"abcdefghijklmnopqrstuvwxyz"});
    EXPECT_EQ(provider_.line(0), row(u"")) << "a centred over-long line shows nothing";
    view_.setText(u"abcdefghijklmnopqrstuvwxyz", TextAllignment::Left);
    EXPECT_EQ(provider_.line(0), row(u"abcdefghijklmnopqrs")) << "a left one is cut";
}

TEST_F(ScrollableLabelTest, WithoutFocusNothingIsDrawnButStateChanges) {
    view_.setText(tenLines(), TextAllignment::Left);
    view_.moveDown();
    EXPECT_EQ(view_.getFirstLine(), 1U);
    EXPECT_EQ(provider_.drawCount(), 0U);
    view_.setFocus(true);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.line(0), row(u"line1", kUp));
}

TEST_F(ScrollableLabelTest, LosingFocusDoesNotClearOrDraw) {
    show(u"kept");
    std::size_t const draws = provider_.drawCount();
    view_.setFocus(false);
    EXPECT_FALSE(view_.getFocus());
    EXPECT_EQ(provider_.drawCount(), draws);
    EXPECT_EQ(provider_.line(0), row(u"kept"));
}

TEST_F(ScrollableLabelTest, GainingFocusBeforeAnyTextDrawsNothing) {
    view_.setFocus(true);
    EXPECT_TRUE(view_.getFocus());
    EXPECT_EQ(provider_.drawCount(), 0U);
}

TEST_F(ScrollableLabelTest, SetTextKeepsTheScrollPosition) {
    show(tenLines());
    view_.moveDown();
    view_.moveDown();
    view_.setText(tenLines(), TextAllignment::Right);
    EXPECT_EQ(view_.getFirstLine(), 2U);
    EXPECT_EQ(provider_.line(0), padded(u"", 14) + u"line2" + kUp);
}

TEST_F(ScrollableLabelTest, ShorterTextWhileScrolledThrowsFromTheCheckedAccess) {
    show(tenLines());
    for (int i = 0; i < 6; ++i) {
        view_.moveDown();
    }
    try {
        view_.setText(u"a\nb", TextAllignment::Left);
        FAIL() << "expected std::out_of_range";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(),
                     "vector::_M_range_check: __n (which is 6) >= this->size() (which is 2)");
    }
}

TEST(ScrollableLabelOneLineTest, DownArrowWinsOnAOneLinePanel) {
    RecordingProvider provider(8, 1);
    ScrollableLabel view(provider);
    view.setFocus(true);
    view.setText(u"a\nb\nc", TextAllignment::Left);
    EXPECT_EQ(provider.line(0), padded(u"a", 7) + kDown);
    view.moveDown();
    EXPECT_EQ(provider.line(0), padded(u"b", 7) + kDown) << "hidden above and below";
    view.moveDown();
    EXPECT_EQ(provider.line(0), padded(u"c", 7) + kUp);
}

TEST(ScrollableLabelAddScrollbarTest, PadsAShortLineBeforeWritingTheIndicator) {
    RecordingProvider provider(5, 2);
    ScrollableLabel view(provider);
    frontpanelhw::drawing::DisplayLine line;
    line.setLine(u"ab");
    view.addScrollbar(line, 0);
    EXPECT_EQ(line.getString(), u"ab   ");
}

TEST_F(ScrollableLabelTest, GainingTheFocusAgainRedraws) {
    show(u"text");
    view_.setFocus(true);
    EXPECT_EQ(provider_.drawCount(), 2U);
}

TEST(ScrollableLabelPanelTest, TwentyOneColumnsWrapAtTwenty) {
    RecordingProvider provider(21, 4);
    ScrollableLabel view(provider);
    view.setFocus(true);
    view.setText(u"aaaa bbbb cccc ddddd eeee", TextAllignment::Left);
    EXPECT_EQ(view.getLines(), (std::vector<std::u16string>{u"aaaa bbbb cccc ddddd", u"eeee"}));
    EXPECT_EQ(provider.line(0), u"aaaa bbbb cccc ddddd ");
}

TEST(ScrollableLabelPanelTest, PanelWithoutLinesNeverDraws) {
    RecordingProvider provider(20, 0);
    ScrollableLabel view(provider);
    view.setFocus(true);
    view.setText(u"a\nb", TextAllignment::Left);
    view.moveDown();  // no line is visible, so every text line counts as hidden below
    EXPECT_EQ(view.getFirstLine(), 1U);
    view.moveUp();
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(ScrollableLabelPanelTest, PanelWithoutColumnsKeepsTheIndicatorColumn) {
    RecordingProvider provider(0, 2);
    ScrollableLabel view(provider);
    view.setFocus(true);
    view.setText(u"a b\nc", TextAllignment::Left);
    ASSERT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.lastFrame().getChars(), 1U);
    EXPECT_EQ(provider.screen(), (std::vector<std::u16string>{u" ", std::u16string(1, kDown)}));
}

}  // namespace
