#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace frontpanelhw::detail {

/** The message for a GPIO chip that cannot be opened, saying what to do. */
std::string chipOpenMessage(std::string const& chip, int error);

/** Checks that the module's lines on `chip` are all different.
 *  @throws Hd44780BusError naming a line given to two module pins. */
void checkModuleLines(std::string const& chip, std::vector<unsigned> const& offsets);

/** The time of an edge the kernel stamped `stamp` after its clock's epoch. The kernel stamps
 *  with the monotonic clock (the steady clock) since Linux 5.7 and with the real-time clock
 *  before; a stamp far from now is replaced by now. */
std::chrono::steady_clock::time_point edgeTime(std::chrono::nanoseconds stamp);

}  // namespace frontpanelhw::detail
