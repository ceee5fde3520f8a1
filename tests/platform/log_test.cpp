#include <yxbase2/log.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform_capture.h"

namespace {

namespace log = yxbase2::system::log;

class LogTest : public ::testing::Test {
protected:
    void TearDown() override {
        log::setSink({});
        log::setMaxLevel(6);
    }

    static void write(int level, std::string const& text) {
        std::ostringstream message;
        message << text;
        log::log(level, "category", message);
    }
};

TEST_F(LogTest, DefaultMaximumLevelIsInfo) {
    EXPECT_EQ(log::getMaxLevel(), 6);
    EXPECT_TRUE(log::detail::isEnabled(0));
    EXPECT_TRUE(log::detail::isEnabled(6));
    EXPECT_FALSE(log::detail::isEnabled(7));
}

TEST_F(LogTest, SetMaxLevelMovesTheThreshold) {
    log::setMaxLevel(4);
    EXPECT_TRUE(log::detail::isEnabled(4));
    EXPECT_FALSE(log::detail::isEnabled(5));
}

TEST_F(LogTest, SinkReceivesLevelCategoryAndMessage) {
    yxfp_test::LogCapture capture;
    write(4, "hello 42");
    auto const records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].level, 4);
    EXPECT_EQ(records[0].category, "category");
    EXPECT_EQ(records[0].message, "hello 42");
}

TEST_F(LogTest, RecordsAboveTheMaximumLevelAreDropped) {
    std::vector<int> levels;
    log::setSink(
        [&levels](int level, std::string const&, std::string const&) { levels.push_back(level); });
    log::setMaxLevel(3);
    write(3, "kept");
    write(4, "dropped");
    EXPECT_EQ(levels, std::vector<int>{3});
}

TEST_F(LogTest, SettingASinkReturnsTheOneItReplaces) {
    EXPECT_FALSE(log::setSink({})) << "the default sink is reported as empty";
    int outerCalls = 0;
    log::setSink([&outerCalls](int, std::string const&, std::string const&) { ++outerCalls; });
    log::Sink const outer = log::setSink({});
    ASSERT_TRUE(outer);
    outer(4, "category", "message");
    EXPECT_EQ(outerCalls, 1);
}

TEST_F(LogTest, NestedCapturePutsTheOuterSinkBack) {
    yxfp_test::LogCapture outer;
    {
        yxfp_test::LogCapture inner;
        write(4, "inner");
        EXPECT_EQ(inner.records().size(), 1U);
    }
    write(4, "outer");
    ASSERT_EQ(outer.records().size(), 1U);
    EXPECT_EQ(outer.records()[0].message, "outer");
}

TEST_F(LogTest, EmptySinkRestoresTheDefaultSinkOnStderr) {
    int calls = 0;
    log::setSink([&calls](int, std::string const&, std::string const&) { ++calls; });
    log::setSink({});
    testing::internal::CaptureStderr();
    write(4, "to stderr");
    std::string const output = testing::internal::GetCapturedStderr();
    EXPECT_EQ(calls, 0);
    EXPECT_NE(output.find("warning category: to stderr"), std::string::npos) << output;
    // ISO-8601 UTC time first: YYYY-MM-DDTHH:MM:SS.mmmZ
    ASSERT_GE(output.size(), 24U);
    EXPECT_EQ(output[4], '-');
    EXPECT_EQ(output[10], 'T');
    EXPECT_EQ(output[23], 'Z');
}

TEST_F(LogTest, LevelNamesFollowSyslog) {
    EXPECT_EQ(log::levelName(0), "emergency");
    EXPECT_EQ(log::levelName(3), "error");
    EXPECT_EQ(log::levelName(4), "warning");
    EXPECT_EQ(log::levelName(7), "debug");
    EXPECT_EQ(log::levelName(9), "level 9");
    EXPECT_EQ(log::levelName(-1), "level -1");
}

TEST_F(LogTest, SinkMayBeReplacedWhileOtherThreadsLog) {
    std::atomic<int> received{0};
    log::setSink([&received](int, std::string const&, std::string const&) { ++received; });
    std::vector<std::thread> writers;
    writers.reserve(3);
    for (int t = 0; t < 3; ++t) {
        writers.emplace_back([] {
            for (int i = 0; i < 200; ++i) {
                write(4, "x");
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        log::setSink([&received](int, std::string const&, std::string const&) { ++received; });
    }
    for (auto& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(received.load(), 600);
}

}  // namespace
