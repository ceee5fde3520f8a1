#pragma once

// A graphic display driven into a capture file, and the controller model that decodes it: what
// the display tests, the menu walks and the bus-cost tests share.

#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/oled_display.h>
#include <frontpanelhw/graphic/panel_bus.h>
#include <frontpanelhw/graphic/st7920_display.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "capture_records.h"
#include "oled_model.h"
#include "st7920_model.h"
#include "temp_directory.h"

namespace yxfp_test {

/** Which module and which bus. */
struct GraphicSetup {
    enum class Chip { Ssd1306, Sh1106, St7920 };
    Chip chip = Chip::Ssd1306;
    bool spi = false;
    unsigned height = 64;
    bool flipped = false;

    /** "SSD1306 128x64 over I2C, flipped", for failure messages. */
    std::string name() const {
        std::string text = chip == Chip::Ssd1306  ? "SSD1306"
                           : chip == Chip::Sh1106 ? "SH1106"
                                                  : "ST7920";
        text += " 128x" + std::to_string(height) + (spi ? " over SPI" : " over I2C");
        return flipped ? text + ", flipped" : text;
    }
};

/** Every chip, bus and geometry the drivers support, upright and flipped. */
inline std::vector<GraphicSetup> allGraphicSetups() {
    std::vector<GraphicSetup> setups;
    for (bool const flipped : {false, true}) {
        for (auto const chip : {GraphicSetup::Chip::Ssd1306, GraphicSetup::Chip::Sh1106}) {
            for (bool const spi : {false, true}) {
                for (unsigned const height : {64U, 32U}) {
                    setups.push_back({chip, spi, height, flipped});
                }
            }
        }
        setups.push_back({GraphicSetup::Chip::St7920, true, 64, flipped});
    }
    return setups;
}

/** The picture turned by half a turn: what an upside-down module shows. */
inline frontpanelhw::graphic::MonoBitmap turned(frontpanelhw::graphic::MonoBitmap const& picture) {
    frontpanelhw::graphic::MonoBitmap result(picture.width(), picture.height());
    for (unsigned y = 0; y < picture.height(); ++y) {
        for (unsigned x = 0; x < picture.width(); ++x) {
            result.setPixel(picture.width() - 1 - x, picture.height() - 1 - y, picture.pixel(x, y));
        }
    }
    return result;
}

/** The picture as rows of '#' and '.', for failure messages. */
inline std::string pictureText(frontpanelhw::graphic::MonoBitmap const& picture) {
    std::string text;
    for (unsigned y = 0; y < picture.height(); ++y) {
        for (unsigned x = 0; x < picture.width(); ++x) {
            text += picture.pixel(x, y) ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

/** A display of `setup` writing into a fresh capture file, the model of its controller, and the
 *  bookkeeping of what each step sent. */
class GraphicCaptureRig {
public:
    explicit GraphicCaptureRig(GraphicSetup setup, frontpanelhw::graphic::Font font =
                                                       frontpanelhw::graphic::Font::builtin6x8())
        : setup_(setup), path_(directory_.file("capture.bin")) {
        std::ofstream{path_};
        auto const wait = [this](std::chrono::nanoseconds duration) { waited_ += duration; };
        if (setup.chip == GraphicSetup::Chip::St7920) {
            frontpanelhw::graphic::SpiBusOptions options;
            options.speedHz = frontpanelhw::graphic::kSt7920SpiHz;
            options.chipSelectHigh = true;
            display_ = std::make_unique<frontpanelhw::graphic::St7920Display>(
                frontpanelhw::graphic::openSpiPanelBus(path_, options, nullptr, nullptr),
                frontpanelhw::graphic::St7920Options{setup.flipped, wait}, std::move(font));
            st7920_ = std::make_unique<yxfp_models::St7920Model>();
            return;
        }
        frontpanelhw::graphic::OledOptions options;
        options.controller = setup.chip == GraphicSetup::Chip::Ssd1306
                                 ? frontpanelhw::graphic::OledController::Ssd1306
                                 : frontpanelhw::graphic::OledController::Sh1106;
        options.height = setup.height;
        options.flipped = setup.flipped;
        options.wait = wait;
        auto bus = setup.spi ? frontpanelhw::graphic::openSpiPanelBus(path_, {}, nullptr, nullptr)
                             : frontpanelhw::graphic::openI2cPanelBus(path_, 0x3C);
        display_ = std::make_unique<frontpanelhw::graphic::OledDisplay>(std::move(bus), options,
                                                                        std::move(font));
        oled_ = std::make_unique<yxfp_models::OledModel>(setup.chip == GraphicSetup::Chip::Ssd1306
                                                             ? yxfp_models::OledChip::Ssd1306
                                                             : yxfp_models::OledChip::Sh1106,
                                                         setup.height);
    }

    frontpanelhw::graphic::GraphicDisplay& display() { return *display_; }
    std::string const& path() const { return path_; }

    /** Feeds the records written since the last call to the model; returns how many. */
    std::size_t decode() {
        std::vector<std::uint8_t> const bytes = yxfp_models::readFileFrom(path_, offset_);
        offset_ += bytes.size();
        reader_.append(bytes.data(), bytes.size());
        std::vector<std::uint8_t> record;
        std::size_t records = 0;
        while (reader_.next(record)) {
            ++records;
            ++transfers_;
            payload_ += record.size();
            if (st7920_) {
                st7920_->spiRecord(record);
            } else if (setup_.spi) {
                oled_->spiRecord(record);
            } else {
                oled_->i2cRecord(record);
            }
        }
        return records;
    }

    /** What the glass shows, as the display's bitmap is oriented (turned back when flipped). */
    frontpanelhw::graphic::MonoBitmap picture() const {
        auto const glass = st7920_ ? st7920_->picture() : oled_->picture();
        return setup_.flipped ? turned(glass) : glass;
    }
    /** Whether the panel is lit. */
    bool lit() const { return st7920_ ? st7920_->lit() : oled_->lit(); }
    yxfp_models::OledModel& oled() { return *oled_; }

    /** Transfers decoded so far. */
    unsigned long transfers() const { return transfers_; }
    /** Bytes of the decoded transfers (for I2C: the control bytes and the data, no address). */
    unsigned long payload() const { return payload_; }
    /** The driver's waits so far. */
    std::chrono::nanoseconds waited() const { return waited_; }

private:
    GraphicSetup setup_;
    TempDirectory directory_;
    std::string path_;
    std::unique_ptr<frontpanelhw::graphic::GraphicDisplay> display_;
    std::unique_ptr<yxfp_models::OledModel> oled_;
    std::unique_ptr<yxfp_models::St7920Model> st7920_;
    yxfp_models::CaptureReader reader_;
    std::size_t offset_ = 0;
    unsigned long transfers_ = 0;
    unsigned long payload_ = 0;
    std::chrono::nanoseconds waited_{0};
};

}  // namespace yxfp_test
