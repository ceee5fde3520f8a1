// The demo instrument on every graphic module through the simulator's --display kinds with a
// capture file: after every step the controller model, fed the capture, shows the picture the
// cell renderer draws for the frame.
#include <frontpanelhw/display.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include "capture_records.h"
#include "demo_panel.h"
#include "display_option.h"
#include "module_display.h"
#include "oled_model.h"
#include "oled_module_display.h"
#include "platform_capture.h"
#include "sim_options.h"
#include "st7920_model.h"
#include "temp_directory.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::graphic::MonoBitmap;

/** The picture a frame should give: the cell renderer's, with no device behind it. */
class ReferencePicture : public frontpanelhw::graphic::GraphicDisplay {
public:
    ReferencePicture(unsigned height, unsigned chars, unsigned lines)
        : GraphicDisplay(128, height, frontpanelhw::graphic::Font::builtin6x8(), chars, lines) {}

protected:
    bool flush(MonoBitmap const& /*bitmap*/,
               frontpanelhw::graphic::PixelRect /*changed*/) override {
        return true;
    }
};

MonoBitmap turned(MonoBitmap const& picture) {
    MonoBitmap result(picture.width(), picture.height());
    for (unsigned y = 0; y < picture.height(); ++y) {
        for (unsigned x = 0; x < picture.width(); ++x) {
            result.setPixel(picture.width() - 1 - x, picture.height() - 1 - y, picture.pixel(x, y));
        }
    }
    return result;
}

/** Decodes a growing capture with the model of one module kind. */
class CaptureDecoder {
public:
    CaptureDecoder(frontpanelsim::GraphicModuleOption const& option, std::string path)
        : option_(option), path_(std::move(path)) {
        if (option.chip == frontpanelsim::GraphicModuleOption::Chip::St7920) {
            st7920_ = std::make_unique<yxfp_models::St7920Model>();
        } else {
            oled_ = std::make_unique<yxfp_models::OledModel>(
                option.chip == frontpanelsim::GraphicModuleOption::Chip::Ssd1306
                    ? yxfp_models::OledChip::Ssd1306
                    : yxfp_models::OledChip::Sh1106,
                option.height);
        }
    }

    MonoBitmap picture() {
        auto const bytes = yxfp_models::readFileFrom(path_, offset_);
        offset_ += bytes.size();
        reader_.append(bytes.data(), bytes.size());
        std::vector<std::uint8_t> record;
        while (reader_.next(record)) {
            if (st7920_) {
                st7920_->spiRecord(record);
            } else if (option_.spi) {
                oled_->spiRecord(record);
            } else {
                oled_->i2cRecord(record);
            }
        }
        MonoBitmap const glass = st7920_ ? st7920_->picture() : oled_->picture();
        return option_.flipped ? turned(glass) : glass;
    }

private:
    frontpanelsim::GraphicModuleOption option_;
    std::string path_;
    std::unique_ptr<yxfp_models::OledModel> oled_;
    std::unique_ptr<yxfp_models::St7920Model> st7920_;
    yxfp_models::CaptureReader reader_;
    std::size_t offset_ = 0;
};

TEST(DemoPanelGraphicTest, ModelShowsTheRenderedFrameAfterEveryStepOfRandomWalks) {
    yxfp_test::SleepCapture const noWaiting;
    unsigned seed = 2025;
    for (std::string const kind :
         {"ssd1306-i2c:", "sh1106-i2c:", "ssd1306-spi:", "sh1106-spi:", "st7920-spi:"}) {
        for (std::string const suffix : {"", ":flip", ":128x32"}) {
            if (kind == "st7920-spi:" && suffix == ":128x32") {
                continue;
            }
            yxfp_test::TempDirectory const directory;
            std::string const path = directory.file("capture.bin");
            std::ofstream const created(path);
            std::string value = kind;
            value += path;
            value += suffix;
            auto const option = frontpanelsim::parseDisplayOption(value).graphicModule;
            unsigned const lines = option.height / 8;
            frontpanelhw::MemoryDisplay screen(21, lines);
            std::chrono::nanoseconds waited{0};
            auto const display = frontpanelsim::makeGraphicModuleDisplay(
                option, screen, frontpanelhw::graphic::Font::builtin6x8(),
                [&waited](std::chrono::nanoseconds duration) { waited += duration; });
            ReferencePicture reference(option.height, 21, lines);
            CaptureDecoder decoder(option, path);
            yxfrontpanel::DrawingProvider provider(*display);
            frontpanelsim::DemoPanel demo(provider);
            demo.root().setFocus(true);
            std::mt19937 random(++seed);
            for (int step = 0; step < 150; ++step) {
                unsigned const choice = random() % 9;
                if (choice < 6) {
                    yxfrontpanel::applyKey(demo.root(),
                                           static_cast<frontpanelhw::PanelKey>(choice));
                } else if (choice == 6) {
                    demo.setLocal(!demo.isLocal());
                } else {
                    demo.acquire(static_cast<unsigned>(step))();
                }
                reference.draw(screen.getLastFrame());
                ASSERT_EQ(decoder.picture(), reference.bitmap()) << value << " step " << step;
            }
            if (option.chip == frontpanelsim::GraphicModuleOption::Chip::St7920) {
                // Power-up and clearing; the OLEDs wait only around a reset pulse.
                EXPECT_GE(waited, std::chrono::milliseconds(40)) << value;
            }
        }
    }
}

TEST(DemoPanelGraphicTest, MakeDisplayOpensTheModuleOfTheOption) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("capture.bin");
    std::ofstream const created(path);
    frontpanelhw::MemoryDisplay screen(21, 8);
    auto const display = frontpanelsim::makeDisplay(
        frontpanelsim::parseDisplayOption("sh1106-i2c:" + path + "@0x3D"), screen);
    DisplayBuffer frame(21, 8);
    frame.setLineContent(0, 0, u"Hello");
    ASSERT_TRUE(display->draw(frame));
    EXPECT_EQ(screen.getLastFrame().getLineString(0), frame.getLineString(0));
    EXPECT_GT(yxfp_models::readCaptureFile(path).size(), 3U);
}

TEST(DemoPanelGraphicTest, OledOnAnSpiDeviceWithoutDataCommandLineIsRefused) {
    frontpanelhw::MemoryDisplay screen(21, 8);
    try {
        (void)frontpanelsim::makeDisplay(frontpanelsim::parseDisplayOption("ssd1306-spi:/dev/null"),
                                         screen);
        FAIL() << "no exception";
    } catch (std::runtime_error const& error) {
        EXPECT_NE(std::string(error.what()).find("needs its D/C line"), std::string::npos)
            << error.what();
    }
}

TEST(DemoPanelGraphicTest, CellsThatDoNotFitTheModuleAreRefused) {
    yxfp_test::TempDirectory const directory;
    std::string const path = directory.file("capture.bin");
    std::ofstream const created(path);
    frontpanelhw::MemoryDisplay screen(40, 4);
    EXPECT_THROW((void)frontpanelsim::makeDisplay(
                     frontpanelsim::parseDisplayOption("ssd1306-i2c:" + path), screen),
                 std::invalid_argument);
}

}  // namespace
