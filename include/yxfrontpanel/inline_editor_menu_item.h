#pragma once

#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace yxfrontpanel {

/**
 * A menu line that shows a setting with its current value ("Mode: Fast") and steps
 *        through a fixed list of values in place: each action key press in local mode shows the
 *        next value in ascending key order (wrapping around) and reports its key through
 *        `valueCallback`. No form is ever opened.
 *
 * Values are pairs of an integer key and a display text. The first pair added becomes current
 * and is shown at once (not the smallest key); later pairs do not move it.
 *
 * States of the current value and what the line shows:
 * - none, before any value was added (and again after `clearValues`): the line is the plain
 *   text of an item without values, the name (name, blank and not-available text while
 *   unavailable);
 * - a pair: name, ": " and the value's text (the not-available text while unavailable);
 * - unknown, after `setValue` with a key that is not in the list: the line keeps whatever text
 *   it had (also an emptied one, as after `setAvailable`).
 * Stepping from none or unknown goes to the first pair in key order; with no pairs at all it
 * does nothing (no redraw, no callback).
 *
 * Outside local mode the action key shows "Only in local mode!" on the line for one second
 * (blocking the key thread) and then rebuilds the line; with `editable` false the key is
 * ignored entirely. Every rebuild of the line asks the menu to redraw while it is shown.
 *
 * Threads: `editable` and the local flag are atomic and may be switched from any thread; the
 * values, the current value and `valueCallback` belong to the key thread (call `addValue`,
 * `setValue` and `clearValues` from it or serialise them with it).
 */
class YXFP_EXPORT InlineEditorMenuItem : public MenuItem {
public:
    /** An item named `text` without values; editable, not local, no callback. */
    explicit InlineEditorMenuItem(std::u16string const& text);
    ~InlineEditorMenuItem() override;

    /**
     * The action key on this line; always false (no form is opened).
     *
     * Not editable: nothing. Local: steps to the next value (`toggleValue`) while available;
     * an unavailable item ignores the key. Not local: shows "Only in local mode!" for 1000 ms
     * (`MenuItem::showHint`), then rebuilds the line (`createMenuText`).
     */
    bool enter() override;
    /** Stores the local-mode flag (atomic). */
    void setLocal(bool local) override;
    /** Rebuilds the line for the current value (see the class comment for the three
     *  states) and, while shown, asks the menu to redraw, also when the text is unchanged. In
     *  the unknown state nothing happens. */
    void createMenuText() override;
    /** Makes the value with `key` current and rebuilds the line; an unknown key leaves
     *  the unknown state (the line keeps its text). Never calls `valueCallback`. */
    virtual void setValue(int key);

    /** Adds a value; a key already present keeps its text. The first value added
     *  becomes current and is shown; later ones change neither the current value nor the
     *  line. */
    void addValue(int key, std::u16string const& text);
    /** Removes every value and forgets the current one (the state becomes none); the
     *  line is not touched until it is next rebuilt. */
    void clearValues();
    /** The number of values. */
    unsigned getValueCount() const;
    /** The key of the current value; empty in the none and unknown states. */
    std::optional<int> getCurrentKey() const;
    /** Every value by key. */
    std::map<int, std::u16string> const& getValues() const;
    /** Steps to the next value in key order (after the last, the first), rebuilds the
     *  line, then calls `valueCallback` with the new key when one is set. From none or unknown
     *  it steps to the first value; without values it does nothing. */
    void toggleValue();

    /** Hears the new key after each step made by the user; assigned by the owner (for
     *  instance from `itemconnector`). Key thread only. */
    std::function<void(int)> valueCallback;
    /** When false the action key is ignored entirely (atomic; never changed by the
     *  item itself). */
    std::atomic<bool> editable{true};

private:
    using Values = std::map<int, std::u16string>;

    /** Whether the current position names a pair. */
    bool hasCurrentPair() const;

    Values values_;
    Values::const_iterator current_;
    bool hasCurrent_ = false;  // false: the none state (no position at all)
    std::atomic<bool> local_{false};
};

}  // namespace yxfrontpanel
