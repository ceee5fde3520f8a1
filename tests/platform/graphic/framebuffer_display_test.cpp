#include <frontpanelhw/graphic/framebuffer_display.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using namespace frontpanelhw::drawing;
using namespace frontpanelhw::graphic;

/** A zero-filled file of `bytes` bytes standing in for a framebuffer; removed at the end. */
class FramebufferFile {
public:
    explicit FramebufferFile(std::size_t bytes)
        : path_(::testing::TempDir() + "framebuffer_test_" + std::to_string(::getpid()) + ".raw") {
        std::ofstream out(path_, std::ios::binary);
        std::vector<char> const zeros(bytes, 0);
        out.write(zeros.data(), std::streamsize(zeros.size()));
    }
    ~FramebufferFile() { std::remove(path_.c_str()); }
    std::string const& path() const { return path_; }
    std::vector<std::uint8_t> bytes() const {
        std::ifstream in(path_, std::ios::binary);
        return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::string path_;
};

/** The colour of screen pixel (x, y) in a file of `width` pixels of `bits` (16: RGB565, 24 and
 *  32: B, G, R(, X) bytes), scaled back to 8 bits per component. */
RgbColor screenPixel(std::vector<std::uint8_t> const& bytes, unsigned width, unsigned bits,
                     unsigned x, unsigned y) {
    std::size_t const at = (std::size_t(y) * width + x) * (bits / 8);
    if (bits == 16) {
        unsigned const value = bytes[at] | unsigned(bytes[at + 1]) << 8;
        return RgbColor{std::uint8_t((value >> 11) << 3), std::uint8_t(((value >> 5) & 0x3F) << 2),
                        std::uint8_t((value & 0x1F) << 3)};
    }
    return RgbColor{bytes[at + 2], bytes[at + 1], bytes[at]};
}

bool sameColor(RgbColor a, RgbColor b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

/** The panel pixel that screen pixel (sx, sy) shows for a clockwise rotation. */
bool panelPixel(MonoBitmap const& panel, unsigned rotation, unsigned sx, unsigned sy) {
    unsigned const w = panel.width();
    unsigned const h = panel.height();
    switch (rotation) {
        case 90:
            return panel.pixel(sy, h - 1 - sx);
        case 180:
            return panel.pixel(w - 1 - sx, h - 1 - sy);
        case 270:
            return panel.pixel(w - 1 - sy, sx);
        default:
            return panel.pixel(sx, sy);
    }
}

DisplayBuffer sampleFrame(unsigned chars, unsigned lines) {
    DisplayBuffer buffer(chars, lines);
    buffer.setLineContent(0, 0, u"A1B2C3");
    DisplayLine line;
    line.appendText(u"21", 2, true);
    buffer.setDisplayLine(lines - 1, line);
    return buffer;
}

TEST(FramebufferDisplayTest, ShowsThePanelInEveryDepthAndRotation) {
    RgbColor const amber{255, 176, 0};
    RgbColor const navy{0, 0, 128};
    for (unsigned bits : {16u, 24u, 32u}) {
        for (unsigned rotation : {0u, 90u, 180u, 270u}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, rotated " + std::to_string(rotation));
            unsigned const width = 40;
            unsigned const height = 24;
            FramebufferFile file(width * height * bits / 8);
            FramebufferOptions options;
            options.fileWidth = width;
            options.fileHeight = height;
            options.fileBitsPerPixel = bits;
            options.rotation = rotation;
            options.foreground = amber;
            options.background = navy;
            auto display = FramebufferDisplay::open(file.path(), options);
            ASSERT_EQ(display->bitmap().width(), rotation % 180 == 0 ? width : height);

            ASSERT_TRUE(display->draw(sampleFrame(display->getChars(), display->getLines())));

            std::vector<std::uint8_t> const bytes = file.bytes();
            unsigned litCount = 0;
            for (unsigned y = 0; y < height; ++y) {
                for (unsigned x = 0; x < width; ++x) {
                    bool const on = panelPixel(display->bitmap(), rotation, x, y);
                    litCount += on ? 1 : 0;
                    RgbColor const expected = on ? amber : navy;
                    RgbColor const shown = screenPixel(bytes, width, bits, x, y);
                    // RGB565 keeps the top 5, 6 and 5 bits of the components.
                    unsigned const keep = bits == 16 ? 0xF8 : 0xFF;
                    bool const matches = (expected.red & keep) == shown.red &&
                                         (expected.green & (keep | 0x04)) == shown.green &&
                                         (expected.blue & keep) == shown.blue;
                    ASSERT_TRUE(matches) << "pixel " << x << "," << y;
                }
            }
            EXPECT_GT(litCount, 50u);
        }
    }
}

TEST(FramebufferDisplayTest, WritesOnlyTheChangedRegion) {
    FramebufferFile file(std::size_t{24} * 8 * 4);
    FramebufferOptions options;
    options.fileWidth = 24;
    options.fileHeight = 8;
    options.fileBitsPerPixel = 32;
    auto display = FramebufferDisplay::open(file.path(), options);
    DisplayBuffer buffer(4, 1);
    display->draw(buffer);
    {
        // A mark written behind the display's back in the first cell survives a change in
        // the third.
        std::fstream raw(file.path(), std::ios::in | std::ios::out | std::ios::binary);
        raw.seekp(0);
        raw.put(char(0x55));
    }

    buffer.setLineContent(0, 2, u"A");
    display->draw(buffer);

    std::vector<std::uint8_t> const bytes = file.bytes();
    EXPECT_EQ(bytes[0], 0x55);
    EXPECT_TRUE(sameColor(screenPixel(bytes, 24, 32, 12 + 1, 0), RgbColor{255, 255, 255}));
}

TEST(FramebufferDisplayTest, PowerSaveDarkensTheScreenAndWakingShowsThePanelAgain) {
    FramebufferFile file(std::size_t{12} * 8 * 3);
    FramebufferOptions options;
    options.fileWidth = 12;
    options.fileHeight = 8;
    options.fileBitsPerPixel = 24;
    auto display = FramebufferDisplay::open(file.path(), options);
    DisplayBuffer buffer(2, 1);
    buffer.setLineContent(0, 0, u"A");
    display->draw(buffer);
    std::vector<std::uint8_t> const shown = file.bytes();

    display->setPowerSave(true);
    EXPECT_EQ(file.bytes(), std::vector<std::uint8_t>(shown.size(), 0));
    buffer.setLineContent(0, 1, u"B");
    display->draw(buffer);
    EXPECT_EQ(file.bytes(), std::vector<std::uint8_t>(shown.size(), 0));

    display->setPowerSave(false);
    EXPECT_TRUE(sameColor(screenPixel(file.bytes(), 12, 24, 1, 0), RgbColor{255, 255, 255}));
    EXPECT_TRUE(sameColor(screenPixel(file.bytes(), 12, 24, 6, 0), RgbColor{255, 255, 255}));
}

TEST(FramebufferDisplayTest, RefusesAFileOfTheWrongSizeOrABadGeometry) {
    FramebufferFile file(100);
    FramebufferOptions options;
    options.fileWidth = 10;
    options.fileHeight = 10;
    options.fileBitsPerPixel = 16;
    try {
        FramebufferDisplay::open(file.path(), options);
        ADD_FAILURE() << "a file of the wrong size was accepted";
    } catch (std::runtime_error const& error) {
        EXPECT_NE(std::string(error.what()).find(file.path()), std::string::npos);
        EXPECT_NE(std::string(error.what()).find("holds 100 bytes"), std::string::npos)
            << error.what();
    }
    options.fileBitsPerPixel = 8;
    EXPECT_THROW(FramebufferDisplay::open(file.path(), options), std::invalid_argument);
    options.fileBitsPerPixel = 16;
    options.fileWidth = 5;
    options.rotation = 45;
    EXPECT_THROW(FramebufferDisplay::open(file.path(), options), std::invalid_argument);
    options.rotation = 0;
    FramebufferOptions device;  // no geometry: a regular file is not a framebuffer device
    EXPECT_THROW(FramebufferDisplay::open(file.path(), device), std::runtime_error);
    EXPECT_THROW(FramebufferDisplay::open(file.path() + ".missing", options), std::runtime_error);
}

}  // namespace
