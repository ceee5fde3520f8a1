// --display values of the graphic modules.
#include <gtest/gtest.h>

#include <string>

#include "display_option.h"
#include "sim_options.h"

namespace {

using frontpanelsim::DisplayOption;
using frontpanelsim::GraphicModuleOption;
using frontpanelsim::parseDisplayOption;
using Chip = GraphicModuleOption::Chip;

std::string problemWith(std::string const& value) {
    try {
        (void)parseDisplayOption(value);
    } catch (frontpanelsim::UsageError const& error) {
        return error.what();
    }
    return "accepted";
}

TEST(GraphicModuleOptionTest, I2cOledWithAddressAndGeometry) {
    DisplayOption const option = parseDisplayOption("sh1106-i2c:/dev/i2c-1@0x3D:128x32");
    ASSERT_EQ(option.kind, DisplayOption::Kind::GraphicModule);
    GraphicModuleOption const& module = option.graphicModule;
    EXPECT_EQ(module.chip, Chip::Sh1106);
    EXPECT_FALSE(module.spi);
    EXPECT_EQ(module.path, "/dev/i2c-1");
    EXPECT_EQ(module.address, 0x3D);
    EXPECT_EQ(module.height, 32U);
    EXPECT_FALSE(module.flipped);
}

TEST(GraphicModuleOptionTest, I2cOledDefaultsTo0x3CAnd128x64) {
    GraphicModuleOption const module = parseDisplayOption("ssd1306-i2c:out.bin").graphicModule;
    EXPECT_EQ(module.chip, Chip::Ssd1306);
    EXPECT_EQ(module.address, 0x3C);
    EXPECT_EQ(module.height, 64U);
    EXPECT_EQ(module.contrast, 0x7F);
}

TEST(GraphicModuleOptionTest, SpiOledWithDataCommandResetFlipAndContrast) {
    GraphicModuleOption const module =
        parseDisplayOption(
            "ssd1306-spi:/dev/spidev0.0:dc=gpiochip0:25,reset=gpiochip0:24:flip:contrast=200")
            .graphicModule;
    EXPECT_TRUE(module.spi);
    EXPECT_EQ(module.path, "/dev/spidev0.0");
    ASSERT_TRUE(module.dataCommand.has_value());
    EXPECT_EQ(module.dataCommand->chip, "gpiochip0");
    EXPECT_EQ(module.dataCommand->line, 25U);
    ASSERT_TRUE(module.reset.has_value());
    EXPECT_EQ(module.reset->line, 24U);
    EXPECT_TRUE(module.flipped);
    EXPECT_EQ(module.contrast, 200);
}

TEST(GraphicModuleOptionTest, SpiCaptureNeedsNoLines) {
    GraphicModuleOption const module = parseDisplayOption("sh1106-spi:capture.bin").graphicModule;
    EXPECT_FALSE(module.dataCommand.has_value());
    EXPECT_FALSE(module.reset.has_value());
}

TEST(GraphicModuleOptionTest, St7920TakesResetAndFlip) {
    GraphicModuleOption const module =
        parseDisplayOption("st7920-spi:/dev/spidev0.1:reset=1:17:flip").graphicModule;
    EXPECT_EQ(module.chip, Chip::St7920);
    EXPECT_EQ(module.reset->chip, "1");
    EXPECT_EQ(module.reset->line, 17U);
    EXPECT_TRUE(module.flipped);
}

TEST(GraphicModuleOptionTest, BadValuesSayWhatIsWrong) {
    EXPECT_EQ(problemWith("ssd1306-i2c:"), "--display ssd1306-i2c:: the device path is missing");
    EXPECT_EQ(problemWith("ssd1306-i2c:/dev/i2c-1@0x80"),
              "--display ssd1306-i2c:/dev/i2c-1@0x80: the I2C address '0x80' is not a 7-bit "
              "address from 0x03 to 0x77");
    EXPECT_EQ(problemWith("ssd1306-i2c:/dev/i2c-1:128x48"),
              "--display ssd1306-i2c:/dev/i2c-1:128x48: unknown item '128x48'");
    EXPECT_EQ(problemWith("sh1106-spi:/dev/spidev0.0:dc=gpiochip0"),
              "--display sh1106-spi:/dev/spidev0.0:dc=gpiochip0: dc= needs a GPIO line as "
              "CHIP:LINE, e.g. gpiochip0:25");
    EXPECT_EQ(problemWith("st7920-spi:/dev/spidev0.0:dc=0:1"),
              "--display st7920-spi:/dev/spidev0.0:dc=0:1: the ST7920 has no D/C line");
    EXPECT_EQ(problemWith("st7920-spi:/dev/spidev0.0:128x32"),
              "--display st7920-spi:/dev/spidev0.0:128x32: unknown item '128x32'");
    EXPECT_EQ(problemWith("ssd1306-i2c:x:contrast=300"),
              "--display ssd1306-i2c:x:contrast=300: the contrast '300' is not 0-255");
}

TEST(GraphicModuleOptionTest, HelpNamesEveryKind) {
    std::string const help = frontpanelsim::usage();
    for (char const* kind :
         {"ssd1306-i2c:", "sh1106-i2c:", "ssd1306-spi:", "sh1106-spi:", "st7920-spi:"}) {
        EXPECT_NE(help.find(kind), std::string::npos) << kind;
    }
}

}  // namespace
