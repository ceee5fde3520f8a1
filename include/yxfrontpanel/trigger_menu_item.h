#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

class UserDialog;

/**
 * A menu line that runs an action of the application on the enter key, optionally after
 *        a confirmation dialog.
 *
 * Without a dialog one enter key runs the action. With a dialog (`enableUserDialog`) the first
 * enter key opens it and the second closes it and runs the action; back in the dialog is the
 * menu's business and runs nothing. After a successful action the line shows its name, a blank
 * and U+00FB for the hint duration, then its name again; outside local mode it shows "Only in
 * local mode!" for that time instead and does nothing else.
 *
 * The action and the hint run synchronously on the thread that calls `enter` (the key thread),
 * which is blocked for the action's run time plus the hint duration; the wait goes through
 * `wrapper::sleep_for`. The local flag is atomic and may be set from any thread; everything else
 * belongs to the key thread.
 *
 * With a dialog and an unavailable item, enter answers true although `MenuItem::enter` refused to
 * open the dialog: the menu then hands the keys to the item while the menu stays on screen, until
 * the back key gives the menu its focus again. Nothing runs meanwhile.
 */
class YXFP_EXPORT TriggerMenuItem : public MenuItem {
public:
    /** An item named `text` whose tick and local-mode hint stay for `hintDuration`; no
     *  action, not local, no dialog. */
    TriggerMenuItem(std::u16string const& text, std::chrono::milliseconds hintDuration);
    /** Destroys the dialog, then the action, then the item. */
    ~TriggerMenuItem() override;

    /**
     * The enter key, in this order:
     * no action: false, nothing shown (also outside local mode);
     * not local: the hint "Only in local mode!" for the hint duration, false;
     * a dialog that `dialog()` has just opened: true (the action waits for the confirmation);
     * unavailable: false;
     * the action fails: false, the line unchanged;
     * the action succeeds: the tick for the hint duration, false.
     */
    bool enter() override;
    /** Stores the local-mode flag (atomic; any thread). */
    void setLocal(bool local) override;

    /** Creates the confirmation dialog `UserDialog(provider, firstLine, secondLine,
     *  okText)`, destroys an earlier one and makes the new one the item's form. Meant for an
     *  idle item; replacing an open dialog closes nothing on screen, and the back key then
     *  gives the menu its focus again. */
    void enableUserDialog(IDrawingProvider const& provider, std::string const& firstLine,
                          std::string const& secondLine, std::string const& okText);
    /** Without a dialog: false. Dialog closed: opens it (`MenuItem::enter`) and returns
     *  true. Dialog open: closes it (`MenuItem::exit`) and returns false. */
    bool dialog();
    /** The confirmation dialog; null until `enableUserDialog`. */
    UserDialog* getDialog() const;
    /** The local-mode flag (atomic). */
    bool getLocal() const;

    /** The application's action, run by `enter`; true means success. Assigned by the
     *  application directly, on the key thread or before the menu runs. */
    std::function<bool()> action;

private:
    std::atomic<bool> local_{false};
    std::chrono::milliseconds hintDuration_;
    std::unique_ptr<UserDialog> dialog_;
};

}  // namespace yxfrontpanel
