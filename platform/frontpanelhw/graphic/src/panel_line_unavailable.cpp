// openGpioPanelLine for a library built without libgpiod: a clear error instead of a missing
// symbol.
#ifndef YXFP_HAVE_GPIOD

#include <frontpanelhw/graphic/panel_bus.h>

namespace frontpanelhw::graphic {

std::unique_ptr<IPanelLine> openGpioPanelLine(std::string const& chip, unsigned offset,
                                              bool /*initialHigh*/) {
    throw PanelBusError("cannot use line " + std::to_string(offset) + " of GPIO chip " + chip +
                        ": this build has no GPIO support (configure with YXFP_WITH_GPIOD=ON "
                        "and libgpiod-dev installed)");
}

}  // namespace frontpanelhw::graphic

#endif
