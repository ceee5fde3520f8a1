#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/hd44780_bus.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace frontpanelhw {

/** Bits of the line levels handed to IHd44780LineOutput::setLevels. */
namespace hd44780_lines {
/** RS (register select): high for data, low for an instruction. */
inline constexpr std::uint8_t kRs = 0x01;
/** E, the enable strobe; the module latches on its falling edge. */
inline constexpr std::uint8_t kEnable = 0x02;
/** D4, the lowest data line; D5, D6 and D7 follow at 0x08, 0x10 and 0x20. */
inline constexpr std::uint8_t kD4 = 0x04;
/** How far a nibble is shifted left to put its bits on D4-D7. */
inline constexpr unsigned kDataShift = 2;
}  // namespace hd44780_lines

/** The six output lines of a four-bit parallel connection (RS, E, D4-D7; RW is tied low). */
class FRONTPANELHW_EXPORT IHd44780LineOutput {
public:
    IHd44780LineOutput() = default;
    IHd44780LineOutput(IHd44780LineOutput const&) = delete;
    IHd44780LineOutput& operator=(IHd44780LineOutput const&) = delete;
    virtual ~IHd44780LineOutput();

    /** Sets all six lines at once to `levels` (hd44780_lines bits, 1 = high).
     *  @throws Hd44780BusError when the lines cannot be set. */
    virtual void setLevels(std::uint8_t levels) = 0;
};

/** Which GPIO chip and line offsets the module is wired to. */
struct GpioLineConfig {
    /** The GPIO chip: a path (/dev/gpiochip0), a name (gpiochip0) or a number (0). */
    std::string chip = "gpiochip0";
    /** The line offset on the chip wired to RS; every line needs its own offset. */
    unsigned rs = 0;
    /** The line offset wired to E. */
    unsigned enable = 0;
    /** The line offset wired to D4. */
    unsigned d4 = 0;
    /** The line offset wired to D5. */
    unsigned d5 = 0;
    /** The line offset wired to D6. */
    unsigned d6 = 0;
    /** The line offset wired to D7. */
    unsigned d7 = 0;
};

/** An HD44780 transport over six GPIO lines: each nibble sets RS and the data with E low,
 *  raises E and lowers it again (three level changes). Sends at once; flush() has nothing to
 *  do. Makes no timing promise, so the driver waits for each instruction itself. No backlight
 *  control. One thread at a time. */
class FRONTPANELHW_EXPORT GpioHd44780Bus : public IHd44780Bus {
public:
    /** Takes the lines; sets no level yet.
     *  @throws std::invalid_argument when `lines` is null. */
    explicit GpioHd44780Bus(std::unique_ptr<IHd44780LineOutput> lines);
    ~GpioHd44780Bus() override;

    void writeNibble(bool data, std::uint8_t nibble) override;
    void flush() override;
    std::chrono::nanoseconds nibbleInterval() const override;
    bool setBacklight(bool on) override;

private:
    std::unique_ptr<IHd44780LineOutput> lines_;
};

}  // namespace frontpanelhw
