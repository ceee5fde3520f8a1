#pragma once

// A model of the ST7920 LCD controller on a 128x64 module, driven through its serial interface,
// written from the controller's datasheet: start bytes (five ones, RW, RS, 0), each byte as two
// (high nibble, low nibble, each followed by four zeros), the basic and extended instruction
// sets, and the 64 x 256-bit graphic RAM of which a 128x64 module shows rows 0-31 of both
// halves. Reads, the text and icon RAMs, scrolling and reverse lines are refused: the driver
// only draws graphics.

#include <frontpanelhw/graphic/mono_bitmap.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "capture_records.h"

namespace yxfp_models {

/** An ST7920 module of 128x64 pixels. */
class St7920Model {
public:
    St7920Model();

    /** The bytes of one SPI transfer (chip select high throughout). */
    void spiTransfer(std::uint8_t const* bytes, std::size_t size);
    /** A capture record of an SPI bus: the D/C level (always 0: the ST7920 has no such line),
     *  then the bytes. */
    void spiRecord(std::vector<std::uint8_t> const& record);

    /** What the glass shows. @throws ModelError when the graphic display is on while the text
     *  layer was never cleared (it would show over the graphics). */
    frontpanelhw::graphic::MonoBitmap picture() const;
    /** Whether the display and its graphic layer are on. */
    bool lit() const;
    /** Instructions executed so far. */
    std::size_t instructions() const;

private:
    void instruction(std::uint8_t byte);
    void data(std::uint8_t byte);

    std::vector<std::uint16_t> gdram_;  // 64 rows x 16 words
    bool extended_ = false;
    bool graphicOn_ = false;
    bool displayOn_ = false;
    bool textCleared_ = false;
    bool verticalSet_ = false;
    bool addressSet_ = false;
    unsigned vertical_ = 0;
    unsigned horizontal_ = 0;
    bool highByteWritten_ = false;
    std::uint8_t highByte_ = 0;
    std::size_t instructions_ = 0;
};

}  // namespace yxfp_models
