#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/testing/gtest_matchers.h>
#include <yxfrontpanel/testing/recording_display.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <optional>
#include <string>

#include "display_lines.h"
#include "environment_variable.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using ::testing::Not;
using yxfrontpanel::testing::InvertedColumnsAre;
using yxfrontpanel::testing::LineIs;
using yxfrontpanel::testing::MatchesGoldenFile;

DisplayBuffer menuFrame() {
    DisplayBuffer frame(10, 2);
    frame.setDisplayLine(0, yxfp_test::invertedLine(u"Output    ", 0, 8));
    frame.setLineContent(1, 0, u"Net\x1F");
    return frame;
}

// The text gtest prints when `matcher` fails on `value`.
template <typename Value, typename Matcher>
std::string explanation(Value const& value, Matcher const& matcher) {
    ::testing::StringMatchResultListener listener;
    EXPECT_FALSE(::testing::ExplainMatchResult(matcher, value, &listener));
    return listener.str();
}

TEST(GtestMatchersTest, LineIsComparesTheTextWithoutTrailingBlanks) {
    DisplayBuffer const frame = menuFrame();
    EXPECT_THAT(frame, LineIs(0, "Output"));
    EXPECT_THAT(frame, LineIs(0, "Output    "));
    EXPECT_THAT(frame, LineIs(1, "Net▼"));
    EXPECT_THAT(frame, Not(LineIs(0, "Outpu")));
    EXPECT_THAT(frame, Not(LineIs(0, " Output")));
    EXPECT_EQ(explanation(frame, LineIs(0, "Input")), "line 0 is \"Output    \"");
    EXPECT_EQ(explanation(frame, LineIs(2, "")), "the frame has 2 lines");
}

TEST(GtestMatchersTest, InvertedColumnsAreComparesTheRanges) {
    DisplayBuffer const frame = menuFrame();
    EXPECT_THAT(frame, InvertedColumnsAre(0, "0-8"));
    EXPECT_THAT(frame, InvertedColumnsAre(1, ""));
    EXPECT_THAT(frame, Not(InvertedColumnsAre(0, "0-9")));
    EXPECT_EQ(explanation(frame, InvertedColumnsAre(1, "0")),
              "line 1 has the inverted columns \"\"");
}

TEST(GtestMatchersTest, FailuresPrintTheFrameAsText) {
    EXPECT_EQ(::testing::PrintToString(menuFrame()),
              "\n+----------+\n|Output    | < inverted 0-8\n|Net▼      |\n+----------+\n");
    yxfrontpanel::testing::RecordingDisplay display(2, 1);
    EXPECT_EQ(::testing::PrintToString(display), "\n+--+\n|  |\n+--+\n");
}

TEST(GtestMatchersTest, ScreenMatchersReadTheNewestFrameOfARecordingDisplay) {
    yxfrontpanel::testing::RecordingDisplay display(10, 2);
    static_cast<yxfrontpanel::IDrawingProvider&>(display).draw(menuFrame());
    EXPECT_THAT(display, LineIs(0, "Output"));
    EXPECT_THAT(display, InvertedColumnsAre(0, "0-8"));
}

TEST(GtestMatchersTest, MatchesGoldenFileExplainsWithTheDiff) {
    // Compares only, even while the suite runs with the update variable set.
    yxfp_test::EnvironmentVariable const update("YXFP_UPDATE_GOLDEN", std::nullopt);
    std::string const path = ::testing::TempDir() + "gtest_matchers_golden.txt";
    std::ofstream(path) << "a\nb\n";
    EXPECT_THAT("a\nb\n", MatchesGoldenFile(path));
    std::string const why = explanation(std::string("a\nc\n"), MatchesGoldenFile(path));
    EXPECT_NE(why.find("@@ -1,2 +1,2 @@\n a\n-b\n+c\n"), std::string::npos) << why;
    std::remove(path.c_str());
}

}  // namespace
