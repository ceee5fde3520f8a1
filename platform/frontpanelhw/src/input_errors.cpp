#include <frontpanelhw/input_errors.h>

namespace frontpanelhw {

// Out of line so that the exceptions' type information has one home in the library.
InputDeviceError::~InputDeviceError() = default;
KeyMapError::~KeyMapError() = default;

}  // namespace frontpanelhw
