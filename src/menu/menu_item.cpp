#include <yxbase2/this_thread.h>
#include <yxfrontpanel/i_form.h>
#include <yxfrontpanel/menu_item.h>

#include <algorithm>

namespace yxfrontpanel {

namespace wrapper {

void sleep_for(std::chrono::nanoseconds const& duration) {  // NOLINT(readability-identifier-naming)
    yxbase2::system::this_thread::sleep_for(duration);
}

}  // namespace wrapper

MenuItem::MenuItem(std::u16string const& text)
    : Control(drawing::Point{0, 0}, drawing::Rectangle{0, 0}) {
    Control::setText(text);
    setTextReplacingHook(&MenuItem::keepMenuTextOnRename);
    // Still constructing: this reaches the base version, which makes the name the menu text.
    MenuItem::createMenuText();
}

void MenuItem::keepMenuTextOnRename(Control& control) {
    // Installed by the constructor on the item itself, so the control is a MenuItem. A menu
    // text that was the name stays the old name: renaming alone does not rebuild it.
    auto& item = static_cast<MenuItem&>(control);
    if (!item.ownText_) {
        item.ownText_ = std::make_unique<std::u16string>(item.getText());
    }
}

MenuItem::~MenuItem() = default;

void MenuItem::setVisible(bool visible) {
    if (getFocus() && !visible) {
        exit();
    }
    Control::setVisible(visible);
    if (visibleChanged_) {
        visibleChanged_(visible);
    }
    createMenuText();
}

frontpanelhw::drawing::DisplayLine MenuItem::getMenuText() const {
    if (!getVisible()) {
        return frontpanelhw::drawing::DisplayLine();
    }
    return createLineFromMenuText();
}

bool MenuItem::enter() {
    if (form_ == nullptr || form_->getFocus() || !available_.load()) {
        return false;
    }
    return setFocus(true);
}

bool MenuItem::exit() {
    if (form_ == nullptr) {
        // Nothing to close; the tree reads true as "the menu may take the focus back".
        return true;
    }
    return setFocus(false);
}

bool MenuItem::getFocus() const { return form_ != nullptr && form_->getFocus(); }

bool MenuItem::left() { return false; }

bool MenuItem::right() { return false; }

bool MenuItem::up() { return false; }

bool MenuItem::down() { return false; }

void MenuItem::setAvailable(bool available) {
    available_.store(available);
    // Emptied first so that an item made available again falls back to its bare name.
    setOwnText(std::u16string());
    createMenuText();
}

void MenuItem::setNotAvailableText(std::u16string const& text) {
    notAvailableText_ = std::make_unique<std::u16string>(text);
    createMenuText();
}

void MenuItem::createMenuText() {
    std::u16string const previous = getOwnText();
    if (available_.load()) {
        if (getOwnText().empty()) {
            setOwnText(getText());
        }
    } else {
        setOwnText(getText() + u" " + getNotAvailableText());
    }
    if (getShown() && getOwnText() != previous) {
        redrawParent();
    }
}

bool MenuItem::setFocus(bool focus) {
    if (form_ == nullptr) {
        return false;
    }
    form_->setFocus(focus);
    focusChanged_(!focus);  // empty outside a tree: throws std::bad_function_call on purpose
    createMenuText();
    return focus;
}

frontpanelhw::drawing::DisplayLine MenuItem::createLineFromMenuText() const {
    // Built straight into the line (no padded copy of the text): this runs for
    // every line on screen at every key press.
    bool const inverted = selected_.load() && lineLength_ > 0;
    std::u16string const& text = getOwnText();
    std::size_t const shown = std::min<std::size_t>(text.size(), lineLength_);
    frontpanelhw::drawing::DisplayLine line;
    line.appendText(text.data(), static_cast<unsigned>(shown), inverted);
    line.appendFill(u' ', lineLength_ - static_cast<unsigned>(shown), inverted);
    return line;
}

void MenuItem::updateOwnText(std::u16string const& text) {
    setOwnText(text);
    if (getShown()) {
        redrawParent();
    }
}

void MenuItem::showHint(std::u16string const& hint, std::u16string const& restore,
                        std::chrono::milliseconds duration) {
    updateOwnText(hint);
    wrapper::sleep_for(std::chrono::duration_cast<std::chrono::nanoseconds>(duration));
    if (!restore.empty()) {
        updateOwnText(restore);
    }
}

void MenuItem::setLineLength(unsigned int lineLength) {
    lineLength_ = lineLength;
    overwriteSize(drawing::Rectangle{lineLength, 1});
}

void MenuItem::setForm(IForm* form) { form_ = form; }

void MenuItem::setFocusChangedCallback(FocusChangedCallback const& callback) {
    focusChanged_ = callback;
}

void MenuItem::setVisibleChangedCallback(VisibleChangedCallback const& callback) {
    visibleChanged_ = callback;
}

std::u16string const& MenuItem::getNotAvailableText() const {
    static std::u16string const kDefaultNotAvailableText = u"(N/A)";
    return notAvailableText_ ? *notAvailableText_ : kDefaultNotAvailableText;
}

std::u16string const& MenuItem::getOwnText() const { return ownText_ ? *ownText_ : getText(); }

bool MenuItem::getSelected() const { return selected_.load(); }

void MenuItem::setSelected(bool selected) { selected_.store(selected); }

bool MenuItem::getAvailable() const { return available_.load(); }

unsigned int MenuItem::getLineLength() const { return lineLength_; }

IForm* MenuItem::getForm() const { return form_; }

void MenuItem::setOwnText(std::u16string const& text) {
    if (text == getText()) {
        ownText_.reset();  // `text` may be the old menu text itself: not used after this
    } else if (ownText_) {
        *ownText_ = text;
    } else {
        ownText_ = std::make_unique<std::u16string>(text);
    }
}

}  // namespace yxfrontpanel
