// openGpioLines for a library built without libgpiod: a clear error instead of a missing symbol.
#ifndef YXFP_HAVE_GPIOD

#include <frontpanelhw/hd44780_gpio.h>

namespace frontpanelhw {

std::unique_ptr<IHd44780LineOutput> openGpioLines(GpioLineConfig const& config) {
    throw Hd44780BusError("cannot open GPIO chip " + config.chip +
                          ": this build has no GPIO support (configure with YXFP_WITH_GPIOD=ON "
                          "and libgpiod-dev installed)");
}

}  // namespace frontpanelhw

#endif
