#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/i_form.h>

#include <memory>
#include <vector>

namespace yxfrontpanel {

class MenuItem;

/** A menu screen that takes the six keys: up `moveUp`, down `moveDown`, left `left`, right
 *  `right`, enter `action`, back `backToMenu`. While the tree has the focus it moves its cursor
 *  or enters the selected item; while the selected item's form is open the keys go to the item.
 *  Key operations are meant for one thread (the key thread). */
class YXFP_EXPORT IMenuTree : public IForm {
public:
    IMenuTree() = default;
    ~IMenuTree() override;

    /** Adds an item at the end; false (and a log record) for an empty pointer. */
    virtual bool addItem(std::shared_ptr<MenuItem> item) = 0;
    /** Releases every item; the tree is empty again. */
    virtual void clearItems() = 0;
    /** The up key. */
    virtual void moveUp() = 0;
    /** The down key. */
    virtual void moveDown() = 0;
    /** The enter key. */
    virtual bool action() = 0;
    /** The left key. */
    virtual bool left() = 0;
    /** The right key. */
    virtual bool right() = 0;
    /** The back key. */
    virtual bool backToMenu() = 0;
    /** Whether the selected item's form is the active screen. */
    virtual bool itemHasFocus() const = 0;
    /** Stores the local-mode flag and passes it to the selected item. */
    virtual void setLocal(bool local) = 0;
    /** The local-mode flag. */
    virtual bool getLocal() const = 0;
    /** Number of visible items. */
    virtual unsigned itemCount() const = 0;
    /** Number of all items, hidden ones included. */
    virtual unsigned allItemCount() const = 0;
    /** The item at `index` among all items, in the order of adding (not owned).
     *  @throws std::out_of_range when index >= allItemCount(). */
    virtual MenuItem* getItem(unsigned int index) = 0;
};

/** The menu screen: one visible item a line, the selected one inverted, scrolling by one line,
 *  and a one-column scrollbar at the right edge (0x1E in the top line while items lie above the
 *  screen, 0x1F in the bottom line while items follow below). Item lines are one column
 *  narrower than the panel.
 *
 *  Who owns the keys: unfocused (neither flag; a sub-menu not shown, or a root before its first
 *  `setFocus(true)`), tree active (`getFocus()`), item active (`itemHasFocus()`: the selected
 *  item's form is open). Only the tree itself draws its screen, while one of the two flags is
 *  set.
 *
 *  Safe results where a key meets a state the menu never reaches in normal use:
 *  - `action` with neither the focus nor a selected item (an empty or unfocused tree) returns
 *    false and calls nothing;
 *  - `backToMenu` without the focus and without a selected item calls nothing and returns
 *    false;
 *  - keys on a focused empty tree (never filled, just cleared, or every item hidden) do
 *    nothing: `moveUp` and `moveDown` neither move the cursor nor draw, `left`, `right` and
 *    `action` return false, `backToMenu` returns true; on an unfocused tree without a selected
 *    item no key touches an item;
 *  - a panel of 0 columns gives item lines of length 0 instead of a wrapped-around width.
 *  Adding or clearing items while an item's form is open moves the cursor to the top, so the
 *  keys then reach the first item; change the item lists while the tree is active or unfocused.
 *
 *  The screen buffer is allocated once; every draw clears it and rebuilds only the lines on
 *  screen. The items' callbacks hold a plain pointer to the tree; the destructor removes them
 *  from the items still in the tree, so an item that outlives its tree calls nobody. No lock:
 *  the shown and selected flags of the items are atomic, everything else is for the key
 *  thread. */
class YXFP_EXPORT MenuTree : public IMenuTree {
public:
    /** Reads the provider's size once: item lines of getChars() - 1 columns, getLines() lines.
     *  The provider is not owned and must outlive the tree. */
    explicit MenuTree(IDrawingProvider const& provider);
    MenuTree(MenuTree const&) = delete;
    MenuTree& operator=(MenuTree const&) = delete;
    ~MenuTree() override;

    /** Gives the tree the focus (true) or takes it (false) and sets every visible item's shown
     *  flag to the same value. Gaining it (also when already held) brings the visible items up
     *  to date when a visibility changed meanwhile (the cursor returns to the top), clears
     *  `itemHasFocus()` and draws; losing it draws nothing. */
    void setFocus(bool focus) override;
    /** Whether the tree itself is the active screen. A plain flag: key thread only, unlike
     *  `Form::getFocus` (other threads may watch the items' selected and shown flags). */
    bool getFocus() const override;

    /** Adds `item` at the end of all items and, when visible, of the visible items; the first
     *  item added to an empty visible list is marked selected (also when hidden). Gives the item
     *  the tree's line length and installs the tree's focus-changed, visible-changed and
     *  redraw callbacks; the cursor moves to the top. Draws nothing. An empty pointer is
     *  refused: "Can not add menu item == nullptr!" is logged at level 4 (warning) under
     *  "libYxFrontPanelToolbox" and false is returned. */
    bool addItem(std::shared_ptr<MenuItem> item) override;
    /** Releases the tree's shares of all items and returns to the empty state (no selected
     *  item). Draws nothing. */
    void clearItems() override;
    /** Tree active: moves the cursor one line up (no wrap-around; nothing, not even a draw, at
     *  the first item), scrolling when it leaves the screen, then draws. Otherwise passes the
     *  key to the selected item's `up()`, if any. */
    void moveUp() override;
    /** Tree active: moves the cursor one line down (no wrap-around; nothing at the last item),
     *  scrolling by one line when it leaves the screen, then draws. Otherwise passes the key to
     *  the selected item's `down()`, if any. */
    void moveDown() override;
    /** Tree active with a selected item: passes the local flag to it and enters it; when it
     *  opens its form the item becomes active. Returns the item's answer. Item active: the
     *  item's `enter()` decides. Otherwise false. */
    bool action() override;
    /** The selected item's `left()` in every state; false without a selected item. */
    bool left() override;
    /** The selected item's `right()` in every state; false without a selected item. */
    bool right() override;
    /** Tree active: true, nothing else. Otherwise the selected item's `exit()`; returns whether
     *  the tree has the focus afterwards (false while the item keeps its form open). */
    bool backToMenu() override;
    /** Whether the selected item's form is the active screen. */
    bool itemHasFocus() const override;
    /** Stores the flag and passes it to the selected item, if any. */
    void setLocal(bool local) override;
    bool getLocal() const override;
    unsigned itemCount() const override;
    unsigned allItemCount() const override;
    MenuItem* getItem(unsigned int index) override;

    /** The visible item under the cursor, or null (empty tree, or cursor past the end). */
    MenuItem* selectedItem() const;
    /** The cursor's screen line: selected index minus first shown index. */
    int getDistance() const;
    /** Rebuilds the visible items from all items; the first visible item gets the cursor and
     *  the screen scrolls to the top. Draws nothing. */
    void recalcAvailableItems();
    /** An item's visibility was set: rebuilds and draws at once while the tree has the focus,
     *  otherwise at the next `setFocus(true)`. */
    void childVisibleChanged(bool visible);
    /** Composes the screen from the visible items on it plus the scrollbar column and hands it
     *  to the provider, returning its answer. Does nothing and returns false unless the tree or
     *  its item has the focus. */
    bool draw();
    /** Appends the scrollbar cell (never inverted) for screen line `line` to `menuLine`, with
     *  `firstShown` the index of the visible item on line 0. A one-line panel shows the down
     *  arrow when both would apply. */
    void addScrollbar(frontpanelhw::drawing::DisplayLine& menuLine, unsigned int line,
                      unsigned int firstShown);

private:
    /** The selected item as a share, so that a key keeps it alive while it runs. */
    std::shared_ptr<MenuItem> selectedShared() const;
    void markItem(unsigned index, bool selected);
    void installCallbacks(MenuItem& item);

    std::vector<std::shared_ptr<MenuItem>> visibleItems_;
    std::vector<std::shared_ptr<MenuItem>> allItems_;
    unsigned selectedIndex_ = 1;
    unsigned firstShown_ = 1;
    IDrawingProvider const& provider_;
    frontpanelhw::drawing::DisplayBuffer screen_;
    unsigned lineLength_;
    unsigned lines_;
    bool focus_ = false;
    bool itemHasFocus_ = false;
    bool local_ = false;
    bool recalcNeeded_ = false;
};

/** Creates menu trees; the seam through which sub-menus obtain theirs, so a subclass can hand
 *  out trees of its own kind. */
class YXFP_EXPORT MenuTreeFactory {
public:
    MenuTreeFactory() = default;
    /** Factories hold no state; copies are interchangeable. */
    MenuTreeFactory(MenuTreeFactory const&) = default;
    /** Factories hold no state; copies are interchangeable. */
    MenuTreeFactory& operator=(MenuTreeFactory const&) = default;
    virtual ~MenuTreeFactory();

    /** A new, empty, unfocused `MenuTree` on `provider` (which must outlive it). */
    virtual std::unique_ptr<IMenuTree> create(IDrawingProvider const& provider) const;
};

}  // namespace yxfrontpanel
