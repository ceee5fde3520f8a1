#include <yxbase2/log.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/menu_tree.h>

#include <cstddef>

#include "common/scroll_indicator.h"

namespace yxfrontpanel {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelToolbox";

// Sums in std::size_t so that index arithmetic near the top of `unsigned` cannot wrap.
std::size_t sum(unsigned lhs, unsigned rhs) {
    return static_cast<std::size_t>(lhs) + static_cast<std::size_t>(rhs);
}

}  // namespace

MenuTree::MenuTree(IDrawingProvider const& provider)
    : provider_(provider),
      screen_(provider.getChars(), provider.getLines()),
      // A panel without columns would wrap the width around; it gets empty item lines instead.
      lineLength_(screen_.getChars() > 0 ? screen_.getChars() - 1 : 0),
      lines_(screen_.getLineCount()) {}

MenuTree::~MenuTree() {
    // Items may outlive the tree through the application's shares; leave them nothing to call.
    for (auto const& item : allItems_) {
        item->setFocusChangedCallback({});
        item->setVisibleChangedCallback({});
        item->setRedrawParentCallback({});
    }
}

void MenuTree::setFocus(bool focus) {
    focus_ = focus;
    for (auto const& item : visibleItems_) {
        item->setShown(focus);
    }
    if (!focus) {
        return;
    }
    if (recalcNeeded_) {
        recalcAvailableItems();
    }
    itemHasFocus_ = false;
    draw();
}

bool MenuTree::getFocus() const { return focus_; }

bool MenuTree::addItem(std::shared_ptr<MenuItem> item) {
    if (!item) {
        log::write(log::Level::Warning, kLogCategory, "Can not add menu item == nullptr!");
        return false;
    }
    if (visibleItems_.empty()) {
        item->setSelected(true);
    }
    item->setLineLength(lineLength_);
    allItems_.push_back(item);
    if (item->getVisible()) {
        visibleItems_.push_back(item);
    }
    selectedIndex_ = 0;
    firstShown_ = 0;
    installCallbacks(*item);
    return true;
}

void MenuTree::clearItems() {
    visibleItems_.clear();
    allItems_.clear();
    // One past the end of the empty list: no selected item.
    selectedIndex_ = static_cast<unsigned>(visibleItems_.size()) + 1;
    firstShown_ = selectedIndex_;
}

void MenuTree::moveUp() {
    if (!focus_) {
        if (auto const item = selectedShared()) {
            item->up();
        }
        return;
    }
    // Index 0 is the top; an index past the end means no item is selected (an empty tree).
    if (selectedIndex_ == 0 || selectedIndex_ >= visibleItems_.size()) {
        return;
    }
    markItem(selectedIndex_, false);
    --selectedIndex_;
    markItem(selectedIndex_, true);
    if (getDistance() < 0 && firstShown_ != 0) {
        --firstShown_;
    }
    draw();
}

void MenuTree::moveDown() {
    if (!focus_) {
        if (auto const item = selectedShared()) {
            item->down();
        }
        return;
    }
    if (sum(selectedIndex_, 1) >= visibleItems_.size()) {
        return;
    }
    markItem(selectedIndex_, false);
    ++selectedIndex_;
    markItem(selectedIndex_, true);
    if (static_cast<long long>(getDistance()) >= static_cast<long long>(lines_) &&
        firstShown_ < itemCount()) {
        ++firstShown_;
    }
    draw();
}

bool MenuTree::action() {
    auto const item = selectedShared();
    if (item && focus_) {
        item->setLocal(local_);
        bool const opened = item->enter();
        itemHasFocus_ = opened;
        focus_ = !opened;
        return opened;
    }
    if (!item) {
        // Unfocused without a selected item: nobody to hand the key to.
        return false;
    }
    if (item->getFocus() || itemHasFocus_) {
        return item->enter();
    }
    return false;
}

bool MenuTree::left() {
    auto const item = selectedShared();
    return item ? item->left() : false;
}

bool MenuTree::right() {
    auto const item = selectedShared();
    return item ? item->right() : false;
}

bool MenuTree::backToMenu() {
    if (focus_) {
        return true;
    }
    if (auto const item = selectedShared()) {
        item->exit();
    }
    if (focus_) {
        itemHasFocus_ = false;
    }
    return focus_;
}

bool MenuTree::itemHasFocus() const { return itemHasFocus_; }

void MenuTree::setLocal(bool local) {
    local_ = local;
    if (auto const item = selectedShared()) {
        item->setLocal(local);
    }
}

bool MenuTree::getLocal() const { return local_; }

unsigned MenuTree::itemCount() const { return static_cast<unsigned>(visibleItems_.size()); }

unsigned MenuTree::allItemCount() const { return static_cast<unsigned>(allItems_.size()); }

MenuItem* MenuTree::getItem(unsigned int index) { return allItems_.at(index).get(); }

MenuItem* MenuTree::selectedItem() const { return selectedShared().get(); }

int MenuTree::getDistance() const {
    return static_cast<int>(selectedIndex_) - static_cast<int>(firstShown_);
}

void MenuTree::recalcAvailableItems() {
    visibleItems_.clear();
    for (auto const& item : allItems_) {
        item->setSelected(false);
        if (item->getVisible()) {
            if (visibleItems_.empty()) {
                item->setSelected(true);
            }
            visibleItems_.push_back(item);
        }
    }
    selectedIndex_ = 0;
    firstShown_ = 0;
    recalcNeeded_ = false;
}

void MenuTree::childVisibleChanged(bool /*visible*/) {
    recalcNeeded_ = true;
    if (focus_) {
        recalcAvailableItems();
        draw();
    }
}

bool MenuTree::draw() {
    if (!focus_ && !itemHasFocus_) {
        return false;
    }
    // Every line is rewritten whole: item lines where there are items, blank lines below them
    // (a DisplayLine is padded with blank cells to the width), so no separate clear is needed.
    unsigned line = 0;
    for (; line < lines_ && sum(firstShown_, line) < visibleItems_.size(); ++line) {
        frontpanelhw::drawing::DisplayLine menuLine =
            visibleItems_[sum(firstShown_, line)]->getMenuText();
        addScrollbar(menuLine, line, firstShown_);
        screen_.setDisplayLine(line, menuLine);
    }
    for (; line < lines_; ++line) {
        screen_.setDisplayLine(line, frontpanelhw::drawing::DisplayLine());
    }
    return provider_.draw(screen_);
}

void MenuTree::addScrollbar(frontpanelhw::drawing::DisplayLine& menuLine, unsigned int line,
                            unsigned int firstShown) {
    char16_t const cell = detail::scrollIndicator(line, lines_, firstShown, visibleItems_.size());
    menuLine.addCharacter(frontpanelhw::drawing::DisplayChar{cell, false});
}

std::shared_ptr<MenuItem> MenuTree::selectedShared() const {
    if (selectedIndex_ >= visibleItems_.size()) {
        return nullptr;
    }
    return visibleItems_[selectedIndex_];
}

void MenuTree::markItem(unsigned index, bool selected) {
    if (index < visibleItems_.size()) {
        visibleItems_[index]->setSelected(selected);
    }
}

void MenuTree::installCallbacks(MenuItem& item) {
    // Plain pointers on purpose: the tree outlives its items' use of them (and its destructor
    // removes them from the items it still holds).
    MenuTree* const tree = this;
    item.setFocusChangedCallback([tree](bool focus) { tree->setFocus(focus); });
    item.setVisibleChangedCallback([tree](bool visible) { tree->childVisibleChanged(visible); });
    item.setRedrawParentCallback([tree] { tree->draw(); });
}

}  // namespace yxfrontpanel
