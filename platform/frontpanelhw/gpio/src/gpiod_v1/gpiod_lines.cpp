// The six module lines through libgpiod's v1 API (Debian's libgpiod-dev 1.6).
#include <frontpanelhw/gpio_lines.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "../gpiod_shared.h"
#include <gpiod.h>

namespace frontpanelhw {

namespace {

class GpiodLines : public IHd44780LineOutput {
public:
    explicit GpiodLines(GpioLineConfig const& config) : chipName_(config.chip) {
        std::array<unsigned, detail::kModuleLineCount> offsets = {
            config.rs, config.enable, config.d4, config.d5, config.d6, config.d7};
        detail::checkModuleLines(chipName_, {offsets.begin(), offsets.end()});
        chip_ = ::gpiod_chip_open_lookup(chipName_.c_str());
        if (chip_ == nullptr) {
            throw Hd44780BusError("cannot open GPIO chip " + chipName_ + ": " +
                                  detail::errorText(errno));
        }
        if (::gpiod_chip_get_lines(chip_, offsets.data(), detail::kModuleLineCount, &bulk_) != 0) {
            fail("cannot get lines of GPIO chip ");
        }
        std::array<int, detail::kModuleLineCount> const low{};
        if (::gpiod_line_request_bulk_output(&bulk_, "yxfrontpanel", low.data()) != 0) {
            fail("cannot request output lines of GPIO chip ");
        }
    }

    ~GpiodLines() override {
        ::gpiod_line_release_bulk(&bulk_);
        ::gpiod_chip_close(chip_);
    }

    GpiodLines(GpiodLines const&) = delete;
    GpiodLines& operator=(GpiodLines const&) = delete;

    void setLevels(std::uint8_t levels) override {
        std::array<int, detail::kModuleLineCount> values{};
        for (unsigned i = 0; i < detail::kModuleLineCount; ++i) {
            values[i] = static_cast<int>((levels >> i) & 1U);
        }
        if (::gpiod_line_set_value_bulk(&bulk_, values.data()) != 0) {
            throw Hd44780BusError("setting the lines of GPIO chip " + chipName_ +
                                  " failed: " + detail::errorText(errno));
        }
    }

private:
    [[noreturn]] void fail(std::string const& what) {
        int const error = errno;
        ::gpiod_chip_close(chip_);
        throw Hd44780BusError(what + chipName_ + ": " + detail::errorText(error));
    }

    std::string chipName_;
    ::gpiod_chip* chip_ = nullptr;
    ::gpiod_line_bulk bulk_{};
};

}  // namespace

std::unique_ptr<IHd44780LineOutput> openGpioLines(GpioLineConfig const& config) {
    return std::make_unique<GpiodLines>(config);
}

}  // namespace frontpanelhw
