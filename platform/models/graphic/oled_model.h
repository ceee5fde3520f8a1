#pragma once

// A model of the SSD1306 and SH1106 OLED controllers and the glass of a 128-column module,
// written from the controllers' datasheets: it takes the bytes of I2C or SPI transfers, keeps
// the display RAM and the settings, and tells what the glass shows. Commands a driver has no
// business sending (scrolling, read-modify-write, out-of-range values, commands of the other
// chip) are refused with a ModelError.

#include <frontpanelhw/graphic/mono_bitmap.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "capture_records.h"

namespace yxfp_models {

/** Which controller the module carries. */
enum class OledChip { Ssd1306, Sh1106 };

/** An OLED module: 128 x `glassRows` (64 or 32) pixels of glass behind one controller. The
 *  glass is wired as on the usual modules: the picture is upright with the column remap on
 *  (A1) and the COM scan running down (C8); the SH1106's glass starts at its column 2. */
class OledModel {
public:
    OledModel(OledChip chip, unsigned glassRows);

    /** One I2C write after the address byte: control bytes (Co, D/C#) and what they announce. */
    void i2cTransfer(std::uint8_t const* bytes, std::size_t size);
    /** One SPI transfer with the D/C line at `data`. */
    void spiTransfer(bool data, std::uint8_t const* bytes, std::size_t size);
    /** A capture record of an I2C bus (the control byte first). */
    void i2cRecord(std::vector<std::uint8_t> const& record);
    /** A capture record of an SPI bus (the D/C level, 0 or 1, first). */
    void spiRecord(std::vector<std::uint8_t> const& record);

    /** What the glass shows, as seen on an upright module. @throws ModelError when the
     *  multiplex ratio or COM pin configuration do not suit the glass. */
    frontpanelhw::graphic::MonoBitmap picture() const;
    /** The RAM byte at `page`, `column`. */
    std::uint8_t ram(unsigned page, unsigned column) const;
    /** Whether the panel is switched on (AF) with its charge pump running. */
    bool lit() const;
    /** The contrast register. */
    std::uint8_t contrast() const;
    /** Bytes of display data written so far. */
    std::size_t dataBytes() const;

private:
    void command(std::uint8_t byte);
    void execute();
    void data(std::uint8_t byte);
    unsigned ramColumns() const;

    OledChip chip_;
    unsigned glassRows_;
    std::vector<std::uint8_t> ram_;
    std::vector<std::uint8_t> pending_;  // a command waiting for its parameters
    std::size_t wanted_ = 0;
    // Settings, with their reset values.
    bool on_ = false;
    bool pump_;
    bool inverted_ = false;
    bool allOn_ = false;
    bool remap_ = false;
    bool scanDown_ = false;
    unsigned mux_ = 64;
    unsigned offset_ = 0;
    unsigned startLine_ = 0;
    std::uint8_t comPins_ = 0x12;
    std::uint8_t contrast_ = 0x7F;
    unsigned mode_ = 2;  // SSD1306 addressing mode: 0 horizontal, 1 vertical, 2 page
    unsigned column_ = 0;
    unsigned page_ = 0;
    unsigned columnStart_ = 0;
    unsigned columnEnd_ = 127;
    unsigned pageStart_ = 0;
    unsigned pageEnd_ = 7;
    std::size_t dataBytes_ = 0;
};

}  // namespace yxfp_models
