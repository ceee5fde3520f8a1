#include "graphic_display_option.h"

#include <frontpanelhw/graphic/framebuffer_display.h>
#include <yxfrontpanel/components.h>

#include <cstdlib>
#include <vector>

#include "display_option.h"
#include "sim_options.h"

namespace frontpanelsim {

namespace {

UsageError badValue(std::string const& text, std::string const& problem) {
    return UsageError("--display " + text + ": " + problem);
}

std::vector<std::string> splitColons(std::string const& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        std::size_t const colon = text.find(':', start);
        parts.push_back(text.substr(start, colon - start));
        if (colon == std::string::npos) {
            return parts;
        }
        start = colon + 1;
    }
}

bool parseNumber(std::string const& text, unsigned long low, unsigned long high, unsigned& value) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos ||
        text.size() > 6) {
        return false;
    }
    unsigned long const number = std::strtoul(text.c_str(), nullptr, 10);
    if (number < low || number > high) {
        return false;
    }
    value = static_cast<unsigned>(number);
    return true;
}

/** "128x64" -> width and height (1..8192 each); false when `text` is not of that form. */
bool parsePixelSize(std::string const& text, unsigned& width, unsigned& height) {
    std::size_t const x = text.find('x');
    unsigned w = 0;
    unsigned h = 0;
    if (x == std::string::npos || !parseNumber(text.substr(0, x), 1, 8192, w) ||
        !parseNumber(text.substr(x + 1), 1, 8192, h)) {
        return false;
    }
    width = w;
    height = h;
    return true;
}

void parsePixels(std::string const& text, std::vector<std::string> const& parts,
                 GraphicTarget& target) {
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (parts[i] == "braille") {
            target.halfBlocks = false;
        } else if (parts[i] == "blocks") {
            target.halfBlocks = true;
        } else if (!parsePixelSize(parts[i], target.width, target.height)) {
            throw badValue(text, "'" + parts[i] + "' is neither WIDTHxHEIGHT nor braille/blocks");
        }
    }
}

void parsePng(std::string const& text, std::vector<std::string> parts, GraphicTarget& target,
              std::string& path) {
#if !YXFP_HAS_PNG
    (void)parts;
    (void)target;
    (void)path;
    throw badValue(text,
                   "this build has no PNG support (configure with libpng, Debian package "
                   "libpng-dev)");
#else
    // Options from the end, so that the file name may hold colons.
    while (parts.size() > 2) {
        std::string const& last = parts.back();
        bool const scale =
            last.size() > 1 && last[0] == 'x' && parseNumber(last.substr(1), 1, 16, target.scale);
        if (last == "every") {
            target.everyFrame = true;
        } else if (!scale && !parsePixelSize(last, target.width, target.height)) {
            break;
        }
        parts.pop_back();
    }
    for (std::size_t i = 1; i < parts.size(); ++i) {
        path += (i > 1 ? ":" : "") + parts[i];
    }
    if (path.empty()) {
        throw badValue(text, "the file name is missing");
    }
#endif
}

void parseFramebuffer(std::string const& text, std::vector<std::string> parts,
                      GraphicTarget& target, std::string& path) {
    target.width = 0;
    target.height = 0;
    if (parts.size() > 2 && parts.back().rfind("rot=", 0) == 0) {
        if (!parseNumber(parts.back().substr(4), 0, 270, target.rotation) ||
            target.rotation % 90 != 0) {
            throw badValue(text, "the rotation '" + parts.back() + "' is not rot=0/90/180/270");
        }
        parts.pop_back();
    }
    if (parts.size() > 3 && parsePixelSize(parts[parts.size() - 2], target.width, target.height)) {
        std::string const& depth = parts.back();
        if (!parseNumber(depth, 16, 32, target.bitsPerPixel) ||
            (target.bitsPerPixel != 16 && target.bitsPerPixel != 24 && target.bitsPerPixel != 32)) {
            throw badValue(text, "the depth '" + depth + "' is not 16, 24 or 32 bits per pixel");
        }
        parts.resize(parts.size() - 2);
    }
    for (std::size_t i = 1; i < parts.size(); ++i) {
        path += (i > 1 ? ":" : "") + parts[i];
    }
    if (path.empty()) {
        throw badValue(text, "the framebuffer path is missing");
    }
}

}  // namespace

bool parseGraphicDisplayOption(std::string const& text, DisplayOption& option) {
    std::vector<std::string> const parts = splitColons(text);
    if (parts[0] == "pixels") {
        option.kind = DisplayOption::Kind::Pixels;
        parsePixels(text, parts, option.graphic);
        return true;
    }
    if (parts[0] == "png" && parts.size() > 1) {
        option.kind = DisplayOption::Kind::Png;
        parsePng(text, parts, option.graphic, option.path);
        return true;
    }
    if (parts[0] == "fbdev" && parts.size() > 1) {
        option.kind = DisplayOption::Kind::Framebuffer;
        parseFramebuffer(text, parts, option.graphic, option.path);
        return true;
    }
    return false;
}

bool isGraphicDisplay(DisplayOption const& option) {
    return option.kind == DisplayOption::Kind::Pixels || option.kind == DisplayOption::Kind::Png ||
           option.kind == DisplayOption::Kind::Framebuffer ||
           option.kind == DisplayOption::Kind::GraphicModule;
}

std::pair<unsigned, unsigned> graphicPixelSize(DisplayOption const& option) {
    GraphicTarget const& target = option.graphic;
    if (option.kind == DisplayOption::Kind::GraphicModule) {
        return {kGraphicModuleWidth, option.graphicModule.height};
    }
    if (option.kind != DisplayOption::Kind::Framebuffer) {
        return {target.width, target.height};
    }
    bool const sideways = target.rotation == 90 || target.rotation == 270;
    if (target.bitsPerPixel != 0) {
        return sideways ? std::make_pair(target.height, target.width)
                        : std::make_pair(target.width, target.height);
    }
    frontpanelhw::graphic::FramebufferOptions options;
    options.rotation = target.rotation;
    auto const device = frontpanelhw::graphic::FramebufferDisplay::open(option.path, options);
    return {device->bitmap().width(), device->bitmap().height()};
}

std::string graphicDisplayHelp() {
    return "                        pixels[:WxH][:braille|blocks]  what a graphic module\n"
           "                          of WxH pixels (default 128x64) shows with --font,\n"
           "                          drawn in the terminal (or printed) as braille\n"
           "                          characters (2x4 pixels per cell) or half blocks\n"
           "                          (1x2 pixels per cell)\n"
           "                        png:FILE[:WxH][:every][:xN]  also write each frame of\n"
           "                          a WxH module (default 128x64) as a PNG picture:\n"
           "                          FILE holds the newest (replaced atomically), or with\n"
           "                          'every' each frame goes to FILE-000001.png, ...;\n"
           "                          1-bit, lit pixels white on black, or with xN an RGB\n"
           "                          picture with each pixel N x N (N up to 16)\n"
           "                        fbdev:PATH[:WxH:BPP][:rot=DEG]  also show the panel on\n"
           "                          the Linux framebuffer PATH (/dev/fb0; 16, 24 or 32\n"
           "                          bits per pixel), turned DEG (0, 90, 180, 270)\n"
           "                          clockwise; a regular file of W*H*BPP/8 bytes stands\n"
           "                          in for one with the geometry WxH:BPP given\n"
           "                        On these the panel's size is as many cells of the font\n"
           "                        as fit, unless --size asks for fewer (more is an error)\n"
           "    --font FONT         font of the pixel displays: 6x8 (default; 5x7 glyphs)\n"
           "                        or 8x16, built in, or a PSF console font file\n"
           "                        (.psf, or .psf.gz, e.g. from /usr/share/consolefonts)\n";
}

}  // namespace frontpanelsim
