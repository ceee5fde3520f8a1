#pragma once

#include <frontpanelhw/graphic/export.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <frontpanelhw/graphic/rgb_color.h>

#include <cstdint>
#include <memory>
#include <string>

namespace frontpanelhw::graphic {

/** How a FramebufferDisplay shows the panel. */
struct FRONTPANELHW_GRAPHIC_EXPORT FramebufferOptions {
    /** The font of the cells. */
    Font font = Font::builtin6x8();
    /** Cells per line and lines; 0: as many as fit. */
    unsigned chars = 0;
    /** Lines; 0: as many as fit. */
    unsigned lines = 0;
    /** Clockwise rotation of the picture on the screen: 0, 90, 180 or 270 degrees. */
    unsigned rotation = 0;
    /** Colour of lit pixels. */
    RgbColor foreground{255, 255, 255};
    /** Colour of dark pixels. */
    RgbColor background{0, 0, 0};
    /** For a regular file standing in for the device: its geometry (the file must hold exactly
     *  width x height pixels of bitsPerPixel, rows without padding; 16 bits are RGB565, 24 and
     *  32 bits B, G, R(, X) bytes). All 0 for a framebuffer device, which tells its own. */
    unsigned fileWidth = 0;
    /** See fileWidth. */
    unsigned fileHeight = 0;
    /** See fileWidth: 16, 24 or 32. */
    unsigned fileBitsPerPixel = 0;
};

/** The panel on a Linux framebuffer (/dev/fbN, 16, 24 or 32 bits per pixel, true colour),
 *  mapped into memory; or on a regular file of the right size standing in for one. Only the
 *  changed region of each frame is written. */
class FRONTPANELHW_GRAPHIC_EXPORT FramebufferDisplay : public GraphicDisplay {
public:
    /** Opens the framebuffer at `path` (or the regular file, with the geometry of `options`).
     *  @throws std::runtime_error naming `path` and the reason when it cannot be opened or
     *  mapped, or its pixel format is not supported; std::invalid_argument when the options
     *  are invalid (rotation, geometry, cells that do not fit). */
    static std::unique_ptr<FramebufferDisplay> open(std::string const& path,
                                                    FramebufferOptions const& options);
    ~FramebufferDisplay() override;

    /** Width of the screen in its own pixels (before rotation). */
    unsigned screenWidth() const;
    /** Height of the screen in its own pixels (before rotation). */
    unsigned screenHeight() const;
    /** Bits per pixel of the screen. */
    unsigned bitsPerPixel() const;
    /** Fills the screen with the background colour (dark) or shows the panel again. */
    void setPowerSave(bool dark) override;

    /** The mapped screen; defined in the library. */
    class Screen;

protected:
    bool flush(MonoBitmap const& bitmap, PixelRect changed) override;

private:
    FramebufferDisplay(std::unique_ptr<Screen> screen, FramebufferOptions const& options,
                       unsigned width, unsigned height);

    std::unique_ptr<Screen> screen_;
    unsigned rotation_;
    std::uint32_t foreground_;
    std::uint32_t background_;
    bool dark_ = false;
};

}  // namespace frontpanelhw::graphic
