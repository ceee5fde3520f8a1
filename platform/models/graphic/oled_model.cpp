#include "oled_model.h"

#include <cstdio>
#include <string>

#include "capture_records.h"

namespace yxfp_models {

namespace {

char const* chipName(OledChip chip) { return chip == OledChip::Ssd1306 ? "SSD1306" : "SH1106"; }

}  // namespace

OledModel::OledModel(OledChip chip, unsigned glassRows)
    : chip_(chip),
      glassRows_(glassRows),
      ram_(std::size_t{8} * (chip == OledChip::Ssd1306 ? 128 : 132), 0),
      // The SSD1306 comes up with its charge pump off, the SH1106 with its DC-DC converter on.
      pump_(chip == OledChip::Sh1106) {
    if (glassRows != 64 && glassRows != 32) {
        throw ModelError("OLED model: a glass of 64 or 32 rows");
    }
}

unsigned OledModel::ramColumns() const { return chip_ == OledChip::Ssd1306 ? 128 : 132; }

void OledModel::i2cTransfer(std::uint8_t const* bytes, std::size_t size) {
    std::size_t at = 0;
    while (at < size) {
        std::uint8_t const control = bytes[at++];
        if ((control & 0x3FU) != 0) {
            throw ModelError(std::string(chipName(chip_)) + ": " + hexByte(control) +
                             " is not a control byte (only Co and D/C# may be set)");
        }
        bool const continuation = (control & 0x80U) != 0;
        bool const isData = (control & 0x40U) != 0;
        if (at == size) {
            throw ModelError(std::string(chipName(chip_)) +
                             ": a control byte with nothing after it");
        }
        std::size_t const end = continuation ? at + 1 : size;
        for (; at < end; ++at) {
            isData ? data(bytes[at]) : command(bytes[at]);
        }
    }
}

void OledModel::spiTransfer(bool isData, std::uint8_t const* bytes, std::size_t size) {
    for (std::size_t at = 0; at < size; ++at) {
        isData ? data(bytes[at]) : command(bytes[at]);
    }
}

void OledModel::i2cRecord(std::vector<std::uint8_t> const& record) {
    i2cTransfer(record.data(), record.size());
}

void OledModel::spiRecord(std::vector<std::uint8_t> const& record) {
    if (record.size() < 2 || record[0] > 1) {
        throw ModelError("SPI capture: a record is the D/C level (0 or 1) and at least one byte");
    }
    spiTransfer(record[0] == 1, record.data() + 1, record.size() - 1);
}

void OledModel::command(std::uint8_t byte) {
    if (wanted_ > 0) {
        pending_.push_back(byte);
        if (--wanted_ == 0) {
            execute();
        }
        return;
    }
    bool const ssd = chip_ == OledChip::Ssd1306;
    pending_.assign(1, byte);
    // Commands with parameters: how many bytes follow.
    switch (byte) {
        case 0x81:  // contrast
        case 0xA8:  // multiplex ratio
        case 0xD3:  // display offset
        case 0xD5:  // clock divide / oscillator
        case 0xD9:  // pre-charge period
        case 0xDA:  // COM pins hardware configuration
        case 0xDB:  // VCOMH deselect level
            wanted_ = 1;
            return;
        case 0x8D:  // SSD1306 charge pump
        case 0x20:  // SSD1306 memory addressing mode
            if (ssd) {
                wanted_ = 1;
                return;
            }
            break;
        case 0xAD:  // SH1106 DC-DC control
            if (!ssd) {
                wanted_ = 1;
                return;
            }
            break;
        case 0x21:  // SSD1306 column address range
        case 0x22:  // SSD1306 page address range
            if (ssd) {
                wanted_ = 2;
                return;
            }
            break;
        default:
            break;
    }
    execute();
}

void OledModel::execute() {
    std::uint8_t const op = pending_[0];
    std::uint8_t const p1 = pending_.size() > 1 ? pending_[1] : 0;
    std::uint8_t const p2 = pending_.size() > 2 ? pending_[2] : 0;
    bool const ssd = chip_ == OledChip::Ssd1306;
    std::string const chip = chipName(chip_);
    auto refuse = [&](std::string const& why) {
        throw ModelError(chip + ": command " + hexByte(op) + " refused: " + why);
    };
    bool const ssdOnly = op == 0x20 || op == 0x21 || op == 0x22 || op == 0x8D || op == 0x2E;
    if (ssdOnly != ssd && (ssdOnly || op == 0xAD || (op >= 0x30 && op <= 0x33))) {
        refuse("a command of the other controller");
    }
    bool const pageMode = !ssd || mode_ == 2;
    if (op <= 0x0F || (op >= 0x10 && op <= 0x1F)) {
        if (!pageMode) {
            refuse("column start in page addressing mode only");
        }
        column_ =
            op <= 0x0F ? ((column_ & 0xF0U) | op) : ((column_ & 0x0FU) | ((op & 0x0FU) << 4U));
        return;  // a column past the RAM is refused with the first byte written there
    }
    if (op >= 0x40 && op <= 0x7F) {
        startLine_ = op & 0x3FU;
        return;
    }
    if (op >= 0xB0 && op <= 0xB7) {
        if (!pageMode) {
            refuse("page start in page addressing mode only");
        }
        page_ = op & 0x07U;
        return;
    }
    if (!ssd && op >= 0x30 && op <= 0x33) {
        return;  // pump voltage
    }
    switch (op) {
        case 0x81:
            contrast_ = p1;
            return;
        case 0xA8:
            if ((p1 & 0x3FU) < 15) {
                refuse("multiplex ratio below 16");
            }
            mux_ = (p1 & 0x3FU) + 1;
            return;
        case 0xD3:
            offset_ = p1 & 0x3FU;
            return;
        case 0xD5:
        case 0xD9:
        case 0xDB:
            return;
        case 0xDA:
            if ((p1 & 0xCDU) != 0x00 || (p1 & 0x02U) == 0) {
                refuse("COM pins configuration " + hexByte(p1) + " is not a valid value");
            }
            comPins_ = p1;
            return;
        case 0x8D:
            if (p1 != 0x10 && p1 != 0x14) {
                refuse("charge pump setting " + hexByte(p1));
            }
            pump_ = p1 == 0x14;
            return;
        case 0xAD:
            if (p1 != 0x8A && p1 != 0x8B) {
                refuse("DC-DC setting " + hexByte(p1));
            }
            pump_ = p1 == 0x8B;
            return;
        case 0x20:
            if (p1 > 2) {
                refuse("addressing mode " + hexByte(p1));
            }
            mode_ = p1;
            column_ = columnStart_;
            page_ = pageStart_;
            return;
        case 0x21:
            if (mode_ == 2) {
                refuse("column range in horizontal or vertical addressing mode only");
            }
            if (p1 > 127 || p2 > 127 || p1 > p2) {
                refuse("column range " + std::to_string(p1) + "-" + std::to_string(p2));
            }
            columnStart_ = p1;
            columnEnd_ = p2;
            column_ = p1;
            return;
        case 0x22:
            if (mode_ == 2) {
                refuse("page range in horizontal or vertical addressing mode only");
            }
            if (p1 > 7 || p2 > 7 || p1 > p2) {
                refuse("page range " + std::to_string(p1) + "-" + std::to_string(p2));
            }
            pageStart_ = p1;
            pageEnd_ = p2;
            page_ = p1;
            return;
        case 0xA0:
        case 0xA1:
            remap_ = op == 0xA1;
            return;
        case 0xA4:
        case 0xA5:
            allOn_ = op == 0xA5;
            return;
        case 0xA6:
        case 0xA7:
            inverted_ = op == 0xA7;
            return;
        case 0xAE:
        case 0xAF:
            on_ = op == 0xAF;
            return;
        case 0xC0:
        case 0xC8:
            scanDown_ = op == 0xC8;
            return;
        case 0xE3:
            return;  // no operation
        case 0x2E:
            if (ssd) {
                return;  // scrolling stopped (it never ran)
            }
            break;
        default:
            break;
    }
    refuse("not a command this driver should send");
}

void OledModel::data(std::uint8_t byte) {
    if (wanted_ > 0) {
        throw ModelError(std::string(chipName(chip_)) + ": display data while command " +
                         hexByte(pending_[0]) + " waits for its parameters");
    }
    if (column_ >= ramColumns()) {
        throw ModelError(std::string(chipName(chip_)) + ": display data past the last column");
    }
    ram_[page_ * ramColumns() + column_] = byte;
    ++dataBytes_;
    if (chip_ == OledChip::Sh1106 || mode_ == 2) {
        // Page addressing: the column counts up within the page. The SH1106 stops at its last
        // column (a further byte is refused above); the SSD1306 wraps to the range's start.
        ++column_;
        if (chip_ == OledChip::Ssd1306 && column_ > columnEnd_) {
            column_ = columnStart_;
        }
        return;
    }
    if (mode_ == 0) {
        if (++column_ > columnEnd_) {
            column_ = columnStart_;
            page_ = page_ >= pageEnd_ ? pageStart_ : page_ + 1;
        }
    } else {
        if (++page_ > pageEnd_) {
            page_ = pageStart_;
            column_ = column_ >= columnEnd_ ? columnStart_ : column_ + 1;
        }
    }
}

frontpanelhw::graphic::MonoBitmap OledModel::picture() const {
    std::string const chip = chipName(chip_);
    std::uint8_t const glassPins = glassRows_ == 64 ? 0x12 : 0x02;
    if (mux_ != glassRows_) {
        throw ModelError(chip + ": multiplex ratio " + std::to_string(mux_) + " on a glass of " +
                         std::to_string(glassRows_) + " rows");
    }
    if (comPins_ != glassPins) {
        throw ModelError(chip + ": COM pins configuration " + hexByte(comPins_) +
                         " on a glass of " + std::to_string(glassRows_) + " rows wants " +
                         hexByte(glassPins));
    }
    frontpanelhw::graphic::MonoBitmap glass(128, glassRows_);
    if (!lit()) {
        return glass;
    }
    unsigned const firstSegment = chip_ == OledChip::Ssd1306 ? 0 : 2;
    for (unsigned y = 0; y < glassRows_; ++y) {
        // The glass's top row is wired to the last COM of the ratio.
        unsigned const com = glassRows_ - 1 - y;
        unsigned const row = scanDown_ ? mux_ - 1 - com : com;
        unsigned const ramRow = (row + startLine_ + offset_) % 64;
        for (unsigned x = 0; x < 128; ++x) {
            // The glass's left column is wired to the last segment it uses.
            unsigned const segment = firstSegment + 127 - x;
            unsigned const column = remap_ ? ramColumns() - 1 - segment : segment;
            bool ink = ((ram_[(ramRow / 8) * ramColumns() + column] >> (ramRow % 8)) & 1U) != 0;
            glass.setPixel(x, y, allOn_ || (ink != inverted_));
        }
    }
    return glass;
}

std::uint8_t OledModel::ram(unsigned page, unsigned column) const {
    return ram_.at(page * ramColumns() + column);
}

bool OledModel::lit() const { return on_ && pump_; }

std::uint8_t OledModel::contrast() const { return contrast_; }

std::size_t OledModel::dataBytes() const { return dataBytes_; }

}  // namespace yxfp_models
