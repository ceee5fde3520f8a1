#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/menu_tree.h>

#include <atomic>
#include <memory>
#include <string>

namespace yxfrontpanel {

/** The menu entry that opens a sub-menu: its form is a menu tree of its own, obtained from a
 *  `MenuTreeFactory`. Once open it hands the keys down to the sub-tree, so a chain of tree items
 *  forms a hierarchy of any depth: each back key closes exactly the deepest open level, and
 *  every other key acts on the deepest active level. Its line in the parent menu shows its
 *  name (with the not-available text while unavailable).
 *
 *  States: closed (sub-tree unfocused, nothing below active), open (sub-tree focused), open
 *  deeper (an item of the sub-tree is active). `exit` on a closed item is handed to the
 *  sub-tree's `backToMenu` like in the open-deeper state; the menu only calls it while the item
 *  is open. Key operations are for the key thread. */
class YXFP_EXPORT TreeMenuItem : public MenuItem {
public:
    /** An item named `text` whose sub-menu is `factory.create(provider)`, registered as its
     *  form. @throws std::invalid_argument when the factory hands out no tree. */
    TreeMenuItem(IDrawingProvider const& provider, std::u16string const& text,
                 MenuTreeFactory const& factory);
    /** The same with the default factory (a plain `MenuTree`). */
    TreeMenuItem(IDrawingProvider const& provider, std::u16string const& text);
    /** Destroys the sub-menu (and with it the sub-tree's shares of its items) first. */
    ~TreeMenuItem() override;

    /** Sub-menu active or a level further down active: the enter key goes to the sub-tree's
     *  `action()` and true is returned. Closed: opens the sub-menu through `MenuItem::enter()`
     *  (refused while unavailable) and returns its answer. */
    bool enter() override;
    /** Sub-menu active: closes it (`MenuItem::exit()`, the parent menu redraws) and returns
     *  false. Otherwise hands the back key to the sub-tree's `backToMenu()` and returns its
     *  answer. */
    bool exit() override;
    /** Stores the flag (atomic, as every item's local flag); passes it on to the sub-tree only
     *  while the item is available, which belongs to the key thread. */
    void setLocal(bool local) override;
    /** The sub-tree's `left()`. */
    bool left() override;
    /** The sub-tree's `right()`. */
    bool right() override;
    /** The sub-tree's `moveUp()`; always true (the key was handed on). */
    bool up() override;
    /** The sub-tree's `moveDown()`; always true (the key was handed on). */
    bool down() override;

    /** Adds `item` to the sub-menu; an empty pointer is refused (and logged) by the sub-tree. */
    void addItem(std::shared_ptr<MenuItem> item);
    /** Empties the sub-menu. */
    void clearItems();
    /** Passes `local` to the sub-tree. */
    void changeLocal(bool local);
    /** Makes the item available or not; made available again it also passes the stored local
     *  flag to the sub-tree. */
    void setEditable(bool editable);
    /** The sub-menu (owned by the item, never null). */
    IMenuTree* getSubTree() const;

private:
    std::unique_ptr<IMenuTree> subTree_;
    std::atomic<bool> local_{false};
};

}  // namespace yxfrontpanel
