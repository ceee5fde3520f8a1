#include "font_data.h"

#include <algorithm>

namespace frontpanelhw::graphic {

Font::Data::Data(unsigned width, unsigned height, std::string name)
    : width_(width),
      height_(height),
      stride_((width + 7) / 8),
      glyphBytes_(static_cast<std::size_t>((width + 7) / 8) * height),
      name_(std::move(name)) {
    latin1_.fill(kNone);
}

std::uint32_t Font::Data::addGlyph(std::uint8_t const* rows) {
    auto const index = static_cast<std::uint32_t>(glyphCount_);
    std::size_t const start = bitmaps_.size();
    bitmaps_.insert(bitmaps_.end(), rows, rows + glyphBytes_);
    unsigned const tail = width_ % 8;
    if (tail != 0) {
        auto const keep = static_cast<std::uint8_t>((0xFF00u >> tail) & 0xFFu);
        for (unsigned row = 0; row < height_; ++row) {
            bitmaps_[start + static_cast<std::size_t>(row) * stride_ + stride_ - 1] &= keep;
        }
    }
    ++glyphCount_;
    return index;
}

void Font::Data::map(char32_t code, std::uint32_t index) {
    if (code < latin1_.size()) {
        if (latin1_[code] == kNone) {
            latin1_[code] = index;
        }
        return;
    }
    wide_.emplace_back(code, index);
}

void Font::Data::finish() {
    // A stable sort keeps the first glyph given for a code in front; the rest are dropped.
    std::stable_sort(wide_.begin(), wide_.end(),
                     [](auto const& lhs, auto const& rhs) { return lhs.first < rhs.first; });
    wide_.erase(
        std::unique(wide_.begin(), wide_.end(),
                    [](auto const& lhs, auto const& rhs) { return lhs.first == rhs.first; }),
        wide_.end());
    wide_.shrink_to_fit();
    std::uint32_t const own = find(U'\uFFFD');
    replacement_ = own != kNone ? own : drawReplacement();
}

std::uint32_t Font::Data::drawReplacement() {
    // A box one pixel inside the cell's right and bottom edge, like a glyph with its spacing.
    std::vector<std::uint8_t> rows(glyphBytes_, 0);
    unsigned const right = width_ > 1 ? width_ - 2 : 0;
    unsigned const bottom = height_ > 1 ? height_ - 2 : 0;
    for (unsigned y = 0; y <= bottom; ++y) {
        for (unsigned x = 0; x <= right; ++x) {
            if (y == 0 || y == bottom || x == 0 || x == right) {
                rows[static_cast<std::size_t>(y) * stride_ + x / 8] |=
                    static_cast<std::uint8_t>(0x80u >> (x % 8));
            }
        }
    }
    std::uint32_t const index = addGlyph(rows.data());
    --glyphCount_;  // drawn here, not one of the font's own glyphs
    return index;
}

std::uint32_t Font::Data::find(char32_t code) const {
    if (code < latin1_.size()) {
        return latin1_[code];
    }
    auto const found = std::lower_bound(wide_.begin(), wide_.end(), code,
                                        [](std::pair<char32_t, std::uint32_t> const& entry,
                                           char32_t key) { return entry.first < key; });
    return found != wide_.end() && found->first == code ? found->second : kNone;
}

std::uint8_t const* Font::Data::rows(std::uint32_t index) const {
    return bitmaps_.data() + (index == kNone ? replacement_ : index) * glyphBytes_;
}

}  // namespace frontpanelhw::graphic
