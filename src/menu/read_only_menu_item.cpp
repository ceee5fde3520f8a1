#include <yxfrontpanel/scroll_label_menu_item.h>
#include <yxfrontpanel/string_helper.h>
#include <yxfrontpanel/text_constants.h>

#include <ios>
#include <sstream>

namespace yxfrontpanel {

ReadOnlyMenuItem::ReadOnlyMenuItem(IDrawingProvider const& provider, std::u16string const& text)
    : ScrollLabelMenuItem(provider, text), titleName_(text) {}

ReadOnlyMenuItem::~ReadOnlyMenuItem() = default;

void ReadOnlyMenuItem::setText(std::string const& value) {
    std::u16string text(kMarkerOpen);
    text += titleName_;
    text += kMarkerClose;
    text += u'\n';
    text += stringhelper::toU16(value);
    if (!suffix_.empty()) {
        text += u' ';
        text += suffix_;
    }
    ScrollLabelMenuItem::setText(text, drawing::TextAllignment::Center);
}

void ReadOnlyMenuItem::setValue(double value, unsigned int decimals) {
    // A read-only value is shown as the application's own streams would write it: in the
    // process-wide locale, so an instrument set up for a decimal comma shows one here too.
    std::ostringstream stream;
    stream.setf(std::ios_base::fixed, std::ios_base::floatfield);
    stream.precision(static_cast<std::streamsize>(decimals));
    stream << value;
    setText(stream.str());
}

}  // namespace yxfrontpanel
