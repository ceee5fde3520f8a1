#include <yxfrontpanel/tree_menu_item.h>

#include <stdexcept>
#include <utility>

namespace yxfrontpanel {

TreeMenuItem::TreeMenuItem(IDrawingProvider const& provider, std::u16string const& text,
                           MenuTreeFactory const& factory)
    : MenuItem(text), subTree_(factory.create(provider)) {
    if (!subTree_) {
        throw std::invalid_argument("The menu tree factory created no sub-menu!");
    }
    setForm(subTree_.get());
}

TreeMenuItem::TreeMenuItem(IDrawingProvider const& provider, std::u16string const& text)
    : TreeMenuItem(provider, text, MenuTreeFactory()) {}

TreeMenuItem::~TreeMenuItem() = default;

bool TreeMenuItem::enter() {
    if (subTree_->getFocus() || subTree_->itemHasFocus()) {
        subTree_->action();
        return true;
    }
    return MenuItem::enter();
}

bool TreeMenuItem::exit() {
    if (getFocus()) {
        return MenuItem::exit();
    }
    return subTree_->backToMenu();
}

void TreeMenuItem::setLocal(bool local) {
    local_.store(local);
    if (getAvailable()) {
        changeLocal(local);
    }
}

bool TreeMenuItem::left() { return subTree_->left(); }

bool TreeMenuItem::right() { return subTree_->right(); }

bool TreeMenuItem::up() {
    subTree_->moveUp();
    return true;
}

bool TreeMenuItem::down() {
    subTree_->moveDown();
    return true;
}

void TreeMenuItem::addItem(std::shared_ptr<MenuItem> item) { subTree_->addItem(std::move(item)); }

void TreeMenuItem::clearItems() { subTree_->clearItems(); }

void TreeMenuItem::changeLocal(bool local) { subTree_->setLocal(local); }

void TreeMenuItem::setEditable(bool editable) {
    setAvailable(editable);
    if (editable) {
        changeLocal(local_.load());
    }
}

IMenuTree* TreeMenuItem::getSubTree() const { return subTree_.get(); }

}  // namespace yxfrontpanel
