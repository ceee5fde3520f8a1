#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_status.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scpi_run.h"

namespace {

using namespace yxfrontpanel::runtime::scpi;
using Lines = std::vector<std::string>;

class StatusCommandsTest : public ::testing::Test {
protected:
    StatusCommandsTest() {
        addCommonCommands(table, Identity{}, InstrumentHooks{[this] { ++resets; }, nullptr});
        table.add("TEST:FAIL", [](Request&) { throw Error(ErrorCode::DataOutOfRange, "x"); });
        table.add("TEST:DEVice", [](Request&) { throw Error(static_cast<ErrorCode>(7), "x"); });
        table.add("TEST:QUERy?", [](Request&) { throw Error(static_cast<ErrorCode>(-410), "x"); });
    }

    Lines run(std::string const& line) { return yxfp_test::runLine(table, session, line); }

    CommandTable table;
    Session session;
    int resets = 0;
};

TEST_F(StatusCommandsTest, UndefinedHeaderSetsTheCommandErrorBit) {
    run("NOPE");
    EXPECT_EQ(run("*ESR?"), Lines{"32"});
    EXPECT_EQ(run("*ESR?"), Lines{"0"});  // reading clears it
}

TEST_F(StatusCommandsTest, EachErrorRangeSetsItsOwnBit) {
    run("TEST:FAIL");
    EXPECT_EQ(run("*ESR?"), Lines{"16"});
    run("TEST:DEV");
    EXPECT_EQ(run("*ESR?"), Lines{"8"});
    run("TEST:QUER?");
    EXPECT_EQ(run("*ESR?"), Lines{"4"});
}

TEST_F(StatusCommandsTest, StbShowsEsbOnlyForEnabledEvents) {
    run("NOPE");
    EXPECT_EQ(run("*STB?"), Lines{"0"});
    run("*ESE 32");
    EXPECT_EQ(run("*ESE?"), Lines{"32"});
    EXPECT_EQ(run("*STB?"), Lines{"32"});
    run("*SRE 32");
    EXPECT_EQ(run("*SRE?"), Lines{"32"});
    EXPECT_EQ(run("*STB?"), Lines{"96"});  // ESB and MSS
    run("*ESR?");
    EXPECT_EQ(run("*STB?"), Lines{"0"});
}

TEST_F(StatusCommandsTest, EnablesOutOfRangeAreRefused) {
    run("*ESE 256");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::DataOutOfRange);
    EXPECT_EQ(run("*ESE?"), Lines{"0"});
    run("*SRE 64");  // bit 6 cannot be enabled
    EXPECT_EQ(run("*SRE?"), Lines{"0"});
}

TEST_F(StatusCommandsTest, OpcSetsOperationCompleteAndOpcQueryAnswersOne) {
    EXPECT_EQ(run("*OPC;*WAI;*OPC?"), Lines{"1"});
    EXPECT_EQ(run("*ESR?"), Lines{"1"});
}

TEST_F(StatusCommandsTest, ClsClearsEventsAndQueueButKeepsEnables) {
    run("*ESE 255;NOPE;*OPC");
    run("*CLS");
    EXPECT_EQ(run("*ESR?;*ESE?;SYST:ERR:COUN?"), (Lines{"0", "255", "0"}));
}

TEST_F(StatusCommandsTest, RstCallsTheResetHookAndTstAnswersZeroWithoutAHook) {
    run("*RST");
    EXPECT_EQ(resets, 1);
    EXPECT_EQ(run("*TST?"), Lines{"0"});
}

TEST(StatusHooksTest, TstAnswersTheSelfTestResult) {
    CommandTable table;
    Session session;
    addCommonCommands(table, Identity{}, InstrumentHooks{nullptr, [] { return 3; }});
    EXPECT_EQ(yxfp_test::runLine(table, session, "*TST?;*RST"), Lines{"3"});
    EXPECT_EQ(session.errors.size(), 0U);
}

TEST_F(StatusCommandsTest, VersionIsScpi1999) { EXPECT_EQ(run("SYST:VERS?"), Lines{"1999.0"}); }

TEST_F(StatusCommandsTest, ErrorCountAndOverflowAsTheLastEntry) {
    for (int i = 0; i < 20; ++i) {
        run("NOPE");
    }
    EXPECT_EQ(run("SYST:ERR:COUN?"), Lines{"16"});
    for (int i = 0; i < 15; ++i) {
        EXPECT_EQ(session.errors.pop().code, ErrorCode::UndefinedHeader);
    }
    EXPECT_EQ(run("SYST:ERR?"), Lines{R"(-350,"Queue overflow")"});
    EXPECT_EQ(run("SYST:ERR:NEXT?"), Lines{R"(0,"No error")"});
    EXPECT_EQ(run("*ESR?"), Lines{"40"});  // command error and device-specific (overflow)
}

TEST_F(StatusCommandsTest, OperationRegisterLatchesPositiveTransitions) {
    session.status.setCondition(StatusModel::Set::Operation, 0x10);
    EXPECT_EQ(run("STAT:OPER:COND?"), Lines{"16"});
    EXPECT_EQ(run("STAT:OPER?"), Lines{"16"});
    EXPECT_EQ(run("STATUS:OPERATION:EVENT?"), Lines{"0"});
    session.status.setCondition(StatusModel::Set::Operation, 0);
    EXPECT_EQ(run("STAT:OPER?"), Lines{"0"});  // no negative transition by default
}

TEST_F(StatusCommandsTest, NegativeTransitionFilterLatchesFallingBits) {
    run("STAT:QUES:NTR 4;STAT:QUES:PTR 0");
    EXPECT_EQ(run("STAT:QUES:NTR?;STAT:QUES:PTR?"), (Lines{"4", "0"}));
    session.status.setCondition(StatusModel::Set::Questionable, 6);
    EXPECT_EQ(run("STAT:QUES?"), Lines{"0"});
    session.status.setCondition(StatusModel::Set::Questionable, 0);
    EXPECT_EQ(run("STAT:QUES:EVEN?"), Lines{"4"});
}

TEST_F(StatusCommandsTest, EnabledEventsSetTheSummaryBitsOfTheStatusByte) {
    run("STAT:OPER:ENAB 1;STAT:QUES:ENAB 2;*SRE 128");
    EXPECT_EQ(run("STAT:OPER:ENAB?;STAT:QUES:ENAB?"), (Lines{"1", "2"}));
    session.status.setCondition(StatusModel::Set::Operation, 1);
    EXPECT_EQ(run("*STB?"), Lines{"192"});  // OPER summary and MSS
    session.status.setCondition(StatusModel::Set::Questionable, 2);
    EXPECT_EQ(run("*STB?"), Lines{"200"});
    run("*CLS");
    EXPECT_EQ(run("*STB?"), Lines{"0"});
}

TEST_F(StatusCommandsTest, PresetClearsTheScpiEnablesButNotEse) {
    run("STAT:OPER:ENAB 7;STAT:QUES:NTR 1;*ESE 4");
    run("STAT:PRES");
    EXPECT_EQ(run("STAT:OPER:ENAB?;STAT:QUES:NTR?;STAT:QUES:PTR?;*ESE?"),
              (Lines{"0", "0", "32767", "4"}));
}

TEST_F(StatusCommandsTest, StbShowsMessageAvailableFromTheTransport) {
    session.messageAvailable = true;
    EXPECT_EQ(run("*STB?"), Lines{"16"});
    session.deviceClear();
    EXPECT_EQ(run("*STB?"), Lines{"0"});
}

TEST(StatusPerClientTest, OneClientsErrorsAndEnablesDoNotReachAnother) {
    CommandTable table;
    addCommonCommands(table, Identity{});
    Session first;
    Session second;
    yxfp_test::runLine(table, first, "NOPE;*ESE 32");
    EXPECT_EQ(yxfp_test::runLine(table, second, "*STB?;*ESE?;*ESR?;SYST:ERR:COUN?"),
              (Lines{"0", "0", "0", "0"}));
    EXPECT_EQ(yxfp_test::runLine(table, first, "*STB?"), Lines{"32"});
}

}  // namespace
