#include <yxfrontpanel/inline_editor_menu_item.h>

#include "local_mode_hint.h"

namespace yxfrontpanel {

InlineEditorMenuItem::InlineEditorMenuItem(std::u16string const& text)
    : MenuItem(text), current_(values_.end()) {}

InlineEditorMenuItem::~InlineEditorMenuItem() = default;

bool InlineEditorMenuItem::enter() {
    if (!editable.load()) {
        return false;
    }
    if (local_.load()) {
        if (getAvailable()) {
            toggleValue();
        }
        return false;
    }
    detail::showLocalModeHint(*this);
    // The hint stays until the value line is rebuilt here.
    createMenuText();
    return false;
}

void InlineEditorMenuItem::setLocal(bool local) { local_.store(local); }

void InlineEditorMenuItem::createMenuText() {
    if (!hasCurrent_) {
        // No value yet: the line an item without values shows. Emptied first so that the base
        // version puts the name back and asks for a redraw while shown, as every rebuild here.
        setOwnText(u"");
        MenuItem::createMenuText();
        return;
    }
    if (current_ == values_.end()) {
        // An unknown key was set: the line keeps the text it had.
        return;
    }
    std::u16string suffix = u": ";
    suffix += getAvailable() ? current_->second : getNotAvailableText();
    setOwnText(getText() + suffix);
    if (getShown()) {
        redrawParent();
    }
}

void InlineEditorMenuItem::setValue(int key) {
    auto const found = values_.lower_bound(key);
    current_ = (found != values_.end() && found->first == key) ? found : values_.end();
    hasCurrent_ = true;
    createMenuText();
}

void InlineEditorMenuItem::addValue(int key, std::u16string const& text) {
    values_.emplace(key, text);
    if (values_.size() == 1) {
        current_ = values_.begin();
        hasCurrent_ = true;
        createMenuText();
    }
}

void InlineEditorMenuItem::clearValues() {
    values_.clear();
    // The old position is gone with the pairs; keeping it would leave a dangling position.
    current_ = values_.end();
    hasCurrent_ = false;
}

unsigned InlineEditorMenuItem::getValueCount() const {
    return static_cast<unsigned>(values_.size());
}

std::optional<int> InlineEditorMenuItem::getCurrentKey() const {
    if (!hasCurrentPair()) {
        return std::nullopt;
    }
    return current_->first;
}

std::map<int, std::u16string> const& InlineEditorMenuItem::getValues() const { return values_; }

void InlineEditorMenuItem::toggleValue() {
    if (values_.empty()) {
        return;
    }
    if (hasCurrentPair()) {
        ++current_;
        if (current_ == values_.end()) {
            current_ = values_.begin();
        }
    } else {
        current_ = values_.begin();
        hasCurrent_ = true;
    }
    int const key = current_->first;
    createMenuText();
    if (valueCallback) {
        valueCallback(key);
    }
}

bool InlineEditorMenuItem::hasCurrentPair() const {
    return hasCurrent_ && current_ != values_.end();
}

}  // namespace yxfrontpanel
