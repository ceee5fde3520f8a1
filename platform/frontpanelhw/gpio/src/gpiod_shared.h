#pragma once

#include <chrono>
#include <string>

namespace frontpanelhw::detail {

/** The message for a GPIO chip that cannot be opened, saying what to do. */
std::string chipOpenMessage(std::string const& chip, int error);

/** The time of an edge the kernel stamped `stamp` after its clock's epoch. The kernel stamps
 *  with the monotonic clock (the steady clock) since Linux 5.7 and with the real-time clock
 *  before; a stamp far from now is replaced by now. */
std::chrono::steady_clock::time_point edgeTime(std::chrono::nanoseconds stamp);

}  // namespace frontpanelhw::detail
