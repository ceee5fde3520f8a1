#include <yxfrontpanel/scroll_label_menu_item.h>
#include <yxfrontpanel/scrollable_label.h>

namespace yxfrontpanel {

ScrollLabelMenuItem::ScrollLabelMenuItem(IDrawingProvider const& provider,
                                         std::u16string const& text)
    : MenuItem(text), label_(std::make_unique<ScrollableLabel>(provider)) {
    setForm(label_.get());
}

ScrollLabelMenuItem::~ScrollLabelMenuItem() = default;

bool ScrollLabelMenuItem::enter() {
    if (!hasText_) {
        return false;
    }
    // Directly, not through MenuItem::enter: no availability test, and the tree records the
    // change of focus from the answer.
    label_->setFocus(true);
    return true;
}

void ScrollLabelMenuItem::setLocal(bool /*local*/) {}

bool ScrollLabelMenuItem::up() {
    label_->moveUp();
    return true;
}

bool ScrollLabelMenuItem::down() {
    label_->moveDown();
    return true;
}

void ScrollLabelMenuItem::setText(std::u16string const& text, drawing::TextAllignment alignment) {
    label_->setText(text, alignment);
    hasText_ = true;
}

bool ScrollLabelMenuItem::hasText() const { return hasText_; }

ScrollableLabel& ScrollLabelMenuItem::getLabel() const { return *label_; }

}  // namespace yxfrontpanel
