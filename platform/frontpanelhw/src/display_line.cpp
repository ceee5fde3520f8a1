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

void checkIndex(unsigned index, unsigned size) {
    if (index >= size) {
        throw std::out_of_range("DisplayLine: cell index " + std::to_string(index) +
                                " is not below the line size " + std::to_string(size));
    }
}

}  // namespace

DisplayLine::DisplayLine(DisplayLine const& other) { assign(other.data(), other.size_); }

DisplayLine& DisplayLine::operator=(DisplayLine const& other) {
    if (this != &other) {
        assign(other.data(), other.size_);
    }
    return *this;
}

DisplayLine::DisplayLine(DisplayLine&& other) noexcept
    : size_(other.size_), heap_(std::move(other.heap_)) {
    if (heap_.empty()) {
        std::copy_n(other.inline_.begin(), size_, inline_.begin());
    }
    other.size_ = 0;
}

DisplayLine& DisplayLine::operator=(DisplayLine&& other) noexcept {
    if (this != &other) {
        size_ = other.size_;
        heap_ = std::move(other.heap_);
        if (heap_.empty()) {
            std::copy_n(other.inline_.begin(), size_, inline_.begin());
        }
        other.size_ = 0;
    }
    return *this;
}

DisplayChar* DisplayLine::cells() { return heap_.empty() ? inline_.data() : heap_.data(); }

DisplayChar const* DisplayLine::data() const {
    return heap_.empty() ? inline_.data() : heap_.data();
}

void DisplayLine::assign(DisplayChar const* cells, unsigned count) {
    if (count <= kInlineCells) {
        heap_.clear();
        heap_.shrink_to_fit();
        std::copy_n(cells, count, inline_.begin());
    } else {
        heap_.assign(cells, cells + count);
    }
    size_ = count;
}

DisplayChar* DisplayLine::grow(unsigned count) {
    unsigned const first = size_;
    if (heap_.empty() && first + count <= kInlineCells) {
        size_ += count;
        return inline_.data() + first;
    }
    if (heap_.empty()) {
        heap_.reserve(std::max<std::size_t>(std::size_t{kInlineCells} * 2, first + count));
        heap_.assign(inline_.begin(), inline_.begin() + first);
    }
    heap_.resize(std::size_t{first} + count);
    size_ += count;
    return heap_.data() + first;
}

void DisplayLine::addCharacter(DisplayChar const& character) { *grow(1) = character; }

void DisplayLine::appendText(char16_t const* text, unsigned count, bool inverted) {
    DisplayChar* target = grow(count);
    for (unsigned i = 0; i < count; ++i) {
        target[i] = DisplayChar{text[i], inverted};
    }
}

void DisplayLine::appendFill(char16_t character, unsigned count, bool inverted) {
    std::fill_n(grow(count), count, DisplayChar{character, inverted});
}

void DisplayLine::setCharacter(unsigned index, DisplayChar const& character) {
    checkIndex(index, size_);
    cells()[index] = character;
}

void DisplayLine::setInverted(unsigned first, unsigned last, bool inverted) {
    if (first > last || size_ == 0) {
        return;
    }
    unsigned const end = std::min(last, size_ - 1);
    DisplayChar* const line = cells();
    for (unsigned i = first; i <= end; ++i) {
        line[i].inverted = inverted;
    }
}

void DisplayLine::setLine(std::u16string const& text) {
    heap_.clear();
    size_ = 0;
    appendText(text.data(), static_cast<unsigned>(text.size()), false);
}

std::u16string DisplayLine::getString() const {
    std::u16string text(size_, u' ');
    std::transform(data(), data() + size_, text.begin(),
                   [](DisplayChar const& cell) { return cell.character; });
    return text;
}

unsigned DisplayLine::size() const { return size_; }

DisplayChar const& DisplayLine::getCharacter(unsigned index) const {
    checkIndex(index, size_);
    return data()[index];
}

}  // namespace frontpanelhw::drawing
