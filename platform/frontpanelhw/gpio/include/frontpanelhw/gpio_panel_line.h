#pragma once

// The GPIO library's side of the graphic displays on SPI: their D/C and reset lines.

#include <frontpanelhw/export.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <memory>
#include <string>

namespace frontpanelhw::graphic {

/** Requests line `offset` of GPIO chip `chip` (a path, a name such as gpiochip0, or a number)
 *  as an output at level `initialHigh`, consumer "yxfrontpanel"; released with the object.
 *  @throws PanelBusError naming the chip, the line and the reason. */
FRONTPANELHW_EXPORT std::unique_ptr<IPanelLine> openGpioPanelLine(std::string const& chip,
                                                                  unsigned offset,
                                                                  bool initialHigh);

}  // namespace frontpanelhw::graphic
