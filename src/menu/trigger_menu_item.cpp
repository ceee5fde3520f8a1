#include <yxfrontpanel/trigger_menu_item.h>
#include <yxfrontpanel/user_dialog.h>

#include "local_mode_hint.h"

namespace yxfrontpanel {

namespace {
constexpr char16_t kSuccessMark = 0x00FB;
}  // namespace

TriggerMenuItem::TriggerMenuItem(std::u16string const& text, std::chrono::milliseconds hintDuration)
    : MenuItem(text), hintDuration_(hintDuration) {}

TriggerMenuItem::~TriggerMenuItem() = default;

bool TriggerMenuItem::enter() {
    // An item without an action stays silent, even outside local mode.
    if (!action) {
        return false;
    }
    if (!local_.load()) {
        detail::showLocalModeHint(*this, hintDuration_, getText());
        return false;
    }
    if (dialog()) {
        return true;  // the action waits for the confirmation
    }
    if (!getAvailable()) {
        return false;
    }
    if (!action()) {
        return false;
    }
    std::u16string const name = getText();
    showHint(name + u' ' + kSuccessMark, name, hintDuration_);
    return false;
}

void TriggerMenuItem::setLocal(bool local) { local_.store(local); }

void TriggerMenuItem::enableUserDialog(IDrawingProvider const& provider,
                                       std::string const& firstLine, std::string const& secondLine,
                                       std::string const& okText) {
    auto fresh = std::make_unique<UserDialog>(provider, firstLine, secondLine, okText);
    dialog_ = std::move(fresh);  // destroys the earlier dialog
    setForm(dialog_.get());
}

bool TriggerMenuItem::dialog() {
    if (!dialog_) {
        return false;
    }
    if (!MenuItem::getFocus()) {
        // True even when an unavailable item refuses to open: the action waits all the same.
        MenuItem::enter();
        return true;
    }
    MenuItem::exit();
    return false;
}

UserDialog* TriggerMenuItem::getDialog() const { return dialog_.get(); }

bool TriggerMenuItem::getLocal() const { return local_.load(); }

}  // namespace yxfrontpanel
