#pragma once

#include <frontpanelhw/display.h>

#include <memory>
#include <utility>

#include "display_option.h"

namespace frontpanelsim {

struct SimOptions;

/** The display the panel draws on for a pixel display `option` (see isGraphicDisplay), in
 *  front of the run's own display `screen`, which must outlive it:
 *  - Pixels: renders the panel into the module's pixels with the font and shows them on
 *    `screen` as braille or half-block characters (`screen` has runScreenSize's size).
 *  - Png, Framebuffer: draws on `screen` as it is and on the module.
 *  @throws std::exception naming the file or device and the reason when it cannot be used. */
std::unique_ptr<frontpanelhw::IDisplay> makeGraphicDisplay(DisplayOption const& option,
                                                           frontpanelhw::IDisplay& screen);

/** Cells of the run's own display (terminal, frame log or memory): the panel's size, or for
 *  --display pixels the characters that show the module's pixels. */
std::pair<unsigned, unsigned> runScreenSize(SimOptions const& options);

}  // namespace frontpanelsim
