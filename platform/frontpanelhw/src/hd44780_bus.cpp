#include <frontpanelhw/hd44780_bus.h>

namespace frontpanelhw {

Hd44780BusError::~Hd44780BusError() = default;

IHd44780Bus::~IHd44780Bus() = default;

bool IHd44780Bus::delayNextNibble(std::chrono::nanoseconds /*duration*/) { return false; }

}  // namespace frontpanelhw
