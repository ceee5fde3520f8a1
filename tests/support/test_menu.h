#pragma once

#include <yxfrontpanel/menu_tree.h>

#include <memory>
#include <string>

#include "menu_test_items.h"
#include "recording_provider.h"

namespace yxfp_test {

/** A root menu as an application builds it: a recording panel of the given size and the tree
 *  that `MenuTreeFactory().create` makes for it. Items added here are plain `TestItem`s. */
struct TestMenu {
    TestMenu(unsigned chars, unsigned lines)
        : provider(chars, lines), tree(yxfrontpanel::MenuTreeFactory().create(provider)) {}

    /** The root as the concrete tree, for its public helpers. */
    yxfrontpanel::MenuTree& menuTree() const {
        return dynamic_cast<yxfrontpanel::MenuTree&>(*tree);
    }

    /** Adds an item without a form. */
    std::shared_ptr<TestItem> add(std::u16string const& name) {
        auto item = std::make_shared<TestItem>(name);
        tree->addItem(item);
        return item;
    }

    /** Adds an item whose form stub draws "Form <name>" when it opens. */
    std::shared_ptr<TestItem> addWithForm(std::u16string const& name) {
        auto item = TestItem::withForm(name, &provider);
        tree->addItem(item);
        return item;
    }

    /** A panel line showing an item text followed by the scrollbar cell. */
    std::u16string line(std::u16string const& text, char16_t scrollbar = u' ') const {
        return padded(text, provider.getChars() - 1) + scrollbar;
    }

    /** The inversion mask of a selected line: every item cell, not the scrollbar column. */
    std::string selectedMask() const { return std::string(provider.getChars() - 1, '#') + "."; }

    /** The inversion mask of a line that is not selected. */
    std::string plainMask() const { return std::string(provider.getChars(), '.'); }

    RecordingProvider provider;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
};

}  // namespace yxfp_test
