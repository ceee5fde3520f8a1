#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/form.h>

#include <atomic>
#include <memory>
#include <string>

namespace yxfrontpanel {

class Label;

/**
 * Common base of the editors that change a value one character place at a time.
 *
 * The screen is a headline framed by ">> " and " <<" and centred on line 0, the value text
 * centred on line 1 and a one-cell caret "^" on line 2 under the edited place (the edited place
 * is shown by the caret, never by inversion). Further lines stay blank.
 *
 * The editor-mode flag decides whether the caret is shown and whether keys may change the value;
 * it is independent of the focus, so a focused editor can show a value read-only. The flag is
 * atomic (sequentially consistent) and may be switched from any thread; everything else belongs
 * to the thread that feeds keys and draws.
 *
 * Columns are unsigned screen columns. The column arithmetic below never has undefined
 * behaviour: results that do not fit an `int` are clamped to the `int` range.
 *
 * The rules every editor shares live here: the focus restarts the edit, `apply()` commits only
 * in editor mode, and the caret steps, skips a point and wraps at both ends. A derived editor
 * supplies what differs through `restartEdit()`, `commitEdit()`, `isPointAt()` and the start
 * and end of its editable text.
 */
class YXFP_EXPORT BaseEditor : public Form {
public:
    /** Builds the form on `provider` with editor mode off and lays out the screen with
     *  `init(provider.getChars(), headline)`. Draws nothing (the form has no focus yet). */
    BaseEditor(IDrawingProvider const& provider, std::u16string const& headline);
    BaseEditor(BaseEditor const&) = delete;
    BaseEditor& operator=(BaseEditor const&) = delete;
    BaseEditor(BaseEditor&&) = delete;
    BaseEditor& operator=(BaseEditor&&) = delete;
    /** Destroys the value, caret and headline labels, in that order, before the form. */
    ~BaseEditor() override;

    /** Gaining the focus first restarts the edit (`restartEdit()`), then draws; losing
     *  it only takes the focus (no draw). */
    void setFocus(bool focus) override;
    /** In editor mode: commits the edited value (`commitEdit()`). Outside editor mode
     *  nothing happens. Whatever `commitEdit()` throws passes through. */
    virtual void apply();
    /** The screen column where the editable characters start: the value label's start
     *  column as computed by its last draw. Derived editors may shift it. */
    virtual unsigned int getStartOfNumberInLbl() const;
    /** One past the screen column of the last editable character: the value label's end
     *  column. Derived editors may shift it (to leave out a unit, for instance). */
    virtual unsigned int getEndOfNumberInLbl() const;
    /**
     * Moves the caret one place left (-1) or right (+1), with or without focus and editor
     *        mode; redraws when the caret moved.
     *
     * A landing place for which `isPointAt(getMarkerInValuePosition(direction))` holds is jumped
     * over; moving right past `getEndOfNumberInLbl()` wraps to `getStartOfNumberInLbl()`, left
     * of the start wraps to the last editable column. Columns are unsigned: when the editable
     * text starts at column 0 (it fills the line), moving left from the first place wraps the
     * column to the largest unsigned value, which the right wrap turns back into the first
     * place, so the caret stays on the first place.
     */
    virtual void moveMarker(int direction);
    /** Changes the value at the caret (+1 up, -1 down). */
    virtual void changeValue(int delta) = 0;

    /**
     * Creates the screen for a panel `width` columns wide: the headline label (line 0,
     *        centred, ">> " + headline + " <<"), the value label (line 1, centred, empty) and
     *        the hidden caret label (line 2, column 0, "^"), added to the form in the order
     *        headline, value, caret.
     *
     * Called once by the constructor. A further call takes the previous labels off the form and
     * deletes them before the new ones are added (the caret starts hidden again, whatever the
     * editor mode), then redraws the form if it has the focus.
     */
    void init(unsigned int width, std::u16string const& headline);

    /** Stores the editor mode. Switching it on first moves the caret, without redrawing,
     *  to column `getStartOfNumberInLbl()` of its line; then the caret is shown (on) or hidden
     *  (off), which redraws the form when the caret's visibility changes. Switching it off
     *  leaves the caret's column. */
    void setEditorMode(bool on);
    /** The editor-mode flag. */
    bool getEditorMode() const;

    /** Index into the value text of the cell at the caret's column plus `offset`:
     *  caret column + offset + (1 if the text contains a "-" anywhere) - getStartOfNumberInLbl().
     *  May be negative or beyond the text; callers check. */
    int getMarkerInValuePosition(int offset) const;

    /** Decimal exponent of the digit at column `markerPosition` when the decimal point
     *  is at column `dotPosition`: with d = dotPosition - markerPosition (signed), d - 1 when
     *  d >= 1 (the digit just left of the point is 10^0), otherwise d (tenths give -1). */
    int getPowerValue(unsigned int dotPosition, unsigned int markerPosition) const;

    /**
     * Screen column of the value text's decimal point.
     *
     * The index searched is the first "." at or after index `from` (only when `from` lies inside
     * the text), failing that the first space of the text (where a unit begins), failing that the
     * text length; so a number without a point has it just right of its last digit. From that
     * index 1 is subtracted when the text starts with "-", and `getStartOfNumberInLbl()` is
     * added (in unsigned arithmetic; huge start columns wrap).
     */
    unsigned int getDotPosition(unsigned int from) const;

    /** The headline label (line 0). */
    Label const& getHeadlineLabel() const;
    /** The value label (line 1). */
    Label const& getValueLabel() const;
    /** The caret label (line 2); its location is the caret's column and line. */
    Label const& getMarkerLabel() const;

protected:
    /** Called by `setFocus(true)` before the form draws: shows the committed value
     *  again. The default does nothing. */
    virtual void restartEdit();
    /** Called by `apply()` in editor mode: makes the edited value the committed one and
     *  reports it. The default does nothing. */
    virtual void commitEdit();
    /** Whether the caret jumps over the character at `index` of the value text (an index
     *  as `getMarkerInValuePosition` gives, possibly outside the text): by default, whether a
     *  "." stands there. */
    virtual bool isPointAt(int index) const;
    /** The value label, for the derived editors to set the value text. */
    Label& valueLabel();
    /** The caret label, for the derived editors to move the caret. */
    Label& markerLabel();

private:
    std::atomic<bool> editorMode_{false};
    std::unique_ptr<Label> headlineLabel_;
    std::unique_ptr<Label> markerLabel_;
    std::unique_ptr<Label> valueLabel_;
};

}  // namespace yxfrontpanel
