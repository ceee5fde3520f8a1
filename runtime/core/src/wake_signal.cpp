#include "wake_signal.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace yxfrontpanel::runtime::detail {

WakeSignal::WakeSignal() : descriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "panel: eventfd");
    }
}

WakeSignal::~WakeSignal() { ::close(descriptor_); }

int WakeSignal::descriptor() const noexcept { return descriptor_; }

void WakeSignal::signal() noexcept {
    // The flag keeps a thread that publishes a million times a second from making a system call
    // each time; it is cleared by drain before the loop looks at its queues.
    if (signalled_.exchange(true, std::memory_order_seq_cst)) {
        return;
    }
    std::uint64_t const one = 1;
    // A full counter (never reached with one write per drain) or EINTR leaves it readable.
    [[maybe_unused]] auto const written = ::write(descriptor_, &one, sizeof one);
}

void WakeSignal::drain() noexcept {
    // Read first, then clear the flag: cleared first, a signal in between would see the flag
    // clear, write, and have its write read away here, leaving the flag set on a quiet
    // descriptor, so that every later signal skipped its write and the loop slept on.
    std::uint64_t count = 0;
    [[maybe_unused]] auto const read = ::read(descriptor_, &count, sizeof count);
    signalled_.store(false, std::memory_order_seq_cst);
}

}  // namespace yxfrontpanel::runtime::detail
