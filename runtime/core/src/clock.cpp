#include <yxfrontpanel/runtime/clock.h>

#include <vector>

namespace yxfrontpanel::runtime {

// Out of line so that the interface's vtable has one home.
IClock::~IClock() = default;

SteadyClock::~SteadyClock() = default;

IClock::TimePoint SteadyClock::now() const { return std::chrono::steady_clock::now(); }

bool SteadyClock::movesByItself() const { return true; }

std::size_t SteadyClock::addAdvanceListener(AdvanceListener /*listener*/) { return 0; }

void SteadyClock::removeAdvanceListener(std::size_t /*id*/) {}

ManualClock::ManualClock(TimePoint start) : now_(start) {}

ManualClock::~ManualClock() = default;

IClock::TimePoint ManualClock::now() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return now_;
}

bool ManualClock::movesByItself() const { return false; }

std::size_t ManualClock::addAdvanceListener(AdvanceListener listener) {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::size_t const id = nextListenerId_++;
    listeners_.emplace(id, std::move(listener));
    return id;
}

void ManualClock::removeAdvanceListener(std::size_t id) {
    std::lock_guard<std::mutex> const lock(mutex_);
    listeners_.erase(id);
}

void ManualClock::advance(Duration step) {
    std::vector<AdvanceListener> toCall;
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (step > Duration::zero()) {
            now_ += step;
        }
        toCall.reserve(listeners_.size());
        for (auto const& entry : listeners_) {
            toCall.push_back(entry.second);
        }
    }
    // Called without the lock, so that a listener may read the time or remove itself.
    for (auto const& listener : toCall) {
        listener();
    }
}

}  // namespace yxfrontpanel::runtime
