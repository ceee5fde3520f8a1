#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>
#include <vector>

#include "bar_cells.h"
#include "item_screens.h"
#include "recording_provider.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

// `text` right-aligned in `width` columns.
std::u16string right(std::u16string const& text, std::size_t width) {
    return std::u16string(width - text.size(), u' ') + text;
}

// Catches the exception a slider constructor throws and returns its text ("" when none).
template <class Make>
std::string constructionError(Make make) {
    try {
        make();
    } catch (std::out_of_range const& error) {
        return error.what();
    }
    return "";
}

// A 20x4 panel with a slider of caption width 5 and bar width 10 from 0 ("Val:n" fits the
// five caption columns).
class SliderTest : public ::testing::Test {
protected:
    // The three slider lines for shown value `shown` (arrow at `arrow`) and value text `val`.
    Screen screen(unsigned filled, int arrow, std::u16string const& val) const {
        return {u"    >> Volume <<    ", u" Min " + barCells(filled, 10) + u" Max ",
                u"     " + scaleRow(10, arrow) + right(val, 5), padded(u"", 20)};
    }

    RecordingProvider provider_{20, 4};
    Slider slider_{provider_, u"Volume", u"Min", u"Max", 5, 10, 0};
};

// --- layout ---

TEST(SliderLayoutTest, TwentyColumnsWithCaptionsOfFourAndABarOfTwelve) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"Level", u"Lo", u"Hi", 4, 12, 0);
    slider.setFocus(true);
    // Captions in 0-3 and 16-19 around the bar in 4-15; the scale in 4-15 of line 2. "Val:0"
    // is five characters, one more than its four right-aligned columns 16-19, so the label
    // shows nothing there.
    EXPECT_EQ(provider.screen(),
              (Screen{u"    >> Level <<     ", u" Lo " + barCells(1, 12) + u" Hi ",
                      u"    " + scaleRow(12) + u"    ", padded(u"", 20)}));
}

TEST_F(SliderTest, ValueTextIsRightAlignedRightOfTheScale) {
    slider_.setFocus(true);
    EXPECT_EQ(provider_.screen(), screen(1, kNoArrow, u"Val:0"));
    EXPECT_EQ(provider_.drawCount(), 1U);
}

TEST_F(SliderTest, NothingIsInverted) {
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    for (unsigned line = 0; line < 4; ++line) {
        EXPECT_EQ(provider_.inversion(line), std::string(20, '.')) << "line " << line;
    }
}

TEST(SliderConstructionTest, LayoutWiderThanThePanelThrows) {
    RecordingProvider provider(20, 4);
    EXPECT_EQ(constructionError([&] { Slider(provider, u"T", u"a", u"b", 4, 13, 0); }),
              "Labels and Bar does not fit into line!");
    EXPECT_EQ(constructionError([&] { Slider(provider, u"T", u"a", u"b", 4, 12, 0); }), "")
        << "4 + 12 + 4 fits exactly";
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(SliderConstructionTest, HugeWidthsDoNotWrapIntoAFittingLayout) {
    RecordingProvider provider(20, 4);
    // Twice 2^31 is 0 in 32 bits; the check must not be fooled by it.
    EXPECT_EQ(constructionError([&] { Slider(provider, u"T", u"a", u"b", 0x80000000U, 0, 0); }),
              "Labels and Bar does not fit into line!");
    EXPECT_EQ(constructionError([&] { Slider(provider, u"T", u"a", u"b", 0, UINT_MAX, 0); }),
              "Labels and Bar does not fit into line!");
}

TEST(SliderConstructionTest, StartsWithEditorModeOffCommittedZeroAndTheMinimumShown) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"T", u"a", u"b", 5, 10, 2);
    EXPECT_FALSE(slider.getEditorMode());
    EXPECT_EQ(slider.getValue(), 0);
    EXPECT_EQ(slider.getBarValCorrected(), 2);
    EXPECT_FALSE(slider.getFocus());
    EXPECT_EQ(provider.drawCount(), 0U);
}

// --- values ---

TEST_F(SliderTest, SetValueFillsUpToTheValuesCellAndPutsTheArrowUnderIt) {
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    EXPECT_TRUE(slider_.setValue(3));
    EXPECT_EQ(provider_.screen(), screen(4, 3, u"Val:3"));
    EXPECT_EQ(slider_.getValue(), 3);
    EXPECT_EQ(slider_.getBarValCorrected(), 3);
}

TEST_F(SliderTest, ValuePastTheLastCellIsRefusedAndTheLastFillsTheBar) {
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    std::size_t const draws = provider_.drawCount();
    EXPECT_FALSE(slider_.setValue(10));
    EXPECT_FALSE(slider_.setValue(-1));
    EXPECT_EQ(provider_.drawCount(), draws);
    EXPECT_EQ(slider_.getValue(), 0);
    EXPECT_TRUE(slider_.setValue(9));
    EXPECT_EQ(provider_.screen(), screen(10, 9, u"Val:9"));
}

TEST_F(SliderTest, ChangeWhileFocusedIsDrawnOnce) {
    slider_.setFocus(true);
    std::size_t const draws = provider_.drawCount();
    slider_.setValue(5);
    EXPECT_EQ(provider_.drawCount(), draws + 1);
    EXPECT_TRUE(slider_.getFocus());
}

TEST_F(SliderTest, ChangeWithoutFocusDrawsNothing) {
    slider_.setValue(5);
    EXPECT_EQ(provider_.drawCount(), 0U);
    EXPECT_FALSE(slider_.getFocus());
    slider_.setFocus(true);
    EXPECT_EQ(provider_.screen(), screen(6, kNoArrow, u"Val:5"));
}

TEST_F(SliderTest, SetValueInternalShowsWithoutCommitting) {
    slider_.setFocus(true);
    EXPECT_TRUE(slider_.setValueInternal(7));
    EXPECT_EQ(slider_.getValue(), 0);
    EXPECT_EQ(slider_.getBarValCorrected(), 7);
    EXPECT_EQ(provider_.screen(), screen(8, kNoArrow, u"Val:7"));
    EXPECT_FALSE(slider_.setValueInternal(10));
    EXPECT_EQ(slider_.getBarValCorrected(), 7);
}

TEST(SliderValueTest, NegativeValueShowsItsMinusSign) {
    RecordingProvider provider(24, 4);
    Slider slider(provider, u"Offset", u"-10", u"+1", 6, 12, -10);
    slider.setEditorMode(true);
    slider.setFocus(true);
    EXPECT_TRUE(slider.setValue(-5));
    // Six cells filled (-10 to -5); the scale text runs from -10 to 11 and is cut to the bar.
    EXPECT_EQ(provider.line(1), u" -10  " + barCells(6, 12) + u"  +1  ");
    EXPECT_EQ(provider.line(2), u"      " + scaleRow(12, 5) + u"Val:-5");
    EXPECT_EQ(slider.createCursor(-5).size(), 22U);
}

TEST(SliderValueTest, MinimumOfAHundredOrMoreStartsTheRangeAtNinetyNine) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"T", u"a", u"b", 5, 10, 100);
    EXPECT_TRUE(slider.setValue(99));
    EXPECT_TRUE(slider.setValue(109));
    EXPECT_FALSE(slider.setValue(110));
    EXPECT_EQ(slider.getValue(), 109);
}

TEST(SliderValueTest, PositiveMinimumShortensTheScaleToTheWidthLessTheMinimum) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"Gear", u"3", u"12", 5, 10, 3);
    slider.setEditorMode(true);
    slider.setFocus(true);
    EXPECT_TRUE(slider.setValue(5));
    // Ticks for 3..9 only, the arrow under 5 at the scale's third column.
    EXPECT_EQ(provider.line(2), u"     " + padded(scaleRow(7, 2), 10) + u"Val:5");
    EXPECT_TRUE(slider.setValue(12));
    // No arrow from the bar's width on; "Val:12" is longer than its five columns.
    EXPECT_EQ(provider.line(2), u"     " + padded(scaleRow(7), 10) + u"     ");
}

TEST(SliderValueTest, MinimumAtOrAboveTheWidthGivesAnEmptyScale) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"T", u"a", u"b", 5, 10, 10);
    slider.setEditorMode(true);
    EXPECT_EQ(slider.createCursor(10), u"");
    slider.setFocus(true);
    EXPECT_EQ(provider.line(2), padded(u"", 15) + u"Val:0");
}

TEST(SliderValueTest, SinglePrecisionFillMayLeaveTheValuesOwnCellEmpty) {
    RecordingProvider provider(22, 4);
    Slider slider(provider, u"T", u"", u"", 0, 22, 0);
    slider.setFocus(true);
    slider.setValue(12);  // the bar holds 13 of 22, which fills 12 cells
    EXPECT_EQ(provider.line(1), barCells(12, 22));
    slider.setValue(13);
    EXPECT_EQ(provider.line(1), barCells(14, 22));
}

TEST(SliderValueTest, MinimumAtTheTopOfIntSaturatesInsteadOfOverflowing) {
    RecordingProvider provider(20, 4);
    Slider top(provider, u"T", u"a", u"b", 5, 10, INT_MAX);
    EXPECT_EQ(top.getBarValCorrected(), INT_MAX - 1);
    top.setEditorMode(true);
    EXPECT_FALSE(top.moveRight());
    EXPECT_TRUE(top.moveLeft());
    EXPECT_EQ(top.getBarValCorrected(), INT_MAX - 2);
}

// --- keys and editor mode ---

TEST_F(SliderTest, MovesStopAtBothEnds) {
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    slider_.setValue(9);
    std::size_t const draws = provider_.drawCount();
    EXPECT_FALSE(slider_.moveRight());
    EXPECT_EQ(slider_.getBarValCorrected(), 9);
    slider_.setValue(0);
    EXPECT_FALSE(slider_.moveLeft());
    EXPECT_EQ(slider_.getBarValCorrected(), 0);
    EXPECT_EQ(provider_.drawCount(), draws + 1) << "only the setValue(0) was drawn";
}

TEST_F(SliderTest, MovesShowTheNeighbourAtOnceWithoutCommitting) {
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    slider_.setValue(4);
    EXPECT_TRUE(slider_.moveRight());
    EXPECT_EQ(provider_.screen(), screen(6, 5, u"Val:5"));
    EXPECT_TRUE(slider_.moveLeft());
    EXPECT_TRUE(slider_.moveLeft());
    EXPECT_EQ(provider_.screen(), screen(4, 3, u"Val:3"));
    EXPECT_EQ(slider_.getValue(), 4);
}

TEST_F(SliderTest, WithoutEditorModeKeysChangeNothingAndTheScaleHasNoArrow) {
    slider_.setFocus(true);
    slider_.setValue(4);
    std::size_t const draws = provider_.drawCount();
    EXPECT_FALSE(slider_.moveRight());
    EXPECT_FALSE(slider_.moveLeft());
    EXPECT_EQ(slider_.getBarValCorrected(), 4);
    EXPECT_EQ(provider_.drawCount(), draws);
    EXPECT_EQ(provider_.screen(), screen(5, kNoArrow, u"Val:4"));
}

TEST_F(SliderTest, ApplyInEditorModeCommitsAndCallsTheCallback) {
    std::vector<int> calls;
    slider_.setCallback([&calls](int value) { calls.push_back(value); });
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    slider_.moveRight();
    slider_.moveRight();
    slider_.apply();
    EXPECT_EQ(slider_.getValue(), 2);
    EXPECT_EQ(calls, std::vector<int>{2});
}

TEST_F(SliderTest, ApplyWithoutEditorModeCommitsButDoesNotCallTheCallback) {
    int calls = 0;
    slider_.setCallback([&calls](int) { ++calls; });
    slider_.setEditorMode(true);
    slider_.moveRight();
    slider_.moveRight();
    slider_.setEditorMode(false);
    slider_.apply();
    EXPECT_EQ(slider_.getValue(), 2);
    EXPECT_EQ(calls, 0);
}

TEST_F(SliderTest, ApplyWithoutCallbackOnlyCommits) {
    slider_.setEditorMode(true);
    slider_.moveRight();
    EXPECT_NO_THROW(slider_.apply());
    EXPECT_EQ(slider_.getValue(), 1);
}

TEST_F(SliderTest, SetCallbackReplacesThePreviousOne) {
    int first = 0;
    int second = 0;
    slider_.setCallback([&first](int) { ++first; });
    slider_.setCallback([&second](int) { ++second; });
    slider_.setEditorMode(true);
    slider_.apply();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(SliderTest, RegainingTheFocusDropsUncommittedMoves) {
    slider_.setValue(4);
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    slider_.moveRight();
    slider_.moveRight();
    EXPECT_EQ(provider_.screen(), screen(7, 6, u"Val:6"));
    slider_.setFocus(false);
    std::size_t const draws = provider_.drawCount();
    slider_.setFocus(true);
    EXPECT_EQ(provider_.drawCount(), draws + 1);
    EXPECT_EQ(provider_.screen(), screen(5, 4, u"Val:4"));
}

TEST_F(SliderTest, LosingTheFocusDrawsNothing) {
    slider_.setFocus(true);
    std::size_t const draws = provider_.drawCount();
    slider_.setFocus(false);
    EXPECT_FALSE(slider_.getFocus());
    EXPECT_EQ(provider_.drawCount(), draws);
}

TEST(SliderFocusTest, CommittedValueOutsideTheRangeIsNotRestored) {
    RecordingProvider provider(20, 4);
    Slider slider(provider, u"T", u"a", u"b", 5, 10, 3);
    slider.setFocus(true);  // tries to restore the committed 0, which is below the range
    EXPECT_EQ(slider.getBarValCorrected(), 3);
    EXPECT_EQ(slider.getValue(), 0);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_EQ(provider.line(1), u"  a  " + barCells(1, 10) + u"  b  ");
}

TEST_F(SliderTest, EditorModeAfterMovesPutsTheArrowUnderTheCommittedValue) {
    slider_.setValue(4);
    slider_.setEditorMode(true);
    slider_.setFocus(true);
    slider_.moveRight();
    slider_.moveRight();
    std::size_t const draws = provider_.drawCount();
    slider_.setEditorMode(true);
    EXPECT_EQ(provider_.drawCount(), draws + 1);
    EXPECT_EQ(provider_.screen(), screen(7, 4, u"Val:6")) << "bar at 6, arrow at 4";
    slider_.moveRight();
    EXPECT_EQ(provider_.screen(), screen(8, 7, u"Val:7"));
}

TEST_F(SliderTest, SwitchingEditorModeShowsAndHidesTheArrow) {
    slider_.setValue(2);
    slider_.setFocus(true);
    slider_.setEditorMode(true);
    EXPECT_TRUE(slider_.getEditorMode());
    EXPECT_EQ(provider_.line(2), u"     " + scaleRow(10, 2) + u"Val:2");
    slider_.setEditorMode(false);
    EXPECT_FALSE(slider_.getEditorMode());
    EXPECT_EQ(provider_.line(2), u"     " + scaleRow(10) + u"Val:2");
}

TEST_F(SliderTest, CreateCursorMarksThePositionOnlyInEditorMode) {
    EXPECT_EQ(slider_.createCursor(3), scaleRow(10));
    slider_.setEditorMode(true);
    EXPECT_EQ(slider_.createCursor(3), scaleRow(10, 3));
    EXPECT_EQ(slider_.createCursor(10), scaleRow(10));
}

// --- rebuilding the lines ---

TEST_F(SliderTest, InitHeadlineReplacesTheHeadlineAndRedraws) {
    slider_.setFocus(true);
    slider_.initHeadline(20, u"Bass");
    EXPECT_EQ(provider_.line(0), u"     >> Bass <<     ");
    EXPECT_EQ(provider_.drawCount(), 2U);
}

TEST_F(SliderTest, InitBarLineReplacesCaptionsAndBar) {
    slider_.setValue(5);
    slider_.setFocus(true);
    slider_.initBarLine(5, 10, 0, u"Lo", u"Hi");
    EXPECT_EQ(provider_.line(1), u" Lo  " + barCells(1, 10) + u" Hi  ");
    EXPECT_EQ(slider_.getBarValCorrected(), 0) << "the new bar shows its minimum";
    EXPECT_EQ(slider_.getValue(), 5);
}

TEST_F(SliderTest, InitScaleLineRebuildsTheScaleForTheBarsMinimum) {
    slider_.setEditorMode(true);
    slider_.setValue(5);
    slider_.setFocus(true);
    slider_.initScaleLine(5, 10);
    EXPECT_EQ(provider_.line(2), u"     " + scaleRow(10, 0) + u"Val:0");
}

}  // namespace
