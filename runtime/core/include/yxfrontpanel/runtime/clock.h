#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace yxfrontpanel::runtime {

/** The time source of a panel's timers, frame limit, auto-repeat and idle screen: steady time,
 *  replaceable so that tests and scripted runs move time themselves instead of sleeping (the
 *  testing kit's `yxfrontpanel::testing::ManualClock`). */
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

}  // namespace yxfrontpanel::runtime
