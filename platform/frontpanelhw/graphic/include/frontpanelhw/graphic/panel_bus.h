#pragma once

#include <frontpanelhw/graphic/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace frontpanelhw::graphic {

/** Talking to a graphic display controller failed (the device is missing, refused the address,
 *  stopped answering, a GPIO line could not be had). The message names the device and the
 *  reason, and what to do where the usual cause is known. */
class FRONTPANELHW_GRAPHIC_EXPORT PanelBusError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~PanelBusError() override;
};

/** One output line to the controller besides the bus itself: D/C (data/command select) or
 *  RESET. */
class FRONTPANELHW_GRAPHIC_EXPORT IPanelLine {
public:
    IPanelLine() = default;
    IPanelLine(IPanelLine const&) = delete;
    IPanelLine& operator=(IPanelLine const&) = delete;
    virtual ~IPanelLine();

    /** Drives the line high (`high`) or low. @throws PanelBusError when that fails. */
    virtual void set(bool high) = 0;
};

/** Moves command and data bytes to a graphic display controller, one transfer at a time. A
 *  regular file or FIFO given as the bus path captures the transfers instead: each one as a
 *  record of a 16-bit little-endian length followed by that many bytes, which for I2C are the
 *  control byte (0x00 commands, 0x40 data) and the bytes, and for SPI the D/C level (0 command,
 *  1 data) and the bytes. One thread at a time. */
class FRONTPANELHW_GRAPHIC_EXPORT IPanelBus {
public:
    IPanelBus() = default;
    IPanelBus(IPanelBus const&) = delete;
    IPanelBus& operator=(IPanelBus const&) = delete;
    virtual ~IPanelBus();

    /** Sends `size` bytes (1 to maxTransferBytes()) as one transfer of commands (`data` false)
     *  or display data. @throws PanelBusError when it fails. */
    virtual void write(bool data, std::uint8_t const* bytes, std::size_t size) = 0;
    /** Drives the controller's RESET input (active low: `active` pulls it low); false when this
     *  bus has no reset line. @throws PanelBusError when setting the line fails. */
    virtual bool setReset(bool active) = 0;
    /** The most bytes write() takes at once. */
    virtual std::size_t maxTransferBytes() const = 0;
};

/** The usual I2C address of SSD1306 and SH1106 modules (0x3D with SA0 high). */
inline constexpr std::uint8_t kDefaultOledAddress = 0x3C;

/** Opens the controller at 7-bit `address` on `path`: an I2C adapter (/dev/i2c-N, selected with
 *  the I2C_SLAVE ioctl; each transfer one write(2) of the control byte and the bytes), or a
 *  regular file or FIFO that receives the capture records. No reset line.
 *  @throws PanelBusError naming the path and the reason (missing device: load i2c-dev; no
 *  permission; not an adapter; address taken by a kernel driver; a FIFO without a reader). */
FRONTPANELHW_GRAPHIC_EXPORT std::unique_ptr<IPanelBus> openI2cPanelBus(std::string const& path,
                                                                       std::uint8_t address);

/** How an SPI controller is clocked. */
struct FRONTPANELHW_GRAPHIC_EXPORT SpiBusOptions {
    /** The SPI clock in Hz; the default suits the SSD1306 (kSh1106SpiHz, kSt7920SpiHz). */
    std::uint32_t speedHz = 8000000;
    /** The SPI mode 0-3 (clock polarity and phase). */
    std::uint8_t mode = 0;
    /** Chip select active high (the ST7920) instead of low. */
    bool chipSelectHigh = false;
};

/** Opens `path`: an SPI device (/dev/spidevB.C, configured with the SPI_IOC_WR_* ioctls; the D/C
 *  line set before each transfer, which is one SPI_IOC_MESSAGE), or a regular file or FIFO that
 *  receives the capture records (the lines are then optional and still driven when given).
 *  `dataCommand` may be null for controllers without a D/C input (the ST7920), or for a
 *  capture; `reset` may be null when RESET is wired to a power-on circuit.
 *  @throws PanelBusError naming the path and the reason (missing device: enable spidev;
 *  no permission: the spi group; mode or speed refused). */
FRONTPANELHW_GRAPHIC_EXPORT std::unique_ptr<IPanelBus> openSpiPanelBus(
    std::string const& path, SpiBusOptions const& options, std::unique_ptr<IPanelLine> dataCommand,
    std::unique_ptr<IPanelLine> reset);

}  // namespace frontpanelhw::graphic
