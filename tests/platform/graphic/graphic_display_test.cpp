#include <frontpanelhw/graphic/graphic_display.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "graphic_test_support.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using namespace frontpanelhw::graphic;

/** A device that records the regions it was handed and can be told to fail. */
class RecordingDisplay : public GraphicDisplay {
public:
    using GraphicDisplay::GraphicDisplay;

    std::vector<PixelRect> flushed;
    bool fail = false;

protected:
    bool flush(MonoBitmap const& /*bitmap*/, PixelRect changed) override {
        flushed.push_back(changed);
        return !fail;
    }
};

TEST(GraphicDisplayTest, FitsAsManyCellsAsThePixelsHoldAndCentresThem) {
    RecordingDisplay small(128, 64, Font::builtin6x8());
    EXPECT_EQ(small.getChars(), 21u);
    EXPECT_EQ(small.getLines(), 8u);
    EXPECT_EQ(small.originX(), 1u);
    EXPECT_EQ(small.originY(), 0u);

    RecordingDisplay large(128, 64, Font::builtin8x16());
    EXPECT_EQ(large.getChars(), 16u);
    EXPECT_EQ(large.getLines(), 4u);

    RecordingDisplay chosen(128, 32, Font::builtin6x8(), 20, 2);
    EXPECT_EQ(chosen.getChars(), 20u);
    EXPECT_EQ(chosen.getLines(), 2u);
    EXPECT_EQ(chosen.originX(), 4u);
    EXPECT_EQ(chosen.originY(), 8u);
}

TEST(GraphicDisplayTest, RefusesCellsThatDoNotFit) {
    EXPECT_THROW(RecordingDisplay(128, 64, Font::builtin6x8(), 22, 8), std::invalid_argument);
    EXPECT_THROW(RecordingDisplay(128, 64, Font::builtin8x16(), 16, 5), std::invalid_argument);
    EXPECT_THROW(RecordingDisplay(5, 64, Font::builtin6x8()), std::invalid_argument);
}

TEST(GraphicDisplayTest, FlushesEverythingFirstThenOnlyTheChangedCells) {
    RecordingDisplay display(128, 64, Font::builtin6x8());
    DisplayBuffer buffer(21, 8);
    buffer.setLineContent(0, 0, u"AB");

    EXPECT_TRUE(display.draw(buffer));
    EXPECT_TRUE(display.draw(buffer));
    buffer.setLineContent(2, 3, u"1");
    EXPECT_TRUE(display.draw(buffer));

    ASSERT_EQ(display.flushed.size(), 2u);
    EXPECT_EQ(display.flushed[0], (PixelRect{0, 0, 128, 64}));
    EXPECT_EQ(display.flushed[1], (PixelRect{1 + 3 * 6, 16, 6, 8}));
    EXPECT_TRUE(display.bitmap().pixel(1 + 3 * 6 + 2, 16));  // the top of the '1'
}

TEST(GraphicDisplayTest, FlushesEverythingAgainAfterAFailedFlush) {
    RecordingDisplay display(128, 64, Font::builtin6x8());
    DisplayBuffer buffer(21, 8);
    display.draw(buffer);
    display.fail = true;
    buffer.setLineContent(0, 0, u"A");
    EXPECT_FALSE(display.draw(buffer));
    display.fail = false;

    EXPECT_TRUE(display.draw(buffer));  // unchanged, yet the device missed the last frame

    ASSERT_EQ(display.flushed.size(), 3u);
    EXPECT_EQ(display.flushed[2], (PixelRect{0, 0, 128, 64}));
}

TEST(GraphicDisplayTest, CutsOrPadsABufferOfAnotherSize) {
    RecordingDisplay display(12, 16, Font::builtin6x8());
    DisplayBuffer wide(3, 1);
    wide.setLineContent(0, 0, u"AB1");

    display.draw(wide);

    std::string expected =
        ".###..####..\n"
        "#...#.#...#.\n"
        "#...#.#...#.\n"
        "#...#.####..\n"
        "#####.#...#.\n"
        "#...#.#...#.\n"
        "#...#.####..\n"
        "............\n";
    for (int row = 8; row < 16; ++row) {
        expected += "............\n";  // the missing line: blank
    }
    EXPECT_EQ(yxfp_graphic_test::picture(display.bitmap()), expected);
}

}  // namespace
