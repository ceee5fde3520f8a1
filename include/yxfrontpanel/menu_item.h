#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/control.h>
#include <yxfrontpanel/export.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

class IForm;

namespace wrapper {

/** Blocks the calling thread for `duration` through the base library's
 *  `yxbase2::system::this_thread::sleep_for`; the toolkit's only way to wait, so that a sleep
 *  hook installed there (simulation, tests) covers every wait of the toolkit. Any thread. */
YXFP_EXPORT void sleep_for(  // NOLINT(readability-identifier-naming)
    std::chrono::nanoseconds const& duration);

}  // namespace wrapper

/** The base of every menu entry: a `Control` one menu line high whose text is the item's name.
 *  It keeps the text the menu shows for it (its menu text), an availability flag, an optional
 *  full-screen form that it opens on enter (not owned: the subclass owns the concrete form and
 *  registers it with `setForm`), and the callbacks by which its menu tree learns of focus and
 *  visibility changes.
 *
 *  An item is idle (form closed) or focused (form open). Opening and closing tell the tree
 *  through the focus-changed callback with the opposite value, so that exactly one of the tree
 *  and the item's form has the focus.
 *
 *  Threads: `selected` and `available` are atomic, as are the inherited visible and shown flags,
 *  so other threads may read them at any time. Switching availability or visibility also
 *  rebuilds the menu text and may redraw, so do it from another thread only while nothing draws
 *  or presses keys on the same menu; everything else belongs to the key thread. */
class YXFP_EXPORT MenuItem : public Control {
public:
    /** Receives true when the item's form takes the focus, false when it gives it back. */
    using FocusChangedCallback = std::function<void(bool)>;
    /** Receives the item's new visibility. */
    using VisibleChangedCallback = std::function<void(bool)>;

    /** An item named `text` at (0, 0) of size (0, 0), available, not selected, without form;
     *  its menu text is the name. */
    explicit MenuItem(std::u16string const& text);
    ~MenuItem() override;

    /** Changes the visibility: a focused item that is hidden closes its form first (`exit`),
     *  then the flag is stored (drawing on change), the visible-changed callback (when
     *  installed) hears the new value even when it did not change, and the menu text is
     *  rebuilt. */
    void setVisible(bool visible) override;

    /** The item's menu line: an empty line (no cells) while hidden; otherwise
     *  `createLineFromMenuText()`. */
    virtual frontpanelhw::drawing::DisplayLine getMenuText() const;
    /** Opens the form. False, doing nothing, without a form, while the form already has the
     *  focus, or while the item is unavailable; otherwise `setFocus(true)`, that is true.
     *  @throws std::bad_function_call when the item belongs to no tree (no focus-changed
     *  callback); the form has already been given the focus then. */
    virtual bool enter();
    /** Closes the form: true (nothing to close) without a form; otherwise `setFocus(false)`,
     *  that is false. @throws std::bad_function_call like `enter`. */
    virtual bool exit();
    /** Whether the item's form is open: false without a form, else the form's focus. */
    virtual bool getFocus() const;
    /** Receives the tree's local-mode flag before `enter`. */
    virtual void setLocal(bool local) = 0;
    /** The left key while the cursor is on the item or its form is open. The default, for
     *  items that have no use for the key, does nothing and answers false. */
    virtual bool left();
    /** The right key while the cursor is on the item or its form is open. The default does
     *  nothing and answers false. */
    virtual bool right();
    /** The up key while the item's form is open. The default does nothing and answers false. */
    virtual bool up();
    /** The down key while the item's form is open. The default does nothing and answers
     *  false. */
    virtual bool down();
    /** Stores the availability, empties the menu text and rebuilds it (`createMenuText`), so an
     *  unavailable item reads name, blank, not-available text and an available one its name. */
    virtual void setAvailable(bool available);
    /** Stores the text appended to the name while unavailable and rebuilds the menu text. */
    virtual void setNotAvailableText(std::u16string const& text);
    /** Rebuilds the menu text: while available an empty menu text becomes the name (a
     *  non-empty one stays); while unavailable it becomes name, blank, not-available text. When
     *  the text changed and the item is shown, the tree is asked to redraw. */
    virtual void createMenuText();

    /** Gives (true) or takes (false) the form's focus, tells the tree the opposite through the
     *  focus-changed callback and rebuilds the menu text; returns `focus`.
     *  Without a form nothing happens at all and false is returned (no form took or gave up the
     *  focus, and the tree keeps its own).
     *  @throws std::bad_function_call when no focus-changed callback is installed (an item used
     *  outside a tree); the form's focus has been changed by then. */
    bool setFocus(bool focus);
    /** The menu text cut or blank-padded to exactly the line length; all its cells inverted
     *  while the item is selected. */
    frontpanelhw::drawing::DisplayLine createLineFromMenuText() const;
    /** Stores `text` as the menu text; while the item is shown, asks the tree to redraw. */
    void updateOwnText(std::u16string const& text);
    /** Shows `hint` as the menu text, blocks the calling thread for `duration` (through
     *  `wrapper::sleep_for`; keys are not served meanwhile, on purpose), then shows `restore`
     *  unless it is empty, in which case the hint stays. */
    void showHint(std::u16string const& hint, std::u16string const& restore,
                  std::chrono::milliseconds duration);
    /** Stores the width of the item's menu line (set by the tree) and makes it the control's
     *  size (line length x 1); the control's buffer is not reallocated. */
    void setLineLength(unsigned int lineLength);
    /** Registers the form that `enter` opens; the pointer is stored only, not owned. */
    void setForm(IForm* form);
    /** Installs the callback that hears the negation of the item's new focus (set by the tree).
     */
    void setFocusChangedCallback(FocusChangedCallback const& callback);
    /** Installs the callback that hears every visibility setting (set by the tree). */
    void setVisibleChangedCallback(VisibleChangedCallback const& callback);

    /** The text appended to the name while unavailable, "(N/A)" unless changed. */
    std::u16string const& getNotAvailableText() const;
    /** The menu text, before cutting and padding. */
    std::u16string const& getOwnText() const;
    /** Whether the tree's cursor is on the item (atomic). */
    bool getSelected() const;
    /** Marks the item as the one under the tree's cursor (atomic); draws nothing. */
    void setSelected(bool selected);
    /** The availability flag (atomic). */
    bool getAvailable() const;
    /** Width of the item's menu line. */
    unsigned int getLineLength() const;
    /** The registered form, null when there is none. */
    IForm* getForm() const;

protected:
    /** Stores `text` as the menu text without asking anyone to redraw (for subclasses that
     *  rebuild their line and redraw on their own terms). */
    void setOwnText(std::u16string const& text);

private:
    static void keepMenuTextOnRename(Control& control);

    // The small members first: they fit into the tail padding of the Control part, which keeps
    // every item of a large menu a few bytes smaller.
    std::atomic<bool> selected_{false};
    std::atomic<bool> available_{true};
    unsigned int lineLength_ = 0;
    FocusChangedCallback focusChanged_;
    VisibleChangedCallback visibleChanged_;
    // The menu text. Null while it is the name, as it is for most items of a large menu, so
    // that they do not carry a second copy of it; a rename first copies the old name here.
    std::unique_ptr<std::u16string> ownText_;
    IForm* form_ = nullptr;
    // Null while the item shows the default "(N/A)": most items never change it, and a menu may
    // hold a great many items.
    std::unique_ptr<std::u16string> notAvailableText_;
};

}  // namespace yxfrontpanel
