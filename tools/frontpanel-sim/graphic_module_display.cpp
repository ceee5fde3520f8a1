#include "graphic_module_display.h"

#include <frontpanelhw/graphic/framebuffer_display.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <yxfrontpanel/components.h>

#if YXFP_HAS_PNG
#include <frontpanelhw/graphic/png_display.h>
#endif

#include <stdexcept>

#include "sim_options.h"

namespace frontpanelsim {

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::graphic::Font;
using frontpanelhw::graphic::GraphicDisplay;
using frontpanelhw::graphic::MonoBitmap;
using frontpanelhw::graphic::PixelRect;

/** Cells that show a module of width x height pixels. */
std::pair<unsigned, unsigned> pixelCells(unsigned width, unsigned height, bool halfBlocks) {
    return halfBlocks ? std::make_pair(width, (height + 1) / 2)
                      : std::make_pair((width + 1) / 2, (height + 3) / 4);
}

/** The braille character whose dots are the 2x4 pixels from (x, y): dots 1-2-3-7 are the left
 *  column top to bottom, 4-5-6-8 the right one. */
char16_t brailleAt(MonoBitmap const& bitmap, unsigned x, unsigned y) {
    static constexpr unsigned kDot[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    unsigned dots = 0;
    for (unsigned row = 0; row < 4; ++row) {
        for (unsigned column = 0; column < 2; ++column) {
            if (bitmap.pixel(x + column, y + row)) {
                dots |= kDot[row][column];
            }
        }
    }
    return static_cast<char16_t>(0x2800 + dots);
}

/** The half block showing the pixels (x, y) above (x, y + 1). */
char16_t halfBlockAt(MonoBitmap const& bitmap, unsigned x, unsigned y) {
    bool const top = bitmap.pixel(x, y);
    bool const bottom = bitmap.pixel(x, y + 1);
    return top ? (bottom ? u'\u2588' : u'\u2580') : (bottom ? u'\u2584' : u' ');
}

/** A graphic module drawn with characters on the run's own display. */
class PixelsView : public GraphicDisplay {
public:
    PixelsView(DisplayOption const& option, frontpanelhw::IDisplay& screen)
        : GraphicDisplay(option.graphic.width, option.graphic.height, Font::fromName(option.font),
                         option.graphic.chars, option.graphic.lines),
          screen_(screen),
          halfBlocks_(option.graphic.halfBlocks),
          view_(screen.getChars(), screen.getLines()) {}

protected:
    bool flush(MonoBitmap const& bitmap, PixelRect /*changed*/) override {
        unsigned const across = halfBlocks_ ? 1 : 2;
        unsigned const down = halfBlocks_ ? 2 : 4;
        for (unsigned line = 0; line < view_.getLineCount(); ++line) {
            std::u16string text;
            for (unsigned column = 0; column < view_.getChars(); ++column) {
                text += halfBlocks_ ? halfBlockAt(bitmap, column * across, line * down)
                                    : brailleAt(bitmap, column * across, line * down);
            }
            view_.setLineContent(line, 0, text);
        }
        return screen_.draw(view_);
    }

private:
    frontpanelhw::IDisplay& screen_;
    bool halfBlocks_;
    DisplayBuffer view_;
};

/** The run's own display and a graphic device side by side. */
class GraphicTee : public frontpanelhw::IDisplay {
public:
    GraphicTee(frontpanelhw::IDisplay& screen, std::unique_ptr<GraphicDisplay> device)
        : screen_(screen), device_(std::move(device)) {}

    unsigned getLines() const override { return device_->getLines(); }
    unsigned getChars() const override { return device_->getChars(); }

    bool draw(DisplayBuffer const& buffer) override {
        bool const sent = device_->draw(buffer);
        return screen_.draw(buffer) && sent;
    }

private:
    frontpanelhw::IDisplay& screen_;
    std::unique_ptr<GraphicDisplay> device_;
};

std::unique_ptr<GraphicDisplay> openDevice(DisplayOption const& option) {
    GraphicTarget const& target = option.graphic;
    if (option.kind == DisplayOption::Kind::Framebuffer) {
        frontpanelhw::graphic::FramebufferOptions options;
        options.font = Font::fromName(option.font);
        options.chars = target.chars;
        options.lines = target.lines;
        options.rotation = target.rotation;
        if (target.bitsPerPixel != 0) {
            options.fileWidth = target.width;
            options.fileHeight = target.height;
            options.fileBitsPerPixel = target.bitsPerPixel;
        }
        return frontpanelhw::graphic::FramebufferDisplay::open(option.path, options);
    }
#if YXFP_HAS_PNG
    frontpanelhw::graphic::PngDisplayOptions options;
    options.width = target.width;
    options.height = target.height;
    options.font = Font::fromName(option.font);
    options.chars = target.chars;
    options.lines = target.lines;
    options.everyFrame = target.everyFrame;
    options.scale = target.scale;
    return std::make_unique<frontpanelhw::graphic::PngDisplay>(option.path, options);
#else
    throw std::runtime_error("png: this build has no PNG support");
#endif
}

}  // namespace

std::unique_ptr<frontpanelhw::IDisplay> makeGraphicDisplay(DisplayOption const& option,
                                                           frontpanelhw::IDisplay& screen) {
    if (option.kind == DisplayOption::Kind::Pixels) {
        return std::make_unique<PixelsView>(option, screen);
    }
    return std::make_unique<GraphicTee>(screen, openDevice(option));
}

std::pair<unsigned, unsigned> runScreenSize(SimOptions const& options) {
    if (options.display.kind == DisplayOption::Kind::Pixels) {
        return pixelCells(options.display.graphic.width, options.display.graphic.height,
                          options.display.graphic.halfBlocks);
    }
    return {options.chars, options.lines};
}

}  // namespace frontpanelsim
