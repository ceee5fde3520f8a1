#pragma once

#include <frontpanelhw/graphic/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace frontpanelhw::graphic {

/** A font that cannot be loaded: names the file (or other source) and what is wrong with it. */
class FRONTPANELHW_GRAPHIC_EXPORT FontError : public std::runtime_error {
public:
    /** The error "SOURCE: PROBLEM". */
    FontError(std::string const& source, std::string const& problem);
    ~FontError() override;
    /** The file or source of the font. */
    std::string const& source() const;
    /** What is wrong with it. */
    std::string const& problem() const;

private:
    std::string source_;
    std::string problem_;
};

/** A monospaced bitmap font: the built-in 6x8 (5x7 glyphs) and 8x16 fonts or a PSF console
 *  font; glyphs looked up by Unicode code point, a visible replacement for missing ones. A
 *  cheap copyable value (the glyph data is shared and never changes). */
class FRONTPANELHW_GRAPHIC_EXPORT Font {
public:
    /** The built-in font of 6x8 cells (5x7 glyphs with a column and a row of spacing). */
    static Font builtin6x8();
    /** The built-in font of 8x16 cells. */
    static Font builtin8x16();
    /** A PSF2 or PSF1 console font from `path`, gzip-compressed when the name ends in ".gz".
     *  @throws FontError naming the file when it cannot be read or is not a valid font, or is
     *  compressed and the library was built without zlib. */
    static Font fromPsfFile(std::string const& path);
    /** A PSF2 or PSF1 font from the bytes of a file (not compressed); `source` names them in
     *  errors. @throws FontError when the bytes are not a valid font. */
    static Font fromPsfBytes(std::uint8_t const* bytes, std::size_t size,
                             std::string const& source);
    /** "6x8", "8x16" or the path of a PSF font. @throws FontError as fromPsfFile does. */
    static Font fromName(std::string const& name);

    /** Width of a cell in pixels. */
    unsigned cellWidth() const;
    /** Height of a cell in pixels. */
    unsigned cellHeight() const;
    /** Pixel (x, y) of the glyph of `character` (x < cellWidth, y < cellHeight), of the
     *  replacement glyph when the font lacks `character`; false outside the cell. */
    bool glyphPixel(char32_t character, unsigned x, unsigned y) const;
    /** Whether the font has a glyph of its own for `character`. */
    bool hasGlyph(char32_t character) const;
    /** The rows of the glyph of `character` (of the replacement glyph when the font lacks it):
     *  cellHeight() rows of glyphStride() bytes, MSB-first like a MonoBitmap row. Valid as long
     *  as a copy of this font lives. Never throws. */
    std::uint8_t const* glyphRows(char32_t character) const;
    /** Bytes per glyph row: (cellWidth + 7) / 8. */
    unsigned glyphStride() const;
    /** Number of glyphs the font holds. */
    std::size_t glyphCount() const;
    /** What the font is: "6x8", "8x16", or the file (or other source) it was loaded from. */
    std::string const& name() const;

    /** The font's data; shared between copies. */
    class Data;

private:
    explicit Font(std::shared_ptr<Data const> data);
    std::shared_ptr<Data const> data_;
};

}  // namespace frontpanelhw::graphic
