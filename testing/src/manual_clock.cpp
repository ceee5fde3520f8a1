#include <yxfrontpanel/testing/manual_clock.h>

#include <algorithm>

namespace yxfrontpanel::testing {

ManualClock::ManualClock(TimePoint start) : now_(start) {}

ManualClock::~ManualClock() = default;

ManualClock::TimePoint ManualClock::now() const {
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
    std::unique_lock<std::mutex> lock(mutex_);
    listeners_.erase(id);
    auto const me = std::this_thread::get_id();
    callEnded_.wait(lock, [this, id, me] {
        return std::none_of(calling_.begin(), calling_.end(), [id, me](auto const& call) {
            return call.first == id && call.second != me;
        });
    });
}

void ManualClock::advance(Duration step) {
    std::vector<std::size_t> ids;
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (step > Duration::zero()) {
            now_ += step;
        }
        ids.reserve(listeners_.size());
        for (auto const& entry : listeners_) {
            ids.push_back(entry.first);
        }
    }
    auto const me = std::this_thread::get_id();
    for (std::size_t const id : ids) {
        AdvanceListener listener;
        {
            // Looked up again right before the call: one removed meanwhile is not called.
            std::lock_guard<std::mutex> const lock(mutex_);
            auto const found = listeners_.find(id);
            if (found == listeners_.end()) {
                continue;
            }
            listener = found->second;
            calling_.emplace_back(id, me);
        }
        struct CallEnd {
            ManualClock& clock;
            std::size_t id;
            std::thread::id thread;
            ~CallEnd() {
                {
                    std::lock_guard<std::mutex> const lock(clock.mutex_);
                    auto const call = std::find(clock.calling_.begin(), clock.calling_.end(),
                                                std::make_pair(id, thread));
                    clock.calling_.erase(call);
                }
                clock.callEnded_.notify_all();
            }
        } const end{*this, id, me};
        listener();
    }
}

}  // namespace yxfrontpanel::testing
