// One output line through libgpiod's 2.x API (Debian 13's libgpiod-dev 2.1): the thin adapter
// between the panel buses and the GPIO library.
#include <frontpanelhw/gpio_panel_line.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "../gpiod_shared.h"
#include "gpiod_v2_request.h"

namespace frontpanelhw::graphic {

namespace {

using frontpanelhw::detail::errorText;

class GpiodPanelLine : public IPanelLine {
public:
    GpiodPanelLine(std::string const& chip, unsigned offset, bool initialHigh)
        : name_("line " + std::to_string(offset) + " of GPIO chip " + chip), offset_(offset) {
        std::unique_ptr<gpiod_line_settings, decltype(&::gpiod_line_settings_free)> settings(
            ::gpiod_line_settings_new(), &::gpiod_line_settings_free);
        if (settings) {
            ::gpiod_line_settings_set_direction(settings.get(), GPIOD_LINE_DIRECTION_OUTPUT);
            ::gpiod_line_settings_set_output_value(
                settings.get(), initialHigh ? GPIOD_LINE_VALUE_ACTIVE : GPIOD_LINE_VALUE_INACTIVE);
        }
        line_ = std::make_unique<detail::GpiodV2Request>(chip, std::vector<unsigned>{offset},
                                                         settings.get(), "yxfrontpanel");
        if (line_->chip() == nullptr) {
            throw PanelBusError("cannot open GPIO chip " + chip + ": " + errorText(line_->error()));
        }
        if (line_->requestFailed()) {
            throw PanelBusError("cannot request " + name_ +
                                " as an output: " + errorText(line_->error()));
        }
    }

    void set(bool high) override {
        if (::gpiod_line_request_set_value(
                line_->request(), offset_,
                high ? GPIOD_LINE_VALUE_ACTIVE : GPIOD_LINE_VALUE_INACTIVE) != 0) {
            throw PanelBusError("setting " + name_ + " failed: " + errorText(errno));
        }
    }

private:
    std::string name_;
    unsigned offset_;
    std::unique_ptr<detail::GpiodV2Request> line_;
};

}  // namespace

std::unique_ptr<IPanelLine> openGpioPanelLine(std::string const& chip, unsigned offset,
                                              bool initialHigh) {
    return std::make_unique<GpiodPanelLine>(chip, offset, initialHigh);
}

}  // namespace frontpanelhw::graphic
