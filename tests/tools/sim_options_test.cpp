#include "sim_options.h"

#include <yxfrontpanel/components.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace {

using frontpanelsim::parseOptions;
using frontpanelsim::PrintMode;
using frontpanelsim::UsageError;

// The message of the UsageError that `arguments` raise; empty when they are accepted.
std::string problemWith(std::vector<std::string> const& arguments) {
    try {
        parseOptions(arguments);
    } catch (UsageError const& error) {
        return error.what();
    }
    return {};
}

TEST(SimOptionsTest, DefaultsToAnInteractive20x4Panel) {
    auto const options = parseOptions({});
    EXPECT_EQ(options.chars, 20U);
    EXPECT_EQ(options.lines, 4U);
    EXPECT_FALSE(options.keyScript.has_value());
    EXPECT_EQ(options.print, PrintMode::None);
    EXPECT_FALSE(options.help);
    EXPECT_FALSE(options.idle.has_value()) << "the run picks its own default";
    EXPECT_FALSE(options.headless);
}

TEST(SimOptionsTest, IdleTakesSecondsAndZeroTurnsItOff) {
    EXPECT_EQ(parseOptions({"--idle", "60"}).idle, std::chrono::milliseconds{60000});
    EXPECT_EQ(parseOptions({"--idle=0.25"}).idle, std::chrono::milliseconds{250});
    EXPECT_EQ(parseOptions({"--idle", "0"}).idle, std::chrono::milliseconds{0});
    for (char const* bad : {"-1", "soon", "5s", "100000"}) {
        EXPECT_NE(problemWith({"--idle", bad}).find("--idle wants seconds"), std::string::npos)
            << bad;
    }
}

TEST(SimOptionsTest, HeadlessRunsWithoutAKeyScript) {
    EXPECT_TRUE(parseOptions({"--headless"}).headless);
    EXPECT_TRUE(parseOptions({"--headless", "--idle", "5"}).headless);
    EXPECT_NE(problemWith({"--headless", "--keys", "up"}).find("--headless"), std::string::npos);
}

TEST(SimOptionsTest, AcceptsTheSupportedSizes) {
    for (auto const& [text, chars, lines] :
         {std::tuple{"16x2", 16U, 2U}, std::tuple{"20x4", 20U, 4U}, std::tuple{"40x4", 40U, 4U}}) {
        auto const options = parseOptions({"--size", text});
        EXPECT_EQ(options.chars, chars) << text;
        EXPECT_EQ(options.lines, lines) << text;
    }
    EXPECT_EQ(parseOptions({"--size=40x4"}).chars, 40U);
}

TEST(SimOptionsTest, SizesTheDemoCannotFitAreRefusedClearly) {
    EXPECT_NE(problemWith({"--size", "12x2"}).find("12x2 does not fit"), std::string::npos);
    EXPECT_NE(problemWith({"--size", "20x1"}).find("does not fit"), std::string::npos);
    EXPECT_NE(problemWith({"--size", "200x4"}).find("does not fit"), std::string::npos);
}

TEST(SimOptionsTest, MalformedSizesAreRefused) {
    for (char const* text : {"20", "20x", "x4", "20*4", "20x4x2", "-20x4", "abc"}) {
        EXPECT_NE(problemWith({"--size", text}).find("COLSxLINES"), std::string::npos) << text;
    }
}

TEST(SimOptionsTest, KeysMakeAHeadlessRun) {
    auto const options = parseOptions({"--keys", "down enter", "--print", "last"});
    ASSERT_TRUE(options.keyScript.has_value());
    EXPECT_EQ(*options.keyScript, "down enter");
    EXPECT_EQ(options.print, PrintMode::Last);
}

TEST(SimOptionsTest, KeysFileIsRead) {
    std::string const path = ::testing::TempDir() + "sim_options_test.keys";
    std::ofstream(path) << "down\nenter\n";
    auto const options = parseOptions({"--keys-file", path, "--print=all"});
    EXPECT_EQ(*options.keyScript, "down\nenter\n");
    EXPECT_EQ(options.keyScriptSource, path);
    EXPECT_EQ(options.print, PrintMode::All);
    std::remove(path.c_str());
}

TEST(SimOptionsTest, UnreadableKeysFileIsNamed) {
    EXPECT_NE(problemWith({"--keys-file", "/no/such/file.keys"}).find("/no/such/file.keys"),
              std::string::npos);
}

TEST(SimOptionsTest, BadCombinationsAndValuesAreRefused) {
    EXPECT_NE(problemWith({"--keys", "a", "--keys", "b"}).find("once"), std::string::npos);
    EXPECT_NE(problemWith({"--print", "all"}).find("needs a key script"), std::string::npos);
    EXPECT_NE(problemWith({"--keys", "up", "--print", "some"}).find("'all' or 'last'"),
              std::string::npos);
    EXPECT_NE(problemWith({"--size"}).find("needs a value"), std::string::npos);
    EXPECT_NE(problemWith({"--colour"}).find("unknown option '--colour'"), std::string::npos);
}

TEST(SimOptionsTest, SettingsNamesAFileAndIsOffByDefault) {
    EXPECT_FALSE(parseOptions({}).settingsFile.has_value());
#if YXFP_HAS_SETTINGS
    EXPECT_EQ(parseOptions({"--settings", "/tmp/panel.json"}).settingsFile, "/tmp/panel.json");
    EXPECT_EQ(parseOptions({"--settings=panel.json"}).settingsFile, "panel.json");
    EXPECT_NE(problemWith({"--settings="}).find("needs a file name"), std::string::npos);
#else
    EXPECT_NE(problemWith({"--settings", "panel.json"}).find("nlohmann-json"), std::string::npos);
#endif
    EXPECT_NE(problemWith({"--settings"}).find("needs a value"), std::string::npos);
}

TEST(SimOptionsTest, HelpIsRecognisedAndExplainsEveryOption) {
    EXPECT_TRUE(parseOptions({"--help"}).help);
    EXPECT_TRUE(parseOptions({"-h"}).help);
    std::string const text = frontpanelsim::usage();
    for (char const* option : {"--size", "--keys", "--keys-file", "--print", "--idle", "--settings",
                               "--headless", "--help"}) {
        EXPECT_NE(text.find(option), std::string::npos) << option;
    }
    EXPECT_NE(text.find("LOCAL"), std::string::npos);
}

}  // namespace

namespace {

// --web-host names further hosts of the web panel; it is repeatable and needs --web.
TEST(SimOptionsTest, WebHostIsRepeatableAndNeedsWeb) {
#if YXFP_HAS_WEB && YXFP_HAS_REMOTE
    auto const options =
        parseOptions({"--web", "127.0.0.1:0", "--web-host", "panel.lab", "--web-host", "bench"});
    EXPECT_EQ(options.webHosts, (std::vector<std::string>{"panel.lab", "bench"}));
    EXPECT_EQ(problemWith({"--web", "127.0.0.1:0", "--web-host", "a b"}),
              "--web-host needs a host name such as panel.lab");
#else
    EXPECT_NE(problemWith({"--web", "127.0.0.1:0", "--web-host", "panel.lab"})
                  .find("install libwebsockets-dev"),
              std::string::npos);
#endif
    EXPECT_EQ(problemWith({"--web-host", "panel.lab"}), "--web-host needs --web");
}

}  // namespace
