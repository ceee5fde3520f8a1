#include "input_device.h"

#include <frontpanelhw/input_errors.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace frontpanelhw::detail {

int openInputPath(std::string const& path) {
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

std::string openErrorMessage(std::string const& name, int error) {
    switch (error) {
        case ENOENT:
            return name +
                   " does not exist: the input devices are /dev/input/event* (stable names in "
                   "/dev/input/by-id/ and /dev/input/by-path/; evtest lists them)";
        case EACCES:
        case EPERM:
            return "no permission to read " + name +
                   ": add your user to the 'input' group (sudo usermod -aG input $USER, then log "
                   "in again) or give the device a udev rule";
        case ENODEV:
        case ENXIO:
            return name + " is gone (unplugged or its driver unbound)";
        default:
            return "cannot open " + name + ": " + std::system_category().message(error);
    }
}

bool checkInputDescriptor(int descriptor, std::string const& name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        int const error = errno;
        throw InputDeviceError("cannot use " + name + ": " + std::system_category().message(error));
    }
    if (S_ISFIFO(status.st_mode) || S_ISREG(status.st_mode) || S_ISSOCK(status.st_mode)) {
        return false;
    }
    int version = 0;
    if (!S_ISCHR(status.st_mode) || ::ioctl(descriptor, EVIOCGVERSION, &version) != 0) {
        throw InputDeviceError(name +
                               " is not an input event device: use /dev/input/eventN, a FIFO or "
                               "a file of input event records");
    }
    return true;
}

void grabInputDevice(int descriptor, std::string const& name) {
    if (::ioctl(descriptor, EVIOCGRAB, 1) == 0) {
        return;
    }
    int const error = errno;
    if (error == EBUSY) {
        throw InputDeviceError("cannot grab " + name +
                               ": another program has grabbed it already; stop that program or "
                               "leave out the grab");
    }
    throw InputDeviceError("cannot grab " + name + ": " + std::system_category().message(error));
}

std::string readInputIdentity(int descriptor) {
    input_id id{};
    char name[256] = {};
    if (::ioctl(descriptor, EVIOCGID, &id) != 0 ||
        ::ioctl(descriptor, EVIOCGNAME(sizeof name - 1), name) < 0) {
        return {};
    }
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "bus %04x vendor %04x product %04x version %04x",
                  id.bustype, id.vendor, id.product, id.version);
    return std::string(numbers) + " \"" + name + "\"";
}

bool inputDeviceRepeats(int descriptor) {
    unsigned long types = 0;  // EV_REP (0x14) lies in the first word on every architecture
    return ::ioctl(descriptor, EVIOCGBIT(0, sizeof types), &types) >= 0 &&
           (types & (1UL << EV_REP)) != 0;
}

bool readInputKeyState(int descriptor, std::vector<unsigned char>& bits) {
    return ::ioctl(descriptor, EVIOCGKEY(bits.size()), bits.data()) >= 0;
}

bool readAbsoluteRange(int descriptor, int axis, int& minimum, int& maximum) {
    input_absinfo info{};
    if (::ioctl(descriptor, EVIOCGABS(axis), &info) != 0) {
        return false;
    }
    minimum = info.minimum;
    maximum = info.maximum;
    return true;
}

}  // namespace frontpanelhw::detail
