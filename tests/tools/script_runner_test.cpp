#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "echo_app.h"
#include "long_run.h"
#include "runners.h"
#include <malloc.h>

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

// The heap memory this process has in use (malloc's own count of what is allocated and not
// freed). A sanitizer's allocator does not report through it; the plain build measures.
long heapInUse() {
    struct mallinfo2 const info = ::mallinfo2();
    return static_cast<long>(info.uordblks + info.hblkhd);
}

// EchoApp that notes the heap in use at each measurement, i.e. at each "tick" of a script,
// while the script runs.
class HeapSamplingApp : public EchoApp {
public:
    HeapSamplingApp(yxfrontpanel::IDrawingProvider const& provider, std::vector<long>& samples)
        : EchoApp(provider, std::make_shared<Journal>()), samples_(samples) {}
    Update acquire(unsigned /*sample*/) override {
        if (samples_.size() < samples_.capacity()) {  // never grows while it measures
            samples_.push_back(heapInUse());
        }
        return [] {};
    }

private:
    std::vector<long>& samples_;
};

// An instrument's script runs for as long as it has words: the run keeps no per-step state.
TEST(ScriptRunnerTest, AMillionWordScriptRunsInFlatMemory) {
    std::size_t const words = yxfp_test::longRunCount(1'000'000);
    std::size_t const wordsPerTick = std::max<std::size_t>(words / 100, 1);  // 100 samples
    std::string script;
    script.reserve(words * 5 + words / wordsPerTick * 5);
    for (std::size_t word = 0; word < words; ++word) {
        if (word % wordsPerTick == 0) {
            script += "tick ";
        }
        script += word % 2 == 0 ? "down " : "up ";
    }
    std::vector<long> samples;
    samples.reserve(words / wordsPerTick + 1);
    SimOptions options;
    options.chars = 20;
    options.lines = 4;
    options.keyScript = script;
    options.keyScriptSource = "--keys-file";
    options.print = PrintMode::Last;
    std::ostringstream out;
    std::ostringstream err;
    int const status = frontpanelsim::runKeyScript(
        options,
        [&samples](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<HeapSamplingApp>(provider, samples);
        },
        {}, out, err);
    EXPECT_EQ(status, 0) << err.str();
    // Each key word moves the selection: one frame per key word after the first screen.
    std::string const last = "frame " + std::to_string(words + 1) + " after step ";
    EXPECT_EQ(out.str().rfind(last, 0), 0U) << out.str().substr(0, 200);
    ASSERT_EQ(samples.size(), (words + wordsPerTick - 1) / wordsPerTick);
    // Generous: a frame kept per step would be far over this; the steady state needs none.
    long const grown = samples.back() - samples.front();
    EXPECT_LT(grown, 16L * 1024 * 1024) << "the heap in use grew by " << grown << " bytes";
}

}  // namespace
