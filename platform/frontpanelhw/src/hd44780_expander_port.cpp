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

/** The expander's transfers through a DeviceFile: the raw expander bytes, one write(2) per
 *  transfer on an I2C adapter. */
class DescriptorPort : public IExpanderPort {
public:
    explicit DescriptorPort(std::unique_ptr<DeviceFile> file) : file_(std::move(file)) {}

    void write(std::uint8_t const* bytes, std::size_t size) override {
        try {
            file_->write(bytes, size);
        } catch (DeviceFileError const& error) {
            throw Hd44780BusError(error.what());
        }
    }

private:
    std::unique_ptr<DeviceFile> file_;
};

}  // namespace

std::unique_ptr<IExpanderPort> openExpanderPort(std::string const& path, std::uint8_t address) {
    try {
        auto file = std::make_unique<DeviceFile>(path, i2cNaming());
        if (file->kind() == DeviceFileKind::Device) {
            if (::ioctl(file->descriptor(), I2C_SLAVE, static_cast<unsigned long>(address)) < 0) {
                int const error = errno;
                DeviceFile::fail("cannot select address " + hexAddress(address) + " on " + path,
                                 error,
                                 error == EBUSY    ? " (a kernel driver uses this address)"
                                 : error == ENOTTY ? " (not an I2C adapter)"
                                                   : "");
            }
            file->setDescription(file->description() + " at " + hexAddress(address));
        }
        return std::make_unique<DescriptorPort>(std::move(file));
    } catch (DeviceFileError const& error) {
        throw Hd44780BusError(error.what());
    }
}

}  // namespace frontpanelhw
