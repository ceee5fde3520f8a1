#pragma once

#include <frontpanelhw/code_page.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/hd44780_display.h>
#include <frontpanelhw/hd44780_gpio.h>
#include <frontpanelhw/hd44780_i2c.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hd44780_model.h"

namespace yxfp_test {

using yxfp_model::Hd44780Model;
using yxfp_model::i2cBusTime;
using yxfp_model::ModelExpanderPort;
using yxfp_model::ModelLineOutput;
using yxfp_model::renderModel;

/** The character of the driver's custom glyph with this bitmap, U+FFFD for none: the model
 *  reads back what the driver meant to draw into CGRAM. */
inline char32_t driverCustomGlyph(std::array<std::uint8_t, 8> const& rows) {
    auto const* custom = frontpanelhw::findHd44780CustomGlyph(rows);
    return custom != nullptr ? custom->character : char32_t{0xFFFD};
}

/** How the rig wires the display to its controller model. */
enum class Hd44780Wiring { I2c, Gpio };

/** A character module on the bench: an Hd44780Display whose transport feeds a controller model,
 *  an I2C expander at its assumed top speed (the worst case for timing) or GPIO lines, and a
 *  wait function that moves the model's time instead of sleeping. */
class Hd44780Rig {
public:
    Hd44780Rig(
        unsigned chars, unsigned lines, frontpanelhw::Hd44780Rom rom,
        frontpanelhw::InvertedCellMarker marker = frontpanelhw::InvertedCellMarker::UnderlineCursor,
        Hd44780Wiring wiring = Hd44780Wiring::I2c, frontpanelhw::Hd44780Options options = {})
        : geometry_(frontpanelhw::Hd44780Geometry::standard(chars, lines)), model_(geometry_, rom) {
        model_.nameCgramGlyphs(driverCustomGlyph);
        options.rom = rom;
        options.clock = [this] { return now_; };
        options.invertedMarker = marker;
        options.wait = [this](std::chrono::nanoseconds duration) {
            waited_ += duration;
            model_.advance(duration);
        };
        std::unique_ptr<frontpanelhw::IHd44780Bus> bus;
        if (wiring == Hd44780Wiring::I2c) {
            frontpanelhw::ExpanderBusOptions const busOptions;
            auto port =
                std::make_unique<ModelExpanderPort>(model_, busOptions.pins, busOptions.maxBusHz);
            port_ = port.get();
            bus = std::make_unique<frontpanelhw::ExpanderHd44780Bus>(std::move(port), busOptions);
        } else {
            auto lines = std::make_unique<ModelLineOutput>(model_);
            lines_ = lines.get();
            bus = std::make_unique<frontpanelhw::GpioHd44780Bus>(std::move(lines));
        }
        display_ = std::make_unique<frontpanelhw::Hd44780Display>(std::move(bus), geometry_,
                                                                  std::move(options));
    }
    Hd44780Rig(Hd44780Rig const&) = delete;
    Hd44780Rig& operator=(Hd44780Rig const&) = delete;

    frontpanelhw::Hd44780Display& display() { return *display_; }
    Hd44780Model& model() { return model_; }
    /** The expander port (I2C wiring only). */
    ModelExpanderPort& port() { return *port_; }
    /** The GPIO lines (GPIO wiring only). */
    ModelLineOutput& lines() { return *lines_; }
    /** Moves the driver's clock (retries, resyncs) on; the model's time moves with the bus. */
    void advanceClock(std::chrono::milliseconds duration) { now_ += duration; }
    /** Everything the driver waited for itself. */
    std::chrono::nanoseconds waited() const { return waited_; }

    /** What the module shows, line by line. */
    std::vector<std::u32string> screen() const {
        std::vector<std::u32string> lines;
        for (unsigned line = 0; line < geometry_.lines; ++line) {
            lines.push_back(model_.line(line));
        }
        return lines;
    }

    /** The frame as the toolkit meant it: the glyph of every cell code (see toUnicode). */
    static std::vector<std::u32string> meant(frontpanelhw::drawing::DisplayBuffer const& frame) {
        std::vector<std::u32string> lines;
        for (unsigned line = 0; line < frame.getLineCount(); ++line) {
            std::u32string text;
            for (unsigned column = 0; column < frame.getChars(); ++column) {
                text.push_back(frontpanelhw::toUnicode(frame.getCell(column, line).character));
            }
            lines.push_back(text);
        }
        return lines;
    }

    /** The first inverted cell of `frame` (reading order), where the cursor marker belongs. */
    static std::optional<std::pair<unsigned, unsigned>> firstInverted(
        frontpanelhw::drawing::DisplayBuffer const& frame) {
        for (unsigned line = 0; line < frame.getLineCount(); ++line) {
            for (unsigned column = 0; column < frame.getChars(); ++column) {
                if (frame.getCell(column, line).inverted) {
                    return std::pair{column, line};
                }
            }
        }
        return std::nullopt;
    }

private:
    frontpanelhw::Hd44780Geometry geometry_;
    Hd44780Model model_;
    std::chrono::nanoseconds waited_{0};
    std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
    ModelExpanderPort* port_ = nullptr;
    ModelLineOutput* lines_ = nullptr;
    std::unique_ptr<frontpanelhw::Hd44780Display> display_;
};

/** Hands every frame to a module and keeps the last one, to compare with what it shows. */
class TeeDisplay : public frontpanelhw::IDisplay {
public:
    explicit TeeDisplay(frontpanelhw::IDisplay& module)
        : module_(module), last_(module.getChars(), module.getLines()) {}
    unsigned getLines() const override { return module_.getLines(); }
    unsigned getChars() const override { return module_.getChars(); }
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override {
        last_ = buffer;
        return module_.draw(buffer);
    }
    /** The last frame drawn. */
    frontpanelhw::drawing::DisplayBuffer const& last() const { return last_; }

private:
    frontpanelhw::IDisplay& module_;
    frontpanelhw::drawing::DisplayBuffer last_;
};

/** UTF-8 of a line of glyphs, for readable failure messages. */
inline std::string utf8(std::u32string const& text) {
    std::string bytes;
    for (char32_t const glyph : text) {
        bytes += frontpanelhw::toUtf8(glyph);
    }
    return bytes;
}

}  // namespace yxfp_test
