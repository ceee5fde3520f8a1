// The bus budget of an HD44780 module behind an I2C backpack: byte counts are deterministic, so
// the targets are asserted here; bench/hd44780_bench.cpp reports the same figures as counters.
#include <gtest/gtest.h>

#include <chrono>

#include "hd44780_bus_scenarios.h"

namespace {

using yxfp_test::Hd44780BusCost;
using yxfp_test::Hd44780BusScenario;

double share(Hd44780BusCost const& part, Hd44780BusCost const& whole) {
    return static_cast<double>(part.busBytes()) / static_cast<double>(whole.busBytes());
}

TEST(Hd44780BusBudgetTest, FirstScreenInitialisesAndDrawsTheMenu) {
    Hd44780BusCost const first = Hd44780BusScenario::firstScreen();
    EXPECT_GT(first.bytes, 100U);
    EXPECT_GE(first.waited, std::chrono::milliseconds(40)) << "power-on wait";
}

TEST(Hd44780BusBudgetTest, CursorMoveSendsAtMostFortyPercentOfAFullRedraw) {
    Hd44780BusCost const first = Hd44780BusScenario::firstScreen();
    Hd44780BusCost const move = Hd44780BusScenario::cursorMove();
    EXPECT_LE(share(move, first), 0.40) << move.busBytes() << " of " << first.busBytes();
    EXPECT_GT(move.bytes, 0U) << "the cursor marker moves";
}

TEST(Hd44780BusBudgetTest, CursorMoveReachesTheModuleWithinOneRepeatPeriodAt100kHz) {
    Hd44780BusCost const move = Hd44780BusScenario::cursorMove();
    EXPECT_LE(move.busTime(100000), std::chrono::milliseconds(33));
}

TEST(Hd44780BusBudgetTest, DigitStepSendsAtMostFifteenPercentOfAFullRedraw) {
    Hd44780BusCost const first = Hd44780BusScenario::firstScreen();
    Hd44780BusCost const step = Hd44780BusScenario::digitStep();
    EXPECT_LE(share(step, first), 0.15) << step.busBytes() << " of " << first.busBytes();
    EXPECT_GT(step.bytes, 0U);
}

TEST(Hd44780BusBudgetTest, RefreshedValueSendsAtMostFifteenPercentOfAFullRedraw) {
    Hd44780BusCost const first = Hd44780BusScenario::firstScreen();
    Hd44780BusCost const refresh = Hd44780BusScenario::measurement();
    EXPECT_LE(share(refresh, first), 0.15) << refresh.busBytes() << " of " << first.busBytes();
    EXPECT_GT(refresh.bytes, 0U);
}

TEST(Hd44780BusBudgetTest, ScrollSendsLessThanAFullRedraw) {
    Hd44780BusCost const first = Hd44780BusScenario::firstScreen();
    Hd44780BusCost const scroll = Hd44780BusScenario::scroll();
    EXPECT_LT(scroll.busBytes(), first.busBytes());
    EXPECT_GT(scroll.bytes, 0U);
}

}  // namespace
