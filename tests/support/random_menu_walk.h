#pragma once

// The pieces every random walk through a menu shares (the key-sequence tests and the menu fuzz
// target): drawing keys, the application's changes between keys, and the focus invariant. No
// GoogleTest here, so that the fuzz target can use it too.

#include <yxfrontpanel/i_form.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/trigger_menu_item.h>

#include <cstddef>
#include <random>
#include <vector>

#include "menu_keys.h"

namespace yxfp_test {

/** The six panel keys, for drawing one at random. */
inline constexpr Key kAllKeys[] = {Key::Up,    Key::Down,  Key::Left,
                                   Key::Right, Key::Enter, Key::Back};

/** A number in 0..count-1 (`count` > 0) from the engine's next output. The engine's outputs are
 *  the same with every standard library, the standard distributions' results are not, so a walk
 *  built on this does the same everywhere. */
inline std::size_t pick(std::mt19937& random, std::size_t count) {
    return static_cast<std::size_t>(random() % count);
}

/** True once in `count` draws, on average. */
inline bool oneIn(std::mt19937& random, std::size_t count) { return pick(random, count) == 0; }

/** One of the six keys. */
inline Key randomKey(std::mt19937& random) {
    return kAllKeys[pick(random, sizeof kAllKeys / sizeof kAllKeys[0])];
}

/** One of the changes an application thread makes between two keys, chosen by `choice`
 *  (taken modulo 4): 0 and 1 flip `item`'s visibility, 2 its availability, 3 the tree's local
 *  mode. */
inline void flipVisibilityAvailabilityOrLocal(yxfrontpanel::IMenuTree& tree,
                                              yxfrontpanel::MenuItem& item, unsigned choice) {
    switch (choice % 4) {
        case 0:
        case 1:
            item.setVisible(!item.getVisible());
            break;
        case 2:
            item.setAvailable(!item.getAvailable());
            break;
        default:
            tree.setLocal(!tree.getLocal());
            break;
    }
}

/** `flipVisibilityAvailabilityOrLocal` with the change drawn from `random`. */
inline void flipAtRandom(std::mt19937& random, yxfrontpanel::IMenuTree& tree,
                         yxfrontpanel::MenuItem& item) {
    flipVisibilityAvailabilityOrLocal(tree, item, static_cast<unsigned>(pick(random, 4)));
}

/** Every form of a menu: the tree, each item's form, and recursively the forms inside the
 *  sub-menus (a trigger's dialog is its item's form once enabled). */
inline void collectForms(yxfrontpanel::IMenuTree& tree,
                         std::vector<yxfrontpanel::IForm const*>& forms) {
    forms.push_back(&tree);
    for (unsigned i = 0; i < tree.allItemCount(); ++i) {
        yxfrontpanel::IForm* const form = tree.getItem(i)->getForm();
        if (auto* const subTree = dynamic_cast<yxfrontpanel::IMenuTree*>(form)) {
            collectForms(*subTree, forms);
        } else if (form != nullptr) {
            forms.push_back(form);
        }
    }
}

/** How many forms of the whole menu (`collectForms`) have the focus. */
inline int focusedForms(yxfrontpanel::IMenuTree& root) {
    std::vector<yxfrontpanel::IForm const*> forms;
    collectForms(root, forms);
    int focused = 0;
    for (yxfrontpanel::IForm const* form : forms) {
        focused += form->getFocus() ? 1 : 0;
    }
    return focused;
}

/** The chain of open levels: the root, then, for as long as a level is a tree that is not
 *  focused itself but has handed the keys to its selected item, that item's form. */
inline std::vector<yxfrontpanel::IForm const*> openChain(yxfrontpanel::IMenuTree& root) {
    std::vector<yxfrontpanel::IForm const*> chain{&root};
    auto* tree = dynamic_cast<yxfrontpanel::MenuTree*>(&root);
    while (tree != nullptr && !tree->getFocus() && tree->itemHasFocus()) {
        yxfrontpanel::MenuItem* const item = tree->selectedItem();
        if (item == nullptr || item->getForm() == nullptr) {
            break;
        }
        chain.push_back(item->getForm());
        tree = dynamic_cast<yxfrontpanel::MenuTree*>(item->getForm());
    }
    return chain;
}

/** An unavailable trigger with a dialog answers the enter key with true without opening the
 *  dialog: the menu hands it the keys while staying on screen, so no form holds the focus until
 *  the back key. That is the item's documented behaviour, not a lost focus. */
inline bool isRefusedDialog(yxfrontpanel::MenuItem const& item) {
    auto const* trigger = dynamic_cast<yxfrontpanel::TriggerMenuItem const*>(&item);
    return trigger != nullptr && trigger->getDialog() != nullptr && !trigger->getFocus();
}

/** The focus invariant of a menu, as a count that must be 1: the forms that have the focus,
 *  plus one when the keys have been handed to a trigger that refused to open its dialog. */
inline int focusHolders(yxfrontpanel::IMenuTree& root) {
    int holders = focusedForms(root);
    std::vector<yxfrontpanel::IForm const*> const chain = openChain(root);
    if (chain.size() >= 2) {
        auto const* tree = dynamic_cast<yxfrontpanel::MenuTree const*>(chain[chain.size() - 2]);
        yxfrontpanel::MenuItem const* const item = tree == nullptr ? nullptr : tree->selectedItem();
        if (item != nullptr && isRefusedDialog(*item)) {
            ++holders;
        }
    }
    return holders;
}

}  // namespace yxfp_test
