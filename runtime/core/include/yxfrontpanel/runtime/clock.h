#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>

namespace yxfrontpanel::runtime {

/** The time source of a panel's timers, frame limit, auto-repeat and idle screen: steady time,
 *  replaceable so that tests and scripted runs move time themselves instead of sleeping. */
class YXFP_RUNTIME_EXPORT IClock {
public:
    /** A moment of the clock's steady time. */
    using TimePoint = std::chrono::steady_clock::time_point;
    /** A span of the clock's steady time. */
    using Duration = std::chrono::steady_clock::duration;
    /** Called after a clock that moves by hand was moved. */
    using AdvanceListener = std::function<void()>;

    IClock() = default;
    IClock(IClock const&) = delete;
    IClock& operator=(IClock const&) = delete;
    virtual ~IClock();

    /** The current time. Any thread. */
    virtual TimePoint now() const = 0;
    /** True for a clock that moves by itself: a loop may then wait in real time for its next
     *  deadline. False for a clock moved by hand: a loop waits only for events and for the
     *  clock's advance listeners. */
    virtual bool movesByItself() const = 0;
    /** Registers `listener`, called (on the moving thread) whenever the clock was moved by
     *  hand; returns an id for `removeAdvanceListener`. A clock that moves by itself never
     *  calls it. Any thread. */
    virtual std::size_t addAdvanceListener(AdvanceListener listener) = 0;
    /** Removes a listener; unknown ids are ignored. Any thread. */
    virtual void removeAdvanceListener(std::size_t id) = 0;
};

/** std::chrono::steady_clock: the clock of a panel in the field. */
class YXFP_RUNTIME_EXPORT SteadyClock final : public IClock {
public:
    SteadyClock() = default;
    ~SteadyClock() override;

    TimePoint now() const override;
    /** True. */
    bool movesByItself() const override;
    /** Never calls the listener; returns 0. */
    std::size_t addAdvanceListener(AdvanceListener listener) override;
    void removeAdvanceListener(std::size_t id) override;
};

/** A clock that stands still until `advance` moves it: for tests and scripted runs. All
 *  operations may be called from any thread. */
class YXFP_RUNTIME_EXPORT ManualClock final : public IClock {
public:
    /** Starts at `start` (by default one hour after the steady clock's epoch, so that times
     *  computed backwards from now stay positive). */
    explicit ManualClock(TimePoint start = TimePoint{std::chrono::hours{1}});
    ~ManualClock() override;

    TimePoint now() const override;
    /** False. */
    bool movesByItself() const override;
    std::size_t addAdvanceListener(AdvanceListener listener) override;
    void removeAdvanceListener(std::size_t id) override;

    /** Moves the time forward by `step` (zero or negative: not at all, but the listeners are
     *  still called) and then calls every listener. */
    void advance(Duration step);

private:
    mutable std::mutex mutex_;
    TimePoint now_;
    std::size_t nextListenerId_ = 1;
    std::map<std::size_t, AdvanceListener> listeners_;
};

}  // namespace yxfrontpanel::runtime
