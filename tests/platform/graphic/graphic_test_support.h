#pragma once

// Helpers of the graphic display tests: pictures as text and PSF fonts built in memory.

#include <frontpanelhw/graphic/mono_bitmap.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace yxfp_graphic_test {

/** The bitmap as text, one line per row: '#' lit, '.' dark. */
inline std::string picture(frontpanelhw::graphic::MonoBitmap const& bitmap) {
    std::string text;
    for (unsigned y = 0; y < bitmap.height(); ++y) {
        for (unsigned x = 0; x < bitmap.width(); ++x) {
            text += bitmap.pixel(x, y) ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

/** A bitmap drawn from text rows ('#' lit, anything else dark). */
inline frontpanelhw::graphic::MonoBitmap bitmapOf(std::vector<std::string> const& rows) {
    frontpanelhw::graphic::MonoBitmap bitmap(rows.empty() ? 0 : unsigned(rows[0].size()),
                                             unsigned(rows.size()));
    for (unsigned y = 0; y < rows.size(); ++y) {
        for (unsigned x = 0; x < rows[y].size(); ++x) {
            bitmap.setPixel(x, y, rows[y][x] == '#');
        }
    }
    return bitmap;
}

inline void putU32(std::vector<std::uint8_t>& out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

/** A PSF2 font file built field by field, so that tests can spoil any of them. */
struct Psf2Builder {
    std::uint32_t version = 0;
    std::uint32_t headerSize = 32;
    std::uint32_t flags = 0;
    std::uint32_t width = 8;
    std::uint32_t height = 8;
    std::uint32_t glyphBytesOverride = 0;  // 0: the right value
    std::uint32_t glyphCountOverride = 0;  // 0: glyphs.size()
    /** Glyph bitmaps, ((width + 7) / 8) * height bytes each. */
    std::vector<std::vector<std::uint8_t>> glyphs;
    /** The raw Unicode table (flags bit 0 set by hand). */
    std::vector<std::uint8_t> table;

    /** Adds a glyph whose rows are `rows` (one byte or more per row as given). */
    Psf2Builder& glyph(std::vector<std::uint8_t> rows) {
        glyphs.push_back(std::move(rows));
        return *this;
    }
    /** Appends the table entry of one glyph: UTF-8 `characters`, then 0xFF. */
    Psf2Builder& entry(std::string const& utf8) {
        table.insert(table.end(), utf8.begin(), utf8.end());
        table.push_back(0xFF);
        flags |= 1;
        return *this;
    }

    std::vector<std::uint8_t> bytes() const {
        std::vector<std::uint8_t> out{0x72, 0xB5, 0x4A, 0x86};
        putU32(out, version);
        putU32(out, headerSize);
        putU32(out, flags);
        putU32(out, glyphCountOverride != 0 ? glyphCountOverride : std::uint32_t(glyphs.size()));
        putU32(out, glyphBytesOverride != 0 ? glyphBytesOverride : ((width + 7) / 8) * height);
        putU32(out, height);
        putU32(out, width);
        while (out.size() < headerSize) {
            out.push_back(0);
        }
        for (auto const& glyph : glyphs) {
            out.insert(out.end(), glyph.begin(), glyph.end());
        }
        out.insert(out.end(), table.begin(), table.end());
        return out;
    }
};

}  // namespace yxfp_graphic_test
