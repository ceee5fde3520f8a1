#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/settings_store.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace yxfp_test {

/** Runs a settings store's scheduled saves on a ManualClock: a task is due when the clock has
 *  been advanced past its delay, and runs on the advancing thread. Counts the tasks scheduled
 *  and cancelled so that tests can see the policy at work. */
class ManualSaveScheduler : public yxfrontpanel::settings::ISaveScheduler {
public:
    explicit ManualSaveScheduler(yxfrontpanel::testing::ManualClock& clock) : clock_(clock) {
        listener_ = clock_.addAdvanceListener([this] { runDue(); });
    }
    ~ManualSaveScheduler() override { clock_.removeAdvanceListener(listener_); }

    Handle schedule(std::chrono::nanoseconds delay, Task task) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        Handle const handle = next_++;
        auto const deadline =
            clock_.now() +
            std::chrono::duration_cast<yxfrontpanel::runtime::IClock::Duration>(delay);
        tasks_.emplace(handle, Entry{deadline, std::move(task)});
        ++scheduled_;
        return handle;
    }

    void cancel(Handle handle) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        cancelled_ += tasks_.erase(handle);
    }

    /** Tasks waiting to run. */
    std::size_t pending() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return tasks_.size();
    }
    std::size_t scheduledCount() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return scheduled_;
    }
    std::size_t cancelledCount() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return cancelled_;
    }

private:
    struct Entry {
        yxfrontpanel::runtime::IClock::TimePoint deadline;
        Task task;
    };

    void runDue() {
        std::vector<Task> due;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            for (auto it = tasks_.begin(); it != tasks_.end();) {
                if (it->second.deadline <= clock_.now()) {
                    due.push_back(std::move(it->second.task));
                    it = tasks_.erase(it);
                } else {
                    ++it;
                }
            }
        }
        for (auto const& task : due) {
            task();
        }
    }

    yxfrontpanel::testing::ManualClock& clock_;
    std::size_t listener_ = 0;
    mutable std::mutex mutex_;
    Handle next_ = 1;
    std::map<Handle, Entry> tasks_;
    std::size_t scheduled_ = 0;
    std::size_t cancelled_ = 0;
};

}  // namespace yxfp_test
