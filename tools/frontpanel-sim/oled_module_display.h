#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/graphic/font.h>

#include <chrono>
#include <functional>
#include <memory>

#include "graphic_module_option.h"

namespace frontpanelsim {

/** Opens the module of `option` (its bus, the GPIO lines given) and returns a display that
 *  draws each frame on `screen` (which must outlive it) and on the module, with `screen`'s
 *  cells drawn with `font`. The module's driver waits through `wait`, by default really (a
 *  key script hooks the toolkit's sleeps away, the module's must not be). A FIFO whose reader went
 *  away fails a draw instead of ending the program (the bus writes with SIGPIPE blocked).
 *  @throws std::exception with a message naming the device and the reason when the bus or a
 *  line cannot be opened, an OLED on an SPI device has no D/C line, or the cells do not fit. */
std::unique_ptr<frontpanelhw::IDisplay> makeGraphicModuleDisplay(
    GraphicModuleOption const& option, frontpanelhw::IDisplay& screen,
    frontpanelhw::graphic::Font font = frontpanelhw::graphic::Font::builtin6x8(),
    std::function<void(std::chrono::nanoseconds)> const& wait = {});

}  // namespace frontpanelsim
