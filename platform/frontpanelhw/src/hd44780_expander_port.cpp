#include <frontpanelhw/device_file.h>
#include <frontpanelhw/hd44780_i2c.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include <linux/i2c-dev.h>
#include <sys/ioctl.h>

namespace frontpanelhw {

namespace {

std::string hexAddress(std::uint8_t address) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", address);
    return text;
}

DeviceFileNaming i2cNaming() {
    return {"I2C device", " (is the I2C bus enabled and the i2c-dev module loaded?)",
            " (no permission; is the user in the i2c group?)",
            " (does the expander answer at this address? is the module powered?)"};
}

/** Opens the expander's file: a device node with the address selected, a capture file or a
 *  FIFO. @throws DeviceFileError naming the path and the reason. */
std::unique_ptr<DeviceFile> openExpanderFile(std::string const& path, std::uint8_t address) {
    auto file = std::make_unique<DeviceFile>(path, i2cNaming());
    if (file->kind() == DeviceFileKind::Device) {
        if (::ioctl(file->descriptor(), I2C_SLAVE, static_cast<unsigned long>(address)) < 0) {
            int const error = errno;
            DeviceFile::fail("cannot select address " + hexAddress(address) + " on " + path, error,
                             error == EBUSY ? " (a kernel driver uses this address)"
                             : error == ENOTTY || error == ENOSYS ? " (not an I2C adapter)"
                                                                  : "");
        }
        file->setDescription(file->description() + " at " + hexAddress(address));
    }
    return file;
}

/** The expander's transfers through a DeviceFile: the raw expander bytes, one write(2) per
 *  transfer on an I2C adapter. After a failed write the file is closed and the next write opens
 *  the path again, so that an unplugged adapter or a FIFO whose reader left works again once it
 *  is back. */
class DescriptorPort : public IExpanderPort {
public:
    DescriptorPort(std::string path, std::uint8_t address)
        : path_(std::move(path)), address_(address), file_(openExpanderFile(path_, address_)) {}

    void write(std::uint8_t const* bytes, std::size_t size) override {
        try {
            if (!file_) {
                file_ = openExpanderFile(path_, address_);
            }
            file_->write(bytes, size);
        } catch (DeviceFileError const& error) {
            file_.reset();
            throw Hd44780BusError(error.what());
        }
    }

private:
    std::string path_;
    std::uint8_t address_;
    std::unique_ptr<DeviceFile> file_;
};

}  // namespace

std::unique_ptr<IExpanderPort> openExpanderPort(std::string const& path, std::uint8_t address) {
    try {
        return std::make_unique<DescriptorPort>(path, address);
    } catch (DeviceFileError const& error) {
        throw Hd44780BusError(error.what());
    }
}

}  // namespace frontpanelhw
