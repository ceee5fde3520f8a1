#include <frontpanelhw/display.h>

namespace frontpanelhw {

IDisplay::~IDisplay() = default;

MemoryDisplay::MemoryDisplay(unsigned chars, unsigned lines)
    : chars_(chars), lines_(lines), lastFrame_(chars, lines) {}

MemoryDisplay::~MemoryDisplay() = default;

unsigned MemoryDisplay::getLines() const { return lines_; }

unsigned MemoryDisplay::getChars() const { return chars_; }

bool MemoryDisplay::draw(drawing::DisplayBuffer const& buffer) {
    lastFrame_ = buffer;
    ++drawCount_;
    return true;
}

unsigned MemoryDisplay::getDrawCount() const { return drawCount_; }

drawing::DisplayBuffer const& MemoryDisplay::getLastFrame() const { return lastFrame_; }

}  // namespace frontpanelhw
