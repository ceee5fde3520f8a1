#include <frontpanelhw/gpio_lines.h>
#include <frontpanelhw/gpio_panel_line.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(GpioLinesTest, AMissingChipGivesOneErrorNamingTheChipAndTheReason) {
    frontpanelhw::GpioLineConfig const config{"/dev/gpiochip97", 1, 2, 3, 4, 5, 6};
    try {
        (void)frontpanelhw::openGpioLines(config);
        FAIL() << "no exception";
    } catch (frontpanelhw::Hd44780BusError const& error) {
        std::string const message = error.what();
        EXPECT_NE(message.find("/dev/gpiochip97"), std::string::npos) << message;
        EXPECT_NE(message.find("No such file or directory"), std::string::npos) << message;
    }
}

// The D/C or reset line of a graphic display on a chip that does not exist.
TEST(GpioLinesTest, APanelLineOfAMissingChipNamesTheChipAndTheReason) {
    try {
        (void)frontpanelhw::graphic::openGpioPanelLine("/dev/gpiochip97", 5, false);
        FAIL() << "no exception";
    } catch (frontpanelhw::graphic::PanelBusError const& error) {
        std::string const message = error.what();
        EXPECT_NE(message.find("/dev/gpiochip97"), std::string::npos) << message;
        EXPECT_NE(message.find("No such file or directory"), std::string::npos) << message;
    }
}

}  // namespace
