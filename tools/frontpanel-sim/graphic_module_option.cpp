#include "graphic_module_option.h"

#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

#include "sim_options.h"

namespace frontpanelsim {

namespace {

using Chip = GraphicModuleOption::Chip;

struct Kind {
    char const* prefix;
    Chip chip;
    bool spi;
};

constexpr std::array<Kind, 5> kKinds = {{{"ssd1306-i2c:", Chip::Ssd1306, false},
                                         {"sh1106-i2c:", Chip::Sh1106, false},
                                         {"ssd1306-spi:", Chip::Ssd1306, true},
                                         {"sh1106-spi:", Chip::Sh1106, true},
                                         {"st7920-spi:", Chip::St7920, true}}};

constexpr unsigned long kFirstAddress = 0x03;  // 0x00-0x02 and 0x78-0x7F are reserved
constexpr unsigned long kLastAddress = 0x77;

UsageError badValue(std::string const& text, std::string const& problem) {
    return UsageError("--display " + text + ": " + problem);
}

bool startsWith(std::string const& text, std::string const& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// A whole number from `text` in 0..`maximum`; nullopt when it is not one.
std::optional<unsigned long> number(std::string const& text, unsigned long maximum) {
    if (text.empty()) {
        return std::nullopt;
    }
    char* end = nullptr;
    unsigned long const value = std::strtoul(text.c_str(), &end, 0);
    if (*end != '\0' || value > maximum || text[0] == '-') {
        return std::nullopt;
    }
    return value;
}

std::vector<std::string> items(std::string const& text) {
    std::vector<std::string> result(1);
    for (char const c : text) {
        if (c == ':' || c == ',') {
            result.emplace_back();
        } else {
            result.back() += c;
        }
    }
    return result;
}

}  // namespace

bool isGraphicModuleOption(std::string const& text) {
    for (Kind const& kind : kKinds) {
        if (startsWith(text, kind.prefix)) {
            return true;
        }
    }
    return false;
}

GraphicModuleOption parseGraphicModuleOption(std::string const& text) {
    GraphicModuleOption option;
    std::string rest;
    for (Kind const& kind : kKinds) {
        if (startsWith(text, kind.prefix)) {
            option.chip = kind.chip;
            option.spi = kind.spi;
            rest = text.substr(std::string(kind.prefix).size());
        }
    }
    std::vector<std::string> const parts = items(rest);
    std::string path = parts[0];
    if (!option.spi) {
        if (auto const at = path.rfind('@'); at != std::string::npos) {
            std::string const address = path.substr(at + 1);
            auto const value = number(address, kLastAddress);
            if (!value || *value < kFirstAddress) {
                throw badValue(text, "the I2C address '" + address +
                                         "' is not a 7-bit address from 0x03 to 0x77");
            }
            option.address = static_cast<std::uint8_t>(*value);
            path.erase(at);
        }
    }
    if (path.empty()) {
        throw badValue(text, "the device path is missing");
    }
    option.path = path;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        std::string const& item = parts[i];
        bool const oled = option.chip != Chip::St7920;
        if (oled && (item == "128x64" || item == "128x32")) {
            option.height = item == "128x64" ? 64 : 32;
        } else if (item == "flip") {
            option.flipped = true;
        } else if (oled && startsWith(item, "contrast=")) {
            auto const value = number(item.substr(9), 255);
            if (!value) {
                throw badValue(text, "the contrast '" + item.substr(9) + "' is not 0-255");
            }
            option.contrast = static_cast<std::uint8_t>(*value);
        } else if (option.spi && (startsWith(item, "dc=") || startsWith(item, "reset="))) {
            bool const dc = startsWith(item, "dc=");
            if (dc && !oled) {
                throw badValue(text, "the ST7920 has no D/C line");
            }
            std::string const chip = item.substr(dc ? 3 : 6);
            auto const line = i + 1 < parts.size() ? number(parts[i + 1], 65535) : std::nullopt;
            if (chip.empty() || !line) {
                throw badValue(text, std::string(dc ? "dc" : "reset") +
                                         "= needs a GPIO line as CHIP:LINE, e.g. gpiochip0:25");
            }
            (dc ? option.dataCommand : option.reset) =
                GpioLineOption{chip, static_cast<unsigned>(*line)};
            ++i;
        } else {
            throw badValue(text, "unknown item '" + item + "'");
        }
    }
    return option;
}

std::string graphicModuleHelp() {
    return "                        ssd1306-i2c:PATH[@ADDRESS][:128x64|:128x32]  also drive\n"
           "                          an SSD1306 OLED on the I2C bus PATH (/dev/i2c-1;\n"
           "                          address default 0x3C, 0x3D with SA0 high)\n"
           "                        sh1106-i2c:PATH[@ADDRESS][:128x64|:128x32]  the same for\n"
           "                          an SH1106 OLED (the usual 1.3\" modules)\n"
           "                        ssd1306-spi:PATH:dc=CHIP:LINE[,reset=CHIP:LINE][:128x..]\n"
           "                        sh1106-spi:...  an OLED on the SPI device PATH\n"
           "                          (/dev/spidev0.0) with its D/C input (and RESET) on\n"
           "                          GPIO lines, e.g. dc=gpiochip0:25,reset=gpiochip0:24\n"
           "                        st7920-spi:PATH[:reset=CHIP:LINE]  a 128x64 ST7920 LCD\n"
           "                          in serial mode (PSB low) on the SPI device PATH\n"
           "                        The OLEDs also take :flip (mounted upside down) and\n"
           "                          :contrast=0-255, the ST7920 :flip. A regular file or\n"
           "                          FIFO as PATH receives the bus transfers as records\n"
           "                          (16-bit little-endian length, then the I2C control\n"
           "                          byte or the SPI D/C level, then the bytes) and needs\n"
           "                          no GPIO line. The panel is the --size cells drawn\n"
           "                          with the 6x8 font; it must fit (21x8 on 128x64,\n"
           "                          21x4 on 128x32).\n";
}

}  // namespace frontpanelsim
