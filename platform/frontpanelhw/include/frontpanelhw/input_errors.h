#pragma once

#include <frontpanelhw/export.h>

#include <stdexcept>

namespace frontpanelhw {

/** An input device (a Linux input event device, a GPIO chip or line) that cannot be used;
 *  what() names the device and says what to do (e.g. join the `input` group). */
class FRONTPANELHW_EXPORT InputDeviceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~InputDeviceError() override;
};

/** A key map or line map text that cannot be used; what() names the entry and says how to
 *  write it. */
class FRONTPANELHW_EXPORT KeyMapError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
    ~KeyMapError() override;
};

}  // namespace frontpanelhw
