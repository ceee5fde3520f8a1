#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace frontpanelsim {

/** A GPIO line of the simulator's options: CHIP:LINE. */
struct GpioLineOption {
    std::string chip;   // a path, a name (gpiochip0) or a number
    unsigned line = 0;  // the line offset on the chip
};

/** Columns of every graphic module's glass (SSD1306, SH1106 and ST7920 alike). */
inline constexpr unsigned kGraphicModuleWidth = 128;

/** A graphic module on a bus (--display ssd1306-i2c:..., sh1106-spi:..., st7920-spi:...). */
struct GraphicModuleOption {
    enum class Chip { Ssd1306, Sh1106, St7920 };
    Chip chip = Chip::Ssd1306;
    bool spi = false;
    /** /dev/i2c-N, /dev/spidevB.C, or a regular file or FIFO that receives the capture. */
    std::string path;
    /** I2C: the 7-bit address (0x3C, or 0x3D with SA0 high). */
    std::uint8_t address = 0x3C;
    /** Rows of the glass: 64 or 32 (the ST7920: 64). */
    unsigned height = 64;
    /** The module is mounted upside down. */
    bool flipped = false;
    /** The OLED's contrast 0-255. */
    std::uint8_t contrast = 0x7F;
    /** SPI: the D/C line (needed for an OLED on an SPI device, not for a capture). */
    std::optional<GpioLineOption> dataCommand;
    /** SPI: the RESET line, when wired to a GPIO. */
    std::optional<GpioLineOption> reset;
};

/** Whether the --display value `text` names a graphic module kind (its prefix). */
bool isGraphicModuleOption(std::string const& text);

/** Parses a --display value of a graphic module:
 *  "ssd1306-i2c:PATH[@ADDRESS][:128x64|:128x32][:flip][:contrast=N]", "sh1106-i2c:..." alike,
 *  "ssd1306-spi:PATH[:dc=CHIP:LINE][,reset=CHIP:LINE][:128x64|:128x32][:flip][:contrast=N]",
 *  "sh1106-spi:..." alike, "st7920-spi:PATH[:reset=CHIP:LINE][:flip]". Items after the path are
 *  separated by ':' or ','.
 *  @throws UsageError naming the value and what is wrong. */
GraphicModuleOption parseGraphicModuleOption(std::string const& text);

/** The --help lines of the graphic module kinds. */
std::string graphicModuleHelp();

}  // namespace frontpanelsim
