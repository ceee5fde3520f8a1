#include "input_devices.h"

#include <frontpanelhw/input_errors.h>
#include <yxfrontpanel/components.h>
#if YXFP_HAS_EVDEV
#include <frontpanelhw/evdev_key_source.h>
#endif
#if YXFP_HAS_GPIO
#include <frontpanelhw/gpio_key_source.h>
#endif

#include <algorithm>
#include <utility>

namespace frontpanelsim {

namespace {

using frontpanelhw::IKeySource;
using frontpanelhw::KeyEvent;

/** Passes a source on but keeps its close to itself: on a terminal, the terminal's own end
 *  ends the run, not an unplugged keypad. */
class CloseKeptQuiet final : public IKeySource {
public:
    explicit CloseKeptQuiet(std::shared_ptr<IKeySource> inner) : inner_(std::move(inner)) {}
    ~CloseKeptQuiet() override = default;

    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) override {
        auto event = inner_->poll(timeout);
        if (event && event->kind == KeyEvent::Kind::Closed) {
            return std::nullopt;
        }
        return event;
    }
    int waitDescriptor() const override { return inner_->waitDescriptor(); }
    std::optional<std::chrono::milliseconds> wakeWithin() const override {
        return inner_->wakeWithin();
    }
    frontpanelhw::KeySourceCapabilities capabilities() const override {
        return inner_->capabilities();
    }

private:
    std::shared_ptr<IKeySource> inner_;
};

}  // namespace

std::shared_ptr<IKeySource> openInput(InputOption const& option) {
    switch (option.kind) {
        case InputOption::Kind::Evdev: {
#if YXFP_HAS_EVDEV
            frontpanelhw::EvdevOptions options;
            options.keys = frontpanelhw::parseInputKeyMap(option.keyMap);
            options.encoder = option.encoder;
            options.grab = option.grab;
            options.reopen = option.reopen;
            return std::make_shared<frontpanelhw::EvdevKeySource>(option.device, options);
#else
            break;
#endif
        }
        case InputOption::Kind::Gpio: {
#if YXFP_HAS_GPIO
            return std::make_shared<frontpanelhw::GpioKeySource>(
                option.device, frontpanelhw::parseGpioKeyLines(option.gpioLines));
#else
            break;
#endif
        }
    }
    throw frontpanelhw::InputDeviceError("--input " + option.text +
                                         ": not supported by this build");
}

InputDevices::InputDevices(std::vector<InputOption> inputs) : inputs_(std::move(inputs)) {}

InputDevices::~InputDevices() = default;

void InputDevices::attach(SimContext const& context) {
    // All are opened before any is added, so that a failing one leaves the panel untouched.
    std::vector<std::shared_ptr<IKeySource>> sources;
    for (InputOption const& option : inputs_) {
        auto source = openInput(option);
        if (context.kind == RunKind::Interactive) {
            source = std::make_shared<CloseKeptQuiet>(std::move(source));
        }
        sources.push_back(std::move(source));
    }
    for (auto& source : sources) {
        context.panel.addKeySource(std::move(source));
    }
}

void InputDevices::detach() noexcept {}

bool InputDevices::keepsRunning() const {
    return std::any_of(inputs_.begin(), inputs_.end(),
                       [](InputOption const& option) { return option.reopen; });
}

}  // namespace frontpanelsim
