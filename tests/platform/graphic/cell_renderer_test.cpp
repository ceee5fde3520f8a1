#include <frontpanelhw/graphic/cell_renderer.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayChar;
using frontpanelhw::drawing::DisplayLine;
using frontpanelhw::graphic::CellRenderer;
using frontpanelhw::graphic::Font;
using frontpanelhw::graphic::MonoBitmap;
using frontpanelhw::graphic::PixelRect;

/** The bitmap as text, one line per row: '#' lit, '.' dark. */
std::string picture(MonoBitmap const& bitmap) {
    std::string text;
    for (unsigned y = 0; y < bitmap.height(); ++y) {
        for (unsigned x = 0; x < bitmap.width(); ++x) {
            text += bitmap.pixel(x, y) ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

/** The glyph of `character` drawn through Font::glyphPixel, inverted when asked. */
void expectCellShows(MonoBitmap const& bitmap, Font const& font, unsigned left, unsigned top,
                     char32_t character, bool inverted) {
    for (unsigned y = 0; y < font.cellHeight(); ++y) {
        for (unsigned x = 0; x < font.cellWidth(); ++x) {
            ASSERT_EQ(bitmap.pixel(left + x, top + y), font.glyphPixel(character, x, y) != inverted)
                << "pixel " << x << "," << y << " of the cell at " << left << "," << top;
        }
    }
}

TEST(CellRendererTest, FirstRenderDrawsEveryCellAndReturnsTheirRectangle) {
    Font const font = Font::builtin6x8();
    CellRenderer renderer(font);
    DisplayBuffer buffer(3, 2);
    buffer.setLineContent(0, 0, u"AB");
    buffer.setLineContent(1, 0, u"C1");
    MonoBitmap bitmap(20, 17);

    PixelRect const changed = renderer.render(buffer, bitmap, 1, 0);

    EXPECT_EQ(changed, (PixelRect{1, 0, 18, 16}));
    expectCellShows(bitmap, font, 1, 0, U'A', false);
    expectCellShows(bitmap, font, 7, 0, U'B', false);
    expectCellShows(bitmap, font, 1, 8, U'C', false);
    expectCellShows(bitmap, font, 7, 8, U'1', false);
    EXPECT_EQ(picture(bitmap).substr(0, 21), "..###..####.........\n") << picture(bitmap);
}

}  // namespace
