#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/recording_display.h>

namespace yxfrontpanel::testing {

using frontpanelhw::drawing::DisplayBuffer;

RecordingDisplay::RecordingDisplay(unsigned chars, unsigned lines) : chars_(chars), lines_(lines) {}

RecordingDisplay::~RecordingDisplay() = default;

void RecordingDisplay::enableDrawing(bool enable) {
    std::lock_guard<std::mutex> lock(mutex_);
    enabled_ = enable;
}

bool RecordingDisplay::draw(DisplayBuffer const& buffer) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!enabled_) {
        return false;
    }
    frames_.push_back(buffer);
    return true;
}

bool RecordingDisplay::draw(DisplayBuffer const& buffer) {
    keep(buffer);
    return true;
}

void RecordingDisplay::keep(DisplayBuffer const& buffer) const {
    std::lock_guard<std::mutex> lock(mutex_);
    frames_.push_back(buffer);
}

unsigned RecordingDisplay::getLines() const { return lines_; }

unsigned RecordingDisplay::getChars() const { return chars_; }

std::size_t RecordingDisplay::drawCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_.size();
}

std::vector<DisplayBuffer> RecordingDisplay::frames() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_;
}

DisplayBuffer RecordingDisplay::lastFrame() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_.empty() ? DisplayBuffer(chars_, lines_) : frames_.back();
}

std::u16string RecordingDisplay::line(unsigned line) const {
    return lastFrame().getLineString(line);
}

std::vector<std::u16string> RecordingDisplay::screen() const { return screenLines(lastFrame()); }

std::string RecordingDisplay::inversion(unsigned line) const {
    return inversionMask(lastFrame().getLine(line));
}

std::string RecordingDisplay::text() const { return formatFrame(lastFrame()); }

void RecordingDisplay::reset() {
    std::lock_guard<std::mutex> lock(mutex_);
    frames_.clear();
}

}  // namespace yxfrontpanel::testing
