#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/panel.h>

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace yxfrontpanel::runtime::detail {

/** The panel's timers: one-shot and periodic, ordered by due time, cancellable from any
 *  thread. The panel's thread takes the due ones and runs them without holding the lock. */
class TimerQueue {
public:
    using Task = Panel::Task;
    using TimerId = Panel::TimerId;
    using TimePoint = IClock::TimePoint;

    /** Adds a timer first due at `due`, repeating every `period` when that is positive. */
    TimerId add(TimePoint due, std::chrono::nanoseconds period, Task task);
    /** Removes a timer; false when unknown. Also works for a timer that is running now. */
    bool cancel(TimerId id);
    /** Due time of the earliest timer. */
    std::optional<TimePoint> nextDue() const;
    /** Runs every timer due at `now`, each at most once; a periodic timer is rescheduled on its
     *  rhythm past `now`. Returns whether any ran. */
    bool runDue(TimePoint now);

private:
    struct Timer {
        TimePoint due;
        std::chrono::nanoseconds period;
        // Shared, so that a periodic timer keeps the state of its callable from run to run and
        // a timer cancelled while it runs stays alive until it returns.
        std::shared_ptr<Task> task;
    };

    mutable std::mutex mutex_;
    TimerId nextId_ = 1;
    std::map<TimerId, Timer> timers_;
    std::multimap<TimePoint, TimerId> byDue_;
};

}  // namespace yxfrontpanel::runtime::detail
