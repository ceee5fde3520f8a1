#include <frontpanelhw/hd44780_i2c.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <pthread.h>
#include <signal.h>
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

/** Writes to a FIFO with SIGPIPE blocked for the calling thread: a reader that went away gives
 *  EPIPE, not the end of the process. A SIGPIPE raised by the write is taken off the thread
 *  again, one that was pending before is left alone. */
ssize_t writeWithoutSigpipe(int descriptor, void const* bytes, std::size_t size) {
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    sigset_t pending;
    sigpending(&pending);
    bool const wasPending = sigismember(&pending, SIGPIPE) == 1;
    ssize_t const written = ::write(descriptor, bytes, size);
    int const error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        timespec const noWait{0, 0};
        while (sigtimedwait(&pipeSignal, nullptr, &noWait) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

/** How a port's descriptor is opened: again after a failure, when the device is back. */
using DescriptorOpener = std::function<int()>;

/** Owns a file descriptor and writes transfers to it: one write(2) per transfer for an I2C
 *  adapter (the kernel makes it one bus transaction), as many as it takes for a file. After a
 *  failed write the descriptor is closed and the next write opens the path again, so that an
 *  unplugged adapter or a FIFO whose reader left works again once it is back. */
class DescriptorPort : public IExpanderPort {
public:
    DescriptorPort(int descriptor, DescriptorOpener reopen, std::string description,
                   bool oneWritePerTransfer, bool isFifo)
        : descriptor_(descriptor),
          reopen_(std::move(reopen)),
          description_(std::move(description)),
          oneWritePerTransfer_(oneWritePerTransfer),
          isFifo_(isFifo) {}
    ~DescriptorPort() override { closeDescriptor(); }
    DescriptorPort(DescriptorPort const&) = delete;
    DescriptorPort& operator=(DescriptorPort const&) = delete;

    void write(std::uint8_t const* bytes, std::size_t size) override {
        if (descriptor_ < 0) {
            descriptor_ = reopen_();  // throws Hd44780BusError while the device is away
        }
        std::size_t done = 0;
        while (done < size) {
            ssize_t const written =
                isFifo_ ? writeWithoutSigpipe(descriptor_, bytes + done, size - done)
                        : ::write(descriptor_, bytes + done, size - done);
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written < 0) {
                int const error = errno;
                closeDescriptor();
                std::string hint;
                if (error == EREMOTEIO || error == ENXIO || error == EIO) {
                    hint = " (does the expander answer at this address? is the module powered?)";
                } else if (error == EPIPE) {
                    hint = " (the reader went away)";
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
    void closeDescriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
            descriptor_ = -1;
        }
    }

    int descriptor_;
    DescriptorOpener reopen_;
    std::string description_;
    bool oneWritePerTransfer_;
    bool isFifo_;
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

int openI2cDevice(std::string const& path, std::uint8_t address) {
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
    return descriptor;
}

int openFifo(std::string const& path) {
    // Non-blocking only while opening, so that a FIFO without a reader fails at once instead of
    // hanging; the writes themselves wait for the reader, so nothing is lost.
    int const descriptor = openOrThrow(path, O_WRONLY | O_NONBLOCK, "FIFO");
    int const flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) < 0) {
        int const error = errno;
        ::close(descriptor);
        throw Hd44780BusError("cannot set up FIFO " + path + ": " + reason(error));
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
        auto open = [path, address] { return openI2cDevice(path, address); };
        return std::make_unique<DescriptorPort>(
            open(), open, "I2C device " + path + " at " + hexAddress(address), true, false);
    }
    if (S_ISREG(status.st_mode)) {
        auto open = [path] { return openOrThrow(path, O_WRONLY | O_APPEND, "capture file"); };
        return std::make_unique<DescriptorPort>(open(), open, "capture file " + path, false, false);
    }
    if (S_ISFIFO(status.st_mode)) {
        auto open = [path] { return openFifo(path); };
        return std::make_unique<DescriptorPort>(open(), open, "FIFO " + path, false, true);
    }
    throw Hd44780BusError("cannot use " + path +
                          ": neither an I2C device nor a regular file nor a FIFO");
}

}  // namespace frontpanelhw
