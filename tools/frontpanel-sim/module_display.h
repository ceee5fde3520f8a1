#pragma once

#include <frontpanelhw/display.h>

#include <memory>

#include "display_option.h"

namespace frontpanelsim {

/** The display the panel draws on for `option`, in front of the run's own display `screen` (the
 *  terminal, the frame log of a key script, the memory of a headless run), which must outlive
 *  it:
 *  - Terminal: draws on `screen` as it is.
 *  - Hd44780Model: drives an HD44780 driver into the controller model and shows on `screen`
 *    what the module would show: ROM glyphs as their nearest Unicode character, custom glyphs
 *    as the character meant, and the cell under the cursor marker inverted.
 *  - Hd44780Device: draws on `screen` and drives the module at `option.path` (an I2C adapter, or a
 *    regular file or FIFO that receives the raw expander bytes); the driver really waits.
 *    SIGPIPE is ignored from then on, so that a FIFO whose reader went away fails a draw
 *    instead of ending the program.
 *  @throws std::exception with a message naming the device and the reason when the module
 *  cannot be opened, or the panel's size is one no single controller drives. */
std::unique_ptr<frontpanelhw::IDisplay> makeDisplay(DisplayOption const& option,
                                                    frontpanelhw::IDisplay& screen);

}  // namespace frontpanelsim
