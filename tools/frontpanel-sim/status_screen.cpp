#include "status_screen.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

namespace frontpanelsim {

namespace {

constexpr unsigned kReadingWidth = 7;  // "999.9 W"
constexpr char16_t kPowerSymbol = u'P';

unsigned barWidthFor(unsigned chars) { return chars - kReadingWidth - 1; }

}  // namespace

std::string fixed(double value, int decimals) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.setf(std::ios::fixed);
    text.precision(decimals);
    text << value;
    return text.str();
}

StatusForm::StatusForm(yxfrontpanel::IDrawingProvider const& provider)
    : Form(provider),
      headline_(yxfrontpanel::drawing::Point{0, 0}, provider.getChars(),
                std::u16string(yxfrontpanel::kMarkerOpen) + u"Status" +
                    std::u16string(yxfrontpanel::kMarkerClose)),
      power_(yxfrontpanel::drawing::Point{0, 1}, barWidthFor(provider.getChars()), kReadingWidth, 0,
             100, kPowerSymbol, u""),
      readings_(yxfrontpanel::drawing::Point{0, 2}, provider.getChars(), u"") {
    headline_.setTextAllignment(yxfrontpanel::drawing::TextAllignment::Center);
    readings_.setTextAllignment(yxfrontpanel::drawing::TextAllignment::Center);
    addControl(&headline_);
    addControl(&power_);
    addControl(&readings_);
}

StatusForm::~StatusForm() = default;

void StatusForm::show(double volts, double amps, double maxWatts) {
    double const watts = volts * amps;
    int const percent =
        maxWatts > 0 ? static_cast<int>(std::lround(std::clamp(watts / maxWatts, 0.0, 1.0) * 100))
                     : 0;
    // One redraw for the whole update instead of one per control.
    bool const focused = getFocus();
    Form::setFocus(false);
    power_.setValue(percent, yxfrontpanel::stringhelper::toU16(fixed(watts, 1) + " W"));
    readings_.setText(fixed(volts, 3) + " V " + fixed(amps, 3) + " A");
    Form::setFocus(focused);
}

StatusMenuItem::StatusMenuItem(yxfrontpanel::IDrawingProvider const& provider,
                               std::u16string const& text)
    : MenuItem(text), form_(std::make_unique<StatusForm>(provider)) {
    setForm(form_.get());
}

StatusMenuItem::~StatusMenuItem() = default;

void StatusMenuItem::setLocal(bool /*local*/) {}

StatusForm& StatusMenuItem::form() { return *form_; }

}  // namespace frontpanelsim
