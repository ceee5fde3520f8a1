#pragma once

// The glyph store behind a Font: glyph bitmaps packed one after the other, and the map from
// code point to glyph. Built once by a loader, then shared read-only between Font copies.

#include <frontpanelhw/graphic/font.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace frontpanelhw::graphic {

class Font::Data {
public:
    /** An empty store for glyphs of `width` x `height` pixels. */
    Data(unsigned width, unsigned height, std::string name);

    /** Appends a glyph of height() rows of stride() bytes; returns its index. The bits past
     *  the width are cleared. */
    std::uint32_t addGlyph(std::uint8_t const* rows);
    /** Maps `code` to glyph `index`, unless `code` already has a glyph (the first one wins). */
    void map(char32_t code, std::uint32_t index);
    /** Sorts the map and chooses the replacement: the glyph of U+FFFD, else a drawn box. */
    void finish();

    unsigned width() const { return width_; }
    unsigned height() const { return height_; }
    unsigned stride() const { return stride_; }
    std::string const& name() const { return name_; }
    std::size_t glyphCount() const { return glyphCount_; }

    /** The glyph index of `code`, or kNone. */
    std::uint32_t find(char32_t code) const;
    /** The rows of glyph `index`, the replacement when it is kNone. */
    std::uint8_t const* rows(std::uint32_t index) const;

    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

private:
    std::uint32_t drawReplacement();

    unsigned width_;
    unsigned height_;
    unsigned stride_;
    std::size_t glyphBytes_;
    std::string name_;
    std::size_t glyphCount_ = 0;
    std::vector<std::uint8_t> bitmaps_;
    std::array<std::uint32_t, 256> latin1_;                 // code < 256 -> glyph, direct
    std::vector<std::pair<char32_t, std::uint32_t>> wide_;  // code >= 256 -> glyph, sorted
    std::uint32_t replacement_ = kNone;
};

}  // namespace frontpanelhw::graphic
