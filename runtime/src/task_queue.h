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

    /** Appends a task; false once closed. */
    bool post(Task task);
    /** Replaces the waiting task of `key`, or queues it; false once closed. */
    bool publish(std::string_view key, Task task);
    /** Refuses every later post and publication. */
    void close() noexcept;
    bool closed() const;

    /** Whether plain posts wait. */
    bool hasPosts() const;
    /** Whether publications wait. */
    bool hasPublications() const;
    /** Takes the waiting plain posts, in order, into `out` (cleared first). */
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
