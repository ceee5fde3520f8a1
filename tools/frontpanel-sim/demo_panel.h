#pragma once

#include <yxfrontpanel/components.h>
#if YXFP_HAS_SETTINGS
#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/runtime/settings_store.h>
#endif
#include <yxfrontpanel/yxfrontpanel.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "panel_app.h"
#include "status_screen.h"

namespace frontpanelsim {

/** The demo instrument: a bench power supply whose front panel uses every item type of the
 *  toolkit. Output (set voltage and current limit, output on/off, measured voltage, a status
 *  screen with a power bar), Network (DHCP switch hiding the address items, IP address, gateway,
 *  netmask), Display (brightness slider, contrast choice) and System (firmware and serial
 *  number, help text, save and reset triggers, and a calibration entry that is not available).
 *  Its home screen is the output status. Everything but `measure` and `acquire` runs on the
 *  panel's thread. */
class DemoPanel : public PanelApp {
public:
    /** One measurement of the output. */
    struct Reading {
        double volts = 0.0;
        double amps = 0.0;
    };

    explicit DemoPanel(yxfrontpanel::IDrawingProvider const& provider);
    ~DemoPanel() override;

    yxfrontpanel::IMenuTree& root() override;
    void setLocal(bool local) override;
    bool isLocal() const override;
    /** The settings store's defaults when one is bound, else the demo's own. */
    bool resetDefaults() override;
    /** `show(measure(sample))`, to run on the panel's thread. */
    Update acquire(unsigned sample) override;
    /** The output status screen with the newest reading. */
    void drawHomeScreen(yxfrontpanel::IDrawingProvider const& provider) override;

    /** Measures the output as sample number `sample` (the simulated load with a few
     *  millivolts of ripple that change with the sample). Any thread. */
    Reading measure(unsigned sample);
    /** Shows a reading in the Measured entry, the status screen and the home screen. */
    void show(Reading reading);

#if YXFP_HAS_SETTINGS
    /** voltage, current, output, dhcp, address, gateway, netmask, brightness and contrast. */
    std::vector<yxfrontpanel::settings::SettingDefinition> settingDefinitions() const override;
    /** Binds every entry of those settings to `store`; "Save settings" then saves it and
     *  "Reset defaults" resets and saves it. */
    void useSettings(yxfrontpanel::settings::SettingsStore& store) override;
    void releaseSettings() noexcept override;
#endif

private:
    void buildOutputMenu();
    void buildNetworkMenu();
    void buildDisplayMenu();
    void buildSystemMenu();
    void resetToDefaults();
    void showDhcp(bool dhcp);
#if YXFP_HAS_SETTINGS
    /** Keeps the instrument's own state (set points, output, DHCP) in step with `store`. */
    void followSettings(yxfrontpanel::settings::SettingsStore& store);
#endif

    yxfrontpanel::IDrawingProvider const& provider_;
    std::unique_ptr<yxfrontpanel::IMenuTree> root_;
    bool local_ = true;

    // The instrument's settings, published to the items through their connectors.
    yxfrontpanel::CallbackValue<double> voltage_;
    yxfrontpanel::CallbackValue<double> voltageMin_;
    yxfrontpanel::CallbackValue<double> voltageMax_;
    yxfrontpanel::CallbackValue<double> current_;
    yxfrontpanel::CallbackValue<double> currentMin_;
    yxfrontpanel::CallbackValue<double> currentMax_;
    std::function<void(bool)> voltageVisible_;
    std::function<void(bool)> voltageEditable_;
    std::function<void(bool)> currentVisible_;
    std::function<void(bool)> currentEditable_;
    std::function<void(int)> setOutputMode_;
    std::atomic<bool> outputOn_{false};
    Reading shown_;
    std::unique_ptr<StatusForm> home_;  // on the panel's home-screen provider, once shown

    // The settings file's store while one is in use (--settings), its bindings and listeners.
#if YXFP_HAS_SETTINGS
    yxfrontpanel::settings::SettingsStore* store_ = nullptr;
    std::vector<yxfrontpanel::settings::SettingBinding> bindings_;
    std::vector<yxfrontpanel::settings::SettingsStore::ListenerId> listeners_;
#endif

    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltageItem_;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> currentItem_;
    std::shared_ptr<yxfrontpanel::ReadOnlyMenuItem> measured_;
    std::shared_ptr<StatusMenuItem> status_;
    std::shared_ptr<yxfrontpanel::InlineEditorMenuItem> outputMode_;
    std::shared_ptr<yxfrontpanel::InlineEditorMenuItem> dhcp_;
    std::shared_ptr<yxfrontpanel::IpAddressEditorMenuItem> address_;
    std::shared_ptr<yxfrontpanel::IpAddressEditorMenuItem> gateway_;
    std::shared_ptr<yxfrontpanel::IpMaskEditor> netmask_;
    std::shared_ptr<yxfrontpanel::SliderMenuItem> brightness_;
    std::shared_ptr<yxfrontpanel::RadioTreeMenuItem> contrast_;
};

}  // namespace frontpanelsim
