#pragma once

#include <frontpanelhw/hd44780_charset.h>

#include <cstdint>
#include <string>

#include "graphic_module_option.h"

namespace frontpanelsim {

/** Which display the simulator's panel draws on (--display). */
struct DisplayOption {
    enum class Kind {
        Terminal,       // the panel's own frames (terminal, or text with --print)
        Hd44780Model,   // what an HD44780 module would show, from the controller model
        Hd44780Device,  // a real module behind an I2C backpack, or a capture file or FIFO
        GraphicModule   // an OLED or ST7920 module on I2C or SPI (graphicModule)
    };
    Kind kind = Kind::Terminal;
    frontpanelhw::Hd44780Rom rom = frontpanelhw::Hd44780Rom::A00;
    std::string path;                   // Hd44780Device: /dev/i2c-N, a regular file or a FIFO
    std::uint8_t address = 0x27;        // Hd44780Device: 7-bit I2C address of the expander
    GraphicModuleOption graphicModule;  // GraphicModule: the module, its bus and lines
};

/** Parses the value of --display: "terminal", "hd44780[:a00|a02]",
 *  "hd44780-i2c:PATH[@ADDRESS][:a00|a02]" (ADDRESS as 0x27 or 39, 0x03-0x77) or a graphic
 *  module (see parseGraphicModuleOption).
 *  @throws UsageError naming the value and what is wrong. */
DisplayOption parseDisplayOption(std::string const& text);

}  // namespace frontpanelsim
