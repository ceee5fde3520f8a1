#include <yxfrontpanel/runtime/scpi_parser.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using yxfrontpanel::runtime::scpi::Command;
using yxfrontpanel::runtime::scpi::ErrorCode;
using yxfrontpanel::runtime::scpi::Parameter;
using yxfrontpanel::runtime::scpi::ParsedLine;
using yxfrontpanel::runtime::scpi::parseLine;
using yxfrontpanel::runtime::scpi::quoted;

/** The headers of the parsed commands, for compact comparisons. */
std::vector<std::string> headers(ParsedLine const& parsed) {
    std::vector<std::string> result;
    for (auto const& command : parsed.commands) {
        result.push_back(command.header());
    }
    return result;
}

TEST(ScpiParserTest, ParsesAQueryWithoutParameters) {
    ParsedLine const parsed = parseLine("SYST:ERR?");
    ASSERT_FALSE(parsed.error);
    ASSERT_EQ(parsed.commands.size(), 1U);
    Command const& command = parsed.commands[0];
    EXPECT_EQ(command.mnemonics, (std::vector<std::string>{"SYST", "ERR"}));
    EXPECT_TRUE(command.query);
    EXPECT_FALSE(command.common);
    EXPECT_TRUE(command.parameters.empty());
}

TEST(ScpiParserTest, KeepsTheCaseOfTheHeader) {
    EXPECT_EQ(headers(parseLine("system:Key DOWN")), (std::vector<std::string>{"system:Key"}));
}

TEST(ScpiParserTest, ParsesCommonCommands) {
    ParsedLine const parsed = parseLine("*IDN?;*cls");
    ASSERT_FALSE(parsed.error);
    ASSERT_EQ(parsed.commands.size(), 2U);
    EXPECT_TRUE(parsed.commands[0].common);
    EXPECT_TRUE(parsed.commands[0].query);
    EXPECT_EQ(parsed.commands[1].mnemonics, (std::vector<std::string>{"*cls"}));
    EXPECT_FALSE(parsed.commands[1].query);
}

TEST(ScpiParserTest, ToleratesAColonBeforeACommonCommand) {
    ParsedLine const parsed = parseLine("SYST:KEY UP;:*OPC?;KEY DOWN");
    EXPECT_EQ(headers(parsed), (std::vector<std::string>{"SYST:KEY", "*OPC?", "SYST:KEY"}));
}

TEST(ScpiParserTest, SplitsParametersAtCommasAndTrimsBlanks) {
    ParsedLine const parsed = parseLine("MENU:VAL  \"Output/Voltage\" ,  12.5  ");
    ASSERT_FALSE(parsed.error);
    ASSERT_EQ(parsed.commands.size(), 1U);
    EXPECT_EQ(parsed.commands[0].parameters,
              (std::vector<Parameter>{{"Output/Voltage", true}, {"12.5", false}}));
}

TEST(ScpiParserTest, ReadsBothQuoteKindsWithDoubledQuotesInside) {
    ParsedLine const parsed = parseLine(R"(A:B "say ""hi""",'it''s', "a;b,c")");
    ASSERT_FALSE(parsed.error);
    EXPECT_EQ(parsed.commands[0].parameters,
              (std::vector<Parameter>{{"say \"hi\"", true}, {"it's", true}, {"a;b,c", true}}));
}

TEST(ScpiParserTest, SeparatesCommandsAtSemicolonsOutsideStrings) {
    EXPECT_EQ(headers(parseLine("SYST:KEY DOWN;:DISP:TEXT? 1")),
              (std::vector<std::string>{"SYST:KEY", "DISP:TEXT?"}));
}

TEST(ScpiParserTest, ARelativeHeaderContinuesThePreviousPath) {
    ParsedLine const parsed = parseLine("SOUR:VOLT 1;CURR 2;:MEAS:VOLT?;*OPC?;POW?");
    EXPECT_EQ(headers(parsed), (std::vector<std::string>{"SOUR:VOLT", "SOUR:CURR", "MEAS:VOLT?",
                                                         "*OPC?", "MEAS:POW?"}));
    EXPECT_EQ(parsed.commands[1].inherited, 1U);
    EXPECT_EQ(parsed.commands[2].inherited, 0U);
}

TEST(ScpiParserTest, SkipsEmptyCommandsAndLines) {
    EXPECT_TRUE(parseLine("").commands.empty());
    EXPECT_FALSE(parseLine("   ").error);
    EXPECT_EQ(headers(parseLine(";*OPC?;; ;*IDN?;")), (std::vector<std::string>{"*OPC?", "*IDN?"}));
}

TEST(ScpiParserTest, IgnoresATrailingCarriageReturn) {
    ParsedLine const parsed = parseLine("DISP:TEXT? 2\r");
    ASSERT_FALSE(parsed.error);
    EXPECT_EQ(parsed.commands[0].parameters, (std::vector<Parameter>{{"2", false}}));
}

TEST(ScpiParserTest, AcceptsMnemonicsWithDigitsAndUnderscores) {
    EXPECT_EQ(headers(parseLine("OUTP1:MY_VALUE 3")), (std::vector<std::string>{"OUTP1:MY_VALUE"}));
}

struct ErrorCase {
    char const* line;
    ErrorCode code;
    std::size_t commandsBefore;
};

// Names the case by its line (the default printer would dump the struct's padding bytes).
void PrintTo(ErrorCase const& error, std::ostream* out) { *out << error.line; }

class ScpiParserErrorTest : public ::testing::TestWithParam<ErrorCase> {};

// Each malformed line gives its SCPI error; the commands before the error are kept.
TEST_P(ScpiParserErrorTest, ReportsTheError) {
    ErrorCase const& error = GetParam();
    ParsedLine const parsed = parseLine(error.line);
    ASSERT_TRUE(parsed.error) << error.line;
    EXPECT_EQ(parsed.error->code, error.code) << error.line << ": " << parsed.error->format();
    EXPECT_EQ(parsed.commands.size(), error.commandsBefore) << error.line;
}

INSTANTIATE_TEST_SUITE_P(
    Errors, ScpiParserErrorTest,
    ::testing::Values(ErrorCase{"5YST:KEY UP", ErrorCode::InvalidCharacter, 0},
                      ErrorCase{"\"x\"", ErrorCode::InvalidCharacter, 0},
                      ErrorCase{"*OPC?;#", ErrorCode::InvalidCharacter, 1},
                      ErrorCase{"SYST::KEY UP", ErrorCode::SyntaxError, 0},
                      ErrorCase{"SYST: KEY UP", ErrorCode::SyntaxError, 0},
                      ErrorCase{"SYST:", ErrorCode::SyntaxError, 0},
                      ErrorCase{":", ErrorCode::SyntaxError, 0},
                      ErrorCase{"*", ErrorCode::SyntaxError, 0},
                      ErrorCase{"*IDN?;?", ErrorCode::SyntaxError, 1},
                      ErrorCase{"SYST:KEY,UP", ErrorCode::InvalidSeparator, 0},
                      ErrorCase{"SYST:KEY?X", ErrorCode::InvalidSeparator, 0},
                      ErrorCase{"*IDN?X", ErrorCode::InvalidSeparator, 0},
                      ErrorCase{"A:B \"one\" \"two\"", ErrorCode::InvalidSeparator, 0},
                      ErrorCase{"A:B 1,,2", ErrorCode::MissingParameter, 0},
                      ErrorCase{"A:B 1,", ErrorCode::MissingParameter, 0},
                      ErrorCase{"A:B ,1", ErrorCode::MissingParameter, 0},
                      ErrorCase{"A:B 1 2\"", ErrorCode::InvalidCharacter, 0},
                      ErrorCase{"*OPC?;A:B \"open", ErrorCode::InvalidStringData, 1},
                      ErrorCase{"A:B 'open\"", ErrorCode::InvalidStringData, 0}));

TEST(ScpiParserTest, ParsesAResponseOfQuotedStrings) {
    auto const parsed = yxfrontpanel::runtime::scpi::parseParameters(R"("a ""b""", "", 3)");
    ASSERT_FALSE(parsed.error);
    EXPECT_EQ(parsed.parameters,
              (std::vector<Parameter>{{"a \"b\"", true}, {"", true}, {"3", false}}));
    EXPECT_TRUE(yxfrontpanel::runtime::scpi::parseParameters("").parameters.empty());
    EXPECT_TRUE(yxfrontpanel::runtime::scpi::parseParameters(R"("open)").error);
}

TEST(ScpiParserTest, QuotedDoublesEmbeddedQuotes) {
    EXPECT_EQ(quoted(""), "\"\"");
    EXPECT_EQ(quoted("a\"b"), "\"a\"\"b\"");
    EXPECT_EQ(quoted("Ω 5 V"), "\"Ω 5 V\"");
}

TEST(ScpiParserTest, ErrorsFormatAsNumberAndQuotedText) {
    ParsedLine const parsed = parseLine("SYST:KEY,UP");
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->format(), R"(-103,"Invalid separator;, after SYST:KEY")");
}

}  // namespace

namespace {

using yxfrontpanel::runtime::scpi::ParseLimits;

TEST(ScpiParserLimitsTest, AHeaderWithTooManyMnemonicsEndsTheLine) {
    ParsedLine const parsed = parseLine("*CLS;A:B:C:D:E:F:G:H:I:J:K:L:M;*OPC?");
    EXPECT_EQ(headers(parsed), (std::vector<std::string>{"*CLS"}));
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->code, ErrorCode::TooMuchData);
    EXPECT_EQ(parseLine("A:B:C:D:E:F:G:H:I:J:K:L").commands.size(), 1U);
}

// Relative headers cannot grow the path past the limit either.
TEST(ScpiParserLimitsTest, RelativeHeadersCountTheirInheritedPath) {
    ParseLimits limits;
    limits.maxMnemonics = 3;
    ParsedLine const parsed = parseLine("A:B;C:D;E:F", limits);
    EXPECT_EQ(headers(parsed), (std::vector<std::string>{"A:B", "A:C:D"}));
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->code, ErrorCode::TooMuchData);
}

TEST(ScpiParserLimitsTest, ALineWithTooManyCommandsKeepsTheFirstAndEndsWithOneError) {
    std::string line = "A";
    for (int i = 0; i < 1999; ++i) {
        line += ";A";
    }
    ParsedLine const parsed = parseLine(line);
    EXPECT_EQ(parsed.commands.size(), ParseLimits{}.maxCommands);
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->format(), R"(-223,"Too much data;more than 64 commands on one line")");
    // Empty commands count too: ";;;;" costs the parser as much as commands do.
    EXPECT_TRUE(parseLine(std::string(100, ';')).error);
}

TEST(ScpiParserLimitsTest, ACommandWithTooManyParametersIsRefused) {
    ParseLimits limits;
    limits.maxParameters = 2;
    ParsedLine const parsed = parseLine("*CLS;X 1,2,3", limits);
    EXPECT_EQ(parsed.commands.size(), 1U);
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->code, ErrorCode::TooMuchData);
    EXPECT_FALSE(parseLine("X 1,2", limits).error);
}

// The forty-line attack's lines: a deep header, then many relative ones. Their path is held
// once and shared, not copied into every command.
TEST(ScpiParserLimitsTest, RelativeHeadersShareTheirParentPath) {
    ParsedLine const parsed = parseLine("SOUR:VOLT:LEV 1;CURR 2;PROT 3;:SYST:ERR?;KEY UP");
    ASSERT_FALSE(parsed.error);
    EXPECT_EQ(headers(parsed),
              (std::vector<std::string>{"SOUR:VOLT:LEV", "SOUR:VOLT:CURR", "SOUR:VOLT:PROT",
                                        "SYST:ERR?", "SYST:KEY"}));
    ASSERT_TRUE(parsed.commands[1].path);
    EXPECT_EQ(parsed.commands[1].path.get(), parsed.commands[2].path.get());
    EXPECT_EQ(parsed.commands[1].mnemonics, (std::vector<std::string>{"CURR"}));
    EXPECT_EQ(parsed.commands[2].fullPath(), (std::vector<std::string>{"SOUR", "VOLT", "PROT"}));
    EXPECT_FALSE(parsed.commands[3].path);
    EXPECT_EQ(*parsed.commands[4].path, (std::vector<std::string>{"SYST"}));
}

}  // namespace
