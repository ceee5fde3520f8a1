#include <yxfrontpanel/runtime/scpi_commands.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "scpi_run.h"

namespace {

using namespace yxfrontpanel::runtime::scpi;

class CommandTableTest : public ::testing::Test {
protected:
    CommandTableTest() {
        addCommonCommands(table, Identity{"Yx, Inc.", "PSU-30", "SN42", "1.4.2"});
        table.add(
            "[SOURce]:VOLTage", [this](Request& request) { volts = request.number(0); }, 1, 1);
        table.add("MEASure:VOLTage?",
                  [this](Request& request) { request.respond(std::to_string(volts)); });
        table.add(
            "TEST:COUNt", [this](Request& request) { count = request.integer(0); }, 1, 1);
        table.add("TEST:FAIL", [](Request& /*request*/) { throw std::runtime_error("boom"); });
    }

    std::vector<std::string> run(std::string const& line) {
        return yxfp_test::runLine(table, session, line);
    }

    CommandTable table;
    Session session;
    double volts = 0.0;
    long count = 0;
};

TEST_F(CommandTableTest, MatchesShortAndLongFormsInAnyCase) {
    for (char const* header : {"SOUR:VOLT 1", "SOURCE:VOLTAGE 2", "sour:volt 3", "Source:Volt 4"}) {
        run(header);
    }
    EXPECT_EQ(volts, 4.0);
    EXPECT_EQ(session.errors.size(), 0U);
}

TEST_F(CommandTableTest, AnOptionalNodeMayBeLeftOut) {
    run("VOLT 7.5");
    EXPECT_EQ(volts, 7.5);
}

TEST_F(CommandTableTest, RefusesFormsBetweenShortAndLong) {
    run("SOURC:VOLT 1");
    EXPECT_EQ(volts, 0.0);
    EXPECT_EQ(session.errors.pop().format(), R"(-113,"Undefined header;SOURC:VOLT")");
}

TEST_F(CommandTableTest, AQueryAndACommandAreDifferentHeaders) {
    run("SOUR:VOLT?");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::UndefinedHeader);
}

TEST_F(CommandTableTest, IdnAnswersTheFourFieldsWithCommasReplaced) {
    EXPECT_EQ(run("*IDN?"), (std::vector<std::string>{"Yx  Inc.,PSU-30,SN42,1.4.2"}));
}

TEST_F(CommandTableTest, ErrorQueueAnswersOldestFirstThenNoError) {
    run("FOO;BAR 1");
    EXPECT_EQ(run("SYST:ERR?;:SYSTEM:ERROR:NEXT?;SYST:ERR?"),
              (std::vector<std::string>{R"(-113,"Undefined header;FOO")",
                                        R"(-113,"Undefined header;BAR")", R"(0,"No error")"}));
}

TEST_F(CommandTableTest, ClsEmptiesTheErrorQueue) {
    run("FOO");
    run("*CLS");
    EXPECT_EQ(run("SYST:ERR?"), (std::vector<std::string>{R"(0,"No error")"}));
}

TEST_F(CommandTableTest, OpcAnswersOne) {
    EXPECT_EQ(run("*OPC?"), (std::vector<std::string>{"1"}));
}

TEST_F(CommandTableTest, ParameterCountsAreChecked) {
    run("SOUR:VOLT");
    run("SOUR:VOLT 1,2");
    run("*OPC? 1");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::MissingParameter);
    EXPECT_EQ(session.errors.pop().code, ErrorCode::ParameterNotAllowed);
    EXPECT_EQ(session.errors.pop().code, ErrorCode::ParameterNotAllowed);
    EXPECT_EQ(volts, 0.0);
}

TEST_F(CommandTableTest, NumbersMustBeNumbers) {
    for (char const* line : {"VOLT abc", "VOLT \"1\"", "VOLT ++1", "VOLT +-1", "VOLT 1 2"}) {
        run(line);
        EXPECT_EQ(session.errors.pop().code, ErrorCode::DataTypeError) << line;
    }
    run("VOLT 1V");  // a suffix where the command declares no unit
    EXPECT_EQ(session.errors.pop().code, ErrorCode::SuffixNotAllowed);
    run("VOLT +1e1");
    EXPECT_EQ(volts, 10.0);
}

TEST_F(CommandTableTest, IntegersMustBeWhole) {
    run("TEST:COUN 2.5");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::DataTypeError);
    run("TEST:COUN -3");
    EXPECT_EQ(count, -3);
}

TEST_F(CommandTableTest, OtherExceptionsBecomeExecutionErrors) {
    run("TEST:FAIL");
    EXPECT_EQ(session.errors.pop().format(), R"(-200,"Execution error;boom")");
}

// A failed command leaves the rest of the line running; a parse error ends the line.
TEST_F(CommandTableTest, ErrorsInALineKeepTheOtherCommands) {
    EXPECT_EQ(run("FOO;*OPC?;VOLT 3;VOLT ,;VOLT 9"), (std::vector<std::string>{"1"}));
    EXPECT_EQ(volts, 3.0);
    EXPECT_EQ(session.errors.pop().code, ErrorCode::UndefinedHeader);
    EXPECT_EQ(session.errors.pop().code, ErrorCode::MissingParameter);
    EXPECT_EQ(session.errors.size(), 0U);
}

// A relative header that names nothing under the previous path is taken from the root.
TEST_F(CommandTableTest, RelativeHeadersFallBackToTheRoot) {
    EXPECT_EQ(run("SOUR:VOLT 2;MEAS:VOLT?"), (std::vector<std::string>{"2.000000"}));
}

TEST_F(CommandTableTest, RunStopsAfterACommandThatDefersTheRest) {
    table.add("TEST:WAIT", [](Request& request) { request.deferRest(); });
    ParsedLine const parsed = parseLine("TEST:WAIT;*OPC?;TEST:WAIT");
    std::vector<std::string> responses;
    RunResult result = table.run(parsed, 0, session, responses);
    EXPECT_EQ(result.next, 1U);
    EXPECT_TRUE(result.deferred);
    EXPECT_TRUE(responses.empty());
    result = table.run(parsed, result.next, session, responses);
    EXPECT_EQ(result.next, 3U);
    EXPECT_TRUE(result.deferred);
    EXPECT_EQ(responses, (std::vector<std::string>{"1"}));
}

TEST_F(CommandTableTest, ALaterRegistrationReplacesTheEarlierOne) {
    table.add("*OPC?", [](Request& request) { request.respond("done"); });
    EXPECT_EQ(run("*OPC?"), (std::vector<std::string>{"done"}));
}

TEST_F(CommandTableTest, RespondKeepsOneLinePerResponse) {
    table.add("TEST:LINES?", [](Request& request) { request.respond("a\nb"); });
    EXPECT_EQ(run("TEST:LINES?"), (std::vector<std::string>{"a b"}));
}

TEST(CommandTableRegistrationTest, RefusesMalformedPatterns) {
    CommandTable table;
    auto const nothing = [](Request& /*request*/) {};
    for (char const* pattern :
         {"", "?", "*", "*I1", "sys:key", "SYST::KEY", "[SYST:KEY", "1AB", "SYST:K-Y"}) {
        EXPECT_THROW(table.add(pattern, nothing), std::invalid_argument) << pattern;
    }
    EXPECT_THROW(table.add("SYST:KEY", Handler{}), std::invalid_argument);
    EXPECT_THROW(table.add("SYST:KEY", nothing, 2, 1), std::invalid_argument);
    EXPECT_TRUE(table.patterns().empty());
}

TEST(ScpiMatchTest, MatchesHeadersAgainstPatterns) {
    auto const command = [](char const* line) { return parseLine(line).commands.at(0); };
    EXPECT_TRUE(matches("SYSTem:AUTH", command("syst:auth \"x\"")));
    EXPECT_TRUE(matches("SYSTem:ERRor[:NEXT]?", command("SYST:ERR:NEXT?")));
    EXPECT_FALSE(matches("SYSTem:ERRor[:NEXT]?", command("SYST:NEXT?")));
    EXPECT_FALSE(matches("*IDN?", command("IDN?")));
    EXPECT_FALSE(matches("bad pattern", command("*IDN?")));
}

TEST(ErrorQueueTest, OverflowReplacesTheNewestEntry) {
    ErrorQueue queue(3);
    for (int i = 0; i < 5; ++i) {
        queue.push(ErrorEntry{ErrorCode::UndefinedHeader, std::to_string(i)});
    }
    EXPECT_EQ(queue.size(), 3U);
    EXPECT_EQ(queue.pop().detail, "0");
    EXPECT_EQ(queue.pop().detail, "1");
    EXPECT_EQ(queue.pop().format(), R"(-350,"Queue overflow")");
    EXPECT_EQ(queue.pop().format(), R"(0,"No error")");
}

TEST(ErrorQueueTest, DetailQuotesAreDoubled) {
    EXPECT_EQ((ErrorEntry{ErrorCode::IllegalParameterValue, "no item \"x\""}.format()),
              R"(-224,"Illegal parameter value;no item ""x""")");
}

}  // namespace

namespace {

using namespace yxfrontpanel::runtime::scpi;

TEST(CommandTableRangeTest, TwoToTheSixtyThirdIsOutOfRangeForAWholeNumber) {
    CommandTable table;
    Session session;
    long count = 0;
    table.add(
        "TEST:COUNt", [&count](Request& request) { count = request.integer(0); }, 1, 1);
    constexpr int kDigits = std::numeric_limits<long>::digits;  // 63, or 31 on 32-bit ARM
    std::vector<std::string> refused = {
        "TEST:COUN " + std::to_string(std::numeric_limits<long>::max()) + "0",
        "TEST:COUN 1e19",
        "TEST:COUN -9.3e18",
    };
    char limit[32];
    std::snprintf(limit, sizeof(limit), "%.0f", std::ldexp(1.0, kDigits));
    refused.push_back(std::string("TEST:COUN ") + limit);  // one past the maximum
    if (kDigits > std::numeric_limits<double>::digits) {
        // 2^63 - 1, which a double rounds up to 2^63.
        refused.push_back("TEST:COUN " + std::to_string(std::numeric_limits<long>::max()));
    }
    for (std::string const& line : refused) {
        yxfp_test::runLine(table, session, line);
        EXPECT_EQ(session.errors.pop().code, ErrorCode::DataTypeError) << line;
    }
    yxfp_test::runLine(table, session,
                       "TEST:COUN " + std::to_string(std::numeric_limits<long>::min()));
    EXPECT_EQ(session.errors.pop().code, ErrorCode::NoError);
    EXPECT_EQ(count, std::numeric_limits<long>::min());
}

TEST(CommandTableThrowTest, AHandlerThrowingANonStandardExceptionGivesAnExecutionError) {
    CommandTable table;
    Session session;
    table.add("BOOM", [](Request& /*request*/) { throw 42; });
    std::vector<std::string> const responses = yxfp_test::runLine(table, session, "BOOM;*OPC?");
    (void)responses;
    ErrorEntry const error = session.errors.pop();
    EXPECT_EQ(error.code, ErrorCode::ExecutionError);
    EXPECT_EQ(error.format(), R"(-200,"Execution error;the command failed")");
}

TEST(ErrorEntryTest, DetailsShowControlBytesAndInvalidUtf8Escaped) {
    ErrorEntry const entry{
        ErrorCode::UndefinedHeader,
        std::string("A\0B\x1b[2J\xff\xc3\xa9\xe2\x82\xac\\\xed\xa0\x80\xc0\xaf", 19)};
    EXPECT_EQ(entry.format(),
              "-113,\"Undefined header;A\\x00B\\x1B[2J\\xFF\xc3\xa9\xe2\x82\xac\\\\\\xED\\xA0\\x80"
              "\\xC0\\xAF\"");
    EXPECT_EQ(escapeDetail("plain text, \xc3\xa4"), "plain text, \xc3\xa4");
}

}  // namespace
