#include <frontpanelhw/device_file.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "bus_transfer.h"
#include <linux/spi/spidev.h>
#include <sys/ioctl.h>

namespace frontpanelhw::graphic {

namespace {

constexpr unsigned kBitsPerWord = 8;

class SpiPanelBus : public IPanelBus {
public:
    SpiPanelBus(std::unique_ptr<DeviceFile> file, SpiBusOptions const& options,
                std::unique_ptr<IPanelLine> dataCommand, std::unique_ptr<IPanelLine> reset)
        : file_(std::move(file)),
          options_(options),
          dataCommand_(std::move(dataCommand)),
          reset_(std::move(reset)) {}

    void write(bool data, std::uint8_t const* bytes, std::size_t size) override {
        buffer_.assemble(data ? 1 : 0, bytes, size);
        if (dataCommand_) {
            dataCommand_->set(data);
        }
        asPanelBusError([&] {
            if (file_->kind() != DeviceFileKind::Device) {
                file_->write(buffer_.record(), buffer_.recordSize());
                return;
            }
            spi_ioc_transfer transfer;
            std::memset(&transfer, 0, sizeof transfer);
            // The bytes after the leading D/C byte, which only the capture carries.
            transfer.tx_buf = reinterpret_cast<std::uintptr_t>(buffer_.transfer() + 1);
            transfer.len = static_cast<std::uint32_t>(buffer_.transferSize() - 1);
            transfer.speed_hz = options_.speedHz;
            transfer.bits_per_word = kBitsPerWord;
            if (::ioctl(file_->descriptor(), SPI_IOC_MESSAGE(1), &transfer) < 0) {
                DeviceFile::fail("writing to " + file_->description() + " failed", errno, "");
            }
        });
    }

    bool setReset(bool active) override {
        if (!reset_) {
            return false;
        }
        reset_->set(!active);
        return true;
    }

    std::size_t maxTransferBytes() const override { return kMaxPanelTransfer; }

private:
    std::unique_ptr<DeviceFile> file_;
    SpiBusOptions options_;
    std::unique_ptr<IPanelLine> dataCommand_;
    std::unique_ptr<IPanelLine> reset_;
    TransferBuffer buffer_;
};

void configure(DeviceFile const& file, SpiBusOptions const& options) {
    std::uint8_t mode = static_cast<std::uint8_t>(options.mode & 0x03U);
    if (options.chipSelectHigh) {
        mode = static_cast<std::uint8_t>(mode | SPI_CS_HIGH);
    }
    std::uint8_t bits = kBitsPerWord;
    std::uint32_t speed = options.speedHz;
    std::string const& device = file.description();
    if (::ioctl(file.descriptor(), SPI_IOC_WR_MODE, &mode) < 0) {
        DeviceFile::fail("cannot set SPI mode " + std::to_string(options.mode) +
                             (options.chipSelectHigh ? " with chip select active high" : "") +
                             " on " + device,
                         errno, errno == ENOTTY || errno == ENOSYS ? " (not an SPI device)" : "");
    }
    if (::ioctl(file.descriptor(), SPI_IOC_WR_BITS_PER_WORD, &bits) < 0) {
        DeviceFile::fail("cannot set 8-bit words on " + device, errno, "");
    }
    if (::ioctl(file.descriptor(), SPI_IOC_WR_MAX_SPEED_HZ, &speed) < 0) {
        DeviceFile::fail(
            "cannot set the SPI clock to " + std::to_string(options.speedHz) + " Hz on " + device,
            errno, "");
    }
}

}  // namespace

std::unique_ptr<IPanelBus> openSpiPanelBus(std::string const& path, SpiBusOptions const& options,
                                           std::unique_ptr<IPanelLine> dataCommand,
                                           std::unique_ptr<IPanelLine> reset) {
    if (options.speedHz == 0) {
        throw PanelBusError("SPI device " + path + ": the clock must be above 0 Hz");
    }
    return asPanelBusError([&] {
        auto file = std::make_unique<DeviceFile>(
            path, DeviceFileNaming{"SPI device",
                                   " (enable the SPI bus and its spidev device, e.g. "
                                   "dtparam=spi=on on a Raspberry Pi)",
                                   " (no permission; add the user to the spi group)", ""});
        if (file->kind() == DeviceFileKind::Device) {
            configure(*file, options);
        }
        return std::unique_ptr<IPanelBus>(std::make_unique<SpiPanelBus>(
            std::move(file), options, std::move(dataCommand), std::move(reset)));
    });
}

}  // namespace frontpanelhw::graphic
