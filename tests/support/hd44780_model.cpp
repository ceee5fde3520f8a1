#include "hd44780_model.h"

#include <frontpanelhw/code_page.h>

#include <sstream>

namespace yxfp_test {

namespace {

using namespace std::chrono_literals;

// Execution times of the HD44780U datasheet (Table 6, oscillator at 270 kHz) and the waits of
// its initialisation by instruction (Figure 24).
constexpr std::chrono::nanoseconds kPowerOn = 40ms;
constexpr std::chrono::nanoseconds kFirstFunctionSet = 4100us;
constexpr std::chrono::nanoseconds kSecondFunctionSet = 100us;
constexpr std::chrono::nanoseconds kInstruction = 37us;
constexpr std::chrono::nanoseconds kClearOrHome = 1520us;

std::string hex(unsigned value) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << value;
    return text.str();
}

bool bitSet(std::uint8_t byte, unsigned pin) { return ((byte >> pin) & 1U) != 0; }

}  // namespace

Hd44780Model::Hd44780Model(frontpanelhw::Hd44780Geometry const& geometry,
                           frontpanelhw::Hd44780Rom rom)
    : geometry_(geometry), rom_(rom), busyUntil_(kPowerOn) {
    // What RAM holds at power-on is undefined; a pattern that is never a blank makes a driver
    // that forgets to clear show up.
    ddram_.fill(0xFF);
    cgram_.fill(0x1F);
}

void Hd44780Model::advance(std::chrono::nanoseconds duration) { now_ += duration; }

void Hd44780Model::violation(std::string const& what) {
    std::ostringstream line;
    line << "at " << std::chrono::duration_cast<std::chrono::microseconds>(now_).count()
         << " us: " << what;
    violations_.push_back(line.str());
}

void Hd44780Model::expanderByte(std::uint8_t byte, frontpanelhw::ExpanderPinMap const& pins) {
    backlight_ = bitSet(byte, pins.backlight) == pins.backlightActiveHigh;
    auto const nibble = static_cast<std::uint8_t>(
        (bitSet(byte, pins.d4) ? 1U : 0U) | (bitSet(byte, pins.d5) ? 2U : 0U) |
        (bitSet(byte, pins.d6) ? 4U : 0U) | (bitSet(byte, pins.d7) ? 8U : 0U));
    setPins(bitSet(byte, pins.rs), bitSet(byte, pins.rw), bitSet(byte, pins.enable), nibble);
}

void Hd44780Model::setPins(bool rs, bool rw, bool enable, std::uint8_t nibble) {
    bool const falling = enable_ && !enable;
    enable_ = enable;
    if (!falling) {
        return;
    }
    if (rw) {
        violation("read strobe (RW high); the driver must only write");
        return;
    }
    latch(rs, static_cast<std::uint8_t>(nibble & 0x0F));
}

void Hd44780Model::latch(bool rs, std::uint8_t nibble) {
    ++nibbles_;
    bool const secondHalf = !eightBit_ && highNibble_.has_value();
    // The busy time runs from the end of a whole instruction; the two halves of one byte only
    // need the enable cycle time, which any transport meets.
    if (!secondHalf && now_ < busyUntil_) {
        violation(
            "nibble " + hex(nibble) + " latched " +
            std::to_string(
                std::chrono::duration_cast<std::chrono::microseconds>(busyUntil_ - now_).count()) +
            " us before the controller is ready");
    }
    if (eightBit_) {
        // A four-bit wiring leaves D3-D0 low; the instruction is the nibble in the upper half.
        execute(rs, static_cast<std::uint8_t>(nibble << 4));
        return;
    }
    if (!highNibble_) {
        highNibble_ = nibble;
        return;
    }
    auto const byte = static_cast<std::uint8_t>((*highNibble_ << 4) | nibble);
    highNibble_.reset();
    // RS counts as it stands at the second half. Only a resynchronisation after a broken
    // transfer completes a data half with an instruction half, and it is followed by a clear.
    execute(rs, byte);
}

void Hd44780Model::busyFor(std::chrono::nanoseconds duration) { busyUntil_ = now_ + duration; }

void Hd44780Model::execute(bool rs, std::uint8_t byte) {
    if (rs) {
        writeData(byte);
        busyFor(kInstruction);
    } else {
        instruction(byte);
    }
}

void Hd44780Model::writeData(std::uint8_t byte) {
    if (addressInCgram_) {
        cgram_[addressCounter_ & 0x3F] = byte;
    } else {
        ddram_[addressCounter_ & 0x7F] = byte;
    }
    moveAddressCounter(increment_);
}

void Hd44780Model::moveAddressCounter(bool increment) {
    if (addressInCgram_) {
        addressCounter_ =
            static_cast<std::uint8_t>((addressCounter_ + (increment ? 1 : 0x3F)) & 0x3F);
        return;
    }
    unsigned address = addressCounter_;
    if (twoLines_) {
        if (increment) {
            address = address == 0x27 ? 0x40 : address == 0x67 ? 0x00 : address + 1;
        } else {
            address = address == 0x40 ? 0x27 : address == 0x00 ? 0x67 : address - 1;
        }
    } else {
        address =
            increment ? (address == 0x4F ? 0 : address + 1) : (address == 0 ? 0x4F : address - 1);
    }
    addressCounter_ = static_cast<std::uint8_t>(address);
}

void Hd44780Model::instruction(std::uint8_t byte) {
    std::chrono::nanoseconds executionTime = kInstruction;
    if (byte & 0x80) {  // set DDRAM address
        // An address outside the lines shows nowhere; a wrong address shows up on the screen.
        addressCounter_ = static_cast<std::uint8_t>(byte & 0x7F);
        addressInCgram_ = false;
    } else if (byte & 0x40) {  // set CGRAM address
        addressCounter_ = static_cast<std::uint8_t>(byte & 0x3F);
        addressInCgram_ = true;
    } else if (byte & 0x20) {  // function set
        bool const eightBit = (byte & 0x10) != 0;
        if (eightBit_ && powerOnInit_) {
            ++powerOnFunctionSets_;
            executionTime = powerOnFunctionSets_ == 1   ? kFirstFunctionSet
                            : powerOnFunctionSets_ == 2 ? kSecondFunctionSet
                                                        : kInstruction;
        }
        if (!eightBit) {
            powerOnInit_ = false;
        }
        eightBit_ = eightBit;
        highNibble_.reset();
        twoLines_ = (byte & 0x08) != 0;
    } else if (byte & 0x10) {  // cursor or display shift
        if (byte & 0x08) {
            violation("display shift " + hex(byte) + " (the driver must not shift the display)");
        } else {
            moveAddressCounter((byte & 0x04) != 0);
        }
    } else if (byte & 0x08) {  // display on/off control
        displayOn_ = (byte & 0x04) != 0;
        cursorOn_ = (byte & 0x02) != 0;
        blinkOn_ = (byte & 0x01) != 0;
    } else if (byte & 0x04) {  // entry mode set
        increment_ = (byte & 0x02) != 0;
        if (byte & 0x01) {
            violation("entry mode with display shift " + hex(byte));
        }
    } else if (byte & 0x02) {  // return home
        addressCounter_ = 0;
        addressInCgram_ = false;
        executionTime = kClearOrHome;
    } else if (byte & 0x01) {  // clear display
        ddram_.fill(0x20);
        addressCounter_ = 0;
        addressInCgram_ = false;
        increment_ = true;
        executionTime = kClearOrHome;
    }
    busyFor(executionTime);
}

std::uint8_t Hd44780Model::code(unsigned column, unsigned line) const {
    return ddram_[geometry_.address(column, line) & 0x7F];
}

std::array<std::uint8_t, 8> Hd44780Model::glyphRows(unsigned slot) const {
    std::array<std::uint8_t, 8> rows{};
    for (unsigned row = 0; row < rows.size(); ++row) {
        rows[row] = static_cast<std::uint8_t>(cgram_[(slot & 7U) * 8 + row] & 0x1F);
    }
    return rows;
}

char32_t Hd44780Model::glyph(unsigned column, unsigned line) const {
    if (!displayOn_) {
        return U' ';
    }
    std::uint8_t const shown = code(column, line);
    if (shown < 0x10) {
        auto const* custom = frontpanelhw::findHd44780CustomGlyph(glyphRows(shown & 7U));
        return custom != nullptr ? custom->character : char32_t{0xFFFD};
    }
    return frontpanelhw::hd44780RomGlyph(rom_, shown);
}

std::u32string Hd44780Model::line(unsigned line) const {
    std::u32string text;
    for (unsigned column = 0; column < geometry_.chars; ++column) {
        text.push_back(glyph(column, line));
    }
    return text;
}

std::optional<std::pair<unsigned, unsigned>> Hd44780Model::cursorCell() const {
    if (!displayOn_ || (!cursorOn_ && !blinkOn_) || addressInCgram_) {
        return std::nullopt;
    }
    for (unsigned line = 0; line < geometry_.lines; ++line) {
        unsigned const start = geometry_.lineAddresses[line];
        if (addressCounter_ >= start && addressCounter_ < start + geometry_.chars) {
            return std::pair{addressCounter_ - start, line};
        }
    }
    return std::nullopt;
}

ModelExpanderPort::ModelExpanderPort(Hd44780Model& model, frontpanelhw::ExpanderPinMap const& pins,
                                     unsigned busHz)
    : model_(model), pins_(pins), busHz_(busHz) {}

void ModelExpanderPort::failAfter(std::size_t bytes) { failAfter_ = bytes; }

void ModelExpanderPort::stopFailing() { failAfter_.reset(); }

void ModelExpanderPort::write(std::uint8_t const* bytes, std::size_t size) {
    ++transfers_;
    model_.advance(i2cBusTime(1, 0, busHz_));
    for (std::size_t i = 0; i < size; ++i) {
        if (failAfter_ && *failAfter_ == 0) {
            throw frontpanelhw::Hd44780BusError("test port: the transfer failed");
        }
        if (failAfter_) {
            --*failAfter_;
        }
        ++bytes_;
        stream_.push_back(bytes[i]);
        model_.advance(i2cBusTime(0, 1, busHz_));
        model_.expanderByte(bytes[i], pins_);
    }
}

void ModelLineOutput::setLevels(std::uint8_t levels) {
    using namespace frontpanelhw::hd44780_lines;
    ++changes_;
    model_.setPins((levels & kRs) != 0, false, (levels & kEnable) != 0,
                   static_cast<std::uint8_t>((levels >> kDataShift) & 0x0F));
}

std::chrono::nanoseconds i2cBusTime(unsigned long transfers, unsigned long bytes, unsigned busHz) {
    // Start, address byte with its acknowledge, stop: 11 bit times per transfer.
    unsigned long long const bits = transfers * 11ULL + bytes * 9ULL;
    return std::chrono::nanoseconds(static_cast<long long>(bits * 1000000000ULL / busHz));
}

std::string renderModel(Hd44780Model const& model) {
    std::string text;
    for (unsigned line = 0; line < model.geometry().lines; ++line) {
        for (char32_t const glyph : model.line(line)) {
            text += frontpanelhw::toUtf8(glyph);
        }
        text += '\n';
    }
    return text;
}

}  // namespace yxfp_test
