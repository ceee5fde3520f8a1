#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <functional>
#include <memory>
#include <string>

#include "panel_app.h"
#include "status_screen.h"

namespace frontpanelsim {

/** The demo instrument: a bench power supply whose front panel uses every item type of the
 *  toolkit. Output (set voltage and current limit, output on/off, measured voltage, a status
 *  screen with a power bar), Network (DHCP switch hiding the address items, IP address, gateway,
 *  netmask), Display (brightness slider, contrast choice) and System (firmware and serial
 *  number, help text, save and reset triggers, and a calibration entry that is not available).
 *  Everything runs on the thread that calls its operations. */
class DemoPanel : public PanelApp {
public:
    explicit DemoPanel(yxfrontpanel::IDrawingProvider const& provider);
    ~DemoPanel() override;

    void start() override;
    void press(frontpanelhw::PanelKey key) override;
    void setLocal(bool local) override;
    bool isLocal() const override;
    void tick() override;

    /** The root menu, for tests. */
    yxfrontpanel::IMenuTree& root();

private:
    void buildOutputMenu();
    void buildNetworkMenu();
    void buildDisplayMenu();
    void buildSystemMenu();
    void resetToDefaults();
    void showDhcp(bool dhcp);

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
    bool outputOn_ = false;
    unsigned ticks_ = 0;

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
