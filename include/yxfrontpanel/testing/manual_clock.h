#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/testing/export.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace yxfrontpanel::testing {

/** A clock that stands still until `advance` moves it: for tests and scripted runs, so that
 *  timers, the frame limit, auto-repeat and the idle screen move only when the test says so.
 *  All operations may be called from any thread. */
class YXFP_TESTING_EXPORT ManualClock final : public runtime::IClock {
public:
    /** Starts at `start` (by default one hour after the steady clock's epoch, so that times
     *  computed backwards from now stay positive). */
    explicit ManualClock(TimePoint start = TimePoint{std::chrono::hours{1}});
    ~ManualClock() override;

    TimePoint now() const override;
    /** False. */
    bool movesByItself() const override;
    std::size_t addAdvanceListener(AdvanceListener listener) override;
    /** Removes a listener; unknown ids are ignored. Once it returns the listener is never called
     *  again: a call running on another thread (in `advance`) has finished by then, so that the
     *  listener's owner may go. From inside the listener itself it does not wait. */
    void removeAdvanceListener(std::size_t id) override;

    /** Moves the time forward by `step` (zero or negative: not at all, but the listeners are
     *  still called) and then calls every listener, without holding the clock's lock, so that a
     *  listener may read the time or remove listeners. */
    void advance(Duration step);

private:
    mutable std::mutex mutex_;
    std::condition_variable callEnded_;
    TimePoint now_;
    std::size_t nextListenerId_ = 1;
    std::map<std::size_t, AdvanceListener> listeners_;
    // The listeners being called now, with the thread calling each.
    std::vector<std::pair<std::size_t, std::thread::id>> calling_;
};

}  // namespace yxfrontpanel::testing
