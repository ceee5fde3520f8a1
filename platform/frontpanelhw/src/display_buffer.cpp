#include <frontpanelhw/display_types.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace frontpanelhw::drawing {

namespace {
constexpr DisplayChar kBlank{u' ', false};

// chars x lines, refused when the vector cannot hold it. Where size_t has 32 bits (armhf) the
// plain product wraps around and would give a small buffer behind large dimensions.
std::size_t cellCount(unsigned chars, unsigned lines) {
    std::size_t const most = std::vector<DisplayChar>().max_size();
    if (lines != 0 && chars > most / lines) {
        throw std::length_error("DisplayBuffer: " + std::to_string(chars) + " x " +
                                std::to_string(lines) + " cells exceed the " +
                                std::to_string(most) + " cells a buffer can hold");
    }
    return std::size_t{chars} * lines;
}
}  // namespace

DisplayBuffer::DisplayBuffer(unsigned chars, unsigned lines)
    : chars_(chars), lines_(lines), cells_(cellCount(chars, lines), kBlank) {}

void DisplayBuffer::clear() { std::fill(cells_.begin(), cells_.end(), kBlank); }

unsigned DisplayBuffer::getChars() const { return chars_; }

unsigned DisplayBuffer::getLineCount() const { return lines_; }

std::size_t DisplayBuffer::offsetOf(unsigned line) const { return std::size_t{line} * chars_; }

void DisplayBuffer::checkLine(unsigned line) const {
    if (line >= lines_) {
        throw std::out_of_range("DisplayBuffer: line " + std::to_string(line) +
                                " is not below the line count " + std::to_string(lines_));
    }
}

DisplayLine DisplayBuffer::getLine(unsigned line) const {
    checkLine(line);
    DisplayLine result;
    for (unsigned column = 0; column < chars_; ++column) {
        result.addCharacter(cells_[offsetOf(line) + column]);
    }
    return result;
}

std::u16string DisplayBuffer::getLineString(unsigned line) const {
    checkLine(line);
    std::u16string text(chars_, u' ');
    for (unsigned column = 0; column < chars_; ++column) {
        text[column] = cells_[offsetOf(line) + column].character;
    }
    return text;
}

void DisplayBuffer::setDisplayLine(unsigned line, DisplayLine const& content) {
    if (line >= lines_) {
        return;
    }
    auto const target = cells_.begin() + static_cast<std::ptrdiff_t>(offsetOf(line));
    unsigned const copied = std::min(content.size(), chars_);
    std::copy_n(content.data(), copied, target);
    std::fill(target + copied, target + chars_, kBlank);
}

void DisplayBuffer::setLineContent(unsigned line, unsigned column, std::u16string const& text) {
    if (line >= lines_ || column >= chars_) {
        return;
    }
    std::size_t const count = std::min<std::size_t>(text.size(), chars_ - column);
    for (std::size_t i = 0; i < count; ++i) {
        cells_[offsetOf(line) + column + i].character = text[i];
    }
}

DisplayChar const& DisplayBuffer::getCell(unsigned column, unsigned line) const {
    checkLine(line);
    if (column >= chars_) {
        throw std::out_of_range("DisplayBuffer: column " + std::to_string(column) +
                                " is not below the width " + std::to_string(chars_));
    }
    return cells_[offsetOf(line) + column];
}

}  // namespace frontpanelhw::drawing
