#pragma once

#include <frontpanelhw/hd44780_charset.h>
#include <frontpanelhw/hd44780_display.h>
#include <frontpanelhw/hd44780_gpio.h>
#include <frontpanelhw/hd44780_i2c.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace yxfp_model {

/** The slowest oscillator of the HD44780U's range (datasheet: 190 kHz to 350 kHz with the
 *  recommended resistor); the execution times grow by 270 kHz / f from the datasheet's figures. */
inline constexpr unsigned kSlowestOscillatorHz = 190000;

/** Names the character a CGRAM bitmap (eight rows, bit 4 the leftmost dot) draws, or U+FFFD. */
using CgramNamer = std::function<char32_t(std::array<std::uint8_t, 8> const&)>;

/** An HD44780U controller as its pins see it, for tests and the simulator: it takes the level
 *  changes of RS, RW, E and D4-D7 (from a PCF8574 byte stream or from GPIO lines), latches on the
 *  falling edge of E, runs the instructions of the datasheet in eight- and four-bit mode (display
 *  and character RAM, address counter, entry mode, display control, cursor) and checks the
 *  timing at the given oscillator frequency: a nibble latched while the controller is still
 *  busy, a read strobe, a display shift or an address outside the RAM is recorded as a
 *  violation. What a code shows comes from the model's own copy of the datasheet's character
 *  ROM tables. Time passes only through advance(). Starts as at power-on (eight-bit mode, busy
 *  for 40 ms). */
class Hd44780Model {
public:
    Hd44780Model(frontpanelhw::Hd44780Geometry const& geometry, frontpanelhw::Hd44780Rom rom,
                 unsigned oscillatorHz = kSlowestOscillatorHz);

    /** Says which character each CGRAM bitmap draws (without one, every CGRAM cell reads as
     *  U+FFFD): a custom glyph is the application's drawing, not the controller's. */
    void nameCgramGlyphs(CgramNamer namer) { cgramNamer_ = std::move(namer); }

    /** The pins now carry these levels; a falling edge of E latches the nibble. */
    void setPins(bool rs, bool rw, bool enable, std::uint8_t nibble);
    /** One byte on the expander's outputs, decoded with `pins`. */
    void expanderByte(std::uint8_t byte, frontpanelhw::ExpanderPinMap const& pins);
    /** Time passes. */
    void advance(std::chrono::nanoseconds duration);
    /** The module loses power and gets it back (a replug, a brown-out, ESD): power-on state,
     *  RAM undefined, busy for the power-on time. */
    void powerCycle();

    /** What went against the datasheet so far, one line each. */
    std::vector<std::string> const& violations() const { return violations_; }
    /** Whether the backlight pin of the last expander byte was on. */
    bool backlight() const { return backlight_; }

    /** The character code in display RAM at (column, line) of the geometry. */
    std::uint8_t code(unsigned column, unsigned line) const;
    /** The bitmap of CGRAM slot `slot` (0-7), eight rows of five bits. */
    std::array<std::uint8_t, 8> glyphRows(unsigned slot) const;
    /** What the module shows at (column, line): the ROM pattern as its nearest Unicode
     *  character, a CGRAM slot as the character the CGRAM namer gives its bitmap, a blank while
     *  the display is off. */
    char32_t glyph(unsigned column, unsigned line) const;
    /** One line of glyphs. */
    std::u32string line(unsigned line) const;

    bool displayOn() const { return displayOn_; }
    bool cursorOn() const { return cursorOn_; }
    bool blinkOn() const { return blinkOn_; }
    bool fourBitMode() const { return !eightBit_; }
    /** The cell the cursor marks, when it shows (display on, cursor or blink on, the address
     *  counter in display RAM on a visible cell). */
    std::optional<std::pair<unsigned, unsigned>> cursorCell() const;
    frontpanelhw::Hd44780Geometry const& geometry() const { return geometry_; }
    /** Nibbles latched so far. */
    unsigned long nibbles() const { return nibbles_; }

private:
    void latch(bool rs, std::uint8_t nibble);
    void execute(bool rs, std::uint8_t byte);
    void instruction(std::uint8_t byte);
    void writeData(std::uint8_t byte);
    void moveAddressCounter(bool increment);
    void busyFor(std::chrono::nanoseconds duration);
    void violation(std::string const& what);

    frontpanelhw::Hd44780Geometry geometry_;
    frontpanelhw::Hd44780Rom rom_;
    std::chrono::nanoseconds instructionTime_;  // most instructions and data writes
    std::chrono::nanoseconds clearOrHomeTime_;  // clear display, return home
    CgramNamer cgramNamer_;
    std::chrono::nanoseconds now_{0};
    std::chrono::nanoseconds busyUntil_;
    std::vector<std::string> violations_;

    bool enable_ = false;
    bool eightBit_ = true;
    bool powerOnInit_ = true;  // still in the first eight-bit phase after power-on
    unsigned powerOnFunctionSets_ = 0;
    std::optional<std::uint8_t> highNibble_;
    unsigned long nibbles_ = 0;
    bool backlight_ = false;

    std::array<std::uint8_t, 0x80> ddram_{};
    std::array<std::uint8_t, 0x40> cgram_{};
    std::uint8_t addressCounter_ = 0;
    bool addressInCgram_ = false;
    bool increment_ = true;
    bool twoLines_ = false;
    bool displayOn_ = false;
    bool cursorOn_ = false;
    bool blinkOn_ = false;
};

/** An expander port that feeds a controller model: each transfer takes its time on a bus of
 *  `busHz` (start and address, nine bits per byte, stop) and each byte reaches the model's pins.
 *  Counts transfers and bytes, keeps the raw bytes, and can fail in the middle of a transfer. */
class ModelExpanderPort : public frontpanelhw::IExpanderPort {
public:
    ModelExpanderPort(Hd44780Model& model, frontpanelhw::ExpanderPinMap const& pins,
                      unsigned busHz);

    void write(std::uint8_t const* bytes, std::size_t size) override;

    /** After `bytes` more bytes have reached the model, the transfer fails (throws
     *  Hd44780BusError); every later write fails at once until failing is switched off again. */
    void failAfter(std::size_t bytes);
    /** Lets writes through again. */
    void stopFailing();

    unsigned long transfers() const { return transfers_; }
    unsigned long bytes() const { return bytes_; }
    std::vector<std::uint8_t> const& stream() const { return stream_; }

private:
    Hd44780Model& model_;
    frontpanelhw::ExpanderPinMap pins_;
    unsigned busHz_;
    std::optional<std::size_t> failAfter_;
    unsigned long transfers_ = 0;
    unsigned long bytes_ = 0;
    std::vector<std::uint8_t> stream_;
};

/** GPIO lines that feed a controller model. */
class ModelLineOutput : public frontpanelhw::IHd44780LineOutput {
public:
    explicit ModelLineOutput(Hd44780Model& model) : model_(model) {}
    void setLevels(std::uint8_t levels) override;
    unsigned long changes() const { return changes_; }

private:
    Hd44780Model& model_;
    unsigned long changes_ = 0;
};

/** The nine bits of a byte on the I2C bus plus start, address and stop of each transfer. */
std::chrono::nanoseconds i2cBusTime(unsigned long transfers, unsigned long bytes, unsigned busHz);

/** Renders what the model shows as text: one line per module line, its glyphs as UTF-8. */
std::string renderModel(Hd44780Model const& model);

}  // namespace yxfp_model
