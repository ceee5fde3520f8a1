#include "timer_queue.h"

#include <utility>
#include <vector>

namespace yxfrontpanel::runtime::detail {

TimerQueue::TimerId TimerQueue::add(TimePoint due, std::chrono::nanoseconds period, Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    TimerId const id = nextId_++;
    timers_.emplace(id, Timer{due, period, std::make_shared<Task>(std::move(task))});
    byDue_.emplace(due, id);
    return id;
}

bool TimerQueue::cancel(TimerId id) {
    std::lock_guard<std::mutex> const lock(mutex_);
    auto const found = timers_.find(id);
    if (found == timers_.end()) {
        return false;
    }
    auto range = byDue_.equal_range(found->second.due);
    for (auto entry = range.first; entry != range.second; ++entry) {
        if (entry->second == id) {
            byDue_.erase(entry);
            break;
        }
    }
    timers_.erase(found);
    return true;
}

std::optional<TimerQueue::TimePoint> TimerQueue::nextDue() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (byDue_.empty()) {
        return std::nullopt;
    }
    return byDue_.begin()->first;
}

bool TimerQueue::runDue(TimePoint now) {
    // Collect first, so that a timer due again after rescheduling waits for the next turn.
    std::vector<TimerId> due;
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        for (auto entry = byDue_.begin(); entry != byDue_.end() && entry->first <= now;) {
            due.push_back(entry->second);
            entry = byDue_.erase(entry);
        }
    }
    for (TimerId const id : due) {
        std::shared_ptr<Task> task;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            auto const found = timers_.find(id);
            if (found == timers_.end()) {
                continue;  // cancelled by an earlier timer of this turn
            }
            Timer& timer = found->second;
            if (timer.period.count() > 0) {
                // A late timer runs once and keeps its rhythm.
                auto const late = now - timer.due;
                auto const periods = late / timer.period + 1;
                timer.due += periods * timer.period;
                byDue_.emplace(timer.due, id);
                task = timer.task;
            } else {
                task = std::move(timer.task);
                timers_.erase(found);
            }
        }
        if (task && *task) {
            (*task)();
        }
    }
    return !due.empty();
}

}  // namespace yxfrontpanel::runtime::detail
