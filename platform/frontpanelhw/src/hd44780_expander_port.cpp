#include <frontpanelhw/hd44780_i2c.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace frontpanelhw {

namespace {

std::string hexAddress(std::uint8_t address) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", address);
    return text;
}

std::string reason(int error) { return std::generic_category().message(error); }

/** Owns a file descriptor and writes transfers to it: one write(2) per transfer for an I2C
 *  adapter (the kernel makes it one bus transaction), as many as it takes for a file. */
class DescriptorPort : public IExpanderPort {
public:
    DescriptorPort(int descriptor, std::string description, bool oneWritePerTransfer)
        : descriptor_(descriptor),
          description_(std::move(description)),
          oneWritePerTransfer_(oneWritePerTransfer) {}
    ~DescriptorPort() override { ::close(descriptor_); }

    void write(std::uint8_t const* bytes, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            ssize_t const written = ::write(descriptor_, bytes + done, size - done);
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written < 0) {
                int const error = errno;
                std::string hint;
                if (error == EREMOTEIO || error == ENXIO || error == EIO) {
                    hint = " (does the expander answer at this address? is the module powered?)";
                }
                throw Hd44780BusError("writing to " + description_ + " failed: " + reason(error) +
                                      hint);
            }
            if (oneWritePerTransfer_ && static_cast<std::size_t>(written) != size) {
                throw Hd44780BusError("writing to " + description_ + " failed: only " +
                                      std::to_string(written) + " of " + std::to_string(size) +
                                      " bytes were sent");
            }
            done += static_cast<std::size_t>(written);
        }
    }

private:
    int descriptor_;
    std::string description_;
    bool oneWritePerTransfer_;
};

int openOrThrow(std::string const& path, int flags, std::string const& what) {
    int const descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    if (descriptor < 0) {
        int const error = errno;
        std::string hint;
        if (error == ENXIO) {
            hint = " (no process reads the FIFO; start the reader first)";
        } else if (error == EACCES) {
            hint = " (no permission; is the user in the i2c group?)";
        }
        throw Hd44780BusError("cannot open " + what + " " + path + ": " + reason(error) + hint);
    }
    return descriptor;
}

}  // namespace

std::unique_ptr<IExpanderPort> openExpanderPort(std::string const& path, std::uint8_t address) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        int const error = errno;
        std::string const hint =
            error == ENOENT ? " (is the I2C bus enabled and the i2c-dev module loaded?)" : "";
        throw Hd44780BusError("cannot open I2C device " + path + ": " + reason(error) + hint);
    }
    if (S_ISCHR(status.st_mode)) {
        int const descriptor = openOrThrow(path, O_RDWR, "I2C device");
        if (::ioctl(descriptor, I2C_SLAVE, static_cast<unsigned long>(address)) < 0) {
            int const error = errno;
            ::close(descriptor);
            std::string const hint = error == EBUSY    ? " (a kernel driver uses this address)"
                                     : error == ENOTTY ? " (not an I2C adapter)"
                                                       : "";
            throw Hd44780BusError("cannot select address " + hexAddress(address) + " on " + path +
                                  ": " + reason(error) + hint);
        }
        return std::make_unique<DescriptorPort>(
            descriptor, "I2C device " + path + " at " + hexAddress(address), true);
    }
    if (S_ISREG(status.st_mode)) {
        int const descriptor = openOrThrow(path, O_WRONLY | O_APPEND, "capture file");
        return std::make_unique<DescriptorPort>(descriptor, "capture file " + path, false);
    }
    if (S_ISFIFO(status.st_mode)) {
        // Non-blocking only while opening, so that a FIFO without a reader fails at once
        // instead of hanging; the writes themselves wait for the reader, so nothing is lost.
        int const descriptor = openOrThrow(path, O_WRONLY | O_NONBLOCK, "FIFO");
        int const flags = ::fcntl(descriptor, F_GETFL);
        if (flags < 0 || ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) < 0) {
            int const error = errno;
            ::close(descriptor);
            throw Hd44780BusError("cannot set up FIFO " + path + ": " + reason(error));
        }
        return std::make_unique<DescriptorPort>(descriptor, "FIFO " + path, false);
    }
    throw Hd44780BusError("cannot use " + path +
                          ": neither an I2C device nor a regular file nor a FIFO");
}

}  // namespace frontpanelhw
