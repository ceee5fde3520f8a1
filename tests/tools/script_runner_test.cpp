#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "echo_app.h"
#include "long_run.h"
#include "runners.h"
#include <malloc.h>
#include <unistd.h>

namespace {

using frontpanelsim::PrintMode;
using frontpanelsim::SimOptions;
using yxfp_test::EchoApp;
using yxfp_test::Journal;

struct RunResult {
    int status;
    std::string out;
    std::string err;
};

RunResult run(std::string const& keys, PrintMode print, std::shared_ptr<Journal> journal = {},
              std::optional<std::chrono::milliseconds> idle = std::nullopt) {
    if (!journal) {
        journal = std::make_shared<Journal>();
    }
    SimOptions options;
    options.chars = 6;
    options.lines = 2;
    options.keyScript = keys;
    options.keyScriptSource = "--keys";
    options.print = print;
    options.idle = idle;
    std::ostringstream out;
    std::ostringstream err;
    int const status = frontpanelsim::runKeyScript(
        options,
        [journal](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<EchoApp>(provider, journal);
        },
        {}, out, err);
    return RunResult{status, out.str(), err.str()};
}

TEST(ScriptRunnerTest, PrintsEveryFrameWithItsStep) {
    RunResult const result = run("down up", PrintMode::All);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
              "frame 1 after step 0: start\n+------+\n|Alpha | < inverted 0-4\n|Beta  |\n+------+\n"
              "frame 2 after step 1: down\n+------+\n|Alpha |\n|Beta  | < inverted 0-4\n+------+\n"
              "frame 3 after step 2: up\n+------+\n|Alpha | < inverted 0-4\n|Beta  |\n+------+\n");
    EXPECT_EQ(result.err, "");
}

TEST(ScriptRunnerTest, PrintsOnlyTheLastFrame) {
    RunResult const result = run("down", PrintMode::Last);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.out,
        "frame 2 after step 1: down\n+------+\n|Alpha |\n|Beta  | < inverted 0-4\n+------+\n");
}

TEST(ScriptRunnerTest, PrintsNothingWithoutPrintMode) {
    RunResult const result = run("down", PrintMode::None);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST(ScriptRunnerTest, TickAndWaitMoveTheClockOfTheMeasurement) {
    auto const journal = std::make_shared<Journal>();
    // Two ticks: two samples. A wait of two seconds: one more (a late timer runs once), then
    // a quarter second is too short for the next one.
    RunResult const result = run("tick tick wait:2 wait:0.25", PrintMode::None, journal);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(journal->samplesShown, (std::vector<unsigned>{1, 2, 3}));
}

TEST(ScriptRunnerTest, HomeScreenComesAfterTheIdleTimeAndTheNextKeyOnlyLeavesIt) {
    auto const journal = std::make_shared<Journal>();
    RunResult const result = run("down wait:0.9 wait:0.1 down", PrintMode::All, journal,
                                 std::chrono::milliseconds{1000});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(journal->homeScreens, 1U);
    EXPECT_NE(result.out.find("frame 3 after step 3: wait:0.1\n+------+\n|HOME  |\n"),
              std::string::npos)
        << result.out;
    // The down key brings the menu back at its top and moves nothing.
    EXPECT_NE(result.out.find("after step 4: down\n+------+\n|Alpha | < inverted 0-4\n|Beta  |\n"),
              std::string::npos)
        << result.out;
}

TEST(ScriptRunnerTest, HomeScreenIsOffInScriptsByDefault) {
    auto const journal = std::make_shared<Journal>();
    RunResult const result = run("wait:3600", PrintMode::None, journal);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(journal->homeScreens, 0U);
}

TEST(ScriptRunnerTest, UnknownWordFailsBeforeAnythingRuns) {
    RunResult const result = run("up sideways", PrintMode::All);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("--keys: unknown key 'sideways' at position 2"), std::string::npos)
        << result.err;
}

TEST(ScriptRunnerTest, FailingStepIsReportedWithItsPosition) {
    RunResult const result = run("up remote", PrintMode::All);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("step 2 failed: no remote here"), std::string::npos) << result.err;
}

// The resident memory of this process, from /proc/self/statm, after the allocator gave back
// what is free (so that memory freed but kept by malloc does not count).
long residentBytes() {
    ::malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

// An instrument's script runs for as long as it has words: the run keeps no per-step state.
TEST(ScriptRunnerTest, AMillionWordScriptRunsInFlatMemory) {
    std::size_t const words = yxfp_test::longRunCount(1'000'000);
    std::string script;
    script.reserve(words * 5);
    for (std::size_t word = 0; word < words; ++word) {
        script += word % 2 == 0 ? "down " : "up ";
    }
    long const before = residentBytes();
    RunResult const result = run(script, PrintMode::Last);
    long const grown = residentBytes() - before;
    EXPECT_EQ(result.status, 0) << result.err;
    // Each word moves the selection: one frame per word after the first screen.
    std::string const last = "frame " + std::to_string(words + 1) + " after step " +
                             std::to_string(words) + ": " + (words % 2 == 0 ? "up" : "down");
    EXPECT_EQ(result.out.rfind(last, 0), 0U) << result.out;
    // Generous: a frame kept per step would be well over this; the steady state needs none.
    EXPECT_LT(grown, 32L * 1024 * 1024) << "resident memory grew by " << grown << " bytes";
}

}  // namespace
