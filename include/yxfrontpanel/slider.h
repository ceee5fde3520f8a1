#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/form.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

class Label;
class ProgressBar;

/**
 * A full-screen form choosing an integer from a short range by moving a cursor along a
 * bar with the left and right keys.
 *
 * For a panel of W columns, caption width a, bar width b and minimum c:
 * - line 0: ">> title <<" centred over the whole width;
 * - line 1: the minimum caption centred in columns 0..a-1, a `ProgressBar` in a..a+b-1 with the
 *   range c..c+b, the maximum caption centred in a+b..2a+b-1;
 * - line 2: the scale (one apostrophe 0x27 per value, the up arrow 0x1E under the shown value
 *   while in editor mode) from column a, and "Val:<value>" right-aligned in a+b..2a+b-1 (it
 *   starts as "Val:0"; a caption width below the text's length shows nothing there, the
 *   right-aligned-label rule).
 * The value v is shown by a bar holding v + 1, so the cells of v and all left of it are filled.
 * A value is accepted while bar minimum <= v < bar maximum, normally c..c+b-1. Because the bar
 * takes its minimum while its maximum is still 100, a minimum of 100 or more starts the range at
 * 99. The scale text runs from the bar's minimum up to (not including) the bar's width, so with a
 * positive minimum it is b - c characters long and the arrow shows only for values below b;
 * with a negative one it is longer than the bar and the scale label cuts it to b cells. Its
 * length is b - c in every case, so a minimum far below zero costs memory and time in
 * proportion: keep the range short, as a slider's is.
 *
 * Moving the cursor changes the shown value only; `apply()` commits it and tells the callback.
 * Regaining the focus without a commit shows the committed value again (when it is in range).
 *
 * The committed value and the editor mode are atomic (sequentially consistent) and may be read
 * or switched from any thread; the controls belong to the thread that feeds keys. Sums that
 * would overflow `int` near its limits saturate instead.
 */
class YXFP_EXPORT Slider : public Form {
public:
    /**
     * Builds the layout on `provider` (see the class comment); editor mode off, committed
     * value 0, no callback. Draws nothing (no focus yet).
     * @throws std::out_of_range "Labels and Bar does not fit into line!" when
     *         barWidth + 2 * captionWidth exceeds the provider's width; no control is made then.
     */
    Slider(IDrawingProvider const& provider, std::u16string const& title,
           std::u16string const& minCaption, std::u16string const& maxCaption,
           unsigned captionWidth, unsigned barWidth, int minimum);
    Slider(Slider const&) = delete;
    Slider& operator=(Slider const&) = delete;
    Slider(Slider&&) = delete;
    Slider& operator=(Slider&&) = delete;
    /** Destroys the controls, then the form. */
    ~Slider() override;

    /** Losing the focus draws nothing. Gaining it first drops uncommitted moves (shows
     *  the committed value again, unless that value is outside the range), then draws once. */
    void setFocus(bool focus) override;

    /** Shows `value` and commits it; false, changing nothing, outside the range. */
    bool setValue(int value);
    /** Shows `value` without committing it: bar, "Val:<value>" and scale, drawn once
     *  when the form has the focus. False, changing nothing, outside the range. */
    bool setValueInternal(int value);
    /** `moveCursor(-1)`. */
    bool moveLeft();
    /** `moveCursor(+1)`. */
    bool moveRight();
    /** In editor mode shows the value `delta` away from the shown one; false (nothing)
     *  outside editor mode or past either end (no wrap-around). */
    bool moveCursor(int delta);
    /** The value shown: the bar's value minus 1. */
    int getBarValCorrected() const;
    /** Commits the shown value (always); in editor mode then calls the callback, if one
     *  is set, with it. */
    void apply();
    /** Stores the editor mode and rebuilds the scale for the committed value, which shows
     *  (on) or hides (off) the arrow; drawn at once when the form has the focus. */
    void setEditorMode(bool on);
    /** The editor-mode flag. */
    bool getEditorMode() const;
    /** The committed value. */
    int getValue() const;
    /** Replaces the commit callback (the previous one is destroyed). */
    void setCallback(std::function<void(int)> callback);

    /** The scale text: for i from the bar's minimum up to, not including, the bar's
     *  width, 0x1E when i equals `position` in editor mode, else an apostrophe. */
    std::u16string createCursor(int position) const;

    /** (Re)creates the headline: line 0, `width` wide, ">> title <<" centred. A control
     *  built earlier by this call is taken off the form and destroyed; the form is redrawn when
     *  it has the focus. */
    void initHeadline(unsigned width, std::u16string const& title);
    /** (Re)creates line 1: the two captions and the bar (range minimum..minimum +
     *  barWidth, showing `minimum`), replacing earlier ones as `initHeadline` does. */
    void initBarLine(unsigned captionWidth, unsigned barWidth, int minimum,
                     std::u16string const& minCaption, std::u16string const& maxCaption);
    /** (Re)creates line 2: the scale for the bar's minimum and "Val:0", replacing earlier
     *  ones as `initHeadline` does. Needs the bar line. */
    void initScaleLine(unsigned captionWidth, unsigned barWidth);

private:
    /** Takes the control held in `owned` off the form, adds `fresh` and makes it the owned
     *  control. */
    template <class T>
    void replace(std::unique_ptr<T>& owned, std::unique_ptr<T> fresh);

    std::unique_ptr<Label> headline_;
    std::unique_ptr<Label> minCaption_;
    std::unique_ptr<Label> maxCaption_;
    std::unique_ptr<Label> scale_;
    std::unique_ptr<Label> valueText_;
    std::unique_ptr<ProgressBar> bar_;
    std::atomic<bool> editorMode_{false};
    std::function<void(int)> callback_;
    std::atomic<int> value_{0};
};

}  // namespace yxfrontpanel
