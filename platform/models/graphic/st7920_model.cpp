#include "st7920_model.h"

#include <cstdio>
#include <string>

#include "capture_records.h"

namespace yxfp_models {

namespace {

constexpr unsigned kRows = 64;
constexpr unsigned kWords = 16;

}  // namespace

St7920Model::St7920Model() : gdram_(std::size_t{kRows} * kWords, 0) {}

void St7920Model::spiRecord(std::vector<std::uint8_t> const& record) {
    if (record.size() < 2 || record[0] != 0) {
        throw ModelError("ST7920 capture: a record is a D/C level of 0 and at least one byte");
    }
    spiTransfer(record.data() + 1, record.size() - 1);
}

void St7920Model::spiTransfer(std::uint8_t const* bytes, std::size_t size) {
    std::uint8_t const start = bytes[0];
    if ((start & 0xF8U) != 0xF8U || (start & 0x01U) != 0) {
        throw ModelError("ST7920: a transfer starts with " + hexByte(start) +
                         ", not a start byte (11111, RW, RS, 0)");
    }
    if ((start & 0x04U) != 0) {
        throw ModelError("ST7920: a read (RW = 1) on a write-only serial bus");
    }
    bool const isData = (start & 0x02U) != 0;
    if ((size - 1) % 2 != 0) {
        throw ModelError("ST7920: a transfer ends after half a byte");
    }
    for (std::size_t at = 1; at < size; at += 2) {
        std::uint8_t const high = bytes[at];
        std::uint8_t const low = bytes[at + 1];
        if ((high & 0x0FU) != 0 || (low & 0x0FU) != 0) {
            throw ModelError("ST7920: the nibble bytes " + hexByte(high) + " " + hexByte(low) +
                             " do not end in four zeros");
        }
        auto const byte = static_cast<std::uint8_t>(high | (low >> 4U));
        isData ? data(byte) : instruction(byte);
    }
}

void St7920Model::instruction(std::uint8_t byte) {
    ++instructions_;
    auto refuse = [&](std::string const& why) {
        throw ModelError("ST7920: instruction " + hexByte(byte) + (extended_ ? " (extended)" : "") +
                         " refused: " + why);
    };
    if ((byte & 0xE0U) == 0x20U) {  // function set: 0 0 1 DL X RE G X
        bool const dl = (byte & 0x10U) != 0;
        bool const re = (byte & 0x04U) != 0;
        if (!dl) {
            refuse("the 4-bit interface");
        }
        if (re) {
            graphicOn_ = (byte & 0x02U) != 0;
        }
        extended_ = re;
        return;
    }
    if (!extended_) {
        if (byte == 0x01) {
            textCleared_ = true;
            return;
        }
        if ((byte & 0xFCU) == 0x04U) {  // entry mode
            if (byte != 0x06) {
                refuse("an entry mode other than counting up without shift");
            }
            return;
        }
        if ((byte & 0xF8U) == 0x08U) {  // display control: 0 0 0 0 1 D C B
            displayOn_ = (byte & 0x04U) != 0;
            return;
        }
        refuse("text, cursor and character RAM instructions are not for a graphic driver");
    }
    if ((byte & 0x80U) != 0) {  // GDRAM address: vertical, then horizontal
        unsigned const value = byte & 0x7FU;
        if (!verticalSet_) {
            if (value >= kRows) {
                refuse("vertical address past 63");
            }
            vertical_ = value;
            verticalSet_ = true;
            addressSet_ = false;
        } else {
            if (value >= kWords) {
                refuse("horizontal address past 15");
            }
            horizontal_ = value;
            verticalSet_ = false;
            addressSet_ = true;
            highByteWritten_ = false;
        }
        return;
    }
    refuse("standby, scrolling, icon RAM and reverse lines are not for this driver");
}

void St7920Model::data(std::uint8_t byte) {
    if (!extended_ || !addressSet_) {
        throw ModelError("ST7920: data " + hexByte(byte) +
                         " before a GDRAM address was set in the extended instruction set");
    }
    if (!highByteWritten_) {
        highByte_ = byte;
        highByteWritten_ = true;
        return;
    }
    if (horizontal_ >= kWords) {
        throw ModelError("ST7920: data past the end of a GDRAM row");
    }
    gdram_[vertical_ * kWords + horizontal_] =
        static_cast<std::uint16_t>((unsigned{highByte_} << 8U) | byte);
    highByteWritten_ = false;
    ++horizontal_;
}

bool St7920Model::lit() const { return displayOn_ && graphicOn_; }

std::size_t St7920Model::instructions() const { return instructions_; }

frontpanelhw::graphic::MonoBitmap St7920Model::picture() const {
    frontpanelhw::graphic::MonoBitmap glass(128, 64);
    if (!lit()) {
        return glass;
    }
    if (!textCleared_) {
        throw ModelError("ST7920: graphics on over a text layer that was never cleared");
    }
    for (unsigned y = 0; y < 64; ++y) {
        // The lower half of the glass is the right half of GDRAM rows 0-31.
        unsigned const row = y % 32;
        unsigned const firstWord = y < 32 ? 0 : 8;
        for (unsigned x = 0; x < 128; ++x) {
            std::uint16_t const word = gdram_[row * kWords + firstWord + x / 16];
            glass.setPixel(x, y, ((word >> (15 - x % 16)) & 1U) != 0);
        }
    }
    return glass;
}

}  // namespace yxfp_models
