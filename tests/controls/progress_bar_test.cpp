#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <limits>

#include "bar_cells.h"
#include "parent_probe.h"

namespace {

using yxfrontpanel::ProgressBar;
using yxfrontpanel::drawing::Point;

using yxfp_test::barCells;

// A bar of `width` cells over min..max set to `value` fills `filled` cells: in proportion,
// truncated, never rounded up.
struct Fill {
    unsigned width;
    int min;
    int max;
    int value;
    unsigned filled;
};

TEST(ProgressBarTest, FillsInProportionToTheValue) {
    Fill const fills[] = {
        {10, 0, 100, 50, 5},
        {10, 0, 100, 100, 10},
        {10, 0, 100, 99, 9},
        {10, 0, 100, 0, 0},
        {5, -10, 10, 0, 2},
        {3, 0, 10, 6, 1},    // 1.8 cells
        {0, 0, 100, 50, 0},  // zero width: an empty bar
        // Single precision steps can fall one cell short.
        {22, 0, 22, 13, 12},
    };
    for (Fill const& fill : fills) {
        ProgressBar progress(Point{0, 0}, fill.width, fill.min, fill.max);
        progress.setValue(fill.value);
        EXPECT_EQ(progress.createBar(), barCells(fill.filled, fill.width))
            << fill.value << " in " << fill.min << ".." << fill.max << " on " << fill.width;
    }
}

TEST(ProgressBarTest, TextIsAlwaysTheBarAndIsRendered) {
    ProgressBar progress(Point{2, 1}, 4, 0, 4);
    progress.setValue(3);
    EXPECT_EQ(progress.getText(), barCells(3, 4));
    EXPECT_EQ(progress.getBuffer().getLineString(0), barCells(3, 4));
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

TEST(ProgressBarTest, ConstructionStartsAtTheMinimumWithNoCellFilled) {
    ProgressBar progress(Point{0, 0}, 5, -10, 10);
    EXPECT_EQ(progress.getValue(), -10);
    EXPECT_EQ(progress.createBar(), barCells(0, 5));
}

TEST(ProgressBarTest, ExtremeRangesNeitherOverflowNorCrash) {
    int const lowest = std::numeric_limits<int>::min();
    int const highest = std::numeric_limits<int>::max();
    ProgressBar progress(Point{0, 0}, 8, lowest, highest);
    EXPECT_EQ(progress.getMin(), lowest);
    EXPECT_EQ(progress.getMax(), highest);
    progress.setValue(highest);
    EXPECT_EQ(progress.createBar(), barCells(8, 8));
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
    EXPECT_EQ(progress.getText(), barCells(0, 10));
    EXPECT_EQ(progress.createBar(), barCells(2, 10)) << "51 of 201 on ten cells";
}

TEST(ProgressBarTest, ValueLeftAboveTheMaximumByConstructionFillsTheWholeBar) {
    ProgressBar progress(Point{0, 0}, 10, 150, 50);  // range 99..100, value 150
    EXPECT_EQ(progress.getMin(), 99);
    EXPECT_EQ(progress.getMax(), 100);
    EXPECT_EQ(progress.getValue(), 150);
    EXPECT_EQ(progress.createBar(), barCells(10, 10));
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
    EXPECT_EQ(progress.getText(), barCells(2, 10));
    EXPECT_TRUE(progress.setMin(-200));
    EXPECT_EQ(parent.draws, draws + 2);
    EXPECT_EQ(progress.getText(), barCells(6, 10));
}

}  // namespace
