#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "editor_screen.h"
#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

constexpr double kLowerSentinel = std::numeric_limits<double>::min();
constexpr double kUpperSentinel = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::u16string const kHeadline = u"     >> Volt <<     ";
std::u16string const kBlank = padded(u"", kChars);

std::u16string valueLine(std::u16string const& textFromColumnZero) {
    return padded(textFromColumnZero, kChars);
}

class ValueEditorTest : public ::testing::Test {
protected:
    // An editor of a voltage between `minValue` and `maxValue` with `precision` decimals.
    ValueEditor& make(double minValue = 0.0, double maxValue = 100.0, unsigned precision = 1,
                      std::u16string const& unit = u"V") {
        editor_ = std::make_unique<ValueEditor>(provider_, u"Volt", minValue, maxValue);
        editor_->setPrecision(precision);
        editor_->setUnit(unit);
        return *editor_;
    }

    // An editor showing `value`, focused and editable, with the caret on the first digit.
    ValueEditor& open(double value, double minValue = 0.0, double maxValue = 100.0,
                      unsigned precision = 1, std::u16string const& unit = u"V") {
        ValueEditor& editor = make(minValue, maxValue, precision, unit);
        editor.setValue(value);
        openForEditing(editor);
        return editor;
    }

    // The caret columns met when pressing right `count` times.
    std::vector<unsigned> columnsGoingRight(int count) {
        std::vector<unsigned> columns;
        for (int i = 0; i < count; ++i) {
            editor_->moveMarker(+1);
            columns.push_back(caretColumn(*editor_));
        }
        return columns;
    }

    RecordingProvider provider_{kChars, kLines};
    std::unique_ptr<ValueEditor> editor_;
};

// Installs a global locale for the lifetime of the guard.
class GlobalLocale {
public:
    explicit GlobalLocale(std::locale const& locale) : previous_(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(previous_); }
    GlobalLocale(GlobalLocale const&) = delete;
    GlobalLocale& operator=(GlobalLocale const&) = delete;
    GlobalLocale(GlobalLocale&&) = delete;
    GlobalLocale& operator=(GlobalLocale&&) = delete;

private:
    std::locale previous_;
};

// Decimal comma and grouping of thousands with a point, as in many European locales.
class CommaNumpunct : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// --- formatting helpers ---

TEST(ValueEditorWidthTest, WidthOfNumberCountsFixedNotationWithoutSign) {
    EXPECT_EQ(getMaxWidthOfNumber(100, 1), 5);
    EXPECT_EQ(getMaxWidthOfNumber(-3.25, 2), 4);
    EXPECT_EQ(getMaxWidthOfNumber(0, 0), 1);
    EXPECT_EQ(getMaxWidthOfNumber(1234567, 0), 7);
    EXPECT_EQ(getMaxWidthOfNumber(0.5, 3), 5);
}

TEST(ValueEditorWidthTest, WidthOfNumberCopesWithNonFiniteValues) {
    EXPECT_EQ(getMaxWidthOfNumber(std::nan(""), 2), 3);
    EXPECT_EQ(getMaxWidthOfNumber(-kInfinity, 2), 3);
    EXPECT_EQ(getMaxWidthOfNumber(kUpperSentinel, 0), 309);
}

TEST(ValueEditorWidthTest, WidthOfRangeIsTheWiderBound) {
    EXPECT_EQ(getMaxWidthOfMinMax(0, 100, 1), 5);
    EXPECT_EQ(getMaxWidthOfMinMax(-1000, 100, 1), 6);
    EXPECT_EQ(getMaxWidthOfMinMax(-1.5, 2.25, 2), 4);
}

TEST(ValueEditorWidthTest, SentinelBoundsDoNotCount) {
    EXPECT_EQ(getMaxWidthOfMinMax(kLowerSentinel, 100, 1), 5);
    EXPECT_EQ(getMaxWidthOfMinMax(-1000, kUpperSentinel, 0), 4);
    EXPECT_EQ(getMaxWidthOfMinMax(kLowerSentinel, kUpperSentinel, 3), -1);
    // The most negative double is no sentinel.
    EXPECT_EQ(getMaxWidthOfMinMax(-kUpperSentinel, kUpperSentinel, 0), 309);
}

TEST(ValueEditorWidthTest, WidthIgnoresTheGlobalLocale) {
    GlobalLocale comma(std::locale(std::locale::classic(), new CommaNumpunct));
    std::ostringstream plain;
    plain << std::fixed;
    plain.precision(1);
    plain << 1234.5;
    ASSERT_EQ(plain.str(), "1.234,5");  // the locale is really in effect
    EXPECT_EQ(getMaxWidthOfNumber(1234.5, 1), 6);
    EXPECT_EQ(getMaxWidthOfMinMax(0, 100000, 1), 8);
}

// --- showing values ---

TEST_F(ValueEditorTest, ConstructionDrawsNothingAndLeavesTheValueLineEmpty) {
    ValueEditor& editor = make(-5, 5);
    EXPECT_EQ(provider_.drawCount(), 0U);
    EXPECT_EQ(editor.getValueLabel().getText(), u"");
    EXPECT_EQ(editor.getValue(), 0.0);
    EXPECT_EQ(editor.getEditValue(), 0.0);
    EXPECT_EQ(editor.getMinValue(), -5.0);
    EXPECT_EQ(editor.getMaxValue(), 5.0);
    EXPECT_FALSE(editor.getEditorMode());
}

TEST_F(ValueEditorTest, FreshEditorHasNoDecimalsAndNoUnit) {
    ValueEditor editor(provider_, u"Volt", 0, 100);
    EXPECT_EQ(editor.getPrecision(), 0U);
    EXPECT_EQ(editor.getUnit(), u"");
}

TEST_F(ValueEditorTest, FocusShowsHeadlineAndTheZeroPaddedValue) {
    ValueEditor& editor = make();
    editor.setValue(5.5);
    EXPECT_EQ(provider_.drawCount(), 0U);
    editor.setFocus(true);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.screen(), (std::vector<std::u16string>{
                                      kHeadline, valueLine(u"      005.5 V"), kBlank, kBlank}));
}

TEST_F(ValueEditorTest, FocusWithoutAValueShowsZero) {
    ValueEditor& editor = make();
    editor.setFocus(true);
    EXPECT_EQ(provider_.line(1), valueLine(u"      000.0 V"));
}

TEST_F(ValueEditorTest, NegativeValueGetsSignAndTrailingBlankAndKeepsTheDigitColumns) {
    ValueEditor& editor = open(-5.5, -100, 100);
    EXPECT_EQ(editor.getValueLabel().getText(), u"-005.5 V ");
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{kHeadline, valueLine(u"     -005.5 V"),
                                           caretLine(6, kChars), kBlank}));
}

TEST_F(ValueEditorTest, MinusZeroIsShownWithoutSign) {
    open(-0.0);
    EXPECT_EQ(provider_.line(1), valueLine(u"      000.0 V"));
}

TEST_F(ValueEditorTest, SentinelBoundsGiveNoZeroPadding) {
    open(5.5, kLowerSentinel, kUpperSentinel, 1, u"");
    EXPECT_EQ(provider_.line(1), valueLine(u"        5.5"));
}

TEST_F(ValueEditorTest, OneSentinelBoundPadsToTheOtherBound) {
    open(5.5, kLowerSentinel, 1000, 2, u"");
    EXPECT_EQ(provider_.line(1), valueLine(u"      0005.50"));
}

TEST_F(ValueEditorTest, NoDecimalsPadIntegersAndShowFractionsInGeneralNotation) {
    ValueEditor& editor = open(5, 0, 100, 0, u"");
    EXPECT_EQ(provider_.line(1), valueLine(u"        005"));
    editor.setValue(2.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"        2.5"));
    editor.setValue(1234567);
    EXPECT_EQ(provider_.line(1), valueLine(u"    1.23457e+06"));
}

TEST_F(ValueEditorTest, NumberWiderThanTheRangeIsShownInFull) {
    open(1234.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"      1234.5 V"));
}

TEST_F(ValueEditorTest, TextWiderThanThePanelIsNotShown) {
    ValueEditor& editor = open(1e30);
    EXPECT_EQ(editor.getValueLabel().getText(), u"1000000000000000019884624838656.0 V");
    EXPECT_EQ(provider_.line(1), kBlank);
    EXPECT_EQ(provider_.line(0), kHeadline);
}

TEST_F(ValueEditorTest, NotANumberAndInfinitiesAreShown) {
    ValueEditor& editor = open(std::nan(""));
    EXPECT_EQ(provider_.line(1), valueLine(u"      00nan V"));
    editor.setValue(-kInfinity);
    EXPECT_EQ(provider_.line(1), valueLine(u"     -00inf V"));
    editor.setValue(kInfinity);
    EXPECT_EQ(provider_.line(1), valueLine(u"      00inf V"));
}

TEST_F(ValueEditorTest, TinyValuesShowZeroDigits) {
    ValueEditor& editor = open(1e-300);
    EXPECT_EQ(provider_.line(1), valueLine(u"      000.0 V"));
    editor.setValue(-kLowerSentinel);
    EXPECT_EQ(provider_.line(1), valueLine(u"     -000.0 V"));
}

TEST_F(ValueEditorTest, GlobalLocaleWithDecimalCommaDoesNotChangeTheEditor) {
    GlobalLocale comma(std::locale(std::locale::classic(), new CommaNumpunct));
    ValueEditor& editor = open(5.5, 0, 10000);
    EXPECT_EQ(provider_.line(1), valueLine(u"     00005.5 V"));
    for (int i = 0; i < 5; ++i) {
        editor.moveMarker(+1);  // over the point to the tenths
    }
    EXPECT_EQ(caretColumn(editor), 11U);
    editor.changeValue(+1);
    EXPECT_DOUBLE_EQ(editor.getEditValue(), 5.6);
    EXPECT_EQ(provider_.line(1), valueLine(u"     00005.6 V"));
}

TEST_F(ValueEditorTest, DrawValueTakesDecimalsFromTheArgumentAndWidthFromThePrecision) {
    ValueEditor& editor = open(5.5);
    editor.drawValue(5.5, 2);
    EXPECT_EQ(provider_.line(1), valueLine(u"      05.50 V"));
    EXPECT_EQ(editor.getEditValue(), 5.5);
}

TEST_F(ValueEditorTest, SetPrecisionOnlyStores) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.setPrecision(2);
    EXPECT_EQ(editor.getPrecision(), 2U);
    EXPECT_EQ(provider_.drawCount(), 0U);
    EXPECT_EQ(editor.getValueLabel().getText(), u"005.5 V");
    editor.setValue(5.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"      005.50 V"));
}

TEST_F(ValueEditorTest, SetUnitOnlyStores) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.setUnit(u"mV");
    EXPECT_EQ(editor.getUnit(), u"mV");
    EXPECT_EQ(provider_.drawCount(), 0U);
    editor.setValue(5.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"      005.5 mV"));
}

TEST_F(ValueEditorTest, SettingTheUnitToItselfKeepsIt) {
    ValueEditor& editor = make();
    editor.setUnit(editor.getUnit());
    EXPECT_EQ(editor.getUnit(), u"V");
}

// --- committed and edited value ---

TEST_F(ValueEditorTest, SetValueWhileClosedSetsBothValues) {
    ValueEditor& editor = make();
    editor.setValue(7);
    editor.setValue(8);
    EXPECT_EQ(editor.getValue(), 8.0);
    EXPECT_EQ(editor.getEditValue(), 8.0);
}

TEST_F(ValueEditorTest, SetValueWhileOpenChangesOnlyTheEditedValue) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.setValue(7.5);
    EXPECT_EQ(editor.getValue(), 5.5);
    EXPECT_EQ(editor.getEditValue(), 7.5);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.line(1), valueLine(u"      007.5 V"));
}

TEST_F(ValueEditorTest, SetValueNeverClamps) {
    ValueEditor& editor = open(-20);
    EXPECT_EQ(editor.getEditValue(), -20.0);
    editor.setValue(250);
    EXPECT_EQ(editor.getEditValue(), 250.0);
    EXPECT_EQ(provider_.line(1), valueLine(u"      250.0 V"));
}

TEST_F(ValueEditorTest, RegainingTheFocusDiscardsAnUnappliedEdit) {
    ValueEditor& editor = open(5.5);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 100.0);
    editor.setFocus(false);
    EXPECT_EQ(editor.getValue(), 5.5);
    editor.setFocus(true);
    EXPECT_EQ(editor.getEditValue(), 5.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"      005.5 V"));
}

TEST_F(ValueEditorTest, ApplyCommitsAndReportsTheEditedValue) {
    ValueEditor& editor = open(5.5);
    std::vector<double> applied;
    editor.setApplyCallback([&applied](double value) { applied.push_back(value); });
    editor.moveMarker(+1);
    editor.changeValue(+1);
    editor.apply();
    EXPECT_EQ(applied, (std::vector<double>{15.5}));
    EXPECT_EQ(editor.getValue(), 15.5);
    editor.setFocus(false);
    editor.setFocus(true);
    EXPECT_EQ(provider_.line(1), valueLine(u"      015.5 V"));
}

// --- bounds ---

TEST_F(ValueEditorTest, MinimumAtOrAboveTheMaximumBecomesMaximumMinusOne) {
    ValueEditor& editor = make();
    editor.setMinValue(100);
    EXPECT_EQ(editor.getMinValue(), 99.0);
    editor.setMinValue(150);
    EXPECT_EQ(editor.getMinValue(), 99.0);
    EXPECT_EQ(editor.getMaxValue(), 100.0);
}

TEST_F(ValueEditorTest, MaximumAtOrBelowTheMinimumBecomesMinimumPlusOne) {
    ValueEditor& editor = make();
    editor.setMaxValue(0);
    EXPECT_EQ(editor.getMaxValue(), 1.0);
    editor.setMaxValue(-50);
    EXPECT_EQ(editor.getMaxValue(), 1.0);
    EXPECT_EQ(editor.getMinValue(), 0.0);
}

TEST_F(ValueEditorTest, SettingABoundToItsValueDoesNothing) {
    ValueEditor& editor = open(-20);
    provider_.reset();
    editor.setMinValue(0);
    editor.setMaxValue(100);
    EXPECT_EQ(provider_.drawCount(), 0U);
    EXPECT_EQ(editor.getEditValue(), -20.0);
}

TEST_F(ValueEditorTest, MinimumAboveTheEditedValueTakesItAlong) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.setMinValue(10);
    EXPECT_EQ(editor.getEditValue(), 10.0);
    EXPECT_EQ(editor.getValue(), 5.5);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.line(1), valueLine(u"      010.0 V"));
}

TEST_F(ValueEditorTest, MaximumBelowTheEditedValueTakesItAlong) {
    ValueEditor& editor = make();
    editor.setValue(55);
    editor.setMaxValue(50);
    EXPECT_EQ(editor.getEditValue(), 50.0);
    EXPECT_EQ(editor.getValue(), 50.0);  // closed: the committed value follows
}

TEST_F(ValueEditorTest, BoundsThatKeepTheValueDoNotRedrawAndTakeEffectAtTheNextDraw) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.setMaxValue(1000);
    editor.setMinValue(-1);
    EXPECT_EQ(provider_.drawCount(), 0U);
    editor.setValue(5.5);
    EXPECT_EQ(provider_.line(1), valueLine(u"      0005.5 V"));
}

// --- caret ---

TEST_F(ValueEditorTest, StartOfNumberSkipsTheMinusSign) {
    ValueEditor& editor = open(-5.5, -100, 100);
    EXPECT_EQ(editor.getValueLabel().getStartColumn(), 5U);
    EXPECT_EQ(editor.getStartOfNumberInLbl(), 6U);
    editor.setValue(5.5);
    EXPECT_EQ(editor.getStartOfNumberInLbl(), 6U);
}

TEST_F(ValueEditorTest, RightJumpsOverThePointAndWrapsFromTheLastDigitToTheFirst) {
    open(5.5);
    EXPECT_EQ(columnsGoingRight(5), (std::vector<unsigned>{7, 8, 10, 6, 7}));
}

TEST_F(ValueEditorTest, MovingTheCaretRedrawsTheCaretLine) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.moveMarker(-1);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{kHeadline, valueLine(u"      005.5 V"),
                                           caretLine(10, kChars), kBlank}));
}

TEST_F(ValueEditorTest, CaretNeverRestsOnPointUnitOrSign) {
    for (double value : {5.5, -5.5}) {
        ValueEditor& editor = open(value, -100, 100, 2, u"mV");
        for (int i = 0; i < 12; ++i) {
            editor.moveMarker(i < 6 ? +1 : -1);
            char16_t const under = characterUnderCaret(editor);
            EXPECT_TRUE(under >= u'0' && under <= u'9') << "value " << value << " step " << i;
        }
    }
}

TEST_F(ValueEditorTest, NegativeValueHasTheCaretColumnsOfThePositiveOne) {
    open(5.5, -100, 100);
    std::vector<unsigned> const positive = columnsGoingRight(8);
    open(-5.5, -100, 100);
    EXPECT_EQ(caretColumn(*editor_), 6U);
    EXPECT_EQ(columnsGoingRight(8), positive);
}

TEST_F(ValueEditorTest, NumberWithoutDecimalsHasItsUnitsDigitLast) {
    ValueEditor& editor = open(5, 0, 100, 0);
    EXPECT_EQ(provider_.line(1), valueLine(u"       005 V"));
    EXPECT_EQ(columnsGoingRight(3), (std::vector<unsigned>{8, 9, 7}));
    editor.moveMarker(-1);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 6.0);
}

TEST_F(ValueEditorTest, NumberFillingTheLineKeepsTheCaretOnTheFirstDigitWhenMovingLeft) {
    // 20 characters from column 0: "00000000000000005.5".
    ValueEditor& editor = open(5.5, 0, 1e17, 1, u"");
    ASSERT_EQ(editor.getValueLabel().getText(), u"000000000000000005.5");
    ASSERT_EQ(editor.getValueLabel().getStartColumn(), 0U);
    EXPECT_EQ(caretColumn(editor), 0U);
    editor.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor), 0U);
    EXPECT_EQ(provider_.line(2), caretLine(0, kChars));
}

TEST_F(ValueEditorTest, NumberFillingTheLineWrapsRightFromTheLastDigitToTheFirst) {
    ValueEditor& editor = open(5.5, 0, 1e17, 1, u"");
    editor.moveMarker(+1);
    editor.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor), 0U);
    for (int i = 0; i < 18; ++i) {  // the point at column 18 is jumped over
        editor.moveMarker(+1);
    }
    EXPECT_EQ(caretColumn(editor), 19U);
    editor.moveMarker(+1);
    EXPECT_EQ(caretColumn(editor), 0U);
}

// --- stepping ---

TEST_F(ValueEditorTest, UpOnTheHundredsStopsAtTheMaximum) {
    ValueEditor& editor = open(5.5);
    provider_.reset();
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 100.0);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{kHeadline, valueLine(u"      100.0 V"),
                                           caretLine(6, kChars), kBlank}));
}

TEST_F(ValueEditorTest, UpOnTheHundredsFromNinetyFiveGivesTheMaximum) {
    ValueEditor& editor = open(95);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 100.0);
}

TEST_F(ValueEditorTest, EachDigitStepsByItsPlace) {
    ValueEditor& editor = open(5.5);
    editor.moveMarker(+1);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 15.5);
    editor.moveMarker(+1);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), 14.5);
    editor.moveMarker(+1);
    editor.changeValue(+1);
    EXPECT_DOUBLE_EQ(editor.getEditValue(), 14.6);
    EXPECT_EQ(provider_.line(1), valueLine(u"      014.6 V"));
    EXPECT_EQ(provider_.line(2), caretLine(10, kChars));
}

TEST_F(ValueEditorTest, DownPastTheMinimumStopsAtTheMinimum) {
    ValueEditor& editor = open(5.5);
    editor.moveMarker(+1);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), 0.0);
    EXPECT_EQ(provider_.line(1), valueLine(u"      000.0 V"));
}

TEST_F(ValueEditorTest, SteppingThroughZeroAddsTheSignAndKeepsTheCaretColumn) {
    ValueEditor& editor = open(5.5, -100, 100);
    editor.moveMarker(+1);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), -4.5);
    EXPECT_EQ(provider_.screen(),
              (std::vector<std::u16string>{kHeadline, valueLine(u"     -004.5 V"),
                                           caretLine(7, kChars), kBlank}));
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 5.5);
}

TEST_F(ValueEditorTest, LowerBoundWinsWhenTheBoundsCross) {
    ValueEditor& editor = open(7, 10, 5);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 10.0);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), 10.0);
}

TEST_F(ValueEditorTest, StepsChangeOnlyTheEditedValue) {
    ValueEditor& editor = open(5.5);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getValue(), 5.5);
}

TEST_F(ValueEditorTest, StepOnNotANumberKeepsNotANumber) {
    ValueEditor& editor = open(std::nan(""));
    editor.changeValue(+1);
    EXPECT_TRUE(std::isnan(editor.getEditValue()));
}

TEST_F(ValueEditorTest, StepFromBeyondTheBoundsClampsBack) {
    ValueEditor& editor = open(250);
    editor.moveMarker(-1);  // units digit
    editor.moveMarker(-1);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), 100.0);
    editor.setValue(-kInfinity);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 0.0);
}

// A caret left far from the decimal point (the value text outgrew the panel after the caret
// was placed) makes the step infinite: with finite bounds it clamps to the bound.
TEST_F(ValueEditorTest, InfiniteStepClampsToAFiniteBound) {
    ValueEditor& editor = open(-1, -1e9, 0, 0, u"");
    ASSERT_EQ(caretColumn(editor), 5U);
    editor.setUnit(std::u16string(30, u'x'));
    editor.setValue(-5);
    ASSERT_GT(editor.getDotPosition(0), 1000000000U);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), 0.0);
    editor.changeValue(-1);
    EXPECT_EQ(editor.getEditValue(), -1e9);
}

// The same infinite step meeting an edited value of minus infinity within an infinite lower
// bound gives not-a-number, which no comparison clamps: the edited value leaves the bounds.
TEST_F(ValueEditorTest, InfiniteStepOnMinusInfinityGivesNotANumber) {
    ValueEditor& editor = open(-1, -kInfinity, 0, 0, u"");
    editor.setUnit(std::u16string(30, u'x'));
    editor.setValue(-kInfinity);
    editor.changeValue(+1);
    EXPECT_TRUE(std::isnan(editor.getEditValue()));
}

}  // namespace
