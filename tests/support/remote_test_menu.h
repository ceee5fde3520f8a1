#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <memory>
#include <string>
#include <vector>

namespace yxfp_test {

/** A small instrument menu with one item of every kind that has a value, for the remote tests:
 *  Output (Voltage 0..30 V with 2 decimals, Mode Off/On), Network (IP address), Display
 *  (Brightness slider 0..8, Contrast Low/Medium/High), Info (a read-only line). Every value
 *  the application hears is recorded in `heard`. Key thread only. */
class RemoteTestMenu {
public:
    explicit RemoteTestMenu(yxfrontpanel::IDrawingProvider const& provider)
        : root(yxfrontpanel::MenuTreeFactory().create(provider)) {
        auto output = std::make_shared<yxfrontpanel::TreeMenuItem>(provider, u"Output");
        root->addItem(output);
        voltage =
            std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider, u"Voltage", 0.0, 30.0);
        voltage->setPrecision(2);
        voltage->setUnit(u"V");
        voltage->setValue(5.0);
        voltage->connectEditor(
            [this](double volts) { heard.push_back("Voltage=" + std::to_string(volts)); });
        output->addItem(voltage);
        mode = std::make_shared<yxfrontpanel::InlineEditorMenuItem>(u"Mode");
        mode->addValue(0, u"Off");
        mode->addValue(1, u"On");
        mode->valueCallback = [this](int key) { heard.push_back("Mode=" + std::to_string(key)); };
        output->addItem(mode);

        auto network = std::make_shared<yxfrontpanel::TreeMenuItem>(provider, u"Network");
        root->addItem(network);
        address = std::make_shared<yxfrontpanel::IpAddressEditorMenuItem>(provider, u"IP address");
        address->setValue("192.168.1.100");
        address->connectEditor([this](std::string const& text) { heard.push_back("IP=" + text); });
        network->addItem(address);

        auto display = std::make_shared<yxfrontpanel::TreeMenuItem>(provider, u"Display");
        root->addItem(display);
        brightness = std::make_shared<yxfrontpanel::SliderMenuItem>(provider, u"Brightness", u"Dim",
                                                                    u"Max", 4, 8, 0);
        brightness->setValue(4);
        brightness->connectSlider(
            [this](int level) { heard.push_back("Brightness=" + std::to_string(level)); });
        display->addItem(brightness);
        contrast = std::make_shared<yxfrontpanel::RadioTreeMenuItem>(provider, u"Contrast");
        contrast->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"Low", 0));
        contrast->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"Medium", 1));
        contrast->addItem(std::make_shared<yxfrontpanel::RadioMenuItem>(u"High", 2));
        contrast->setValue(1);
        contrast->valueCallback = [this](int id) {
            heard.push_back("Contrast=" + std::to_string(id));
        };
        display->addItem(contrast);

        root->addItem(std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider, u"Info"));
        root->setLocal(true);
    }
    ~RemoteTestMenu() { root->clearItems(); }
    RemoteTestMenu(RemoteTestMenu const&) = delete;
    RemoteTestMenu& operator=(RemoteTestMenu const&) = delete;

    std::unique_ptr<yxfrontpanel::IMenuTree> root;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltage;
    std::shared_ptr<yxfrontpanel::InlineEditorMenuItem> mode;
    std::shared_ptr<yxfrontpanel::IpAddressEditorMenuItem> address;
    std::shared_ptr<yxfrontpanel::SliderMenuItem> brightness;
    std::shared_ptr<yxfrontpanel::RadioTreeMenuItem> contrast;
    std::vector<std::string> heard;
};

}  // namespace yxfp_test
