#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_parser.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "scpi_run.h"

namespace {

using namespace yxfrontpanel::runtime::scpi;

TEST(ScpiBlockTest, ADefiniteBlockKeepsItsBytesIncludingSeparators) {
    ParsedLine const line = parseLine(std::string("DATA #18a;b,\"c\0d;*OPC?", 22));
    ASSERT_FALSE(line.error) << line.error->format();
    ASSERT_EQ(line.commands.size(), 2U);
    ASSERT_EQ(line.commands[0].parameters.size(), 1U);
    Parameter const& block = line.commands[0].parameters[0];
    EXPECT_TRUE(block.block);
    EXPECT_EQ(block.text, std::string("a;b,\"c\0d", 8));
    EXPECT_EQ(line.commands[1].header(), "*OPC?");
}

TEST(ScpiBlockTest, ABlockMayBeFollowedByAnotherParameter) {
    ParsedLine const line = parseLine("DATA #203xyz, 7");
    ASSERT_FALSE(line.error);
    ASSERT_EQ(line.commands[0].parameters.size(), 2U);
    EXPECT_EQ(line.commands[0].parameters[0].text, "xyz");
    EXPECT_EQ(line.commands[0].parameters[1].text, "7");
}

TEST(ScpiBlockTest, IndefiniteBlocksAreRefusedWithAClearError) {
    ParsedLine const line = parseLine("DATA #0abc");
    ASSERT_TRUE(line.error);
    EXPECT_EQ(line.error->code, ErrorCode::InvalidBlockData);
    EXPECT_NE(line.error->detail.find("#0"), std::string::npos) << line.error->detail;
}

TEST(ScpiBlockTest, MalformedBlocksAreInvalidBlockData) {
    for (char const* text : {"DATA #", "DATA #3", "DATA #2x1ab", "DATA #15abc", "DATA #A"}) {
        ParsedLine const line = parseLine(text);
        ASSERT_TRUE(line.error) << text;
        EXPECT_EQ(line.error->code, ErrorCode::InvalidBlockData) << text;
    }
}

TEST(ScpiBlockTest, BlocksGoOutWithTheirLengthAndBytesUnchanged) {
    EXPECT_EQ(definiteBlock("hello"), "#15hello");
    EXPECT_EQ(definiteBlock(std::string(1234, 'x')).substr(0, 6), "#41234");
    EXPECT_EQ(definiteBlock(""), "#10");
    CommandTable table;
    Session session;
    table.add("DATA?", [](Request& request) { request.respondBlock("a\nb"); });
    table.add(
        "ECHO", [](Request& request) { request.respondBlock(request.parameter(0).text); }, 1, 1);
    EXPECT_EQ(yxfp_test::runLine(table, session, "DATA?"), std::vector<std::string>{"#13a\nb"});
    EXPECT_EQ(yxfp_test::runLine(table, session, "ECHO #12;;"), std::vector<std::string>{"#12;;"});
}

}  // namespace

namespace {

TEST(ScreenshotCommandTest, AnswersTheProvidersBytesAsOneBlock) {
    using namespace yxfrontpanel::runtime::scpi;
    CommandTable table;
    Session session;
    addScreenshotCommands(table, [] { return std::string("\x89PNG\n", 5); });
    EXPECT_EQ(yxfp_test::runLine(table, session, "HCOP:SDUM:DATA?;DATA:FORM?"),
              (std::vector<std::string>{std::string("#15\x89PNG\n", 8), "PNG"}));
    EXPECT_THROW(addScreenshotCommands(table, nullptr), std::invalid_argument);
}

}  // namespace
