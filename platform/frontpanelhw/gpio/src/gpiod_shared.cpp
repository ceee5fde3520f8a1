// What the libgpiod 1.x and 2.x adapters share: messages and edge times.
#include "gpiod_shared.h"

#include <frontpanelhw/hd44780_bus.h>

#include <cerrno>
#include <system_error>

namespace frontpanelhw::detail {

std::string errorText(int error) { return std::generic_category().message(error); }

std::optional<GpioEdge> BatchedEdgeSource::readEdge() {
    if (waiting_.empty()) {
        collect(waiting_);
    }
    if (waiting_.empty()) {
        return std::nullopt;
    }
    GpioEdge const edge = waiting_.front();
    waiting_.pop_front();
    return edge;
}

std::string chipOpenMessage(std::string const& chip, int error) {
    switch (error) {
        case ENOENT:
        case ENODEV:
            return "GPIO chip '" + chip +
                   "' does not exist: gpiodetect lists the chips (e.g. gpiochip0)";
        case EACCES:
        case EPERM:
            return "no permission to open GPIO chip '" + chip +
                   "': run as root or give your user access to /dev/gpiochip* (a 'gpio' group "
                   "or a udev rule)";
        default:
            return "cannot open GPIO chip '" + chip + "': " + std::system_category().message(error);
    }
}

void checkModuleLines(std::string const& chip, std::vector<unsigned> const& offsets) {
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        for (std::size_t j = i + 1; j < offsets.size(); ++j) {
            if (offsets[i] == offsets[j]) {
                throw Hd44780BusError("GPIO chip " + chip + ": line " + std::to_string(offsets[i]) +
                                      " is given to two module pins");
            }
        }
    }
}

std::chrono::steady_clock::time_point edgeTime(std::chrono::nanoseconds stamp) {
    auto const now = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point const time{
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(stamp)};
    bool const plausible = time <= now && now - time < std::chrono::seconds(10);
    return plausible ? time : now;
}

}  // namespace frontpanelhw::detail
