#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/graphic/export.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/mono_bitmap.h>

#include <vector>

namespace frontpanelhw::graphic {

/** Draws a DisplayBuffer into a MonoBitmap with a font: display code -> Unicode through
 *  frontpanelhw::toUnicode, inverted cells drawn inverted, and only cells that changed since
 *  the last render; returns the bounding rectangle of what it redrew (empty when nothing).
 *  Cells that fall partly outside the bitmap are clipped. After the first render of a buffer
 *  size, rendering allocates nothing. */
class FRONTPANELHW_GRAPHIC_EXPORT CellRenderer {
public:
    /** A renderer drawing with `font` that has drawn nothing yet. */
    explicit CellRenderer(Font font);

    /** Draws the cells of `buffer` that differ from the previous render (all of them on the
     *  first render, after invalidate(), or when the size of the buffer or the target, or the
     *  origin changed) with
     *  the top-left cell's corner at (originX, originY) of `target`. The caller keeps passing
     *  the same target (or one holding what was drawn). */
    PixelRect render(drawing::DisplayBuffer const& buffer, MonoBitmap& target, unsigned originX = 0,
                     unsigned originY = 0);
    /** Makes the next render redraw every cell. */
    void invalidate();
    /** The font it draws with. */
    Font const& font() const;

private:
    void drawCell(drawing::DisplayChar const& cell, MonoBitmap& target, unsigned x,
                  unsigned y) const;

    Font font_;
    std::vector<drawing::DisplayChar> previous_;
    unsigned chars_ = 0;
    unsigned lines_ = 0;
    unsigned originX_ = 0;
    unsigned originY_ = 0;
    unsigned targetWidth_ = 0;
    unsigned targetHeight_ = 0;
    bool valid_ = false;
};

}  // namespace frontpanelhw::graphic
