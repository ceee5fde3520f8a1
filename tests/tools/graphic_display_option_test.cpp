#include <frontpanelhw/graphic/cell_renderer.h>
#include <yxfrontpanel/components.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "display_option.h"
#include "graphic_module_display.h"
#include "module_display.h"
#include "sim_options.h"
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;
using namespace frontpanelhw::graphic;
using frontpanelsim::DisplayOption;
using frontpanelsim::parseDisplayOption;
using frontpanelsim::parseOptions;
using frontpanelsim::UsageError;
using Kind = frontpanelsim::DisplayOption::Kind;

std::string problemWith(std::vector<std::string> const& arguments) {
    try {
        (void)parseOptions(arguments);
    } catch (UsageError const& error) {
        return error.what();
    }
    return {};
}

TEST(GraphicDisplayOptionTest, PixelsTakeAnOptionalSizeAndStyle) {
    DisplayOption const plain = parseDisplayOption("pixels");
    EXPECT_EQ(plain.kind, Kind::Pixels);
    EXPECT_EQ(plain.graphic.width, 128u);
    EXPECT_EQ(plain.graphic.height, 64u);
    EXPECT_FALSE(plain.graphic.halfBlocks);
    DisplayOption const small = parseDisplayOption("pixels:128x32:blocks");
    EXPECT_EQ(small.graphic.height, 32u);
    EXPECT_TRUE(small.graphic.halfBlocks);
    EXPECT_THROW(parseDisplayOption("pixels:big"), UsageError);
    EXPECT_THROW(parseDisplayOption("pixels:0x64"), UsageError);
}

#if YXFP_HAS_PNG
TEST(GraphicDisplayOptionTest, PngTakesAFileWithColonsAndTrailingOptions) {
    DisplayOption const plain = parseDisplayOption("png:out/panel.png");
    EXPECT_EQ(plain.kind, Kind::Png);
    EXPECT_EQ(plain.path, "out/panel.png");
    EXPECT_FALSE(plain.graphic.everyFrame);
    EXPECT_EQ(plain.graphic.scale, 1u);
    DisplayOption const full = parseDisplayOption("png:a:b.png:128x32:every:x4");
    EXPECT_EQ(full.path, "a:b.png");
    EXPECT_EQ(full.graphic.height, 32u);
    EXPECT_TRUE(full.graphic.everyFrame);
    EXPECT_EQ(full.graphic.scale, 4u);
    EXPECT_THROW(parseDisplayOption("png:"), UsageError);
}
#endif

TEST(GraphicDisplayOptionTest, FramebufferTakesAGeometryAndARotation) {
    DisplayOption const device = parseDisplayOption("fbdev:/dev/fb1");
    EXPECT_EQ(device.kind, Kind::Framebuffer);
    EXPECT_EQ(device.path, "/dev/fb1");
    EXPECT_EQ(device.graphic.bitsPerPixel, 0u);
    DisplayOption const file = parseDisplayOption("fbdev:/tmp/fb.raw:320x240:16:rot=90");
    EXPECT_EQ(file.path, "/tmp/fb.raw");
    EXPECT_EQ(file.graphic.width, 320u);
    EXPECT_EQ(file.graphic.height, 240u);
    EXPECT_EQ(file.graphic.bitsPerPixel, 16u);
    EXPECT_EQ(file.graphic.rotation, 90u);
    EXPECT_THROW(parseDisplayOption("fbdev:/tmp/fb.raw:320x240:8"), UsageError);
    EXPECT_THROW(parseDisplayOption("fbdev:/dev/fb0:rot=45"), UsageError);
}

TEST(GraphicDisplayOptionTest, ThePanelSizeFollowsFromTheModuleAndTheFont) {
    auto const small = parseOptions({"--display", "pixels", "--keys", "up"});
    EXPECT_EQ(small.chars, 21u);
    EXPECT_EQ(small.lines, 8u);
    auto const large = parseOptions({"--font", "8x16", "--display", "pixels", "--keys", "up"});
    EXPECT_EQ(large.chars, 16u);
    EXPECT_EQ(large.lines, 4u);
    EXPECT_EQ(large.display.font, "8x16");
    EXPECT_EQ(large.display.graphic.chars, 16u);
    auto const chosen = parseOptions({"--display", "pixels", "--size", "20x4", "--keys", "up"});
    EXPECT_EQ(chosen.chars, 20u);
    EXPECT_EQ(chosen.display.graphic.lines, 4u);
}

TEST(GraphicDisplayOptionTest, RefusesASizeOrFontThatDoesNotFitClearly) {
    EXPECT_EQ(problemWith({"--display", "pixels", "--font", "8x16", "--size", "20x4"}),
              "--size 20x4 does not fit the 128x64 module with the 8x16 font (at most 16x4)");
    EXPECT_EQ(problemWith({"--display", "pixels:64x32", "--font", "8x16"}),
              "the 64x32 module with the 8x16 font holds 8x2 cells: " +
                  problemWith({"--size", "8x2"}).substr(std::string("--size 8x2: ").size()));
    EXPECT_EQ(problemWith({"--font", "8x16"}),
              "--font needs a pixel display (--display pixels, png:FILE, fbdev:PATH or a graphic "
              "module)");
    std::string const missing = problemWith({"--display", "pixels", "--font", "/no/such.psf"});
    EXPECT_EQ(missing.rfind("--font: /no/such.psf: ", 0), 0u) << missing;
}

/** The pixels that braille cells show: dots 1-2-3-7 left column, 4-5-6-8 right column. */
MonoBitmap brailleToPixels(frontpanelhw::MemoryDisplay const& screen) {
    MonoBitmap pixels(screen.getChars() * 2, screen.getLines() * 4);
    unsigned const bits[4][2] = {{0, 3}, {1, 4}, {2, 5}, {6, 7}};
    for (unsigned line = 0; line < screen.getLines(); ++line) {
        for (unsigned column = 0; column < screen.getChars(); ++column) {
            char16_t const cell = screen.getLastFrame().getCell(column, line).character;
            EXPECT_EQ(cell & 0xFF00, 0x2800);
            for (unsigned row = 0; row < 4; ++row) {
                for (unsigned side = 0; side < 2; ++side) {
                    pixels.setPixel(column * 2 + side, line * 4 + row,
                                    ((cell >> bits[row][side]) & 1) != 0);
                }
            }
        }
    }
    return pixels;
}

TEST(GraphicModuleDisplayTest, PixelsShowTheModulesPicture) {
    auto const options = parseOptions({"--display", "pixels", "--keys", "up"});
    auto const [screenChars, screenLines] = frontpanelsim::runScreenSize(options);
    EXPECT_EQ(screenChars, 64u);
    EXPECT_EQ(screenLines, 16u);
    frontpanelhw::MemoryDisplay screen(screenChars, screenLines);
    auto const panel = frontpanelsim::makeDisplay(options.display, screen);
    ASSERT_EQ(panel->getChars(), 21u);
    DisplayBuffer buffer(21, 8);
    buffer.setLineContent(0, 0, u"ABC 123");
    DisplayLine line;
    line.appendText(u"C0", 2, true);
    buffer.setDisplayLine(7, line);

    ASSERT_TRUE(panel->draw(buffer));

    MonoBitmap expected(128, 64);
    CellRenderer(Font::builtin6x8()).render(buffer, expected, 1, 0);
    EXPECT_EQ(brailleToPixels(screen), expected);
}

TEST(GraphicModuleDisplayTest, FramebufferFileShowsThePanelBesideTheRunsDisplay) {
    std::string const path = ::testing::TempDir() + "sim_fb_" + std::to_string(::getpid()) + ".raw";
    {
        std::ofstream file(path, std::ios::binary);
        file << std::string(std::size_t{128} * 64 * 2, '\0');
    }
    auto const options =
        parseOptions({"--display", "fbdev:" + path + ":128x64:16", "--keys", "up"});
    frontpanelhw::MemoryDisplay screen(options.chars, options.lines);
    auto const panel = frontpanelsim::makeDisplay(options.display, screen);
    DisplayBuffer buffer(21, 8);
    buffer.setLineContent(0, 0, u"A");

    ASSERT_TRUE(panel->draw(buffer));

    EXPECT_EQ(screen.getLastFrame().getLineString(0).substr(0, 1), u"A");
    std::ifstream file(path, std::ios::binary);
    std::string const bytes((std::istreambuf_iterator<char>(file)), {});
    ASSERT_EQ(bytes.size(), 128u * 64 * 2);
    // The top row of the 'A' (.###.) from x = 1 + 1: white in RGB565.
    EXPECT_EQ(bytes.substr(std::size_t{2} * 2, 2), "\xFF\xFF");
    EXPECT_EQ(bytes.substr(std::size_t{1} * 2, 2), std::string(2, '\0'));
    std::remove(path.c_str());
}

}  // namespace
