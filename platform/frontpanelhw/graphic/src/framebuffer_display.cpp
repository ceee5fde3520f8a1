#include <frontpanelhw/graphic/framebuffer_display.h>

#include <stdexcept>

#include "framebuffer_screen.h"

namespace frontpanelhw::graphic {
namespace {

unsigned checkedRotation(unsigned rotation) {
    if (rotation != 0 && rotation != 90 && rotation != 180 && rotation != 270) {
        throw std::invalid_argument("framebuffer: rotation " + std::to_string(rotation) +
                                    " is not 0, 90, 180 or 270");
    }
    return rotation;
}

}  // namespace

std::unique_ptr<FramebufferDisplay> FramebufferDisplay::open(std::string const& path,
                                                             FramebufferOptions const& options) {
    unsigned const rotation = checkedRotation(options.rotation);
    auto screen = std::make_unique<Screen>(path, options);
    bool const sideways = rotation == 90 || rotation == 270;
    unsigned const width = sideways ? screen->height() : screen->width();
    unsigned const height = sideways ? screen->width() : screen->height();
    return std::unique_ptr<FramebufferDisplay>(
        new FramebufferDisplay(std::move(screen), options, width, height));
}

FramebufferDisplay::FramebufferDisplay(std::unique_ptr<Screen> screen,
                                       FramebufferOptions const& options, unsigned width,
                                       unsigned height)
    : GraphicDisplay(width, height, options.font, options.chars, options.lines),
      screen_(std::move(screen)),
      rotation_(options.rotation),
      foreground_(screen_->pack(options.foreground)),
      background_(screen_->pack(options.background)) {}

FramebufferDisplay::~FramebufferDisplay() = default;

unsigned FramebufferDisplay::screenWidth() const { return screen_->width(); }

unsigned FramebufferDisplay::screenHeight() const { return screen_->height(); }

unsigned FramebufferDisplay::bitsPerPixel() const { return screen_->bitsPerPixel(); }

bool FramebufferDisplay::flush(MonoBitmap const& bitmap, PixelRect changed) {
    if (dark_) {
        return true;  // shown again in full when the panel wakes
    }
    unsigned const width = bitmap.width();
    unsigned const height = bitmap.height();
    for (unsigned y = changed.y; y < changed.y + changed.height; ++y) {
        for (unsigned x = changed.x; x < changed.x + changed.width; ++x) {
            std::uint32_t const value = bitmap.pixel(x, y) ? foreground_ : background_;
            switch (rotation_) {
                case 90:
                    screen_->put(height - 1 - y, x, value);
                    break;
                case 180:
                    screen_->put(width - 1 - x, height - 1 - y, value);
                    break;
                case 270:
                    screen_->put(y, width - 1 - x, value);
                    break;
                default:
                    screen_->put(x, y, value);
                    break;
            }
        }
    }
    return true;
}

void FramebufferDisplay::setPowerSave(bool dark) {
    if (dark == dark_) {
        return;
    }
    dark_ = dark;
    if (dark) {
        for (unsigned y = 0; y < screen_->height(); ++y) {
            for (unsigned x = 0; x < screen_->width(); ++x) {
                screen_->put(x, y, background_);
            }
        }
    } else {
        flush(bitmap(), PixelRect{0, 0, bitmap().width(), bitmap().height()});
    }
}

}  // namespace frontpanelhw::graphic
