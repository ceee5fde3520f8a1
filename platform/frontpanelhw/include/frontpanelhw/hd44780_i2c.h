#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/hd44780_bus.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace frontpanelhw {

/** Where the output bytes of an I2C expander go: one call is one bus transfer (start, address,
 *  the bytes, stop). */
class FRONTPANELHW_EXPORT IExpanderPort {
public:
    IExpanderPort() = default;
    IExpanderPort(IExpanderPort const&) = delete;
    IExpanderPort& operator=(IExpanderPort const&) = delete;
    virtual ~IExpanderPort();

    /** Sends `size` bytes as one transfer. @throws Hd44780BusError when it fails. */
    virtual void write(std::uint8_t const* bytes, std::size_t size) = 0;
};

/** The I2C address of the usual PCF8574 backpack (the PCF8574A's is 0x3F). */
inline constexpr std::uint8_t kDefaultExpanderAddress = 0x27;

/** Opens `path` for the expander at 7-bit `address`. A character device (`/dev/i2c-N`) gets
 *  `ioctl(I2C_SLAVE, address)` and each transfer is one write(2). A regular file or a FIFO
 *  (opened for writing, appending to a file) receives the raw expander bytes without any
 *  ioctl, for capturing the byte stream. The descriptor is closed with the port.
 *  @throws Hd44780BusError naming the path and the reason when it cannot be opened (missing,
 *  no permission, not an I2C adapter, address refused) or is another kind of file. A FIFO
 *  without a reader is refused at once rather than waited for.
 *  After a failed write the port closes its descriptor and opens the path again on the next
 *  write (an unplugged USB I2C adapter, a FIFO whose reader left, works again once back). A
 *  FIFO whose reader went away gives a failed write, never SIGPIPE (it is blocked for the
 *  writing thread while it writes). */
FRONTPANELHW_EXPORT std::unique_ptr<IExpanderPort> openExpanderPort(std::string const& path,
                                                                    std::uint8_t address);

/** Which expander output drives which module pin; the default is the usual backpack wiring
 *  (P0 RS, P1 RW, P2 E, P3 backlight, P4-P7 D4-D7). Each value is a bit number 0-7. */
struct ExpanderPinMap {
    /** The bit that drives RS (register select: high for data, low for an instruction). */
    unsigned rs = 0;
    /** The bit that drives RW; it is always low, as the driver only writes. */
    unsigned rw = 1;
    /** The bit that drives E, the enable strobe the module latches on its falling edge. */
    unsigned enable = 2;
    /** The bit that switches the backlight (see backlightActiveHigh). */
    unsigned backlight = 3;
    /** The bit that drives D4, the lowest bit of a nibble. */
    unsigned d4 = 4;
    /** The bit that drives D5. */
    unsigned d5 = 5;
    /** The bit that drives D6. */
    unsigned d6 = 6;
    /** The bit that drives D7, the highest bit of a nibble. */
    unsigned d7 = 7;
    /** False for backpacks whose backlight transistor switches on at a low level. */
    bool backlightActiveHigh = true;
};

/** Options of the expander transport. */
struct ExpanderBusOptions {
    /** Which expander bit drives which module pin (the usual backpack wiring by default). */
    ExpanderPinMap pins;
    /** The fastest clock the I2C bus may run at; it bounds how quickly nibbles follow each
     *  other, so that the driver knows when it must wait itself. */
    unsigned maxBusHz = 400000;
    /** Bytes sent in one transfer at most; longer batches are split. */
    std::size_t maxTransferBytes = 128;
    /** Whether the backlight is on from the first transfer (on by default); setBacklight()
     *  switches it later. */
    bool backlightOn = true;
};

/** An HD44780 transport over a PCF8574/PCF8574A expander: each nibble is two expander bytes
 *  (enable high with the data, then enable low), queued and sent in transfers of up to
 *  `maxTransferBytes`. One thread at a time.
 *  @throws std::invalid_argument from the constructor when two pins share a bit, a bit is
 *  above 7, the bus speed is 0 or the transfer size is below two bytes. */
class FRONTPANELHW_EXPORT ExpanderHd44780Bus : public IHd44780Bus {
public:
    /** Takes the port and checks `options`; sends nothing yet.
     *  @throws std::invalid_argument when `port` is null or `options` are unusable (see above). */
    ExpanderHd44780Bus(std::unique_ptr<IExpanderPort> port, ExpanderBusOptions const& options);
    ~ExpanderHd44780Bus() override;

    void writeNibble(bool data, std::uint8_t nibble) override;
    void flush() override;
    std::chrono::nanoseconds nibbleInterval() const override;
    /** Queues idle bytes (E low) for waits of up to four nibble intervals. */
    bool delayNextNibble(std::chrono::nanoseconds duration) override;
    bool setBacklight(bool on) override;

    /** The expander byte that puts these levels on the pins. */
    std::uint8_t expanderByte(bool data, bool enable, std::uint8_t nibble) const;

private:
    std::unique_ptr<IExpanderPort> port_;
    ExpanderBusOptions options_;
    std::vector<std::uint8_t> queue_;
};

}  // namespace frontpanelhw
