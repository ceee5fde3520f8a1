#include <yxfrontpanel/control.h>
#include <yxfrontpanel/string_helper.h>
#include <yxfrontpanel/user_dialog.h>

#include "common/make_label.h"

namespace yxfrontpanel {

namespace {

constexpr unsigned kFirstMessageLine = 0;
constexpr unsigned kSecondMessageLine = 1;
constexpr unsigned kHintLine = 2;
const std::u16string kCancelHintText = u"BACK: Cancel";
const std::u16string kConfirmPrefix = u"OK: ";

}  // namespace

std::unique_ptr<Label> createLine(std::string const& text, drawing::Point position,
                                  unsigned width) {
    return detail::makeLabel(position, width, stringhelper::toU16(text),
                             drawing::TextAllignment::Center);
}

std::unique_ptr<Label> createOkLbl(unsigned width, std::string const& okText) {
    // One column right of the centre: on an even panel the hint reaches one column past the
    // edge, where the screen drops it.
    return detail::makeLabel(drawing::Point{width + 1, kHintLine}, width,
                             kConfirmPrefix + stringhelper::toU16(okText),
                             drawing::TextAllignment::Right);
}

UserDialog::UserDialog(IDrawingProvider const& provider, std::string const& firstLine,
                       std::string const& secondLine, std::string const& okText)
    : Form(provider) {
    unsigned const width = provider.getChars();
    unsigned const half = width / 2;
    firstLine_ = createLine(firstLine, drawing::Point{0, kFirstMessageLine}, width);
    secondLine_ = createLine(secondLine, drawing::Point{0, kSecondMessageLine}, width);
    cancelHint_ = std::make_unique<Label>(drawing::Point{0, kHintLine}, half, kCancelHintText);
    confirmHint_ = createOkLbl(half, okText);
    addControl(firstLine_.get());
    addControl(secondLine_.get());
    addControl(cancelHint_.get());
    addControl(confirmHint_.get());
}

UserDialog::~UserDialog() = default;

}  // namespace yxfrontpanel
