#include "oled_module_display.h"

#include <yxfrontpanel/components.h>
#if YXFP_HAS_GPIO
#include <frontpanelhw/gpio_panel_line.h>
#endif

#include <frontpanelhw/graphic/oled_display.h>
#include <frontpanelhw/graphic/panel_bus.h>
#include <frontpanelhw/graphic/st7920_display.h>

#include <stdexcept>
#include <utility>

#include <sys/stat.h>

namespace frontpanelsim {

namespace {

using frontpanelhw::graphic::IPanelLine;

bool isDevice(std::string const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode);
}

std::unique_ptr<IPanelLine> openLine(std::optional<GpioLineOption> const& line, bool initialHigh) {
    if (!line) {
        return nullptr;
    }
#if YXFP_HAS_GPIO
    return frontpanelhw::graphic::openGpioPanelLine(line->chip, line->line, initialHigh);
#else
    (void)initialHigh;
    throw std::runtime_error("cannot use line " + std::to_string(line->line) + " of GPIO chip " +
                             line->chip +
                             ": this build has no GPIO support (install libgpiod-dev and rebuild)");
#endif
}

std::unique_ptr<frontpanelhw::graphic::IPanelBus> openBus(GraphicModuleOption const& option) {
    if (!option.spi) {
        return frontpanelhw::graphic::openI2cPanelBus(option.path, option.address);
    }
    bool const st7920 = option.chip == GraphicModuleOption::Chip::St7920;
    if (!st7920 && !option.dataCommand && isDevice(option.path)) {
        throw std::runtime_error("SPI device " + option.path +
                                 ": an OLED on SPI needs its D/C line, e.g. dc=gpiochip0:25 "
                                 "(a capture file needs none)");
    }
    frontpanelhw::graphic::SpiBusOptions spi;
    if (st7920) {
        spi.speedHz = frontpanelhw::graphic::kSt7920SpiHz;
        spi.chipSelectHigh = true;
    } else {
        spi.speedHz = option.chip == GraphicModuleOption::Chip::Ssd1306
                          ? frontpanelhw::graphic::kSsd1306SpiHz
                          : frontpanelhw::graphic::kSh1106SpiHz;
    }
    // RESET is requested high (inactive) so that opening does not reset the module.
    return frontpanelhw::graphic::openSpiPanelBus(
        option.path, spi, openLine(option.dataCommand, false), openLine(option.reset, true));
}

/** The run's own display and a graphic module side by side. */
class GraphicModuleTee : public frontpanelhw::IDisplay {
public:
    GraphicModuleTee(frontpanelhw::IDisplay& screen, GraphicModuleOption const& option,
                     frontpanelhw::graphic::Font font,
                     std::function<void(std::chrono::nanoseconds)> const& wait)
        : screen_(screen) {
        auto bus = openBus(option);
        unsigned const chars = screen.getChars();
        unsigned const lines = screen.getLines();
        if (option.chip == GraphicModuleOption::Chip::St7920) {
            frontpanelhw::graphic::St7920Options options;
            options.flipped = option.flipped;
            options.wait = wait;
            module_ = std::make_unique<frontpanelhw::graphic::St7920Display>(
                std::move(bus), options, std::move(font), chars, lines);
            return;
        }
        frontpanelhw::graphic::OledOptions options;
        options.controller = option.chip == GraphicModuleOption::Chip::Ssd1306
                                 ? frontpanelhw::graphic::OledController::Ssd1306
                                 : frontpanelhw::graphic::OledController::Sh1106;
        options.height = option.height;
        options.flipped = option.flipped;
        options.contrast = option.contrast;
        options.wait = wait;
        module_ = std::make_unique<frontpanelhw::graphic::OledDisplay>(
            std::move(bus), options, std::move(font), chars, lines);
    }

    unsigned getLines() const override { return screen_.getLines(); }
    unsigned getChars() const override { return screen_.getChars(); }

    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override {
        bool const sent = module_->draw(buffer);
        return screen_.draw(buffer) && sent;
    }

private:
    frontpanelhw::IDisplay& screen_;
    std::unique_ptr<frontpanelhw::graphic::GraphicDisplay> module_;
};

}  // namespace

std::unique_ptr<frontpanelhw::IDisplay> makeGraphicModuleDisplay(
    GraphicModuleOption const& option, frontpanelhw::IDisplay& screen,
    frontpanelhw::graphic::Font font, std::function<void(std::chrono::nanoseconds)> const& wait) {
    return std::make_unique<GraphicModuleTee>(screen, option, std::move(font), wait);
}

}  // namespace frontpanelsim
