#include <frontpanelhw/device_file.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "bus_transfer.h"
#include <linux/i2c-dev.h>
#include <sys/ioctl.h>

namespace frontpanelhw::graphic {

namespace {

constexpr std::uint8_t kCommandControl = 0x00;  // Co = 0, D/C# = 0: only commands follow
constexpr std::uint8_t kDataControl = 0x40;     // Co = 0, D/C# = 1: only display data follows

std::string hexAddress(std::uint8_t address) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", address);
    return text;
}

class I2cPanelBus : public IPanelBus {
public:
    explicit I2cPanelBus(std::unique_ptr<DeviceFile> file) : file_(std::move(file)) {}

    void write(bool data, std::uint8_t const* bytes, std::size_t size) override {
        buffer_.assemble(data ? kDataControl : kCommandControl, bytes, size);
        asPanelBusError([&] {
            if (file_->kind() == DeviceFileKind::Device) {
                file_->write(buffer_.transfer(), buffer_.transferSize());
            } else {
                file_->write(buffer_.record(), buffer_.recordSize());
            }
        });
    }

    bool setReset(bool /*active*/) override { return false; }

    std::size_t maxTransferBytes() const override { return kMaxPanelTransfer; }

private:
    std::unique_ptr<DeviceFile> file_;
    TransferBuffer buffer_;
};

}  // namespace

std::unique_ptr<IPanelBus> openI2cPanelBus(std::string const& path, std::uint8_t address) {
    if (address < 0x03 || address > 0x77) {
        throw PanelBusError("I2C address " + hexAddress(address) + " for " + path +
                            " is not a 7-bit device address (0x03-0x77)");
    }
    return asPanelBusError([&] {
        auto file = std::make_unique<DeviceFile>(
            path, DeviceFileNaming{
                      "I2C device",
                      " (load the I2C device interface: modprobe i2c-dev, and enable the bus)",
                      " (no permission; add the user to the i2c group)",
                      " (does a display answer at this address? is it powered and wired?)"});
        if (file->kind() == DeviceFileKind::Device) {
            if (::ioctl(file->descriptor(), I2C_SLAVE, static_cast<unsigned long>(address)) < 0) {
                int const error = errno;
                DeviceFile::fail("cannot select address " + hexAddress(address) + " on " + path,
                                 error,
                                 error == EBUSY ? " (a kernel driver uses this address)"
                                 : error == ENOTTY || error == ENOSYS ? " (not an I2C adapter)"
                                                                      : "");
            }
            file->setDescription(file->description() + " at " + hexAddress(address));
        }
        return std::unique_ptr<IPanelBus>(std::make_unique<I2cPanelBus>(std::move(file)));
    });
}

}  // namespace frontpanelhw::graphic
