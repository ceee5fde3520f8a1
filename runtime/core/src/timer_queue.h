#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/panel.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace yxfrontpanel::runtime::detail {

/** The panel's timers: one-shot and periodic, ordered by due time, cancellable from any
 *  thread. The panel's thread takes the due ones and runs them without holding the lock; each
 *  is rescheduled (periodic) or removed (one-shot) before its callback runs, so that a callback
 *  that throws leaves every timer as consistent as one that returns. */
class TimerQueue {
public:
    using Task = Panel::Task;
    using TimerId = Panel::TimerId;
    using TimePoint = IClock::TimePoint;

    /** Adds a timer first due at `due`, repeating every `period` when that is positive. */
    TimerId add(TimePoint due, std::chrono::nanoseconds period, Task task);
    /** Removes a timer; false when unknown (a one-shot timer that ran or runs now included).
     *  Called on another thread than the one running the timers, it returns only after a
     *  callback of this timer that is running now has finished; called from the timers' own
     *  thread (a callback cancelling itself or another) it never waits. */
    bool cancel(TimerId id);
    /** Due time of the earliest timer. */
    std::optional<TimePoint> nextDue() const;
    /** Runs every timer due at `now`, each at most once; a periodic timer is rescheduled on its
     *  rhythm past `now`. When callbacks throw, the other due timers still run; each exception
     *  is logged naming its timer, and the first is thrown again after all ran. Returns whether
     *  any ran. */
    bool runDue(TimePoint now);

private:
    struct Timer {
        TimePoint due;
        std::chrono::nanoseconds period;
        // Shared, so that a periodic timer keeps the state of its callable from run to run and
        // a timer cancelled while it runs stays alive until it returns.
        std::shared_ptr<Task> task;
    };

    /** Marks timer `id` as running and takes its task, rescheduled (periodic) or removed
     *  (one-shot); null when it is gone. */
    std::shared_ptr<Task> take(TimerId id, TimePoint now);
    /** Marks that no callback runs and wakes the cancellers waiting for it. */
    void finishRunning();

    mutable std::mutex mutex_;
    std::condition_variable runningEnded_;
    TimerId running_ = 0;            // the timer whose callback runs now, 0 for none
    std::thread::id runningThread_;  // the thread running it
    TimerId nextId_ = 1;
    std::map<TimerId, Timer> timers_;
    std::multimap<TimePoint, TimerId> byDue_;
};

}  // namespace yxfrontpanel::runtime::detail
