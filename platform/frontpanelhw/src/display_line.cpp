#include <frontpanelhw/display_types.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace frontpanelhw::drawing {

bool operator==(DisplayChar const& lhs, DisplayChar const& rhs) {
    return lhs.character == rhs.character && lhs.inverted == rhs.inverted;
}

bool operator!=(DisplayChar const& lhs, DisplayChar const& rhs) { return !(lhs == rhs); }

namespace {

void checkIndex(unsigned index, std::size_t size) {
    if (index >= size) {
        throw std::out_of_range("DisplayLine: cell index " + std::to_string(index) +
                                " is not below the line size " + std::to_string(size));
    }
}

}  // namespace

void DisplayLine::addCharacter(DisplayChar const& character) { cells_.push_back(character); }

void DisplayLine::setCharacter(unsigned index, DisplayChar const& character) {
    checkIndex(index, cells_.size());
    cells_[index] = character;
}

void DisplayLine::setInverted(unsigned first, unsigned last, bool inverted) {
    if (first > last || cells_.empty()) {
        return;
    }
    std::size_t const end = std::min<std::size_t>(last, cells_.size() - 1);
    for (std::size_t i = first; i <= end; ++i) {
        cells_[i].inverted = inverted;
    }
}

void DisplayLine::setLine(std::u16string const& text) {
    cells_.clear();
    cells_.reserve(text.size());
    for (char16_t character : text) {
        cells_.push_back(DisplayChar{character, false});
    }
}

std::u16string DisplayLine::getString() const {
    std::u16string text;
    text.reserve(cells_.size());
    for (DisplayChar const& cell : cells_) {
        text.push_back(cell.character);
    }
    return text;
}

unsigned DisplayLine::size() const { return static_cast<unsigned>(cells_.size()); }

DisplayChar const& DisplayLine::getCharacter(unsigned index) const {
    checkIndex(index, cells_.size());
    return cells_[index];
}

}  // namespace frontpanelhw::drawing
