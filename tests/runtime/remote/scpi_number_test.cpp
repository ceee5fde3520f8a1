#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_number.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scpi_run.h"

namespace {

using namespace yxfrontpanel::runtime::scpi;

ErrorCode errorOf(std::string_view text, std::string_view unit) {
    try {
        parseNumber(text, unit, NumericBounds{});
    } catch (Error const& e) {
        return e.code();
    }
    return ErrorCode::NoError;
}

TEST(ScpiNumberTest, UnitsWithSiPrefixes) {
    EXPECT_DOUBLE_EQ(parseNumber("12.5 V", "V"), 12.5);
    EXPECT_DOUBLE_EQ(parseNumber("500 mV", "V"), 0.5);
    EXPECT_DOUBLE_EQ(parseNumber("500MV", "V"), 0.5);
    EXPECT_DOUBLE_EQ(parseNumber("1.2 kHz", "HZ"), 1200.0);
    EXPECT_DOUBLE_EQ(parseNumber("2 uA", "A"), 2e-6);
    EXPECT_DOUBLE_EQ(parseNumber("3 GHZ", "Hz"), 3e9);
    EXPECT_DOUBLE_EQ(parseNumber("+1e3 mV", "V"), 1.0);
}

TEST(ScpiNumberTest, ScpiExceptionsForMegaAndMilliampere) {
    EXPECT_DOUBLE_EQ(parseNumber("2 MOHM", "OHM"), 2e6);
    EXPECT_DOUBLE_EQ(parseNumber("2 MHZ", "HZ"), 2e6);
    EXPECT_DOUBLE_EQ(parseNumber("250 MA", "A"), 0.25);
    EXPECT_DOUBLE_EQ(parseNumber("3 MAV", "V"), 3e6);
    EXPECT_DOUBLE_EQ(parseNumber("4 KOHM", "OHM"), 4e3);
}

TEST(ScpiNumberTest, MinMaxDefStandForTheBounds) {
    NumericBounds const bounds{-1.0, 30.0, 5.0};
    EXPECT_EQ(parseNumber("MIN", "V", bounds), -1.0);
    EXPECT_EQ(parseNumber("maximum", "V", bounds), 30.0);
    EXPECT_EQ(parseNumber("Def", "V", bounds), 5.0);
    EXPECT_THROW(parseNumber("MAX", "V"), Error) << "no bounds, no keywords";
    EXPECT_THROW(parseNumber("MAXI", "V", bounds), Error) << "neither short nor long form";
}

TEST(ScpiNumberTest, WrongSuffixesAreRefusedWithTheirCodes) {
    EXPECT_EQ(errorOf("5 A", "V"), ErrorCode::InvalidSuffix);
    EXPECT_EQ(errorOf("5 QV", "V"), ErrorCode::InvalidSuffix);
    EXPECT_EQ(errorOf("5 V", ""), ErrorCode::SuffixNotAllowed);
    EXPECT_EQ(errorOf("5 V2", "V"), ErrorCode::DataTypeError);
    EXPECT_EQ(errorOf("V", "V"), ErrorCode::DataTypeError);
    EXPECT_EQ(errorOf("", "V"), ErrorCode::DataTypeError);
}

TEST(ScpiNumberTest, RequestNumberTakesBoundsAndUnit) {
    CommandTable table;
    Session session;
    double volts = 0.0;
    table.add(
        "VOLTage",
        [&](Request& request) {
            volts = request.number(0, NumericBounds{0.0, 30.0, 5.0}, "V");
        },
        1, 1);
    yxfp_test::runLine(table, session, "VOLT 500 mV");
    EXPECT_DOUBLE_EQ(volts, 0.5);
    yxfp_test::runLine(table, session, "VOLT MAX");
    EXPECT_DOUBLE_EQ(volts, 30.0);
    yxfp_test::runLine(table, session, "VOLT 2 A");
    EXPECT_DOUBLE_EQ(volts, 30.0);
    EXPECT_EQ(session.errors.pop().format(), R"(-131,"Invalid suffix;A for V")");
}

}  // namespace
