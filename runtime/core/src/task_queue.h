#pragma once

#include <yxfrontpanel/runtime/panel.h>

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime::detail {

/** Work handed to the panel's thread: plain posts in order, and coalesced publications of which
 *  only the newest per key waits. Producers may be any threads; one consumer takes the work. */
class TaskQueue {
public:
    using Task = Panel::Task;

    /** What became of a post or publication. */
    enum class Added {
        Refused,  // the queue is closed; the task was dropped
        Queued,   // queued behind work of the same kind that already waited
        First     // queued while no work of its kind waited: the consumer must be woken
    };

    /** Appends a task. */
    Added post(Task task);
    /** Replaces the waiting task of `key`, or queues it. */
    Added publish(std::string_view key, Task task);
    /** Refuses every later post and publication. */
    void close() noexcept;
    bool closed() const;

    /** Whether plain posts wait. */
    bool hasPosts() const;
    /** Whether publications wait. */
    bool hasPublications() const;
    /** Appends the waiting plain posts, in order, to `out`. */
    void takePosts(std::deque<Task>& out);
    /** Takes the waiting publications, in the order their keys first waited, into `out`
     *  (cleared first; its capacity is kept, so steady state allocates nothing). */
    void takePublications(std::vector<Task>& out);

private:
    struct Slot {
        Task task;
        bool waiting = false;
    };

    mutable std::mutex mutex_;
    bool closed_ = false;
    std::deque<Task> posts_;
    std::map<std::string, Slot, std::less<>> slots_;
    std::vector<Slot*> waitingSlots_;
};

}  // namespace yxfrontpanel::runtime::detail
