// SSD1306, SH1106 and ST7920 drivers checked through their capture files and the controller
// models: every chip, bus and geometry, upright and flipped.
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/graphic/oled_display.h>
#include <frontpanelhw/graphic/st7920_display.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "graphic_capture.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;
using yxfp_test::GraphicCaptureRig;
using yxfp_test::GraphicSetup;

DisplayBuffer sampleFrame(unsigned chars, unsigned lines, char16_t const* changing) {
    DisplayBuffer frame(chars, lines);
    frame.setLineContent(0, 0, u"Voltage 12.50 V");
    frame.setLineContent(1, 0, changing);
    DisplayLine selected;
    selected.setLine(u" Current \x1E");
    selected.setInverted(0, selected.size() - 1, true);
    frame.setDisplayLine(lines - 1, selected);
    return frame;
}

TEST(GraphicDriverTest, CaptureDecodesToTheDisplaysBitmapForEveryChipAndGeometry) {
    for (GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        GraphicCaptureRig rig(setup);
        auto& display = rig.display();
        ASSERT_TRUE(display.draw(sampleFrame(display.getChars(), display.getLines(), u"Out on")))
            << setup.name();
        EXPECT_GT(rig.decode(), 2U) << setup.name();
        EXPECT_TRUE(rig.lit()) << setup.name();
        EXPECT_EQ(rig.picture(), display.bitmap())
            << setup.name() << "\nmodel:\n"
            << yxfp_test::pictureText(rig.picture()) << "display:\n"
            << yxfp_test::pictureText(display.bitmap());
        // A changed line: only its spans go out, and the glass follows.
        unsigned long const before = rig.payload();
        ASSERT_TRUE(display.draw(sampleFrame(display.getChars(), display.getLines(), u"Out off")))
            << setup.name();
        rig.decode();
        EXPECT_EQ(rig.picture(), display.bitmap()) << setup.name();
        EXPECT_LT(rig.payload() - before, before / 4) << setup.name();
    }
}

TEST(GraphicDriverTest, UnchangedFrameSendsNothing) {
    for (GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        GraphicCaptureRig rig(setup);
        auto& display = rig.display();
        DisplayBuffer const frame = sampleFrame(display.getChars(), display.getLines(), u"x");
        ASSERT_TRUE(display.draw(frame));
        rig.decode();
        ASSERT_TRUE(display.draw(frame));
        EXPECT_EQ(rig.decode(), 0U) << setup.name();
    }
}

TEST(GraphicDriverTest, PowerSaveDarkensThePanelAndKeepsThePicture) {
    for (GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        GraphicCaptureRig rig(setup);
        auto& display = rig.display();
        ASSERT_TRUE(display.draw(sampleFrame(display.getChars(), display.getLines(), u"on")));
        display.setPowerSave(true);
        rig.decode();
        EXPECT_FALSE(rig.lit()) << setup.name();
        display.setPowerSave(false);
        rig.decode();
        EXPECT_TRUE(rig.lit()) << setup.name();
        EXPECT_EQ(rig.picture(), display.bitmap()) << setup.name();
    }
}

TEST(GraphicDriverTest, PowerSaveBeforeTheFirstDrawKeepsThePanelDark) {
    for (GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        GraphicCaptureRig rig(setup);
        auto& display = rig.display();
        display.setPowerSave(true);
        EXPECT_EQ(rig.decode(), 0U) << setup.name() << ": nothing sent before the first draw";
        ASSERT_TRUE(display.draw(sampleFrame(display.getChars(), display.getLines(), u"on")));
        rig.decode();
        EXPECT_FALSE(rig.lit()) << setup.name();
    }
}

TEST(OledDisplayTest, ContrastIsSetAtInitialisationAndChangedLater) {
    GraphicSetup const setup{GraphicSetup::Chip::Ssd1306, false, 64, false};
    GraphicCaptureRig rig(setup);
    auto& oled = dynamic_cast<frontpanelhw::graphic::OledDisplay&>(rig.display());
    oled.setContrast(0x20);
    ASSERT_TRUE(oled.draw(sampleFrame(oled.getChars(), oled.getLines(), u"c")));
    rig.decode();
    EXPECT_EQ(rig.oled().contrast(), 0x20);
    oled.setContrast(0xE0);
    rig.decode();
    EXPECT_EQ(rig.oled().contrast(), 0xE0);
}

TEST(OledDisplayTest, RejectsAHeightOtherThan64Or32) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("capture");
    std::ofstream const created(path);
    frontpanelhw::graphic::OledOptions options;
    options.height = 48;
    EXPECT_THROW(
        frontpanelhw::graphic::OledDisplay(frontpanelhw::graphic::openI2cPanelBus(path, 0x3C),
                                           options, frontpanelhw::graphic::Font::builtin6x8()),
        std::invalid_argument);
}

TEST(OledDisplayTest, SixByEightFontGivesTwentyOneByEightCellsOn128x64) {
    GraphicCaptureRig rig({GraphicSetup::Chip::Sh1106, false, 64, false});
    EXPECT_EQ(rig.display().getChars(), 21U);
    EXPECT_EQ(rig.display().getLines(), 8U);
    GraphicCaptureRig small({GraphicSetup::Chip::Ssd1306, true, 32, false});
    EXPECT_EQ(small.display().getLines(), 4U);
}

}  // namespace
