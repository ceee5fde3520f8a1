#include "my_menu.h"

#include <string>

namespace {

std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> setPoint(
    yxfrontpanel::IDrawingProvider const& provider, std::u16string const& name,
    std::u16string const& unit, double maximum, double& value) {
    auto item = std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider, name, 0.0, maximum);
    item->setPrecision(2);
    item->setUnit(unit);
    item->setValue(value);
    item->connectEditor([&value](double applied) { value = applied; });
    return item;
}

}  // namespace

MyMenu::MyMenu(yxfrontpanel::IDrawingProvider const& provider)
    : root_(yxfrontpanel::MenuTreeFactory().create(provider)) {
    root_->addItem(setPoint(provider, u"Voltage", u"V", 30.0, voltage_));
    root_->addItem(setPoint(provider, u"Current", u"A", 5.0, current_));
    root_->setLocal(true);
    root_->setFocus(true);
}
