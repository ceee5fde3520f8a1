#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/value_editor.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

/**
 * The menu entry that edits one number: the action key opens a full-screen
 * `ValueEditor` titled with the item's name; left and right move the caret, up and down
 * step the digit under it, and a second action key commits the value through the
 * callback given to `connectEditor` and, unless `setCloseAfterApply(false)`, returns to
 * the menu.
 *
 * The editor may change the value only while editing is wanted (`setEditorMode`, true after
 * construction) and the panel is in local mode (`setLocal`, false after construction, passed in
 * by the menu before every enter); otherwise it shows the value read-only (no caret, up and
 * down do nothing, enter changes nothing and closes as usual). The line in the menu shows the
 * name.
 *
 * Bounds, value and unit are handed on to the editor unchanged. An action key on the open editor
 * while it is editable and no apply callback is connected throws `std::bad_function_call` (the
 * editor stays open). The item's local flag is atomic, as in every item; its other flags are
 * plain and belong to the key thread, like the switch of the editor's mode that `setLocal`
 * makes; the editor's focus and editor mode are atomic. `setValue`, `setMinValue` and `setMaxValue`
 * may be called from other threads while the editor is closed, when the calls are serialised with
 * each other (as a `CallbackValue` does) and not mixed with key handling on this item; they then
 * draw nothing on the panel. With the editor open they redraw it on the calling thread. Copy and
 * move are deleted.
 */
class YXFP_EXPORT ValueEditorMenuItem : public MenuItem {
public:
    /** An item named `text` owning a `ValueEditor(provider, text, minValue, maxValue)`
     *  as its form; editing wanted, not local, closing after apply. */
    ValueEditorMenuItem(IDrawingProvider const& provider, std::u16string const& text,
                        double minValue, double maxValue);
    ValueEditorMenuItem(ValueEditorMenuItem const&) = delete;
    ValueEditorMenuItem& operator=(ValueEditorMenuItem const&) = delete;
    ValueEditorMenuItem(ValueEditorMenuItem&&) = delete;
    ValueEditorMenuItem& operator=(ValueEditorMenuItem&&) = delete;
    ~ValueEditorMenuItem() override;

    /**
     * Editor closed: opens it (`MenuItem::enter()`, refused while unavailable) and
     * returns that answer. Editor open: the editor's `apply()` (committing and reporting
     * only while editable), then closes it (`MenuItem::exit()`, false) or, with
     * `setCloseAfterApply(false)`, keeps it open (`MenuItem::enter()`, false).
     * @throws std::bad_function_call when applying while editable without a connected callback.
     */
    bool enter() override;
    /** Stores the local-mode flag; the editor becomes editable exactly while editing is
     *  wanted and the panel is local (through the virtual `setEditorMode`). */
    void setLocal(bool isLocal) override;
    /** Editor open: moves the caret one digit left and returns true; closed: false. */
    bool left() override;
    /** Editor open: moves the caret one digit right and returns true; closed: false. */
    bool right() override;
    /** Hands +1 to the editor's `changeValue` (ignored unless it is open and editable);
     *  true when the editor is open and editable. */
    bool up() override;
    /** Hands -1 to the editor's `changeValue` (ignored unless it is open and editable);
     *  true when the editor is open and editable. */
    bool down() override;

    /** The editor's `setValue`: shown at once; committed unless the editor is open. */
    virtual void setValue(double value);
    /** The editor's `setMinValue`. */
    virtual void setMinValue(double value);
    /** The editor's `setMaxValue`. */
    virtual void setMaxValue(double value);
    /** The editor's `setUnit` (shown from the next value drawn). */
    virtual void setUnit(std::u16string const& unit);
    /** Stores whether editing is wanted; the editor becomes editable exactly when `mode`
     *  and the local flag are both true. */
    virtual void setEditorMode(bool mode);

    /** The editor's number of decimals, used from the next value drawn. */
    void setPrecision(unsigned int precision);
    /** Replaces the editor's apply callback by a copy of `onApply`. */
    void connectEditor(std::function<void(double)> const& onApply);
    /** Whether the action key on the open editor closes it after applying (default
     *  true). */
    void setCloseAfterApply(bool close);
    /** The owned editor. */
    ValueEditor& getEditor() const;

private:
    std::unique_ptr<ValueEditor> editor_;
    bool closeAfterApply_ = true;
    bool editorMode_ = true;
    std::atomic<bool> local_{false};
};

}  // namespace yxfrontpanel
