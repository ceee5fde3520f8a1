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
    if (signalled_.exchange(true, std::memory_order_acq_rel)) {
        return;
    }
    std::uint64_t const one = 1;
    // A full counter (never reached with one write per drain) or EINTR leaves it readable.
    [[maybe_unused]] auto const written = ::write(descriptor_, &one, sizeof one);
}

void WakeSignal::drain() noexcept {
    signalled_.store(false, std::memory_order_release);
    std::uint64_t count = 0;
    [[maybe_unused]] auto const read = ::read(descriptor_, &count, sizeof count);
}

}  // namespace yxfrontpanel::runtime::detail
