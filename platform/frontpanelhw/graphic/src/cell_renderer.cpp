#include <frontpanelhw/code_page.h>
#include <frontpanelhw/graphic/cell_renderer.h>

#include <algorithm>

namespace frontpanelhw::graphic {
namespace {

/** The top `count` bits of a 64-bit word (count <= 64). */
std::uint64_t topBits(unsigned count) { return count == 0 ? 0 : ~std::uint64_t{0} << (64 - count); }

/** Writes the top `width` bits of `bits` into `row` from pixel `x` on, leaving the others. */
void writeBits(std::uint8_t* row, unsigned x, std::uint64_t bits, unsigned width) {
    std::uint64_t const mask = topBits(width);
    bits &= mask;
    unsigned const shift = x % 8;
    std::uint8_t* out = row + x / 8;
    unsigned const bytes = (shift + width + 7) / 8;
    for (unsigned k = 0; k < bytes; ++k) {
        std::uint8_t source;
        std::uint8_t keep;
        if (k == 0) {
            source = static_cast<std::uint8_t>((bits >> 56) >> shift);
            keep = static_cast<std::uint8_t>((mask >> 56) >> shift);
        } else {
            unsigned const from = k * 8 - shift;  // < width <= 64
            source = static_cast<std::uint8_t>((bits << from) >> 56);
            keep = static_cast<std::uint8_t>((mask << from) >> 56);
        }
        out[k] = static_cast<std::uint8_t>((out[k] & ~keep) | source);
    }
}

}  // namespace

CellRenderer::CellRenderer(Font font) : font_(std::move(font)) {}

void CellRenderer::invalidate() { valid_ = false; }

Font const& CellRenderer::font() const { return font_; }

PixelRect CellRenderer::render(drawing::DisplayBuffer const& buffer, MonoBitmap& target,
                               unsigned originX, unsigned originY) {
    unsigned const chars = buffer.getChars();
    unsigned const lines = buffer.getLineCount();
    bool const all = !valid_ || chars != chars_ || lines != lines_ || originX != originX_ ||
                     originY != originY_ || target.width() != targetWidth_ ||
                     target.height() != targetHeight_;
    if (all) {
        previous_.assign(static_cast<std::size_t>(chars) * lines, drawing::DisplayChar{0, false});
        chars_ = chars;
        lines_ = lines;
        originX_ = originX;
        originY_ = originY;
        targetWidth_ = target.width();
        targetHeight_ = target.height();
        valid_ = true;
    }
    unsigned const cellWidth = font_.cellWidth();
    unsigned const cellHeight = font_.cellHeight();
    // The changed cells' bounds, in cells: [firstColumn, lastColumn] x [firstLine, lastLine].
    unsigned firstColumn = chars;
    unsigned lastColumn = 0;
    unsigned firstLine = lines;
    unsigned lastLine = 0;
    for (unsigned line = 0; line < lines; ++line) {
        drawing::DisplayChar* previous = previous_.data() + static_cast<std::size_t>(line) * chars;
        for (unsigned column = 0; column < chars; ++column) {
            drawing::DisplayChar const& cell = buffer.getCell(column, line);
            if (!all && cell == previous[column]) {
                continue;
            }
            previous[column] = cell;
            drawCell(cell, target, originX + column * cellWidth, originY + line * cellHeight);
            firstColumn = std::min(firstColumn, column);
            lastColumn = std::max(lastColumn, column);
            firstLine = std::min(firstLine, line);
            lastLine = std::max(lastLine, line);
        }
    }
    if (firstColumn > lastColumn || firstLine > lastLine) {
        return PixelRect{};
    }
    // The redrawn cells' rectangle, clipped to the target.
    unsigned const left = originX + firstColumn * cellWidth;
    unsigned const top = originY + firstLine * cellHeight;
    if (left >= target.width() || top >= target.height()) {
        return PixelRect{};
    }
    unsigned const right = std::min(originX + (lastColumn + 1) * cellWidth, target.width());
    unsigned const bottom = std::min(originY + (lastLine + 1) * cellHeight, target.height());
    return PixelRect{left, top, right - left, bottom - top};
}

void CellRenderer::drawCell(drawing::DisplayChar const& cell, MonoBitmap& target, unsigned x,
                            unsigned y) const {
    if (x >= target.width() || y >= target.height()) {
        return;
    }
    unsigned const width = std::min(font_.cellWidth(), target.width() - x);
    unsigned const height = std::min(font_.cellHeight(), target.height() - y);
    unsigned const glyphStride = font_.glyphStride();
    std::uint64_t const invert = cell.inverted ? topBits(font_.cellWidth()) : 0;
    std::uint8_t const* glyph = font_.glyphRows(toUnicode(cell.character));
    std::uint8_t* row = target.data() + static_cast<std::size_t>(y) * target.stride();
    for (unsigned r = 0; r < height; ++r, glyph += glyphStride, row += target.stride()) {
        std::uint64_t bits = 0;
        for (unsigned b = 0; b < glyphStride; ++b) {
            bits |= std::uint64_t{glyph[b]} << (56 - 8 * b);
        }
        writeBits(row, x, bits ^ invert, width);
    }
}

}  // namespace frontpanelhw::graphic
