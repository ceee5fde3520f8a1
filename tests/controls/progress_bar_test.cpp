#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <limits>

#include "parent_probe.h"

namespace {

using yxfrontpanel::ProgressBar;
using yxfrontpanel::drawing::Point;

constexpr char16_t kFull = 0xDB;
constexpr char16_t kEmpty = 0xB0;

// `filled` full cells followed by empty ones, `width` in all.
std::u16string bar(unsigned filled, unsigned width) {
    return std::u16string(filled, kFull) + std::u16string(width - filled, kEmpty);
}

TEST(ProgressBarTest, FillsInProportionToTheValue) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    EXPECT_EQ(progress.createBar(), bar(0, 10));
    progress.setValue(50);
    EXPECT_EQ(progress.createBar(), bar(5, 10));
    progress.setValue(100);
    EXPECT_EQ(progress.createBar(), bar(10, 10));
    progress.setValue(99);
    EXPECT_EQ(progress.createBar(), bar(9, 10));
}

TEST(ProgressBarTest, TextIsAlwaysTheBarAndIsRendered) {
    ProgressBar progress(Point{2, 1}, 4, 0, 4);
    progress.setValue(3);
    EXPECT_EQ(progress.getText(), bar(3, 4));
    EXPECT_EQ(progress.getBuffer().getLineString(0), bar(3, 4));
}

TEST(ProgressBarTest, SinglePrecisionStepsCanFallOneCellShort) {
    ProgressBar progress(Point{0, 0}, 22, 0, 22);
    progress.setValue(13);
    EXPECT_EQ(progress.createBar(), bar(12, 22));
}

TEST(ProgressBarTest, SetValueClampsAndReportsChangesAgainstTheStoredValue) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    EXPECT_TRUE(progress.setValue(150));
    EXPECT_EQ(progress.getValue(), 100);
    EXPECT_TRUE(progress.setValue(150)) << "150 differs from the stored 100";
    EXPECT_EQ(progress.getValue(), 100);
    EXPECT_FALSE(progress.setValue(100));
    EXPECT_TRUE(progress.setValue(-7));
    EXPECT_EQ(progress.getValue(), 0);
}

TEST(ProgressBarTest, UnchangedValueDoesNotRedraw) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    yxfp_test::ParentProbe parent;
    parent.attach(progress);
    progress.setValue(0);
    EXPECT_EQ(parent.draws, 0);
    progress.setValue(40);
    EXPECT_EQ(parent.draws, 1);
    EXPECT_EQ(parent.redraws, 1);
}

TEST(ProgressBarTest, MinimumNotBelowTheMaximumBecomesMaximumMinusOne) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    EXPECT_TRUE(progress.setMin(200));
    EXPECT_EQ(progress.getMin(), 99);
    EXPECT_EQ(progress.getValue(), 99) << "the value follows the minimum up";
    EXPECT_TRUE(progress.setMin(200)) << "compared with the stored 99, not with 200";
    EXPECT_FALSE(progress.setMin(99));
}

TEST(ProgressBarTest, MaximumNotAboveTheMinimumBecomesMinimumPlusOne) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    progress.setValue(60);
    EXPECT_TRUE(progress.setMax(-5));
    EXPECT_EQ(progress.getMax(), 1);
    EXPECT_EQ(progress.getValue(), 1) << "the value follows the maximum down";
    EXPECT_FALSE(progress.setMax(1));
}

TEST(ProgressBarTest, ConstructionRunsThroughTheDefaultRange) {
    ProgressBar progress(Point{0, 0}, 10, 150, 300);
    EXPECT_EQ(progress.getMin(), 99) << "setMin(150) met the default maximum 100";
    EXPECT_EQ(progress.getMax(), 300);
    EXPECT_EQ(progress.getValue(), 150) << "the value is the min argument, unclamped";
}

TEST(ProgressBarTest, AtTheMinimumNoCellIsFilled) {
    ProgressBar progress(Point{0, 0}, 5, -10, 10);
    EXPECT_EQ(progress.getValue(), -10);
    EXPECT_EQ(progress.createBar(), bar(0, 5));
    progress.setValue(0);
    EXPECT_EQ(progress.createBar(), bar(2, 5));
}

TEST(ProgressBarTest, ZeroWidthGivesAnEmptyBar) {
    ProgressBar progress(Point{0, 0}, 0, 0, 100);
    progress.setValue(50);
    EXPECT_EQ(progress.createBar(), u"");
}

TEST(ProgressBarTest, ExtremeRangesNeitherOverflowNorCrash) {
    int const lowest = std::numeric_limits<int>::min();
    int const highest = std::numeric_limits<int>::max();
    ProgressBar progress(Point{0, 0}, 8, lowest, highest);
    EXPECT_EQ(progress.getMin(), lowest);
    EXPECT_EQ(progress.getMax(), highest);
    progress.setValue(highest);
    EXPECT_EQ(progress.createBar(), bar(8, 8));
    progress.setMin(highest);
    EXPECT_EQ(progress.getMin(), highest - 1);
    ProgressBar bottom(Point{0, 0}, 8, 0, 100);
    bottom.setMin(lowest);
    bottom.setMax(lowest);
    EXPECT_EQ(bottom.getMax(), lowest + 1);
}

TEST(ProgressBarTest, ConstructionDoesNotRedrawForTheUnclampedValue) {
    ProgressBar progress(Point{0, 0}, 10, 150, 300);
    // The text was last drawn while the value sat at the minimum 99; setting the value to 150
    // afterwards draws nothing, so only createBar() knows the new fill.
    EXPECT_EQ(progress.getText(), bar(0, 10));
    EXPECT_EQ(progress.createBar(), bar(2, 10)) << "51 of 201 on ten cells";
}

TEST(ProgressBarTest, ValueLeftAboveTheMaximumByConstructionFillsTheWholeBar) {
    ProgressBar progress(Point{0, 0}, 10, 150, 50);  // range 99..100, value 150
    EXPECT_EQ(progress.getMin(), 99);
    EXPECT_EQ(progress.getMax(), 100);
    EXPECT_EQ(progress.getValue(), 150);
    EXPECT_EQ(progress.createBar(), bar(10, 10));
}

TEST(ProgressBarTest, RangeChangesRedrawOnlyWhenTheyChangeSomething) {
    ProgressBar progress(Point{0, 0}, 10, 0, 100);
    yxfp_test::ParentProbe parent;
    parent.attach(progress);
    progress.setValue(50);
    int const draws = parent.draws;
    EXPECT_FALSE(progress.setMin(0));
    EXPECT_FALSE(progress.setMax(100));
    EXPECT_EQ(parent.draws, draws);
    EXPECT_TRUE(progress.setMax(200));
    EXPECT_EQ(parent.draws, draws + 1);
    EXPECT_EQ(progress.getText(), bar(2, 10));
    EXPECT_TRUE(progress.setMin(-200));
    EXPECT_EQ(parent.draws, draws + 2);
    EXPECT_EQ(progress.getText(), bar(6, 10));
}

TEST(ProgressBarTest, FillCountIsTruncatedNotRounded) {
    ProgressBar progress(Point{0, 0}, 3, 0, 10);
    progress.setValue(6);  // 1.8 cells
    EXPECT_EQ(progress.createBar(), bar(1, 3));
}

}  // namespace
