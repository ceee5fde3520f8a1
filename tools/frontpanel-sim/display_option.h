#pragma once

#include <frontpanelhw/hd44780_charset.h>

#include <cstdint>
#include <string>

#include "graphic_display_option.h"
#include "graphic_module_option.h"

namespace frontpanelsim {

/** Which display the simulator's panel draws on (--display). */
struct DisplayOption {
    enum class Kind {
        Terminal,       // the panel's own frames (terminal, or text with --print)
        Hd44780Model,   // what an HD44780 module would show, from the controller model
        Hd44780Device,  // a real module behind an I2C backpack, or a capture file or FIFO
        Pixels,         // what a graphic module shows, drawn with braille or half blocks
        Png,            // the panel's own frames, and each as a PNG picture of a module
        Framebuffer,    // the panel's own frames, and the panel on a Linux framebuffer
        GraphicModule   // an OLED or ST7920 module on I2C or SPI (graphicModule)
    };
    Kind kind = Kind::Terminal;
    frontpanelhw::Hd44780Rom rom = frontpanelhw::Hd44780Rom::A00;
    std::string path;                   // Hd44780Device: /dev/i2c-N, a regular file or a FIFO;
                                        // Png: the file; Framebuffer: the device or file
    std::uint8_t address = 0x27;        // Hd44780Device: 7-bit I2C address of the expander
    GraphicTarget graphic;              // Pixels, Png, Framebuffer: the module's pixels and options
    GraphicModuleOption graphicModule;  // GraphicModule: the module, its bus and lines
    std::string font = "6x8";  // the pixel displays' font (--font): 6x8, 8x16 or a PSF file
};

/** Parses the value of --display: "terminal", "hd44780[:a00|a02]",
 *  "hd44780-i2c:PATH[@ADDRESS][:a00|a02]" (ADDRESS as 0x27 or 39, 0x03-0x77), or one of the
 *  pixel displays of parseGraphicDisplayOption, or a graphic module (see
 *  parseGraphicModuleOption).
 *  @throws UsageError naming the value and what is wrong. */
DisplayOption parseDisplayOption(std::string const& text);

}  // namespace frontpanelsim
