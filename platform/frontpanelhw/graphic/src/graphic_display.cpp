#include <frontpanelhw/graphic/graphic_display.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace frontpanelhw::graphic {
namespace {

/** The cells along one side: `wanted`, or as many as fit when it is 0. */
unsigned cellsAlong(unsigned pixels, unsigned cellPixels, unsigned wanted, char const* what) {
    unsigned const fit = pixels / cellPixels;
    if (fit == 0) {
        throw std::invalid_argument("graphic display: not one cell of the font fits the " +
                                    std::to_string(pixels) + " pixels of its " + what);
    }
    if (wanted > fit) {
        throw std::invalid_argument("graphic display: " + std::to_string(wanted) + " cells of " +
                                    std::to_string(cellPixels) + " pixels do not fit its " + what +
                                    " of " + std::to_string(pixels) + " pixels (at most " +
                                    std::to_string(fit) + ")");
    }
    return wanted == 0 ? fit : wanted;
}

}  // namespace

GraphicDisplay::GraphicDisplay(unsigned widthPixels, unsigned heightPixels, Font font,
                               unsigned chars, unsigned lines)
    : chars_(cellsAlong(widthPixels, font.cellWidth(), chars, "width")),
      lines_(cellsAlong(heightPixels, font.cellHeight(), lines, "height")),
      originX_((widthPixels - chars_ * font.cellWidth()) / 2),
      originY_((heightPixels - lines_ * font.cellHeight()) / 2),
      bitmap_(widthPixels, heightPixels),
      renderer_(std::move(font)),
      frame_(chars_, lines_) {}

GraphicDisplay::~GraphicDisplay() = default;

unsigned GraphicDisplay::getLines() const { return lines_; }

unsigned GraphicDisplay::getChars() const { return chars_; }

bool GraphicDisplay::draw(drawing::DisplayBuffer const& buffer) {
    drawing::DisplayBuffer const* shown = &buffer;
    if (buffer.getChars() != chars_ || buffer.getLineCount() != lines_) {
        frame_.clear();
        for (unsigned line = 0; line < std::min(lines_, buffer.getLineCount()); ++line) {
            frame_.setDisplayLine(line, buffer.getLine(line));
        }
        shown = &frame_;
    }
    PixelRect changed = renderer_.render(*shown, bitmap_, originX_, originY_);
    if (flushAll_) {
        changed = PixelRect{0, 0, bitmap_.width(), bitmap_.height()};
    }
    if (changed.empty()) {
        return true;
    }
    bool const sent = flush(bitmap_, changed);
    flushAll_ = !sent;
    return sent;
}

MonoBitmap const& GraphicDisplay::bitmap() const { return bitmap_; }

Font const& GraphicDisplay::font() const { return renderer_.font(); }

unsigned GraphicDisplay::originX() const { return originX_; }

unsigned GraphicDisplay::originY() const { return originY_; }

void GraphicDisplay::setPowerSave(bool /*dark*/) {}

}  // namespace frontpanelhw::graphic
