#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <memory>

/** The application's menu: the set points of a small supply. */
class MyMenu {
public:
    /** Builds the menu on `provider` and shows it (local mode, first item selected). */
    explicit MyMenu(yxfrontpanel::IDrawingProvider const& provider);

    /** The root of the menu, where the panel's keys go. */
    yxfrontpanel::IMenuTree& root() { return *root_; }
    /** The applied voltage set point in volts. */
    double voltage() const { return voltage_; }
    /** The applied current limit in amperes. */
    double current() const { return current_; }

private:
    std::unique_ptr<yxfrontpanel::IMenuTree> root_;
    double voltage_ = 5.0;
    double current_ = 1.0;
};
