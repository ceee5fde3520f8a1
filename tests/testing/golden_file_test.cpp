#include <yxfrontpanel/testing/golden_file.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "environment_variable.h"

namespace {

using yxfrontpanel::testing::compareWithGoldenFile;
using yxfrontpanel::testing::lineDiff;

// A golden file in the test's temporary folder, removed afterwards; the update variable is
// cleared for the test and restored after it.
class GoldenFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        path_ = ::testing::TempDir() + "golden_file_test_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt";
        std::remove(path_.c_str());
    }
    void TearDown() override { std::remove(path_.c_str()); }
    void write(std::string const& text) const { std::ofstream(path_, std::ios::binary) << text; }
    std::string read() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::string path_;
    yxfp_test::EnvironmentVariable update_{"YXFP_UPDATE_GOLDEN", std::nullopt};
};

TEST_F(GoldenFileTest, EqualTextMatchesWithoutAMessage) {
    write("a\nb\n");
    auto const comparison = compareWithGoldenFile("a\nb\n", path_);
    EXPECT_TRUE(comparison.matches);
    EXPECT_TRUE(static_cast<bool>(comparison));
    EXPECT_EQ(comparison.message, "");
}

TEST_F(GoldenFileTest, DifferenceIsShownAsALineDiff) {
    write("one\ntwo\nthree\n");
    auto const comparison = compareWithGoldenFile("one\n2\nthree\n", path_);
    EXPECT_FALSE(comparison.matches);
    EXPECT_EQ(comparison.message,
              path_ +
                  " differs from the actual text (- expected, + actual); YXFP_UPDATE_GOLDEN=1 "
                  "rewrites it:\n"
                  "@@ -1,3 +1,3 @@\n"
                  " one\n"
                  "-two\n"
                  "+2\n"
                  " three\n");
    EXPECT_EQ(read(), "one\ntwo\nthree\n") << "a comparison leaves the file alone";
}

TEST_F(GoldenFileTest, MissingFileSaysHowToCreateIt) {
    auto const comparison = compareWithGoldenFile("text\n", path_);
    EXPECT_FALSE(comparison.matches);
    EXPECT_EQ(comparison.message, "cannot read the golden file " + path_ +
                                      "; run the test with YXFP_UPDATE_GOLDEN=1 to create it "
                                      "from the actual text");
}

TEST_F(GoldenFileTest, UpdateVariableRewritesTheFile) {
    write("old\n");
    update_.set("1");
    auto const comparison = compareWithGoldenFile("new\n", path_);
    EXPECT_TRUE(comparison.matches);
    EXPECT_EQ(comparison.message,
              "rewrote the golden file " + path_ + " (YXFP_UPDATE_GOLDEN=1 is set)");
    EXPECT_EQ(read(), "new\n");
}

TEST_F(GoldenFileTest, OtherUpdateValuesOnlyCompare) {
    write("old\n");
    update_.set("yes");
    EXPECT_FALSE(compareWithGoldenFile("new\n", path_).matches);
    EXPECT_EQ(read(), "old\n");
}

TEST_F(GoldenFileTest, UnwritableFileDoesNotMatch) {
    update_.set("1");
    std::string const path = path_ + ".missing-folder/golden.txt";
    auto const comparison = compareWithGoldenFile("new\n", path);
    EXPECT_FALSE(comparison.matches);
    EXPECT_NE(comparison.message.find("cannot write the golden file " + path), std::string::npos);
}

TEST(LineDiffTest, EqualTextsGiveNothing) { EXPECT_EQ(lineDiff("a\nb\n", "a\nb\n"), ""); }

TEST(LineDiffTest, DistantChangesGetTheirOwnHunksWithThreeLinesOfContext) {
    std::string expected;
    for (char line = 'a'; line <= 'p'; ++line) {
        expected += std::string(1, line) + "\n";
    }
    std::string actual = expected;
    actual[2] = 'B';   // line 2: each line is one letter and its line end
    actual[28] = 'O';  // line 15
    EXPECT_EQ(lineDiff(expected, actual),
              "@@ -1,5 +1,5 @@\n a\n-b\n+B\n c\n d\n e\n"
              "@@ -12,5 +12,5 @@\n l\n m\n n\n-o\n+O\n p\n");
}

TEST(LineDiffTest, AddedAndRemovedLinesKeepTheCommonOnes) {
    EXPECT_EQ(lineDiff("a\nb\nc\n", "a\nc\nd\n"), "@@ -1,3 +1,3 @@\n a\n-b\n c\n+d\n");
}

TEST(LineDiffTest, EmptySideNamesTheLineBefore) {
    EXPECT_EQ(lineDiff("", "x\n"), "@@ -0,0 +1,1 @@\n+x\n");
    EXPECT_EQ(lineDiff("x\n", ""), "@@ -1,1 +0,0 @@\n-x\n");
}

TEST(LineDiffTest, MissingFinalLineEndIsShown) {
    EXPECT_EQ(lineDiff("a\n", "a"), "@@ -1,1 +1,1 @@\n-a\n+a\n\\ No newline at end of text\n");
}

}  // namespace
