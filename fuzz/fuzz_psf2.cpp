// Feeds arbitrary bytes to the console font loader (PSF2 and PSF1). It must either refuse them
// with a FontError or give a font whose cells are within bounds and whose every lookup, of a
// glyph it has or lacks, stays inside the glyph data; a loaded font also draws a row of cells.

#include <frontpanelhw/graphic/cell_renderer.h>
#include <frontpanelhw/graphic/font.h>

#include "fuzz_support.h"

namespace {

using frontpanelhw::graphic::Font;
using frontpanelhw::graphic::FontError;
using yxfp_fuzz::check;

void exercise(Font const& font, uint8_t const* data, size_t size) {
    check(font.cellWidth() >= 1 && font.cellWidth() <= 64, "cell width out of bounds");
    check(font.cellHeight() >= 1 && font.cellHeight() <= 64, "cell height out of bounds");
    check(font.glyphStride() == (font.cellWidth() + 7) / 8, "glyph stride");
    char32_t const probes[] = {U' ', U'A', U'\u00B0', U'\u2192', U'\uFFFD', U'\U0001F600'};
    unsigned lit = 0;
    for (char32_t const probe : probes) {
        uint8_t const* rows = font.glyphRows(probe);
        for (unsigned i = 0; i < font.glyphStride() * font.cellHeight(); ++i) {
            lit += rows[i];  // read every byte: the sanitizer checks the bounds
        }
        check(font.glyphPixel(probe, font.cellWidth(), 0) == false, "pixel outside the cell");
    }
    (void)lit;
    frontpanelhw::drawing::DisplayBuffer buffer(4, 1);
    std::u16string text;
    for (size_t i = 0; i < 4 && i * 2 + 1 < size; ++i) {
        text += static_cast<char16_t>(data[i * 2] | data[i * 2 + 1] << 8);
    }
    buffer.setLineContent(0, 0, text);
    frontpanelhw::graphic::MonoBitmap bitmap(4 * font.cellWidth() - 1, font.cellHeight());
    frontpanelhw::graphic::CellRenderer renderer(font);
    auto const changed = renderer.render(buffer, bitmap);
    check(changed.x + changed.width <= bitmap.width(), "changed region outside the bitmap");
    check(changed.y + changed.height <= bitmap.height(), "changed region outside the bitmap");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    try {
        Font const font = Font::fromPsfBytes(data, size, "fuzz.psf");
        exercise(font, data, size);
    } catch (FontError const& error) {
        check(error.source() == "fuzz.psf", "error does not name the source");
    }
    return 0;
}
