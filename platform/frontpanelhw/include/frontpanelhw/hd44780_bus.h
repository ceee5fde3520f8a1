#pragma once

#include <frontpanelhw/export.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>

namespace frontpanelhw {

/** A transfer to a character module failed (the bus reported an error, the device went away).
 *  The message names the device and the reason. */
class FRONTPANELHW_EXPORT Hd44780BusError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~Hd44780BusError() override;
};

/** How an HD44780-compatible controller is wired in four-bit mode: what the display driver
 *  needs from a transport (an I2C expander backpack, GPIO lines, a capture file, a test
 *  recorder). The driver keeps all protocol logic (initialisation, addressing, timing); the
 *  transport only moves nibbles. One thread at a time. */
class FRONTPANELHW_EXPORT IHd44780Bus {
public:
    IHd44780Bus() = default;
    IHd44780Bus(IHd44780Bus const&) = delete;
    IHd44780Bus& operator=(IHd44780Bus const&) = delete;
    virtual ~IHd44780Bus();

    /** Queues one four-bit write: `nibble` (its low four bits) on D7-D4, RS high when `data`
     *  (a character or glyph row) and low for an instruction, RW low, then an enable pulse that
     *  the controller latches on its falling edge. A transport may send at once or keep the
     *  write until flush(). @throws Hd44780BusError when sending fails. */
    virtual void writeNibble(bool data, std::uint8_t nibble) = 0;

    /** Sends every queued write; when it returns, the controller has latched them all.
     *  @throws Hd44780BusError when sending fails; the queue is empty afterwards either way. */
    virtual void flush() = 0;

    /** The least time that passes between the latching of two consecutive nibbles on this bus
     *  (zero when the transport cannot promise any). The driver waits itself only where an
     *  instruction needs longer. */
    virtual std::chrono::nanoseconds nibbleInterval() const = 0;

    /** Lets at least `duration` pass before the next queued nibble is latched, without ending
     *  the transfer where the transport can (an expander queues bytes that leave E low). False
     *  when it cannot (the default): the driver then flushes and waits itself.
     *  @throws Hd44780BusError when sending fails. */
    virtual bool delayNextNibble(std::chrono::nanoseconds duration);

    /** Switches the backlight; false when this transport has no backlight control. Takes
     *  effect with the next transfer (flush() sends it at once).
     *  @throws Hd44780BusError when sending fails. */
    virtual bool setBacklight(bool on) = 0;
};

}  // namespace frontpanelhw
