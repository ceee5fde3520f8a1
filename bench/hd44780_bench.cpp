// Bus load of an HD44780 module behind a PCF8574 backpack on a 20x4 menu: bytes on the I2C bus
// and bus time at 100 kHz and 400 kHz (nine bits per byte plus start, address and stop per
// transfer, and the driver's own waits) for the typical steps. The byte counts are deterministic;
// tests/platform/hd44780_bus_budget_test.cpp asserts the targets on them.
#include <chrono>

#include "hd44780_bus_scenarios.h"
#include <benchmark/benchmark.h>

namespace {

using yxfp_test::Hd44780BusCost;
using yxfp_test::Hd44780BusScenario;

double microseconds(std::chrono::nanoseconds duration) {
    return std::chrono::duration<double, std::micro>(duration).count();
}

void reportBus(benchmark::State& state, Hd44780BusCost (*scenario)()) {
    Hd44780BusCost cost;
    for (auto _ : state) {
        cost = scenario();
        benchmark::DoNotOptimize(cost);
    }
    Hd44780BusCost const full = Hd44780BusScenario::firstScreen();
    state.counters["bus_bytes"] = static_cast<double>(cost.busBytes());
    state.counters["transfers"] = static_cast<double>(cost.transfers);
    state.counters["share_of_full"] =
        static_cast<double>(cost.busBytes()) / static_cast<double>(full.busBytes());
    state.counters["us_at_100kHz"] = microseconds(cost.busTime(100000));
    state.counters["us_at_400kHz"] = microseconds(cost.busTime(400000));
    state.counters["us_waited"] = microseconds(cost.waited);
}

void BM_Hd44780FirstScreen(benchmark::State& state) {
    reportBus(state, &Hd44780BusScenario::firstScreen);
}
void BM_Hd44780CursorMove(benchmark::State& state) {
    reportBus(state, &Hd44780BusScenario::cursorMove);
}
void BM_Hd44780DigitStep(benchmark::State& state) {
    reportBus(state, &Hd44780BusScenario::digitStep);
}
void BM_Hd44780ScrollOneLine(benchmark::State& state) {
    reportBus(state, &Hd44780BusScenario::scroll);
}
void BM_Hd44780RefreshedValue(benchmark::State& state) {
    reportBus(state, &Hd44780BusScenario::measurement);
}

BENCHMARK(BM_Hd44780FirstScreen);
BENCHMARK(BM_Hd44780CursorMove);
BENCHMARK(BM_Hd44780DigitStep);
BENCHMARK(BM_Hd44780ScrollOneLine);
BENCHMARK(BM_Hd44780RefreshedValue);

}  // namespace
