#include "encoder_steps.h"

#include <algorithm>
#include <utility>

namespace frontpanelhw::detail {

EncoderSteps::EncoderSteps(EncoderOptions options) : options_(std::move(options)) {
    options_.detentsPerStep = std::max(1U, options_.detentsPerStep);
    options_.maxAcceleratedSteps = std::max(1U, options_.maxAcceleratedSteps);
}

bool EncoderSteps::isRelativeAxis(int code) const {
    return std::find(options_.relativeAxes.begin(), options_.relativeAxes.end(), code) !=
           options_.relativeAxes.end();
}

bool EncoderSteps::isAbsoluteAxis(int code) const {
    return std::find(options_.absoluteAxes.begin(), options_.absoluteAxes.end(), code) !=
           options_.absoluteAxes.end();
}

unsigned EncoderSteps::acceleratedSteps(bool up, std::chrono::microseconds time) const {
    if (!options_.acceleration || !lastStepTime_ || lastStepUp_ != up || time < *lastStepTime_) {
        return 1;
    }
    auto const gap = time - *lastStepTime_;
    auto const interval = std::chrono::microseconds(options_.accelerationInterval);
    if (gap >= interval) {
        return 1;
    }
    if (gap.count() <= 0) {
        return options_.maxAcceleratedSteps;
    }
    auto const factor = static_cast<unsigned long long>(interval / gap);
    return static_cast<unsigned>(
        std::clamp<unsigned long long>(factor, 1, options_.maxAcceleratedSteps));
}

EncoderStep EncoderSteps::addCounts(int counts, std::chrono::microseconds time) {
    pendingCounts_ += options_.reverse ? -static_cast<long long>(counts) : counts;
    long long const detents = options_.detentsPerStep;
    long long const steps = pendingCounts_ / detents;  // rounds toward zero: partial turns wait
    if (steps == 0) {
        return {};
    }
    pendingCounts_ -= steps * detents;
    bool const up = steps > 0;
    // One multiplier per event: a driver that reports several counts at once did not turn
    // infinitely fast.
    unsigned long long const total =
        static_cast<unsigned long long>(up ? steps : -steps) * acceleratedSteps(up, time);
    lastStepTime_ = time;
    lastStepUp_ = up;
    return {up ? PanelKey::Up : PanelKey::Down,
            static_cast<unsigned>(std::min<unsigned long long>(total, kMostStepsPerEvent))};
}

EncoderStep EncoderSteps::addPosition(int axis, int value, std::chrono::microseconds time) {
    auto const previous = positions_.find(axis);
    if (previous == positions_.end()) {
        positions_[axis] = value;
        return {};
    }
    long long delta = static_cast<long long>(value) - previous->second;
    previous->second = value;
    auto const range = rangeSizes_.find(axis);
    if (range != rangeSizes_.end() && range->second > 1) {
        if (delta > range->second / 2) {
            delta -= range->second;
        } else if (delta < -range->second / 2) {
            delta += range->second;
        }
    }
    constexpr long long kLargestDelta = 1 << 20;
    return addCounts(static_cast<int>(std::clamp(delta, -kLargestDelta, kLargestDelta)), time);
}

void EncoderSteps::setAbsoluteRange(int axis, int minimum, int maximum) {
    if (maximum > minimum) {
        rangeSizes_[axis] = static_cast<long long>(maximum) - minimum + 1;
    }
}

void EncoderSteps::reset() {
    pendingCounts_ = 0;
    positions_.clear();
    lastStepTime_.reset();
}

}  // namespace frontpanelhw::detail
