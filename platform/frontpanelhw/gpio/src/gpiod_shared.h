#pragma once

#include <frontpanelhw/gpio_key_source.h>

#include <chrono>
#include <deque>
#include <string>
#include <vector>

namespace frontpanelhw::detail {

/** The module's lines on a GPIO chip: RS, E, D4-D7, in the order of the hd44780_lines bits. */
inline constexpr unsigned kModuleLineCount = 6;

/** The text of errno value `error`. */
std::string errorText(int error);

/** An edge source that reads the kernel's edges in batches: readEdge() hands out the edges of
 *  the last batch and asks collect() for the next one when they are used up. */
class BatchedEdgeSource : public IGpioEdgeSource {
public:
    std::optional<GpioEdge> readEdge() final;

protected:
    /** Appends the edges waiting now to `edges`, without blocking.
     *  @throws InputDeviceError when the lines can no longer be read. */
    virtual void collect(std::deque<GpioEdge>& edges) = 0;

private:
    std::deque<GpioEdge> waiting_;
};

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
