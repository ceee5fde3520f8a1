#pragma once

#include <utility>

#include <unistd.h>

namespace yxfrontpanel::runtime {

/** A file descriptor closed with its owner: for the servers' sockets and wake-up pipes. Moves,
 *  does not copy; -1 when it holds none. */
class OwnedDescriptor {
public:
    /** Holds no descriptor. */
    OwnedDescriptor() = default;
    /** Takes `fd` over; it is closed when this object goes or is reset. */
    explicit OwnedDescriptor(int fd) : fd_(fd) {}
    /** Takes the other's descriptor over; the other then holds none. */
    OwnedDescriptor(OwnedDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    /** Closes the held descriptor and takes the other's over. */
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    OwnedDescriptor(OwnedDescriptor const&) = delete;
    OwnedDescriptor& operator=(OwnedDescriptor const&) = delete;
    /** Closes the held descriptor. */
    ~OwnedDescriptor() { reset(); }

    /** The descriptor, or -1. */
    int get() const { return fd_; }
    /** Closes the held descriptor, if any; then holds none. */
    void reset() {
        if (fd_ >= 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }

private:
    int fd_ = -1;
};

}  // namespace yxfrontpanel::runtime
