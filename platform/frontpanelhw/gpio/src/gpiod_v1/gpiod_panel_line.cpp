// One output line through libgpiod's v1 API (Debian's libgpiod-dev 1.6): the thin adapter
// between the panel buses and the GPIO library.
#include <frontpanelhw/gpio_panel_line.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "../gpiod_shared.h"
#include <gpiod.h>

namespace frontpanelhw::graphic {

namespace {

using frontpanelhw::detail::errorText;

class GpiodPanelLine : public IPanelLine {
public:
    GpiodPanelLine(std::string const& chip, unsigned offset, bool initialHigh)
        : name_("line " + std::to_string(offset) + " of GPIO chip " + chip) {
        chip_ = ::gpiod_chip_open_lookup(chip.c_str());
        if (chip_ == nullptr) {
            throw PanelBusError("cannot open GPIO chip " + chip + ": " + errorText(errno));
        }
        line_ = ::gpiod_chip_get_line(chip_, offset);
        if (line_ == nullptr ||
            ::gpiod_line_request_output(line_, "yxfrontpanel", initialHigh ? 1 : 0) != 0) {
            int const error = errno;
            ::gpiod_chip_close(chip_);
            throw PanelBusError("cannot request " + name_ + " as an output: " + errorText(error));
        }
    }
    ~GpiodPanelLine() override {
        ::gpiod_line_release(line_);
        ::gpiod_chip_close(chip_);
    }
    GpiodPanelLine(GpiodPanelLine const&) = delete;
    GpiodPanelLine& operator=(GpiodPanelLine const&) = delete;

    void set(bool high) override {
        if (::gpiod_line_set_value(line_, high ? 1 : 0) != 0) {
            throw PanelBusError("setting " + name_ + " failed: " + errorText(errno));
        }
    }

private:
    std::string name_;
    ::gpiod_chip* chip_ = nullptr;
    ::gpiod_line* line_ = nullptr;
};

}  // namespace

std::unique_ptr<IPanelLine> openGpioPanelLine(std::string const& chip, unsigned offset,
                                              bool initialHigh) {
    return std::make_unique<GpiodPanelLine>(chip, offset, initialHigh);
}

}  // namespace frontpanelhw::graphic
