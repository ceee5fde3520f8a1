#pragma once

#include <string>
#include <vector>

namespace frontpanelhw::detail {

/** Opens `path` for reading without blocking (a FIFO opens before its writer has come): the
 *  descriptor, or -1 with errno set. */
int openInputPath(std::string const& path);

/** The message for a failed open of `name` with `error` (errno), saying what to do. */
std::string openErrorMessage(std::string const& name, int error);

/** Checks that `descriptor` can be read as input events: an input event device, a FIFO, a pipe,
 *  a socket or a regular file. Returns true for an input event device (ioctls allowed).
 *  @throws InputDeviceError naming `name` otherwise. */
bool checkInputDescriptor(int descriptor, std::string const& name);

/** Grabs the input device exclusively. @throws InputDeviceError naming `name` on failure. */
void grabInputDevice(int descriptor, std::string const& name);

/** What tells an input device from another at the same path after a replug: its bus, vendor,
 *  product and version (EVIOCGID) and its name (EVIOCGNAME), as one text; empty when the
 *  descriptor cannot tell. */
std::string readInputIdentity(int descriptor);

/** Whether the input device repeats held keys itself (EV_REP). */
bool inputDeviceRepeats(int descriptor);

/** Reads the keys the device holds now (EVIOCGKEY) into `bits`; false on failure. */
bool readInputKeyState(int descriptor, std::vector<unsigned char>& bits);

/** The range of absolute axis `axis`; false when the device has no such axis. */
bool readAbsoluteRange(int descriptor, int axis, int& minimum, int& maximum);

}  // namespace frontpanelhw::detail
