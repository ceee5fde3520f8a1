// The six module lines through libgpiod's 2.x API (Debian 13's libgpiod-dev 2.1).
#include <frontpanelhw/gpio_lines.h>

#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "../gpiod_shared.h"
#include "gpiod_v2_request.h"

namespace frontpanelhw {

namespace {

class GpiodLines : public IHd44780LineOutput {
public:
    explicit GpiodLines(GpioLineConfig const& config) : chipName_(config.chip) {
        std::vector<unsigned> const offsets = {config.rs, config.enable, config.d4,
                                               config.d5, config.d6,     config.d7};
        detail::checkModuleLines(chipName_, offsets);
        std::unique_ptr<gpiod_line_settings, decltype(&::gpiod_line_settings_free)> settings(
            ::gpiod_line_settings_new(), &::gpiod_line_settings_free);
        if (settings) {
            ::gpiod_line_settings_set_direction(settings.get(), GPIOD_LINE_DIRECTION_OUTPUT);
            ::gpiod_line_settings_set_output_value(settings.get(), GPIOD_LINE_VALUE_INACTIVE);
        }
        lines_ = std::make_unique<detail::GpiodV2Request>(config.chip, offsets, settings.get(),
                                                          "yxfrontpanel");
        if (lines_->chip() == nullptr) {
            throw Hd44780BusError("cannot open GPIO chip " + chipName_ + ": " +
                                  detail::errorText(lines_->error()));
        }
        if (lines_->requestFailed()) {
            throw Hd44780BusError("cannot request output lines of GPIO chip " + chipName_ + ": " +
                                  detail::errorText(lines_->error()));
        }
    }

    void setLevels(std::uint8_t levels) override {
        std::array<gpiod_line_value, detail::kModuleLineCount> values{};
        for (unsigned i = 0; i < detail::kModuleLineCount; ++i) {
            values[i] =
                ((levels >> i) & 1U) != 0 ? GPIOD_LINE_VALUE_ACTIVE : GPIOD_LINE_VALUE_INACTIVE;
        }
        if (::gpiod_line_request_set_values(lines_->request(), values.data()) != 0) {
            throw Hd44780BusError("setting the lines of GPIO chip " + chipName_ +
                                  " failed: " + detail::errorText(errno));
        }
    }

private:
    std::string chipName_;
    std::unique_ptr<detail::GpiodV2Request> lines_;
};

}  // namespace

std::unique_ptr<IHd44780LineOutput> openGpioLines(GpioLineConfig const& config) {
    return std::make_unique<GpiodLines>(config);
}

}  // namespace frontpanelhw
