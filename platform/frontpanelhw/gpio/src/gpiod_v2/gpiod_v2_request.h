#pragma once

// One request of lines through libgpiod's 2.x API: chip, settings, line and request configs
// freed in one place whatever fails.

#include <string>
#include <vector>

#include <gpiod.h>

namespace frontpanelhw::detail {

/** The path of GPIO chip `chip`: a path as given, "gpiochipN" or a number N as /dev/gpiochipN.
 *  (libgpiod 2 opens chips by path only; labels are not looked up.) */
std::string gpioChipPath(std::string const& chip);

/** Owns a chip and one request of lines on it. */
class GpiodV2Request {
public:
    /** Opens `chip` and requests `offsets` with `settings` under `consumer`; on failure
     *  `error()` is the errno and `request()` is null. */
    GpiodV2Request(std::string const& chip, std::vector<unsigned> const& offsets,
                   gpiod_line_settings* settings, std::string const& consumer);
    ~GpiodV2Request();
    GpiodV2Request(GpiodV2Request const&) = delete;
    GpiodV2Request& operator=(GpiodV2Request const&) = delete;

    gpiod_chip* chip() const { return chip_; }
    gpiod_line_request* request() const { return request_; }
    /** The errno of the step that failed (0 when none did). */
    int error() const { return error_; }
    /** True when the chip opened but the request failed. */
    bool requestFailed() const { return chip_ != nullptr && request_ == nullptr; }

private:
    gpiod_chip* chip_ = nullptr;
    gpiod_line_request* request_ = nullptr;
    int error_ = 0;
};

}  // namespace frontpanelhw::detail
