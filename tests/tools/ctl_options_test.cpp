#include "ctl_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using frontpanelctl::parseCtlOptions;
using frontpanelctl::UsageError;
using Args = std::vector<std::string>;

TEST(CtlOptionsTest, TakesTheAddressAndEveryCommandAfterIt) {
    auto const options =
        parseCtlOptions(Args{"127.0.0.1:5025", "*IDN?", "--screen", "SYST:KEY UP"});
    EXPECT_EQ(options.address, "127.0.0.1:5025");
    EXPECT_EQ(options.commands, (Args{"*IDN?", "--screen", "SYST:KEY UP"}));
    EXPECT_FALSE(options.screen);
}

TEST(CtlOptionsTest, ReadsOptionsBeforeTheAddress) {
    auto const options =
        parseCtlOptions(Args{"--screen", "--token=abc", "--timeout", "0.25", "unix:/tmp/p.sock"});
    EXPECT_TRUE(options.screen);
    EXPECT_EQ(options.token, "abc");
    EXPECT_EQ(options.timeout.count(), 250);
    EXPECT_EQ(options.address, "unix:/tmp/p.sock");
}

TEST(CtlOptionsTest, HelpNeedsNothingElse) { EXPECT_TRUE(parseCtlOptions(Args{"--help"}).help); }

TEST(CtlOptionsTest, RefusesUnusableCommandLines) {
    for (Args const& arguments :
         {Args{}, Args{"127.0.0.1:5025"}, Args{"--screen"}, Args{"--bogus", "h:1", "*IDN?"},
          Args{"--timeout", "0", "h:1", "*IDN?"}, Args{"--timeout", "x", "h:1", "*IDN?"},
          Args{"--token"}, Args{"no-port", "*IDN?"}, Args{"h:99999", "*IDN?"}}) {
        EXPECT_THROW(parseCtlOptions(arguments), UsageError) << ::testing::PrintToString(arguments);
    }
}

TEST(CtlOptionsTest, NamesTheBadAddress) {
    try {
        parseCtlOptions(Args{"somewhere", "*IDN?"});
        FAIL();
    } catch (UsageError const& error) {
        EXPECT_NE(std::string(error.what()).find("\"somewhere\""), std::string::npos)
            << error.what();
    }
}

}  // namespace
