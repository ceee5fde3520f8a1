#include "timer_queue.h"

#include <utility>
#include <vector>

#include "runtime_log.h"

namespace yxfrontpanel::runtime::detail {

TimerQueue::TimerId TimerQueue::add(TimePoint due, std::chrono::nanoseconds period, Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    TimerId const id = nextId_++;
    timers_.emplace(id, Timer{due, period, std::make_shared<Task>(std::move(task))});
    byDue_.emplace(due, id);
    return id;
}

bool TimerQueue::cancel(TimerId id) {
    std::unique_lock<std::mutex> lock(mutex_);
    bool found = false;
    if (auto const timer = timers_.find(id); timer != timers_.end()) {
        auto range = byDue_.equal_range(timer->second.due);
        for (auto entry = range.first; entry != range.second; ++entry) {
            if (entry->second == id) {
                byDue_.erase(entry);
                break;
            }
        }
        timers_.erase(timer);
        found = true;
    }
    if (runningThread_ != std::this_thread::get_id()) {
        runningEnded_.wait(lock, [this, id] { return running_ != id; });
    }
    return found;
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
    ThrowCollector thrown;
    for (TimerId const id : due) {
        std::shared_ptr<Task> const task = take(id, now);
        if (!task) {
            continue;
        }
        if (*task) {
            thrown.run(*task, "timer", id);
        }
        finishRunning();
    }
    thrown.rethrowFirst();
    return !due.empty();
}

std::shared_ptr<TimerQueue::Task> TimerQueue::take(TimerId id, TimePoint now) {
    std::lock_guard<std::mutex> const lock(mutex_);
    auto const found = timers_.find(id);
    if (found == timers_.end()) {
        return nullptr;  // cancelled by an earlier timer of this turn
    }
    running_ = id;
    runningThread_ = std::this_thread::get_id();
    Timer& timer = found->second;
    if (timer.period.count() <= 0) {
        std::shared_ptr<Task> task = std::move(timer.task);
        timers_.erase(found);
        return task;
    }
    // A late timer runs once and keeps its rhythm.
    auto const late = now - timer.due;
    auto const periods = late / timer.period + 1;
    timer.due += periods * timer.period;
    byDue_.emplace(timer.due, id);
    return timer.task;
}

void TimerQueue::finishRunning() {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        running_ = 0;
        runningThread_ = std::thread::id{};
    }
    runningEnded_.notify_all();
}

}  // namespace yxfrontpanel::runtime::detail
