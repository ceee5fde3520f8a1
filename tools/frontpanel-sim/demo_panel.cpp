#include "demo_panel.h"

#include <yxfrontpanel/components.h>
#if YXFP_HAS_SETTINGS
#include <yxfrontpanel/runtime/setting_definition.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <variant>

namespace frontpanelsim {

namespace {

using namespace std::chrono_literals;
using yxfrontpanel::drawing::TextAllignment;

constexpr double kDefaultVolts = 5.0;
constexpr double kMaxVolts = 30.0;
constexpr double kDefaultAmps = 0.5;
constexpr double kMaxAmps = 5.0;
constexpr double kLoadOhms = 10.0;    // the simulated load on the output
constexpr double kRatedWatts = 20.0;  // full scale of the status screen's power bar
constexpr int kDefaultPrefix = 24;
constexpr int kDefaultContrast = 1;
constexpr int kOff = 0;
constexpr int kOn = 1;

std::u16string const kHelpText =
    u"Arrow keys move through the menu. Enter opens an entry, applies an edit or confirms. "
    u"Back closes the open screen. In a number or address editor, left and right pick the "
    u"digit and up and down change it. Edits need LOCAL mode.";

// The brightness slider's layout on a panel of the provider's width.
unsigned brightnessCaptionWidth(yxfrontpanel::IDrawingProvider const& provider) {
    return provider.getChars() >= 20 ? 4 : 3;
}

unsigned brightnessBarWidth(yxfrontpanel::IDrawingProvider const& provider) {
    return std::min(provider.getChars() - 2 * brightnessCaptionWidth(provider), 16U);
}

template <class Item, class... Args>
std::shared_ptr<Item> add(yxfrontpanel::TreeMenuItem& menu, Args&&... args) {
    auto item = std::make_shared<Item>(std::forward<Args>(args)...);
    menu.addItem(item);
    return item;
}

}  // namespace

DemoPanel::DemoPanel(yxfrontpanel::IDrawingProvider const& provider)
    : provider_(provider), root_(yxfrontpanel::MenuTreeFactory().create(provider)) {
    voltage_.value = kDefaultVolts;
    voltageMin_.value = 0.0;
    voltageMax_.value = kMaxVolts;
    current_.value = kDefaultAmps;
    currentMin_.value = 0.0;
    currentMax_.value = kMaxAmps;
    buildOutputMenu();
    buildNetworkMenu();
    buildDisplayMenu();
    buildSystemMenu();
    root_->setLocal(local_);
}

DemoPanel::~DemoPanel() {
    // The items go before the settings their connectors point into.
    root_->clearItems();
}

void DemoPanel::buildOutputMenu() {
    auto menu = std::make_shared<yxfrontpanel::TreeMenuItem>(provider_, u"Output");
    root_->addItem(menu);

    auto voltage = voltageItem_ =
        add<yxfrontpanel::ValueEditorMenuItem>(*menu, provider_, u"Voltage", 0.0, kMaxVolts);
    voltage->setPrecision(2);
    voltage->setUnit(u"V");
    yxfrontpanel::itemconnector::valueEditor(
        voltage_, voltageMin_, voltageMax_, [this](double volts) { voltage_.set(volts); }, *voltage,
        voltageVisible_, voltageEditable_);

    auto current = currentItem_ =
        add<yxfrontpanel::ValueEditorMenuItem>(*menu, provider_, u"Current", 0.0, kMaxAmps);
    current->setPrecision(3);
    current->setUnit(u"A");
    yxfrontpanel::itemconnector::valueEditor(
        current_, currentMin_, currentMax_, [this](double amps) { current_.set(amps); }, *current,
        currentVisible_, currentEditable_);

    outputMode_ = add<yxfrontpanel::InlineEditorMenuItem>(*menu, u"Output");
    outputMode_->addValue(kOff, u"Off");
    outputMode_->addValue(kOn, u"On");
    outputMode_->valueCallback = [this](int mode) { outputOn_ = mode == kOn; };
    setOutputMode_ = yxfrontpanel::itemconnector::inlineEditor(*outputMode_);

    measured_ = add<yxfrontpanel::ReadOnlyMenuItem>(*menu, provider_, u"Measured");
    measured_->setValue(0.0, 3);
    status_ = add<StatusMenuItem>(*menu, provider_, u"Status");
    status_->form().show(0.0, 0.0, kRatedWatts);
}

void DemoPanel::buildNetworkMenu() {
    auto menu = std::make_shared<yxfrontpanel::TreeMenuItem>(provider_, u"Network");
    root_->addItem(menu);

    dhcp_ = add<yxfrontpanel::InlineEditorMenuItem>(*menu, u"DHCP");
    dhcp_->addValue(kOff, u"Off");
    dhcp_->addValue(kOn, u"On");
    dhcp_->valueCallback = [this](int dhcp) { showDhcp(dhcp == kOn); };

    address_ = add<yxfrontpanel::IpAddressEditorMenuItem>(*menu, provider_, u"IP address");
    address_->setValue("192.168.1.100");
    address_->connectEditor([](std::string const& /*address*/) {});
    gateway_ = add<yxfrontpanel::IpAddressEditorMenuItem>(*menu, provider_, u"Gateway");
    gateway_->setValue("192.168.1.1");
    gateway_->connectEditor([](std::string const& /*address*/) {});
    netmask_ = add<yxfrontpanel::IpMaskEditor>(*menu, provider_, u"Netmask");
    netmask_->setValue(kDefaultPrefix);
}

void DemoPanel::showDhcp(bool dhcp) {
    // With DHCP the server hands out the addresses, so the entries to type them disappear.
    address_->setVisible(!dhcp);
    gateway_->setVisible(!dhcp);
    netmask_->setVisible(!dhcp);
}

void DemoPanel::buildDisplayMenu() {
    auto menu = std::make_shared<yxfrontpanel::TreeMenuItem>(provider_, u"Display");
    root_->addItem(menu);

    unsigned const captionWidth = brightnessCaptionWidth(provider_);
    unsigned const barWidth = brightnessBarWidth(provider_);
    brightness_ = add<yxfrontpanel::SliderMenuItem>(*menu, provider_, u"Brightness", u"Dim", u"Max",
                                                    captionWidth, barWidth, 0);
    brightness_->setValue(static_cast<int>(barWidth) / 2);
    brightness_->connectSlider([](int /*level*/) {});

    contrast_ = add<yxfrontpanel::RadioTreeMenuItem>(*menu, provider_, u"Contrast");
    contrast_->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"Low", 0));
    contrast_->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"Medium", 1));
    contrast_->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"High", 2));
    contrast_->setValue(kDefaultContrast);
}

void DemoPanel::buildSystemMenu() {
    auto menu = std::make_shared<yxfrontpanel::TreeMenuItem>(provider_, u"System");
    root_->addItem(menu);

    add<yxfrontpanel::ReadOnlyMenuItem>(*menu, provider_, u"Firmware")->setText("1.4.2");
    add<yxfrontpanel::ReadOnlyMenuItem>(*menu, provider_, u"Serial number")
        ->setText("YX-2026-00042");
    add<yxfrontpanel::ScrollLabelMenuItem>(*menu, provider_, u"Help")
        ->setText(kHelpText, TextAllignment::Left);

#if YXFP_HAS_SETTINGS
    // Only where the settings store was built: elsewhere there is nothing to save.
    auto save = add<yxfrontpanel::TriggerMenuItem>(*menu, u"Save settings", 1000ms);
    // The write goes to the store's writer thread; a failure is reported by the store's error
    // listeners (stderr, the remote error queue), not by the item.
    save->action = [this] {
        if (store_ != nullptr) {
            store_->saveInBackground();
        }
        return true;
    };
#endif

    auto reset = add<yxfrontpanel::TriggerMenuItem>(*menu, u"Reset defaults", 1000ms);
    // The confirm hint is as wide as half the panel and starts right of its middle, so on an
    // even-width panel its last column falls off the edge: a trailing blank keeps "Yes" whole.
    reset->enableUserDialog(provider_, "Reset settings", "to defaults?", "Yes ");
    reset->action = [this] { return resetDefaults(); };

    auto calibrate = add<yxfrontpanel::TriggerMenuItem>(*menu, u"Calibrate", 1000ms);
    calibrate->action = [] { return true; };
    calibrate->setAvailable(false);
}

bool DemoPanel::resetDefaults() {
#if YXFP_HAS_SETTINGS
    if (store_ != nullptr) {
        store_->resetToDefaultsInBackground();  // the items and the state follow the store
        return true;
    }
#endif
    resetToDefaults();
    return true;
}

void DemoPanel::resetToDefaults() {
    voltage_.set(kDefaultVolts);
    current_.set(kDefaultAmps);
    setOutputMode_(kOff);
    outputOn_ = false;
    dhcp_->setValue(kOff);
    showDhcp(false);
    address_->setValue("192.168.1.100");
    gateway_->setValue("192.168.1.1");
    netmask_->setValue(kDefaultPrefix);
    contrast_->setValue(kDefaultContrast);
}

void DemoPanel::setLocal(bool local) {
    local_ = local;
    root_->setLocal(local);
}

bool DemoPanel::isLocal() const { return local_; }

DemoPanel::Reading DemoPanel::measure(unsigned sample) {
    // A few millivolts of ripple make the update visible.
    double const ripple = 0.001 * static_cast<double>(static_cast<int>(sample % 5) - 2);
    bool const on = outputOn_.load();
    double const volts = on ? std::max(0.0, voltage_.get() + ripple) : 0.0;
    double const amps = on ? std::min(current_.get(), volts / kLoadOhms) : 0.0;
    return Reading{volts, amps};
}

PanelApp::Update DemoPanel::acquire(unsigned sample) {
    return [this, reading = measure(sample)] { show(reading); };
}

void DemoPanel::show(Reading reading) {
    shown_ = reading;
    measured_->setValue(reading.volts, 3);
    status_->form().show(reading.volts, reading.amps, kRatedWatts);
}

void DemoPanel::drawHomeScreen(yxfrontpanel::IDrawingProvider const& provider) {
    if (!home_) {
        home_ = std::make_unique<StatusForm>(provider);
        home_->show(shown_.volts, shown_.amps, kRatedWatts);
        home_->setFocus(true);  // draws it
        return;
    }
    home_->show(shown_.volts, shown_.amps, kRatedWatts);
}

yxfrontpanel::IMenuTree& DemoPanel::root() { return *root_; }

#if YXFP_HAS_SETTINGS

std::vector<yxfrontpanel::settings::SettingDefinition> DemoPanel::settingDefinitions() const {
    using yxfrontpanel::settings::SettingDefinition;
    std::vector<std::int64_t> prefixes;
    for (auto const& entry : netmask_->getBitToMaskMap()) {
        prefixes.push_back(entry.first);
    }
    return {
        SettingDefinition::number("voltage", kDefaultVolts, 0.0, kMaxVolts),
        SettingDefinition::number("current", kDefaultAmps, 0.0, kMaxAmps),
        SettingDefinition::boolean("output", false),
        SettingDefinition::boolean("dhcp", false),
        SettingDefinition::ipv4("address", ip::IpV4Address(192, 168, 1, 100)),
        SettingDefinition::ipv4("gateway", ip::IpV4Address(192, 168, 1, 1)),
        SettingDefinition::choice("netmask", kDefaultPrefix, prefixes),
        SettingDefinition::integer("brightness", brightnessBarWidth(provider_) / 2, 0,
                                   brightnessBarWidth(provider_) - 1),
        SettingDefinition::choice("contrast", kDefaultContrast, {0, 1, 2}),
    };
}

void DemoPanel::useSettings(yxfrontpanel::settings::SettingsStore& store) {
    using yxfrontpanel::settings::bindSetting;
    store_ = &store;
    bindings_.push_back(bindSetting(store, "voltage", *voltageItem_));
    bindings_.push_back(bindSetting(store, "current", *currentItem_));
    bindings_.push_back(bindSetting(store, "output", *outputMode_));
    bindings_.push_back(bindSetting(store, "dhcp", *dhcp_));
    bindings_.push_back(bindSetting(store, "address", *address_));
    bindings_.push_back(bindSetting(store, "gateway", *gateway_));
    bindings_.push_back(bindSetting(store, "netmask", *netmask_));
    bindings_.push_back(bindSetting(store, "brightness", *brightness_));
    bindings_.push_back(bindSetting(store, "contrast", *contrast_));
    followSettings(store);
}

void DemoPanel::followSettings(yxfrontpanel::settings::SettingsStore& store) {
    using yxfrontpanel::settings::SettingValue;
    // The bindings keep the items in step; the instrument's own state follows here, for edits
    // and for a reset or a load alike.
    listeners_.push_back(store.subscribe(
        "voltage", [this](SettingValue const& value) { voltage_.set(std::get<double>(value)); }));
    listeners_.push_back(store.subscribe(
        "current", [this](SettingValue const& value) { current_.set(std::get<double>(value)); }));
    listeners_.push_back(store.subscribe(
        "output", [this](SettingValue const& value) { outputOn_ = std::get<bool>(value); }));
    listeners_.push_back(store.subscribe(
        "dhcp", [this](SettingValue const& value) { showDhcp(std::get<bool>(value)); }));
    voltage_.set(store.number("voltage"));
    current_.set(store.number("current"));
    outputOn_ = store.boolean("output");
    showDhcp(store.boolean("dhcp"));
}

void DemoPanel::releaseSettings() noexcept {
    bindings_.clear();
    if (store_ != nullptr) {
        for (auto const id : listeners_) {
            store_->unsubscribe(id);
        }
    }
    listeners_.clear();
    store_ = nullptr;
}

#endif

}  // namespace frontpanelsim
