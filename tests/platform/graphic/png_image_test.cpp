#include <frontpanelhw/graphic/png_display.h>
#include <frontpanelhw/graphic/png_image.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "graphic_test_support.h"
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;
using namespace frontpanelhw::graphic;

/** A PNG decoded by libpng into 8-bit RGB. */
struct Decoded {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint8_t> rgb;

    RgbColor at(unsigned x, unsigned y) const {
        std::size_t const i = (std::size_t(y) * width + x) * 3;
        return RgbColor{rgb[i], rgb[i + 1], rgb[i + 2]};
    }
};

Decoded decode(std::vector<std::uint8_t> const& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, png.data(), png.size())) {
        throw std::runtime_error(std::string("libpng: ") + image.message);
    }
    image.format = PNG_FORMAT_RGB;
    Decoded decoded;
    decoded.width = image.width;
    decoded.height = image.height;
    decoded.rgb.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, decoded.rgb.data(), 0, nullptr)) {
        throw std::runtime_error(std::string("libpng: ") + image.message);
    }
    return decoded;
}

std::vector<std::uint8_t> readFile(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
}

bool exists(std::string const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

MonoBitmap sampleBitmap() {
    return yxfp_graphic_test::bitmapOf({
        "#.........#",
        ".#.......#.",
        "..#######..",
    });
}

TEST(PngImageTest, EncodesAOneBitPictureWithLitPixelsWhite) {
    MonoBitmap const bitmap = sampleBitmap();

    std::vector<std::uint8_t> const png = encodePng(bitmap);

    ASSERT_GT(png.size(), 33u);
    EXPECT_EQ(png[24], 1) << "bit depth";
    EXPECT_EQ(png[25], 0) << "colour type: greyscale";
    Decoded const decoded = decode(png);
    ASSERT_EQ(decoded.width, 11u);
    ASSERT_EQ(decoded.height, 3u);
    for (unsigned y = 0; y < 3; ++y) {
        for (unsigned x = 0; x < 11; ++x) {
            std::uint8_t const expected = bitmap.pixel(x, y) ? 255 : 0;
            EXPECT_EQ(decoded.at(x, y).red, expected) << x << "," << y;
            EXPECT_EQ(decoded.at(x, y).blue, expected) << x << "," << y;
        }
    }
}

TEST(PngImageTest, EncodesAColourPictureScaled) {
    MonoBitmap const bitmap = sampleBitmap();
    RgbColor const ink{10, 200, 255};
    RgbColor const paper{20, 20, 30};

    Decoded const decoded = decode(encodePngRgb(bitmap, ink, paper, 3));

    ASSERT_EQ(decoded.width, 33u);
    ASSERT_EQ(decoded.height, 9u);
    for (unsigned y = 0; y < 9; ++y) {
        for (unsigned x = 0; x < 33; ++x) {
            RgbColor const expected = bitmap.pixel(x / 3, y / 3) ? ink : paper;
            RgbColor const shown = decoded.at(x, y);
            ASSERT_TRUE(shown.red == expected.red && shown.green == expected.green &&
                        shown.blue == expected.blue)
                << x << "," << y;
        }
    }
    EXPECT_THROW(encodePngRgb(bitmap, ink, paper, 0), std::invalid_argument);
    EXPECT_THROW(encodePngRgb(bitmap, ink, paper, 17), std::invalid_argument);
}

std::string tempBase(std::string const& name) {
    return ::testing::TempDir() + "png_test_" + std::to_string(::getpid()) + "_" + name;
}

TEST(PngDisplayTest, KeepsTheNewestFrameInTheFile) {
    std::string const path = tempBase("panel.png");
    PngDisplayOptions options;
    options.font = Font::builtin8x16();
    PngDisplay display(path, options);
    DisplayBuffer buffer(display.getChars(), display.getLines());
    buffer.setLineContent(0, 0, u"A");
    display.draw(buffer);
    buffer.setLineContent(1, 0, u"B");
    DisplayLine line;
    line.appendText(u"12", 2, true);
    buffer.setDisplayLine(3, line);

    ASSERT_TRUE(display.draw(buffer));

    EXPECT_EQ(display.frameCount(), 2u);
    EXPECT_EQ(display.lastFile(), path);
    EXPECT_FALSE(exists(path + ".tmp"));
    EXPECT_EQ(readFile(path), encodePng(display.bitmap()));
    Decoded const decoded = decode(readFile(path));
    ASSERT_EQ(decoded.width, 128u);
    ASSERT_EQ(decoded.height, 64u);
    EXPECT_EQ(decoded.at(0, 63).red, 255);  // the inverted cells of the last line
    std::remove(path.c_str());
}

TEST(PngDisplayTest, NumbersEveryFrameWhenAsked) {
    std::string const base = tempBase("frames");
    PngDisplayOptions options;
    options.everyFrame = true;
    options.width = 24;
    options.height = 8;
    PngDisplay display(base + ".png", options);
    DisplayBuffer buffer(4, 1);
    display.draw(buffer);
    buffer.setLineContent(0, 0, u"A");
    display.draw(buffer);
    display.draw(buffer);  // unchanged: no picture

    EXPECT_EQ(display.frameCount(), 2u);
    EXPECT_EQ(display.lastFile(), base + "-000002.png");
    Decoded const first = decode(readFile(base + "-000001.png"));
    Decoded const second = decode(readFile(base + "-000002.png"));
    EXPECT_EQ(first.at(2, 0).red, 0);
    EXPECT_EQ(second.at(2, 0).red, 255);  // the top of the 'A'
    EXPECT_FALSE(exists(base + "-000003.png"));
    std::remove((base + "-000001.png").c_str());
    std::remove((base + "-000002.png").c_str());
}

TEST(PngDisplayTest, ReportsAFileThatCannotBeWritten) {
    PngDisplay display(tempBase("no/such/folder.png"), PngDisplayOptions{});
    EXPECT_FALSE(display.draw(DisplayBuffer(display.getChars(), display.getLines())));
    EXPECT_EQ(display.frameCount(), 0u);
}

}  // namespace
