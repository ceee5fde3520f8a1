#pragma once

// What the I2C and SPI panel buses share: a transfer assembled behind one leading byte (the I2C
// control byte, or the D/C level of a capture record), written as a device transfer or as a
// capture record, and device errors turned into PanelBusError.

#include <frontpanelhw/device_file.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace frontpanelhw::graphic {

/** The most bytes one panel transfer carries after its leading byte. */
inline constexpr std::size_t kMaxPanelTransfer = 4096;

/** A reusable buffer for one transfer: room for a record's length, the leading byte and up to
 *  kMaxPanelTransfer bytes. */
class TransferBuffer {
public:
    TransferBuffer();
    /** Fills the buffer with the leading byte and the bytes. @throws PanelBusError when there
     *  are none or more than kMaxPanelTransfer. */
    void assemble(std::uint8_t lead, std::uint8_t const* bytes, std::size_t size);
    /** The leading byte and the bytes (an I2C transfer). */
    std::uint8_t const* transfer() const;
    /** Size of transfer(). */
    std::size_t transferSize() const;
    /** The capture record: the 16-bit little-endian length of transfer(), then transfer(). */
    std::uint8_t const* record() const;
    /** Size of record(). */
    std::size_t recordSize() const;

private:
    std::vector<std::uint8_t> buffer_;
    std::size_t size_ = 0;
};

/** Runs `action`, turning a DeviceFileError into a PanelBusError with the same message. */
template <class Action>
auto asPanelBusError(Action&& action) -> decltype(action()) {
    try {
        return action();
    } catch (DeviceFileError const& error) {
        throw PanelBusError(error.what());
    }
}

}  // namespace frontpanelhw::graphic
