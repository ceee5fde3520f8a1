#include "display_option.h"

#include <gtest/gtest.h>

#include "sim_options.h"

namespace {

using frontpanelhw::Hd44780Rom;
using frontpanelsim::DisplayOption;
using frontpanelsim::parseDisplayOption;
using frontpanelsim::parseOptions;
using frontpanelsim::UsageError;
using Kind = frontpanelsim::DisplayOption::Kind;

std::string problemWith(std::string const& text) {
    try {
        (void)parseDisplayOption(text);
    } catch (UsageError const& error) {
        return error.what();
    }
    return {};
}

TEST(DisplayOptionTest, TerminalIsTheDefault) {
    EXPECT_EQ(parseOptions({}).display.kind, Kind::Terminal);
    EXPECT_EQ(parseOptions({"--display", "terminal"}).display.kind, Kind::Terminal);
}

TEST(DisplayOptionTest, ModelDisplayTakesAnOptionalRom) {
    auto const plain = parseDisplayOption("hd44780");
    EXPECT_EQ(plain.kind, Kind::Hd44780Model);
    EXPECT_EQ(plain.rom, Hd44780Rom::A00);
    EXPECT_EQ(parseDisplayOption("hd44780:a02").rom, Hd44780Rom::A02);
    EXPECT_EQ(parseOptions({"--display=hd44780:a00", "--keys", "up"}).display.kind,
              Kind::Hd44780Model);
}

TEST(DisplayOptionTest, DeviceDisplayTakesPathAddressAndRom) {
    auto const plain = parseDisplayOption("hd44780-i2c:/dev/i2c-1");
    EXPECT_EQ(plain.kind, Kind::Hd44780Device);
    EXPECT_EQ(plain.path, "/dev/i2c-1");
    EXPECT_EQ(plain.address, 0x27);
    EXPECT_EQ(plain.rom, Hd44780Rom::A00);
    auto const full = parseDisplayOption("hd44780-i2c:/dev/i2c-3@0x3F:a02");
    EXPECT_EQ(full.path, "/dev/i2c-3");
    EXPECT_EQ(full.address, 0x3F);
    EXPECT_EQ(full.rom, Hd44780Rom::A02);
    EXPECT_EQ(parseDisplayOption("hd44780-i2c:capture.bin@39").address, 39);
}

TEST(DisplayOptionTest, BadValuesNameWhatIsWrong) {
    EXPECT_NE(problemWith("lcd").find("unknown display"), std::string::npos);
    EXPECT_NE(problemWith("hd44780:a01").find("unknown display"), std::string::npos);
    EXPECT_NE(problemWith("hd44780-i2c:").find("path is missing"), std::string::npos);
    EXPECT_NE(problemWith("hd44780-i2c:@0x27").find("path is missing"), std::string::npos);
    for (char const* address : {"0x78", "0x02", "x", ""}) {
        EXPECT_NE(problemWith(std::string("hd44780-i2c:/dev/i2c-1@") + address)
                      .find("not a 7-bit address"),
                  std::string::npos)
            << address;
    }
}

}  // namespace
