#pragma once

// An instrument menu on a graphic display: a voltage editor, a measured value and six
// sub-menus, as the bus-cost scenarios of the character modules use.

#include <yxfrontpanel/yxfrontpanel.h>

#include <memory>

namespace yxfp_test {

/** The menu, drawn on `display` through its own provider. */
class GraphicMenu {
public:
    explicit GraphicMenu(frontpanelhw::IDisplay& display) : provider_(display) {
        root_ = yxfrontpanel::MenuTreeFactory().create(provider_);
        voltage_ =
            std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider_, u"Voltage", 0.0, 30.0);
        voltage_->setPrecision(2);
        voltage_->setUnit(u"V");
        voltage_->setValue(5.0);
        voltage_->connectEditor([this](double value) { applied_ = value; });
        root_->addItem(voltage_);
        measured_ = std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider_, u"Measured");
        measured_->setValue(4.987, 3);
        root_->addItem(measured_);
        for (char16_t const* name :
             {u"Network", u"Display", u"System", u"Logging", u"Calibration", u"About"}) {
            root_->addItem(std::make_shared<yxfrontpanel::TreeMenuItem>(provider_, name));
        }
        root_->setLocal(true);
    }

    yxfrontpanel::IMenuTree& root() { return *root_; }
    yxfrontpanel::ReadOnlyMenuItem& measured() { return *measured_; }

private:
    yxfrontpanel::DrawingProvider provider_;
    std::unique_ptr<yxfrontpanel::IMenuTree> root_;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltage_;
    std::shared_ptr<yxfrontpanel::ReadOnlyMenuItem> measured_;
    double applied_ = 0.0;
};

}  // namespace yxfp_test
