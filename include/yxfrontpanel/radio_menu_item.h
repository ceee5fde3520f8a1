#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/tree_menu_item.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace yxfrontpanel {

/**
 * One choice of a radio group: a menu line whose first column is ">" while it is the
 *        chosen entry and " " otherwise, followed by the item's name.
 *
 * The action key in local mode reports the item's id through the choice callback (installed by
 * the owning `RadioTreeMenuItem`); the item never checks itself, the group does that in answer
 * to the callback. Outside local mode the action key shows "Only in local mode!" on the line for
 * one second (blocking the key thread) and changes nothing. Left, right, up and down do
 * nothing. No form is ever opened.
 *
 * `MenuItem::setAvailable` rebuilds the line from the bare name (the marker column disappears
 * until the next `check` with a changed state, `updateText` or selection); this is kept as it
 * is. The local flag is atomic and may be set from any thread; all other state belongs to the
 * key thread.
 */
class YXFP_EXPORT RadioMenuItem : public MenuItem {
public:
    /** Hears the chosen item's id; runs on the key thread. */
    using ChoiceCallback = std::function<void(int)>;

    /** An unchecked choice named `text` standing for `id`: its line reads " " + text.
     *  Selecting by the action key is allowed; local mode is off; no choice callback. */
    RadioMenuItem(std::u16string const& text, int id);
    ~RadioMenuItem() override;

    /**
     * The action key on this line; always false (no form is opened).
     *
     * Outside local mode: shows "Only in local mode!" for 1000 ms (`MenuItem::showHint`), then
     * restores the marked line and asks the menu to redraw. In local mode: calls the choice
     * callback with the id when one is installed and selecting is allowed (`setEditor`);
     * otherwise nothing.
     */
    bool enter() override;
    /** Stores the local-mode flag (atomic; any thread); nothing else. */
    void setLocal(bool local) override;

    /** Checks or unchecks the choice: an unchanged state does nothing (no redraw);
     *  otherwise the line is rebuilt with the new marker, the menu is asked to redraw, and the
     *  state is stored last. */
    void check(bool checked);
    /** Rebuilds the line from the name with the marker for `checked` (">" or " ");
     *  draws nothing and leaves the checked state alone. */
    void setMenuText(bool checked);
    /** Renames the choice, keeps its marker and asks the menu to redraw. */
    void updateText(std::u16string const& text);

    /** Whether this is the chosen entry. */
    bool isChecked() const;
    /** The integer this choice stands for. */
    int getId() const;
    /** Allows (true, the default) or forbids selecting by the action key. */
    void setEditor(bool editor);
    /** Whether selecting by the action key is allowed. */
    bool getEditor() const;
    /** Replaces the function that hears the id when the user selects the choice. */
    void setChoiceCallback(ChoiceCallback const& callback);

private:
    ChoiceCallback choiceCallback_;
    int id_;
    bool checked_ = false;
    bool editor_ = true;
    std::atomic<bool> local_{false};
};

/**
 * A sub-menu of mutually exclusive choices identified by integers, keeping exactly one
 *        of them checked from the first `addItem` on.
 *
 * The first choice added is checked. The user's selection (the action key on a choice in local
 * mode) checks it, unchecks the previous one and then calls `valueCallback` with its id, also
 * when it was already checked. `setValue` checks a choice from the program without calling
 * `valueCallback`. The sub-menu lists the choices in the order of adding; the group keeps them
 * by id (a second choice with an id already present is still listed, but the group keeps and
 * checks the first one).
 *
 * The choices' callbacks refer to the group only weakly: once the group is gone, selecting a
 * choice that the application still holds does nothing. All state belongs to the key thread;
 * copy and move are deleted (the choices' callbacks refer to this object).
 */
class YXFP_EXPORT RadioTreeMenuItem : public TreeMenuItem {
public:
    /** An empty group named `text` whose sub-menu is drawn on `provider`. */
    RadioTreeMenuItem(IDrawingProvider const& provider, std::u16string const& text);
    RadioTreeMenuItem(RadioTreeMenuItem const&) = delete;
    RadioTreeMenuItem& operator=(RadioTreeMenuItem const&) = delete;
    RadioTreeMenuItem(RadioTreeMenuItem&&) = delete;
    RadioTreeMenuItem& operator=(RadioTreeMenuItem&&) = delete;
    ~RadioTreeMenuItem() override;

    /**
     * Adds a choice: it becomes the last line of the sub-menu and, when its id is new,
     *        an entry of the group; the first entry is checked at once.
     *
     * The choice's focus-changed callback is emptied (the sub-menu then installs its own) and
     * its choice callback replaced by one that selects it in this group. An empty pointer is
     * handed to the sub-menu, which refuses and logs it; the group is unchanged.
     */
    void addItem(std::shared_ptr<RadioMenuItem> item);
    /** Checks the choice with `id` and unchecks the current one (both redraw, also when
     *  they are the same choice). An unknown id changes nothing. Never calls `valueCallback`. */
    void setValue(int id);
    /** Allows or forbids selecting by the action key on every choice held so far;
     *  choices added later keep their own setting. */
    void setEditor(bool editor);

    /** Hears the id of each choice the user selects; assigned by the application. */
    std::function<void(int)> valueCallback;

private:
    using Items = std::map<int, std::shared_ptr<RadioMenuItem>>;

    /** The user selected the choice `id`. */
    void select(int id);

    Items items_;
    Items::iterator current_;
    // Shared with the choices' callbacks as weak references, so that a choice outliving the
    // group finds out that the group is gone.
    std::shared_ptr<RadioTreeMenuItem*> self_;
};

}  // namespace yxfrontpanel
