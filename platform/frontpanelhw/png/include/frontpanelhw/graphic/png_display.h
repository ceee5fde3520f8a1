#pragma once

#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <frontpanelhw/graphic/png_export.h>
#include <frontpanelhw/graphic/rgb_color.h>

#include <string>

namespace frontpanelhw::graphic {

/** How a PngDisplay draws and where its pictures go. */
struct FRONTPANELHW_PNG_EXPORT PngDisplayOptions {
    /** Size of the simulated module in pixels. */
    unsigned width = 128;
    /** See width. */
    unsigned height = 64;
    /** The font of the cells. */
    Font font = Font::builtin6x8();
    /** Cells per line; 0: as many as fit. */
    unsigned chars = 0;
    /** Lines; 0: as many as fit. */
    unsigned lines = 0;
    /** false: the file always holds the newest frame; true: every frame goes to a file of its
     *  own, numbered from 1: FILE-000001.png, FILE-000002.png, ... (FILE without ".png"). */
    bool everyFrame = false;
    /** 1: a 1-bit picture, lit pixels white on black (encodePng); more: an RGB picture with
     *  each pixel a square of that size (encodePngRgb), 2..16. */
    unsigned scale = 1;
    /** Colour of lit pixels in an RGB picture. */
    RgbColor foreground{255, 255, 255};
    /** Colour of dark pixels in an RGB picture. */
    RgbColor background{0, 0, 0};
};

/** A graphic module whose frames are PNG pictures: each frame is written to a temporary file
 *  next to the target and renamed over it, so a reader never sees half a picture; or, with
 *  everyFrame, to a numbered file of its own. */
class FRONTPANELHW_PNG_EXPORT PngDisplay : public GraphicDisplay {
public:
    /** A display writing to `path`. @throws std::invalid_argument when the options are
     *  invalid (scale, cells that do not fit). Nothing is written before the first draw. */
    PngDisplay(std::string path, PngDisplayOptions const& options);
    ~PngDisplay() override;

    /** The file the newest frame went to (empty before the first). */
    std::string const& lastFile() const;
    /** Number of pictures written. */
    unsigned frameCount() const;

protected:
    /** Writes the whole picture (a PNG cannot be patched); false when the file cannot be
     *  written. */
    bool flush(MonoBitmap const& bitmap, PixelRect changed) override;

private:
    std::string path_;
    PngDisplayOptions options_;
    std::string lastFile_;
    unsigned frames_ = 0;
};

}  // namespace frontpanelhw::graphic
