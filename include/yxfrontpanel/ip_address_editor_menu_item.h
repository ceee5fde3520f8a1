#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/ip_address_editor.h>
#include <yxfrontpanel/menu_item.h>

#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

/**
 * The menu entry that edits an IPv4 address: the line shows the item's name; the action
 * key opens a full-screen `IpAddressEditor` titled with the name, and a second action key
 * applies the edited address (the callback of `connectEditor` hears its dotted text) and,
 * unless `setCloseAfterApply(false)`, returns to the menu.
 *
 * The editor is editable exactly while the panel is in local mode (`setLocal`, passed in by the
 * menu before every enter). Left and right move the caret only while the editor is open; up and
 * down always reach the editor's `changeValue`, which ignores them unless the editor is open
 * and editable (the asymmetry is kept on purpose). Every digit step is committed by the editor
 * at once, so leaving by the back key keeps it, but only the action key reports it.
 *
 * An action key on the open editor in local mode without a connected callback throws
 * `std::bad_function_call` (the editor stays open). Key thread only; copy and move are deleted.
 */
class YXFP_EXPORT IpAddressEditorMenuItem : public MenuItem {
public:
    /** An item named `text` owning an `IpAddressEditor(provider, text)` as its form;
     *  closing after apply. */
    IpAddressEditorMenuItem(IDrawingProvider const& provider, std::u16string const& text);
    IpAddressEditorMenuItem(IpAddressEditorMenuItem const&) = delete;
    IpAddressEditorMenuItem& operator=(IpAddressEditorMenuItem const&) = delete;
    IpAddressEditorMenuItem(IpAddressEditorMenuItem&&) = delete;
    IpAddressEditorMenuItem& operator=(IpAddressEditorMenuItem&&) = delete;
    ~IpAddressEditorMenuItem() override;

    /**
     * Editor closed: opens it (`MenuItem::enter()`, refused while unavailable) and
     * returns that answer. Editor open: the editor's `apply()` (reporting only while
     * editable), then closes it (`MenuItem::exit()`, false) or, with
     * `setCloseAfterApply(false)`, keeps it open (`MenuItem::enter()`, false).
     * @throws std::bad_function_call when applying while editable without a connected callback.
     */
    bool enter() override;
    /** Makes the editor editable (true) or read-only (false). */
    void setLocal(bool local) override;
    /** Editor open: moves the caret one digit left and returns true; closed: false. */
    bool left() override;
    /** Editor open: moves the caret one digit right and returns true; closed: false. */
    bool right() override;
    /** Hands +1 to the editor's `changeValue`, whatever its state; true when the editor
     *  is open and editable. */
    bool up() override;
    /** Hands -1 to the editor's `changeValue`, whatever its state; true when the editor
     *  is open and editable. */
    bool down() override;

    /** Sets the address from dotted text (committed and shown); text that does not parse
     *  sets 0.0.0.0 and yields false. */
    bool setValue(std::string const& text);
    /** Replaces the editor's apply callback by a copy of `onApply`. */
    void connectEditor(std::function<void(std::string const&)> const& onApply);
    /** Whether the action key on the open editor closes it after applying (default
     *  true). */
    void setCloseAfterApply(bool close);
    /** The owned editor. */
    IpAddressEditor& getEditor() const;

private:
    std::unique_ptr<IpAddressEditor> editor_;
    bool closeAfterApply_ = true;
};

}  // namespace yxfrontpanel
