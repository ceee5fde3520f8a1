#pragma once

// The GPIO library's side of the HD44780 parallel connection: the module's lines on a GPIO chip.

#include <frontpanelhw/export.h>
#include <frontpanelhw/hd44780_gpio.h>

#include <memory>

namespace frontpanelhw {

/** Requests the six lines of `config` as outputs (all low) through libgpiod, with "yxfrontpanel"
 *  as the consumer; they are released with the returned object.
 *  @throws Hd44780BusError naming the chip and the reason when the chip cannot be opened or a
 *  line cannot be requested (missing, busy, no permission, two lines with one offset). */
FRONTPANELHW_EXPORT std::unique_ptr<IHd44780LineOutput> openGpioLines(GpioLineConfig const& config);

}  // namespace frontpanelhw
