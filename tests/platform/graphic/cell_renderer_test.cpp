#include <frontpanelhw/graphic/cell_renderer.h>

#include <gtest/gtest.h>

#include <string>

#include "graphic_test_support.h"

namespace {

using namespace frontpanelhw::drawing;
using namespace frontpanelhw::graphic;
using yxfp_graphic_test::picture;

/** Checks that the cell at (left, top) shows the glyph of `character`, inverted when asked. */
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
    EXPECT_EQ(picture(bitmap).substr(0, 21), "..###..####.........\n");
}

TEST(CellRendererTest, DrawsInvertedCellsInvertedOverTheWholeCell) {
    Font const font = Font::builtin6x8();
    CellRenderer renderer(font);
    DisplayBuffer buffer(2, 1);
    DisplayLine line;
    line.addCharacter(DisplayChar{u'A', true});
    line.addCharacter(DisplayChar{u' ', true});
    buffer.setDisplayLine(0, line);
    MonoBitmap bitmap(12, 8);

    renderer.render(buffer, bitmap);

    EXPECT_EQ(picture(bitmap),
              "#...########\n"
              ".###.#######\n"
              ".###.#######\n"
              ".###.#######\n"
              ".....#######\n"
              ".###.#######\n"
              ".###.#######\n"
              "############\n");
}

TEST(CellRendererTest, RedrawsOnlyTheCellsThatChanged) {
    Font const font = Font::builtin6x8();
    CellRenderer renderer(font);
    DisplayBuffer buffer(4, 2);
    buffer.setLineContent(0, 0, u"ABC1");
    MonoBitmap bitmap(24, 16);
    renderer.render(buffer, bitmap);
    // A mark in a cell that does not change stays: that cell is not drawn again.
    bitmap.setPixel(23, 15, true);

    buffer.setLineContent(0, 2, u"2");
    buffer.setLineContent(1, 1, u"3");
    PixelRect const changed = renderer.render(buffer, bitmap);

    EXPECT_EQ(changed, (PixelRect{6, 0, 12, 16}));
    expectCellShows(bitmap, font, 12, 0, U'2', false);
    expectCellShows(bitmap, font, 6, 8, U'3', false);
    EXPECT_TRUE(bitmap.pixel(23, 15));
}

TEST(CellRendererTest, ReturnsAnEmptyRectangleWhenNothingChanged) {
    CellRenderer renderer(Font::builtin6x8());
    DisplayBuffer buffer(4, 2);
    buffer.setLineContent(0, 0, u"AB");
    MonoBitmap bitmap(24, 16);
    renderer.render(buffer, bitmap);
    MonoBitmap const before = bitmap;

    EXPECT_TRUE(renderer.render(buffer, bitmap).empty());
    EXPECT_EQ(bitmap, before);
}

TEST(CellRendererTest, RedrawsACellWhoseInvertedFlagAloneChanged) {
    Font const font = Font::builtin6x8();
    CellRenderer renderer(font);
    DisplayBuffer buffer(2, 1);
    buffer.setLineContent(0, 0, u"AB");
    MonoBitmap bitmap(12, 8);
    renderer.render(buffer, bitmap);

    DisplayLine line = buffer.getLine(0);
    line.setInverted(1, 1, true);
    buffer.setDisplayLine(0, line);

    EXPECT_EQ(renderer.render(buffer, bitmap), (PixelRect{6, 0, 6, 8}));
    expectCellShows(bitmap, font, 6, 0, U'B', true);
}

TEST(CellRendererTest, RedrawsEverythingAfterInvalidateAndWhenTheSizeChanges) {
    CellRenderer renderer(Font::builtin6x8());
    DisplayBuffer buffer(2, 1);
    MonoBitmap bitmap(12, 8);
    renderer.render(buffer, bitmap);

    renderer.invalidate();
    EXPECT_EQ(renderer.render(buffer, bitmap), (PixelRect{0, 0, 12, 8}));
    DisplayBuffer smaller(1, 1);
    EXPECT_EQ(renderer.render(smaller, bitmap), (PixelRect{0, 0, 6, 8}));
    EXPECT_EQ(renderer.render(smaller, bitmap, 6, 0), (PixelRect{6, 0, 6, 8}));
}

TEST(CellRendererTest, ClipsCellsAtTheBitmapsEdges) {
    Font const font = Font::builtin6x8();
    CellRenderer renderer(font);
    DisplayBuffer buffer(3, 2);
    buffer.setLineContent(0, 0, u"AAA");
    buffer.setLineContent(1, 0, u"AAA");
    MonoBitmap bitmap(10, 5);

    EXPECT_EQ(renderer.render(buffer, bitmap), (PixelRect{0, 0, 10, 5}));
    EXPECT_EQ(picture(bitmap),
              ".###...###\n"
              "#...#.#...\n"
              "#...#.#...\n"
              "#...#.#...\n"
              "#####.####\n");
    DisplayBuffer inverted(1, 1);
    DisplayLine line;
    line.addCharacter(DisplayChar{u' ', true});
    inverted.setDisplayLine(0, line);
    MonoBitmap tiny(3, 2);
    renderer.render(inverted, tiny, 1, 1);
    EXPECT_EQ(picture(tiny), "...\n.##\n");
}

TEST(CellRendererTest, MapsDisplayCodesToUnicodeBeforeLookingUpGlyphs) {
    // Display code 0x00 is a blank; 0x31 is '1'; a code past the font shows the replacement.
    Font const font = Font::builtin8x16();
    CellRenderer renderer(font);
    DisplayBuffer buffer(3, 1);
    DisplayLine line;
    line.addCharacter(DisplayChar{u'\0', false});
    line.addCharacter(DisplayChar{u'1', false});
    line.addCharacter(DisplayChar{u'\u4E00', false});
    buffer.setDisplayLine(0, line);
    MonoBitmap bitmap(24, 16);

    renderer.render(buffer, bitmap);

    expectCellShows(bitmap, font, 0, 0, U' ', false);
    expectCellShows(bitmap, font, 8, 0, U'1', false);
    expectCellShows(bitmap, font, 16, 0, U'\uFFFD', false);
}

}  // namespace
