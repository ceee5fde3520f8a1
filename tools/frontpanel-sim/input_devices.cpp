#include "input_devices.h"

#include <frontpanelhw/evdev_key_source.h>
#include <frontpanelhw/gpio_key_source.h>
#include <frontpanelhw/input_errors.h>

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

std::shared_ptr<IKeySource> openInput(InputSpec const& spec) {
    switch (spec.kind) {
        case InputSpec::Kind::Evdev: {
#if defined(YXFP_HAVE_EVDEV)
            frontpanelhw::EvdevOptions options;
            options.keys = frontpanelhw::parseInputKeyMap(spec.keyMap);
            options.encoder = spec.encoder;
            options.grab = spec.grab;
            options.reopen = spec.reopen;
            return std::make_shared<frontpanelhw::EvdevKeySource>(spec.device, options);
#else
            break;
#endif
        }
        case InputSpec::Kind::Gpio: {
#if defined(YXFP_HAVE_GPIOD)
            return std::make_shared<frontpanelhw::GpioKeySource>(
                spec.device, frontpanelhw::parseGpioKeyLines(spec.gpioLines));
#else
            break;
#endif
        }
    }
    throw frontpanelhw::InputDeviceError("--input " + spec.text + ": not supported by this build");
}

InputDevices::InputDevices(std::vector<InputSpec> specs) : specs_(std::move(specs)) {}

InputDevices::~InputDevices() = default;

void InputDevices::attach(SimContext const& context) {
    // All are opened before any is added, so that a failing one leaves the panel untouched.
    std::vector<std::shared_ptr<IKeySource>> sources;
    for (InputSpec const& spec : specs_) {
        auto source = openInput(spec);
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
    return std::any_of(specs_.begin(), specs_.end(),
                       [](InputSpec const& spec) { return spec.reopen; });
}

}  // namespace frontpanelsim
