#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/graphic/cell_renderer.h>
#include <frontpanelhw/graphic/export.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/mono_bitmap.h>

namespace frontpanelhw::graphic {

/** Base of the graphic devices: an IDisplay of chars x lines cells (by default as many as fit
 *  the pixel size with the font, the text block centred), rendering each frame into its bitmap
 *  and handing the changed region to the device. */
class FRONTPANELHW_GRAPHIC_EXPORT GraphicDisplay : public IDisplay {
public:
    /** A display of `widthPixels` x `heightPixels` showing `chars` x `lines` cells of `font`
     *  (0: as many as fit). @throws std::invalid_argument when the pixel size is 0, or when
     *  chars x lines cells do not fit, or not even one cell fits. */
    GraphicDisplay(unsigned widthPixels, unsigned heightPixels, Font font, unsigned chars = 0,
                   unsigned lines = 0);
    ~GraphicDisplay() override;

    unsigned getLines() const override;
    unsigned getChars() const override;
    /** Renders `buffer` (cut or padded to the display's cells), then hands the changed region
     *  to flush() when it is not empty; the first draw, and the one after a failed flush, hands
     *  over the whole bitmap. Returns false when the flush failed. */
    bool draw(drawing::DisplayBuffer const& buffer) override;
    /** The picture of the last draw (all dark before the first). */
    MonoBitmap const& bitmap() const;
    /** The font the cells are drawn with. */
    Font const& font() const;
    /** Where the top-left cell's corner lies in the bitmap (the margin of the centred text). */
    unsigned originX() const;
    /** Where the top-left cell's corner lies in the bitmap (the margin of the centred text). */
    unsigned originY() const;
    /** Turns the panel dark (burn-in protection while idle) or back on. Default: no-op. */
    virtual void setPowerSave(bool dark);

protected:
    /** Sends `changed` of `bitmap` to the device; false when the device failed (the next draw
     *  then sends everything again). */
    virtual bool flush(MonoBitmap const& bitmap, PixelRect changed) = 0;

private:
    unsigned chars_;
    unsigned lines_;
    unsigned originX_;
    unsigned originY_;
    MonoBitmap bitmap_;
    CellRenderer renderer_;
    drawing::DisplayBuffer frame_;
    bool flushAll_ = true;
};

}  // namespace frontpanelhw::graphic
