#include "display_option.h"

#include <cstdlib>

#include "sim_options.h"

namespace frontpanelsim {

namespace {

constexpr char const* kModelPrefix = "hd44780";
constexpr char const* kDevicePrefix = "hd44780-i2c:";
constexpr unsigned long kFirstAddress = 0x03;  // 0x00-0x02 and 0x78-0x7F are reserved
constexpr unsigned long kLastAddress = 0x77;

UsageError badValue(std::string const& text, std::string const& problem) {
    return UsageError("--display " + text + ": " + problem +
                      " (terminal, hd44780[:a00|a02], hd44780-i2c:PATH[@ADDRESS][:a00|a02], "
                      "pixels, png:FILE or fbdev:PATH; see --help)");
}

// Takes a trailing ":a00" or ":a02" off `rest`.
frontpanelhw::Hd44780Rom takeRom(std::string& rest) {
    for (auto const rom : {frontpanelhw::Hd44780Rom::A00, frontpanelhw::Hd44780Rom::A02}) {
        std::string const suffix = std::string(":") + frontpanelhw::hd44780RomName(rom);
        if (rest.size() >= suffix.size() &&
            rest.compare(rest.size() - suffix.size(), suffix.size(), suffix) == 0) {
            rest.erase(rest.size() - suffix.size());
            return rom;
        }
    }
    return frontpanelhw::Hd44780Rom::A00;
}

}  // namespace

DisplayOption parseDisplayOption(std::string const& text) {
    DisplayOption option;
    if (text == "terminal") {
        return option;
    }
    if (isGraphicModuleOption(text)) {
        option.kind = DisplayOption::Kind::GraphicModule;
        option.graphicModule = parseGraphicModuleOption(text);
        return option;
    }
    if (parseGraphicDisplayOption(text, option)) {
        return option;
    }
    if (text.rfind(kDevicePrefix, 0) == 0) {
        option.kind = DisplayOption::Kind::Hd44780Device;
        std::string rest = text.substr(std::string(kDevicePrefix).size());
        option.rom = takeRom(rest);
        if (auto const at = rest.rfind('@'); at != std::string::npos) {
            std::string const address = rest.substr(at + 1);
            char* end = nullptr;
            unsigned long const value = std::strtoul(address.c_str(), &end, 0);
            if (address.empty() || *end != '\0' || value < kFirstAddress || value > kLastAddress) {
                throw badValue(text, "the I2C address '" + address +
                                         "' is not a 7-bit address from 0x03 to 0x77");
            }
            option.address = static_cast<std::uint8_t>(value);
            rest.erase(at);
        }
        if (rest.empty()) {
            throw badValue(text, "the device path is missing");
        }
        option.path = rest;
        return option;
    }
    if (text.rfind(kModelPrefix, 0) == 0) {
        std::string rest = text;
        option.kind = DisplayOption::Kind::Hd44780Model;
        option.rom = takeRom(rest);
        if (rest == kModelPrefix) {
            return option;
        }
    }
    throw badValue(text, "unknown display");
}

}  // namespace frontpanelsim
