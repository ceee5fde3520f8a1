#include <yxfrontpanel/radio_menu_item.h>

#include "local_mode_hint.h"

namespace yxfrontpanel {

RadioMenuItem::RadioMenuItem(std::u16string const& text, int id) : MenuItem(text), id_(id) {
    setMenuText(false);
}

RadioMenuItem::~RadioMenuItem() = default;

bool RadioMenuItem::enter() {
    if (!local_.load()) {
        detail::showLocalModeHint(*this);
        // The hint stays until the marked line is put back here.
        setMenuText(checked_);
        redrawParent();
        return false;
    }
    if (choiceCallback_ && editor_) {
        choiceCallback_(id_);
    }
    return false;
}

void RadioMenuItem::setLocal(bool local) { local_.store(local); }

void RadioMenuItem::check(bool checked) {
    if (checked == checked_) {
        return;
    }
    setMenuText(checked);
    redrawParent();
    checked_ = checked;
}

void RadioMenuItem::setMenuText(bool checked) {
    std::u16string text = getText();
    text.insert(text.begin(), checked ? u'>' : u' ');
    setOwnText(text);
}

void RadioMenuItem::updateText(std::u16string const& text) {
    Control::setText(text);
    setMenuText(checked_);
    redrawParent();
}

bool RadioMenuItem::isChecked() const { return checked_; }

int RadioMenuItem::getId() const { return id_; }

void RadioMenuItem::setEditor(bool editor) { editor_ = editor; }

bool RadioMenuItem::getEditor() const { return editor_; }

void RadioMenuItem::setChoiceCallback(ChoiceCallback const& callback) {
    choiceCallback_ = callback;
}

RadioTreeMenuItem::RadioTreeMenuItem(IDrawingProvider const& provider, std::u16string const& text)
    : TreeMenuItem(provider, text),
      current_(items_.end()),
      self_(std::make_shared<RadioTreeMenuItem*>(this)) {}

RadioTreeMenuItem::~RadioTreeMenuItem() {
    // Choices held elsewhere must no longer reach this group.
    self_.reset();
}

void RadioTreeMenuItem::addItem(std::shared_ptr<RadioMenuItem> item) {
    if (!item) {
        TreeMenuItem::addItem(nullptr);
        return;
    }
    item->setFocusChangedCallback([](bool /*focus*/) {});
    std::weak_ptr<RadioTreeMenuItem*> const group = self_;
    item->setChoiceCallback([group](int id) {
        if (auto const alive = group.lock()) {
            (*alive)->select(id);
        }
    });
    items_.emplace(item->getId(), item);
    if (items_.size() == 1) {
        current_ = items_.begin();
        item->check(true);
    }
    TreeMenuItem::addItem(item);
}

void RadioTreeMenuItem::setValue(int id) {
    auto const found = items_.lower_bound(id);
    if (found == items_.end() || found->first > id) {
        return;
    }
    if (current_ != items_.end()) {
        current_->second->check(false);
    }
    found->second->check(true);
    current_ = found;
}

void RadioTreeMenuItem::setEditor(bool editor) {
    for (auto const& entry : items_) {
        entry.second->setEditor(editor);
    }
}

void RadioTreeMenuItem::select(int id) {
    setValue(id);
    if (valueCallback) {
        valueCallback(id);
    }
}

}  // namespace yxfrontpanel
