#include "hd44780_model.h"

#include <sstream>

#include "hd44780_model_rom.h"

namespace yxfp_model {

namespace {

using namespace std::chrono_literals;

// The waits of the initialisation by instruction (datasheet Figure 24) and the execution times
// of Table 6, given there for an oscillator at 270 kHz.
constexpr std::chrono::nanoseconds kPowerOn = 40ms;
constexpr std::chrono::nanoseconds kFirstFunctionSet = 4100us;
constexpr std::chrono::nanoseconds kSecondFunctionSet = 100us;
constexpr std::chrono::nanoseconds kInstructionAt270kHz = 37us;
constexpr std::chrono::nanoseconds kClearOrHomeAt270kHz = 1520us;
constexpr unsigned kTableOscillatorHz = 270000;

// An execution time of Table 6 at another oscillator frequency (the time counts clock cycles).
std::chrono::nanoseconds atOscillator(std::chrono::nanoseconds at270kHz, unsigned hz) {
    return std::chrono::nanoseconds(at270kHz.count() * kTableOscillatorHz / hz);
}

std::string hex(unsigned value) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << value;
    return text.str();
}

bool bitSet(std::uint8_t byte, unsigned pin) { return ((byte >> pin) & 1U) != 0; }

}  // namespace

Hd44780Model::Hd44780Model(frontpanelhw::Hd44780Geometry const& geometry,
                           frontpanelhw::Hd44780Rom rom, unsigned oscillatorHz)
    : geometry_(geometry),
      rom_(rom),
      instructionTime_(atOscillator(kInstructionAt270kHz, oscillatorHz)),
      clearOrHomeTime_(atOscillator(kClearOrHomeAt270kHz, oscillatorHz)),
      busyUntil_(kPowerOn) {
    powerCycle();
}

void Hd44780Model::powerCycle() {
    busyUntil_ = now_ + kPowerOn;
    eightBit_ = true;
    powerOnInit_ = true;
    powerOnFunctionSets_ = 0;
    highNibble_.reset();
    // What RAM holds at power-on is undefined; a pattern that is never a blank makes a driver
    // that forgets to clear or to load its glyphs again show up.
    ddram_.fill(0xFF);
    cgram_.fill(0x1F);
    addressCounter_ = 0;
    addressInCgram_ = false;
    increment_ = true;
    twoLines_ = false;
    displayOn_ = false;
    cursorOn_ = false;
    blinkOn_ = false;
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
        busyFor(instructionTime_);
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
    std::chrono::nanoseconds executionTime = instructionTime_;
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
                                                        : instructionTime_;
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
        executionTime = clearOrHomeTime_;
    } else if (byte & 0x01) {  // clear display
        ddram_.fill(0x20);
        addressCounter_ = 0;
        addressInCgram_ = false;
        increment_ = true;
        executionTime = clearOrHomeTime_;
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
        return cgramNamer_ ? cgramNamer_(glyphRows(shown & 7U)) : char32_t{0xFFFD};
    }
    return romPattern(rom_, shown);
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

}  // namespace yxfp_model
