#pragma once

#include <frontpanelhw/graphic/export.h>

#include <cstdint>
#include <vector>

namespace frontpanelhw::graphic {

/** A 1-bit picture: row-major, each row packed MSB-first (bit 7 of byte 0 is x=0), stride
 *  (width+7)/8 bytes; a set bit is a lit pixel ("ink"). The padding bits at the end of a row
 *  stay 0. A copyable value. */
class FRONTPANELHW_GRAPHIC_EXPORT MonoBitmap {
public:
    /** A picture of `width` x `height` pixels, all dark. */
    MonoBitmap(unsigned width, unsigned height);

    /** Width in pixels. */
    unsigned width() const;
    /** Height in pixels. */
    unsigned height() const;
    /** Bytes per row: (width + 7) / 8. */
    unsigned stride() const;
    /** Whether pixel (x, y) is lit; false outside the picture. */
    bool pixel(unsigned x, unsigned y) const;
    /** Lights (`on`) or darkens pixel (x, y); ignored outside the picture. */
    void setPixel(unsigned x, unsigned y, bool on);
    /** Makes every pixel lit (`on`) or dark. */
    void fill(bool on);
    /** The packed rows, stride() * height() bytes. */
    std::uint8_t const* data() const;
    /** The packed rows for writing; keep the padding bits of each row 0. */
    std::uint8_t* data();

    /** Pictures are equal when their sizes and all their pixels are equal. */
    bool operator==(MonoBitmap const& other) const;
    /** The negation of `operator==`. */
    bool operator!=(MonoBitmap const& other) const;

private:
    unsigned width_;
    unsigned height_;
    unsigned stride_;
    std::vector<std::uint8_t> bits_;
};

/** A rectangle of pixels; empty when width or height is 0. */
struct FRONTPANELHW_GRAPHIC_EXPORT PixelRect {
    /** Left column. */
    unsigned x = 0;
    /** Top row. */
    unsigned y = 0;
    /** Width in pixels. */
    unsigned width = 0;
    /** Height in pixels. */
    unsigned height = 0;

    /** True when the rectangle holds no pixel. */
    bool empty() const;
    /** The smallest rectangle holding this one and `other` (an empty one adds nothing). */
    PixelRect united(PixelRect const& other) const;
    /** Rectangles are equal when all four fields are equal. */
    bool operator==(PixelRect const& other) const;
    /** The negation of `operator==`. */
    bool operator!=(PixelRect const& other) const;
};

}  // namespace frontpanelhw::graphic
