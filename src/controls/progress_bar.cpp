#include <yxfrontpanel/progress_bar.h>

#include <cstdint>
#include <limits>

#include "common/saturated_int.h"

namespace yxfrontpanel {

namespace {

constexpr char16_t kFilledCell = 0xDB;
constexpr char16_t kEmptyCell = 0xB0;

// The range rules step one past a bound (max - 1, min + 1); saturate instead of overflowing.
int stepped(int bound, int step) { return detail::saturatedInt(std::int64_t{bound} + step); }

// Truncation toward zero of a product that may be negative, NaN or beyond unsigned.
unsigned truncatedCount(float product) {
    if (!(product > 0.0F)) {
        return 0;
    }
    if (product >= static_cast<float>(std::numeric_limits<unsigned>::max())) {
        return std::numeric_limits<unsigned>::max();
    }
    return static_cast<unsigned>(product);
}

}  // namespace

ProgressBar::ProgressBar(drawing::Point position, unsigned width, int min, int max)
    : Label(position, width, u"") {
    setMin(min);
    setMax(max);
    value_ = min;
}

ProgressBar::~ProgressBar() = default;

bool ProgressBar::setValue(int value) {
    if (value == value_) {
        return false;
    }
    value_ = value < min_ ? min_ : (value > max_ ? max_ : value);
    updateControl();
    return true;
}

bool ProgressBar::setMin(int value) {
    if (value == min_) {
        return false;
    }
    min_ = value < max_ ? value : stepped(max_, -1);
    if (value_ < min_) {
        value_ = min_;
    }
    updateControl();
    return true;
}

bool ProgressBar::setMax(int value) {
    if (value == max_) {
        return false;
    }
    max_ = value > min_ ? value : stepped(min_, +1);
    if (value_ > max_) {
        value_ = max_;
    }
    updateControl();
    return true;
}

std::u16string ProgressBar::createBar() const {
    unsigned const width = getSize().width;
    // Both differences go to single precision before dividing; the rounding of these exact
    // steps decides the filled count and is part of the bar's look.
    auto const done = static_cast<float>(std::int64_t{value_} - min_);
    auto const range = static_cast<float>(std::int64_t{max_} - min_);
    float const quotient = done / range;
    unsigned const filled = truncatedCount(quotient * static_cast<float>(width));
    std::u16string bar(width, kEmptyCell);
    for (unsigned cell = 0; cell < width; ++cell) {
        if (filled > cell && value_ != min_) {
            bar[cell] = kFilledCell;
        }
    }
    return bar;
}

void ProgressBar::updateControl() { setText(createBar()); }

int ProgressBar::getValue() const { return value_; }

int ProgressBar::getMin() const { return min_; }

int ProgressBar::getMax() const { return max_; }

}  // namespace yxfrontpanel
