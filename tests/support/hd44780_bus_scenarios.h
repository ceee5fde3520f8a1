#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <chrono>
#include <functional>
#include <memory>

#include "hd44780_rig.h"

namespace yxfp_test {

/** What one step cost on the I2C bus of an expander backpack. */
struct Hd44780BusCost {
    unsigned long transfers = 0;
    unsigned long bytes = 0;             // expander bytes, without the address bytes
    std::chrono::nanoseconds waited{0};  // the driver's own waits (bus idle)

    /** Bytes on the bus: the expander bytes and one address byte per transfer. */
    unsigned long busBytes() const { return bytes + transfers; }
    /** Time from the first start condition to the last stop at `busHz`, waits included. */
    std::chrono::nanoseconds busTime(unsigned busHz) const {
        return i2cBusTime(transfers, bytes, busHz) + waited;
    }
};

/** A 20x4 module (A00 ROM, cursor marker) showing an instrument menu: a voltage editor, a
 *  measured value, and six sub-menus, so that the list scrolls. */
class Hd44780BusScenario {
public:
    Hd44780BusScenario() : rig_(20, 4, frontpanelhw::Hd44780Rom::A00), provider_(rig_.display()) {
        root_ = yxfrontpanel::MenuTreeFactory().create(provider_);
        voltage_ =
            std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider_, u"Voltage", 0.0, 30.0);
        voltage_->setPrecision(2);
        voltage_->setUnit(u"V");
        voltage_->setValue(5.0);
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

    /** What `step` sent. */
    Hd44780BusCost cost(std::function<void()> const& step) {
        Hd44780BusCost before = now();
        step();
        Hd44780BusCost after = now();
        return {after.transfers - before.transfers, after.bytes - before.bytes,
                after.waited - before.waited};
    }

    yxfrontpanel::IMenuTree& root() { return *root_; }
    yxfrontpanel::ReadOnlyMenuItem& measured() { return *measured_; }
    Hd44780Rig& rig() { return rig_; }

    /** The first screen after start: initialisation and the whole menu. */
    static Hd44780BusCost firstScreen() {
        Hd44780BusScenario scenario;
        return scenario.cost([&scenario] { scenario.root().setFocus(true); });
    }
    /** The selection moves one line down. */
    static Hd44780BusCost cursorMove() {
        Hd44780BusScenario scenario;
        scenario.root().setFocus(true);
        return scenario.cost([&scenario] { scenario.root().moveDown(); });
    }
    /** The list scrolls by one line (the selection leaves the bottom line). */
    static Hd44780BusCost scroll() {
        Hd44780BusScenario scenario;
        scenario.root().setFocus(true);
        for (int line = 0; line < 3; ++line) {
            scenario.root().moveDown();
        }
        return scenario.cost([&scenario] { scenario.root().moveDown(); });
    }
    /** One digit of the open voltage editor steps up. */
    static Hd44780BusCost digitStep() {
        Hd44780BusScenario scenario;
        scenario.root().setFocus(true);
        scenario.root().action();
        return scenario.cost([&scenario] { scenario.root().moveUp(); });
    }
    /** The open read-only item shows a new measurement. */
    static Hd44780BusCost measurement() {
        Hd44780BusScenario scenario;
        scenario.root().setFocus(true);
        scenario.root().moveDown();
        scenario.root().action();
        return scenario.cost([&scenario] { scenario.measured().setValue(5.012, 3); });
    }

private:
    Hd44780BusCost now() { return {rig_.port().transfers(), rig_.port().bytes(), rig_.waited()}; }

    Hd44780Rig rig_;
    yxfrontpanel::DrawingProvider provider_;
    std::unique_ptr<yxfrontpanel::IMenuTree> root_;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltage_;
    std::shared_ptr<yxfrontpanel::ReadOnlyMenuItem> measured_;
};

}  // namespace yxfp_test
