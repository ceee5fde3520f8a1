#pragma once

#include <atomic>

namespace yxfrontpanel::runtime::detail {

/** Wakes a loop that waits in poll(2): an eventfd that any thread, and a signal handler, may
 *  signal. Repeated signals before the loop drains it cost one write. */
class WakeSignal {
public:
    /** @throws std::system_error when the eventfd cannot be created. */
    WakeSignal();
    ~WakeSignal();
    WakeSignal(WakeSignal const&) = delete;
    WakeSignal& operator=(WakeSignal const&) = delete;

    /** The descriptor to wait on (readable while signalled). */
    int descriptor() const noexcept;
    /** Makes the descriptor readable. Any thread; async-signal-safe. */
    void signal() noexcept;
    /** Called by the loop after waking: reads the descriptor back to quiet. */
    void drain() noexcept;

private:
    int descriptor_;
    std::atomic<bool> signalled_{false};
};

}  // namespace yxfrontpanel::runtime::detail
