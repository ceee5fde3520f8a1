#pragma once

#include <frontpanelhw/gpio_key_source.h>

#include <memory>
#include <string>
#include <vector>

namespace frontpanelhw::detail {

/** Requests `offsets` on GPIO chip `chip` (name, path, label or number) for edge events on
 *  both edges with `bias`, under the consumer name `consumer` (libgpiod).
 *  @throws InputDeviceError naming the chip or line and what to do. */
std::unique_ptr<IGpioEdgeSource> openGpioEdgeSource(std::string const& chip,
                                                    std::vector<unsigned> const& offsets,
                                                    GpioBias bias, std::string const& consumer);

}  // namespace frontpanelhw::detail
