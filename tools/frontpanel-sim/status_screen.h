#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <memory>
#include <string>

namespace frontpanelsim {

/** A full-screen status view: a framed headline, a power bar with its reading, and the
 *  measured voltage and current. Shows how an application composes its own form from the
 *  toolkit's controls. */
class StatusForm : public yxfrontpanel::Form {
public:
    explicit StatusForm(yxfrontpanel::IDrawingProvider const& provider);
    ~StatusForm() override;

    /** Shows a new measurement; redraws while the form is on screen. */
    void show(double volts, double amps, double maxWatts);

private:
    yxfrontpanel::Label headline_;
    yxfrontpanel::PowerWidget power_;
    yxfrontpanel::Label readings_;
};

/** The menu entry that opens the status view; the keys other than back do nothing there. */
class StatusMenuItem : public yxfrontpanel::MenuItem {
public:
    StatusMenuItem(yxfrontpanel::IDrawingProvider const& provider, std::u16string const& text);
    ~StatusMenuItem() override;

    void setLocal(bool local) override;

    StatusForm& form();

private:
    std::unique_ptr<StatusForm> form_;
};

/** A number in fixed notation with `decimals` digits, independent of the global locale. */
std::string fixed(double value, int decimals);

}  // namespace frontpanelsim
