#pragma once

#include <frontpanelhw/evdev_key_source.h>
#include <frontpanelhw/key_source.h>

#include <chrono>
#include <map>
#include <optional>

namespace frontpanelhw::detail {

/** Steps of one direction: `count` times `key`. */
struct EncoderStep {
    PanelKey key = PanelKey::Up;
    unsigned count = 0;
};

/** Turns the counts and positions of rotary encoder axes into up and down steps, as
 *  EncoderOptions describes. Times are the events' time stamps. */
class EncoderSteps {
public:
    /** The most steps one event gives, so that a garbage count cannot flood the queue. */
    static constexpr unsigned kMostStepsPerEvent = 64;

    explicit EncoderSteps(EncoderOptions options);

    bool isRelativeAxis(int code) const;
    bool isAbsoluteAxis(int code) const;

    /** The steps of `counts` on a relative axis at `time`. */
    EncoderStep addCounts(int counts, std::chrono::microseconds time);
    /** The steps of the position `value` of absolute axis `axis`; the first position after a
     *  reset only sets the start. */
    EncoderStep addPosition(int axis, int value, std::chrono::microseconds time);
    /** The range of an absolute axis, so that a wrap-around is told from a long turn. */
    void setAbsoluteRange(int axis, int minimum, int maximum);
    /** Forgets partial counts, positions and the acceleration history (events were lost). */
    void reset();

private:
    /** How many steps one step counts at `time` in direction `up`. */
    unsigned acceleratedSteps(bool up, std::chrono::microseconds time) const;

    EncoderOptions options_;
    long long pendingCounts_ = 0;
    std::map<int, int> positions_;
    std::map<int, long long> rangeSizes_;
    std::optional<std::chrono::microseconds> lastStepTime_;
    bool lastStepUp_ = false;
};

}  // namespace frontpanelhw::detail
