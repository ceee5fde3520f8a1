#pragma once

#include <string>
#include <utility>

namespace frontpanelsim {

struct DisplayOption;

/** The pixel displays of --display that this file parses: pixels, png: and fbdev:. */
struct GraphicTarget {
    /** Size of the module in pixels (pixels, png:; fbdev: with a geometry). */
    unsigned width = 128;
    /** See width. */
    unsigned height = 64;
    /** fbdev: with a geometry: 16, 24 or 32; 0 for a framebuffer device. */
    unsigned bitsPerPixel = 0;
    /** fbdev: clockwise rotation, 0/90/180/270. */
    unsigned rotation = 0;
    /** png: every frame to a numbered file instead of the newest one in FILE. */
    bool everyFrame = false;
    /** png: each pixel as a square of this size in an RGB picture (1: a 1-bit picture). */
    unsigned scale = 1;
    /** pixels: two pixels per cell in half blocks instead of eight in braille. */
    bool halfBlocks = false;
    /** The panel's cells on the module: from --size, or as many as fit (set by the options). */
    unsigned chars = 0;
    /** See chars. */
    unsigned lines = 0;
};

/** Parses `text` when it names one of the pixel displays ("pixels[:WxH][:braille|blocks]",
 *  "png:FILE[:WxH][:every][:xSCALE]", "fbdev:PATH[:WxH:BPP][:rot=DEGREES]") into `option`;
 *  returns false for any other display. @throws UsageError naming the value and the problem. */
bool parseGraphicDisplayOption(std::string const& text, DisplayOption& option);

/** Whether `option` is a pixel display, whose panel size follows from its pixels and font. */
bool isGraphicDisplay(DisplayOption const& option);

/** The module's size in pixels as the panel sees it (a framebuffer device without a geometry
 *  is asked, rotation applied). @throws std::runtime_error when the device cannot be opened. */
std::pair<unsigned, unsigned> graphicPixelSize(DisplayOption const& option);

/** The lines of --help about the pixel displays and --font. */
std::string graphicDisplayHelp();

}  // namespace frontpanelsim
