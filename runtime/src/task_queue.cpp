#include "task_queue.h"

#include <utility>

namespace yxfrontpanel::runtime::detail {

bool TaskQueue::post(Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (closed_) {
        return false;
    }
    posts_.push_back(std::move(task));
    return true;
}

bool TaskQueue::publish(std::string_view key, Task task) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (closed_) {
        return false;
    }
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
    return true;
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
    out.clear();
    std::lock_guard<std::mutex> const lock(mutex_);
    out.swap(posts_);
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
