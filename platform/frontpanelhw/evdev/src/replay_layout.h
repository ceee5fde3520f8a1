#pragma once

#include <string>

namespace frontpanelhw::detail {

/** Checks that a regular file replayed as input events holds records in the layout of this
 *  build's kernel: `struct input_event` is 24 bytes on 64-bit systems and 16 on 32-bit ARM
 *  (whatever the size of user space's time_t). A file that only makes sense as records of the
 *  other layout (one recorded on another machine) is refused rather than decoded as garbage.
 *  Does nothing for other descriptors; the file position is left where it was.
 *  @throws InputDeviceError naming `name` for a file of the other layout. */
void checkReplayLayout(int descriptor, std::string const& name);

}  // namespace frontpanelhw::detail
