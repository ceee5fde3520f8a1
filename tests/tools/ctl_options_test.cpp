#include "ctl_options.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "temp_directory.h"

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

namespace {

using frontpanelctl::resolveToken;

TEST(CtlOptionsTest, WarnsThatATokenOnTheCommandLineIsVisible) {
    auto const options = parseCtlOptions(Args{"--token", "abc", "h:1", "*IDN?"});
    ASSERT_EQ(options.warnings.size(), 1U);
    EXPECT_NE(options.warnings[0].find("process list"), std::string::npos);
    EXPECT_TRUE(parseCtlOptions(Args{"h:1", "*IDN?"}).warnings.empty());
}

TEST(CtlOptionsTest, ReadsTheTokenFromTheFirstLineOfAFile) {
    yxfp_test::TempDirectory directory;
    std::string const file = directory.path() + "/token";
    std::ofstream(file) << "s3cret\nignored\n";
    auto options = parseCtlOptions(Args{"--token-file", file, "h:1", "*IDN?"});
    EXPECT_TRUE(options.warnings.empty());
    resolveToken(options, "from-environment");
    EXPECT_EQ(options.token, "s3cret");
}

TEST(CtlOptionsTest, TakesTheTokenFromTheEnvironmentWhenNoneIsGiven) {
    auto options = parseCtlOptions(Args{"h:1", "*IDN?"});
    resolveToken(options, "from-environment");
    EXPECT_EQ(options.token, "from-environment");
    auto given = parseCtlOptions(Args{"--token", "abc", "h:1", "*IDN?"});
    resolveToken(given, "from-environment");
    EXPECT_EQ(given.token, "abc");
    auto none = parseCtlOptions(Args{"h:1", "*IDN?"});
    resolveToken(none, nullptr);
    EXPECT_EQ(none.token, "");
}

TEST(CtlOptionsTest, RefusesUnusableTokenFiles) {
    yxfp_test::TempDirectory directory;
    std::string const empty = directory.path() + "/empty";
    std::ofstream(empty) << "\n";
    std::string const huge = directory.path() + "/huge";
    std::ofstream(huge) << std::string(5000, 'x');
    for (std::string const& file : {directory.path() + "/missing", empty, huge}) {
        auto options = parseCtlOptions(Args{"--token-file", file, "h:1", "*IDN?"});
        EXPECT_THROW(resolveToken(options, nullptr), UsageError) << file;
    }
    EXPECT_THROW(parseCtlOptions(Args{"--token", "a", "--token-file", empty, "h:1", "*IDN?"}),
                 UsageError);
}

}  // namespace
