#include <yxbase2/log.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <thread>
#include <vector>

#include "platform_capture.h"

namespace {

// Allocations made by the current thread through operator new, counted by the replacements
// below so that a test can show that a call allocates nothing.
thread_local std::size_t allocationsOnThisThread = 0;

}  // namespace

void* operator new(std::size_t size) {
    ++allocationsOnThisThread;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

// The non-throwing form too (the standard library's temporary buffers use it), so that every
// delete above frees what these news allocated.
void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    ++allocationsOnThisThread;
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory, std::nothrow_t const& /*tag*/) noexcept { std::free(memory); }

namespace {

// Counts how often it is streamed, so that a test can see whether a message was formatted.
struct CountedArgument {
    int* formatted;
};

std::ostream& operator<<(std::ostream& out, CountedArgument const& argument) {
    ++*argument.formatted;
    return out << "counted";
}

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

TEST_F(LogTest, WriteFormatsItsArgumentsOnlyWhenTheLevelIsOn) {
    yxfp_test::LogCapture capture;
    log::setMaxLevel(log::Level::Info);
    int formatted = 0;
    log::write(log::Level::Debug, "category", "off ", CountedArgument{&formatted});
    EXPECT_EQ(formatted, 0);
    EXPECT_TRUE(capture.records().empty());

    log::write(log::Level::Info, "category", "on ", CountedArgument{&formatted}, ' ', 42);
    EXPECT_EQ(formatted, 1);
    auto const records = capture.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].message, "on counted 42");
}

// Counts allocations through the replaced global operator new, which memcheck replaces first.
class LogAllocationCountTest : public LogTest {};

TEST_F(LogAllocationCountTest, DisabledWriteAllocatesNothing) {
    log::setMaxLevel(log::Level::Error);
    std::string const peer = "127.0.0.1:4000";
    int formatted = 0;
    std::size_t const before = allocationsOnThisThread;
    log::write(log::Level::Warning, "category", "refused ", peer, ": ", 3, ' ',
               CountedArgument{&formatted});
    std::size_t const after = allocationsOnThisThread;
    EXPECT_EQ(after - before, 0U);
    EXPECT_EQ(formatted, 0);

    // The counter does see the allocations of an enabled call.
    yxfp_test::LogCapture capture;
    log::setMaxLevel(log::Level::Error);
    log::write(log::Level::Error, "category", "refused ", peer);
    EXPECT_GT(allocationsOnThisThread, after);
}

TEST_F(LogTest, LevelsReachTheSinkWithSyslogNumbersAndNames) {
    struct Expected {
        log::Level level;
        int number;
        char const* name;
    };
    std::vector<Expected> const table{
        {log::Level::Emergency, 0, "emergency"}, {log::Level::Alert, 1, "alert"},
        {log::Level::Critical, 2, "critical"},   {log::Level::Error, 3, "error"},
        {log::Level::Warning, 4, "warning"},     {log::Level::Notice, 5, "notice"},
        {log::Level::Info, 6, "info"},           {log::Level::Debug, 7, "debug"}};
    log::setMaxLevel(log::Level::Debug);
    std::vector<int> levels;
    log::setSink(
        [&levels](int level, std::string const&, std::string const&) { levels.push_back(level); });
    for (auto const& expected : table) {
        log::write(expected.level, "category", expected.name);
        EXPECT_EQ(log::levelName(expected.level), expected.name);
        EXPECT_EQ(log::levelName(expected.number), expected.name);
    }
    std::vector<int> const numbers{0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(levels, numbers);
}

TEST_F(LogTest, LevelFormsMoveAndReadTheSameThreshold) {
    EXPECT_EQ(log::getMaxLevel(), log::toInt(log::Level::Info));
    log::setMaxLevel(log::Level::Warning);
    EXPECT_EQ(log::getMaxLevel(), 4);
    EXPECT_TRUE(log::isEnabled(log::Level::Warning));
    EXPECT_FALSE(log::isEnabled(log::Level::Notice));
    log::setMaxLevel(5);
    EXPECT_TRUE(log::isEnabled(log::Level::Notice));
}

TEST_F(LogTest, DefaultSinkNamesTheLevelOfAWrite) {
    testing::internal::CaptureStderr();
    log::write(log::Level::Error, "hd44780", "transport failed: ", 5, " bytes");
    std::string const output = testing::internal::GetCapturedStderr();
    EXPECT_NE(output.find(" error hd44780: transport failed: 5 bytes\n"), std::string::npos)
        << output;
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
