#include "task_queue.h"

#include <utility>

namespace yxfrontpanel::runtime::detail {

TaskQueue::Added TaskQueue::post(Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (closed_) {
        return Added::Refused;
    }
    bool const first = posts_.empty();
    posts_.push_back(std::move(task));
    return first ? Added::First : Added::Queued;
}

TaskQueue::Added TaskQueue::publish(std::string_view key, Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (closed_) {
        return Added::Refused;
    }
    bool const first = waitingSlots_.empty();
    auto found = slots_.find(key);
    if (found == slots_.end()) {
        found = slots_.emplace(std::string(key), Slot{}).first;
    }
    Slot& slot = found->second;
    slot.task = std::move(task);
    if (!slot.waiting) {
        slot.waiting = true;
        waitingSlots_.push_back(&slot);
    }
    return first ? Added::First : Added::Queued;
}

void TaskQueue::close() noexcept {
    std::lock_guard<std::mutex> const lock(mutex_);
    closed_ = true;
}

bool TaskQueue::closed() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return closed_;
}

bool TaskQueue::hasPosts() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return !posts_.empty();
}

bool TaskQueue::hasPublications() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return !waitingSlots_.empty();
}

void TaskQueue::takePosts(std::deque<Task>& out) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (out.empty()) {
        out.swap(posts_);
        return;
    }
    for (Task& task : posts_) {
        out.push_back(std::move(task));
    }
    posts_.clear();
}

void TaskQueue::takePublications(std::vector<Task>& out) {
    out.clear();
    std::lock_guard<std::mutex> const lock(mutex_);
    for (Slot* slot : waitingSlots_) {
        out.push_back(std::move(slot->task));
        slot->task = nullptr;
        slot->waiting = false;
    }
    waitingSlots_.clear();
}

}  // namespace yxfrontpanel::runtime::detail
