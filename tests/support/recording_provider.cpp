#include "recording_provider.h"

namespace yxfp_test {

using frontpanelhw::drawing::DisplayBuffer;

RecordingProvider::RecordingProvider(unsigned chars, unsigned lines)
    : chars_(chars), lines_(lines) {}

void RecordingProvider::enableDrawing(bool enable) {
    std::lock_guard<std::mutex> lock(mutex_);
    enabled_ = enable;
}

bool RecordingProvider::draw(DisplayBuffer const& buffer) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!enabled_) {
        return false;
    }
    frames_.push_back(buffer);
    return true;
}

unsigned RecordingProvider::getLines() const { return lines_; }

unsigned RecordingProvider::getChars() const { return chars_; }

std::size_t RecordingProvider::drawCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_.size();
}

std::vector<DisplayBuffer> RecordingProvider::frames() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_;
}

DisplayBuffer RecordingProvider::lastFrame() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return frames_.empty() ? DisplayBuffer(chars_, lines_) : frames_.back();
}

std::u16string RecordingProvider::line(unsigned line) const {
    return lastFrame().getLineString(line);
}

std::vector<std::u16string> RecordingProvider::screen() const { return screenOf(lastFrame()); }

std::string RecordingProvider::inversion(unsigned line) const {
    return inversionOf(lastFrame(), line);
}

void RecordingProvider::reset() {
    std::lock_guard<std::mutex> lock(mutex_);
    frames_.clear();
}

std::vector<std::u16string> screenOf(DisplayBuffer const& buffer) {
    std::vector<std::u16string> lines;
    for (unsigned line = 0; line < buffer.getLineCount(); ++line) {
        lines.push_back(buffer.getLineString(line));
    }
    return lines;
}

std::string inversionOf(frontpanelhw::drawing::DisplayLine const& line) {
    std::string mask;
    for (unsigned cell = 0; cell < line.size(); ++cell) {
        mask.push_back(line.getCharacter(cell).inverted ? '#' : '.');
    }
    return mask;
}

std::string inversionOf(DisplayBuffer const& buffer, unsigned line) {
    return inversionOf(buffer.getLine(line));
}

std::u16string padded(std::u16string const& text, std::size_t width) {
    std::u16string result = text.substr(0, width);
    result.resize(width, u' ');
    return result;
}

}  // namespace yxfp_test
