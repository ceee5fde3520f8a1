#include "input_option.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim_options.h"

namespace {

using frontpanelsim::InputOption;
using frontpanelsim::parseInputOption;
using frontpanelsim::UsageError;

std::string problemWith(std::string const& text) {
    try {
        parseInputOption(text);
    } catch (UsageError const& error) {
        return error.what();
    }
    return {};
}

std::string optionsProblem(std::vector<std::string> const& arguments) {
    try {
        frontpanelsim::parseOptions(arguments);
    } catch (UsageError const& error) {
        return error.what();
    }
    return {};
}

TEST(InputOptionTest, EvdevPathAlone) {
    InputOption const option = parseInputOption("evdev:/dev/input/event0");
    EXPECT_EQ(option.kind, InputOption::Kind::Evdev);
    EXPECT_EQ(option.device, "/dev/input/event0");
    EXPECT_FALSE(option.grab);
    EXPECT_FALSE(option.reopen);
    EXPECT_EQ(option.keyMap, "");
    EXPECT_FALSE(option.encoder.acceleration);
}

TEST(InputOptionTest, EvdevSettings) {
    InputOption const option = parseInputOption(
        "evdev:/dev/input/by-path/platform-keys-event:grab:reopen:keys=KEY_F1=back,KEY_SELECT="
        "enter:reverse:detents=4:accel");
    EXPECT_EQ(option.device, "/dev/input/by-path/platform-keys-event");
    EXPECT_TRUE(option.grab);
    EXPECT_TRUE(option.reopen);
    EXPECT_EQ(option.keyMap, "KEY_F1=back,KEY_SELECT=enter");
    EXPECT_TRUE(option.encoder.reverse);
    EXPECT_EQ(option.encoder.detentsPerStep, 4U);
    EXPECT_TRUE(option.encoder.acceleration);
}

TEST(InputOptionTest, GpioChipAndLines) {
    InputOption const option = parseInputOption("gpio:gpiochip0:up=5,down=6,active-low");
    EXPECT_EQ(option.kind, InputOption::Kind::Gpio);
    EXPECT_EQ(option.device, "gpiochip0");
    EXPECT_EQ(option.gpioLines, "up=5,down=6,active-low");
}

TEST(InputOptionTest, ProblemsNameTheOptionAndSayWhatIsWrong) {
    EXPECT_EQ(problemWith("/dev/input/event0"),
              "--input wants evdev:PATH[:SETTINGS] or gpio:CHIP:LINES; got '/dev/input/event0'");
    EXPECT_EQ(problemWith("evdev:"),
              "--input evdev:: the path is missing, e.g. evdev:/dev/input/event0");
    EXPECT_EQ(problemWith("evdev:/dev/input/event0:grabbed"),
              "--input evdev:/dev/input/event0:grabbed: unknown setting 'grabbed' (known: grab, "
              "reopen, keys=MAP, reverse, detents=N, accel)");
    EXPECT_EQ(problemWith("evdev:/dev/input/event0:keys=KEY_NOPE=up"),
              "--input evdev:/dev/input/event0:keys=KEY_NOPE=up: unknown key name 'KEY_NOPE' in "
              "key map entry 'KEY_NOPE=up': use a Linux key name such as KEY_F1 or BTN_0 (evtest "
              "lists a device's keys) or a decimal key code");
    EXPECT_EQ(problemWith("evdev:/dev/input/event0:detents=0"),
              "--input evdev:/dev/input/event0:detents=0: detents wants a number from 1 to 999; "
              "got '0'");
    EXPECT_EQ(problemWith("gpio:gpiochip0"),
              "--input gpio:gpiochip0: write gpio:CHIP:LINES, e.g. "
              "gpio:gpiochip0:up=5,down=6,enter=13");
    EXPECT_EQ(problemWith("gpio:gpiochip0:up=x"),
              "--input gpio:gpiochip0:up=x: 'x' in GPIO entry 'up=x' is not a number from 0 to "
              "65535");
}

TEST(InputOptionTest, InputIsRepeatable) {
    auto const options = frontpanelsim::parseOptions(
        {"--input", "evdev:/tmp/a", "--input=gpio:gpiochip1:enter=3", "--headless"});
    ASSERT_EQ(options.inputs.size(), 2U);
    EXPECT_EQ(options.inputs[0].device, "/tmp/a");
    EXPECT_EQ(options.inputs[1].device, "gpiochip1");
}

TEST(InputOptionTest, PrintNeedsAKeyScriptOrAHeadlessRunWithInputs) {
    EXPECT_EQ(optionsProblem({"--headless", "--input", "evdev:/tmp/a", "--print", "last"}), "");
    EXPECT_EQ(optionsProblem({"--input", "evdev:/tmp/a", "--print", "last"}),
              "--print needs a key script (--keys or --keys-file) or --headless with --input");
    EXPECT_EQ(optionsProblem({"--keys", "up", "--input", "evdev:/tmp/a"}),
              "--input cannot drive a key script; use --headless with --input");
}

TEST(InputOptionTest, HelpExplainsInput) {
    std::string const text = frontpanelsim::usage();
    for (char const* piece : {"--input evdev:PATH", "--input gpio:CHIP:LINES", "grab", "reopen",
                              "keys=MAP", "detents=N", "accel", "active-low", "debounce=MS"}) {
        EXPECT_NE(text.find(piece), std::string::npos) << piece;
    }
}

}  // namespace
