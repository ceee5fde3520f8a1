#pragma once

#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>

#include <atomic>
#include <functional>
#include <string>

namespace yxfrontpanel {

/**
 * Length of the text of |`value`| in fixed notation with `precision` decimals (no sign,
 *        no padding): (100, 1) gives 5 ("100.0"), (-3.25, 2) gives 4, (0, 0) gives 1.
 *
 * Formatting uses the classic locale whatever the global locale is ("." as decimal point, no
 * digit grouping). Not-a-number and infinities give the length of "nan" and "inf".
 */
YXFP_EXPORT int getMaxWidthOfNumber(double value, unsigned int precision);

/**
 * Width of the value display for a range: the larger of the widths of both bounds
 *        (`getMaxWidthOfNumber`), where a lower bound equal to `std::numeric_limits<double>::min()`
 *        or an upper bound equal to `std::numeric_limits<double>::max()` counts as no bound
 *        (width -1). -1 when both bounds are such sentinels.
 */
YXFP_EXPORT int getMaxWidthOfMinMax(double minValue, double maxValue, unsigned int precision);

/**
 * Full-screen editor of one number with a lower and an upper bound, a number of decimals
 *        and an optional unit.
 *
 * The number is shown zero-padded to the width of the wider bound, so that every decimal place
 * of the range keeps its column; with 20 columns, bounds 0 and 100, one decimal and the unit V,
 * 5.5 is shown as "005.5 V" from column 6 and -5.5 as "-005.5 V " from column 5 (the trailing
 * blank keeps the digits in their columns). With no decimals the stream's general notation is
 * used (2.5 stays "2.5", 1234567 is "1.23457e+06"), while the width always counts fixed
 * notation. Formatting ignores the global locale. A text wider than the panel is not shown
 * (centring wraps its start column) but is still edited.
 *
 * Left and right move the caret over the digits (skipping the decimal point, never resting on
 * the unit or the sign, wrapping at both ends); up and down step the digit under the caret by
 * its power of ten and clamp to the bounds. Keys change only the edited value; `apply()`
 * commits it and hands it to the apply callback. Gaining the focus restarts the edit from the
 * committed value, so losing the focus without `apply()` discards the edit.
 *
 * Not-a-number, infinities, huge and tiny values are shown and stepped without failing (huge
 * steps give infinities, which clamp to finite bounds). The focus and editor-mode flags are
 * atomic; everything else belongs to the thread that feeds keys and draws. Copy and move are
 * deleted.
 */
class YXFP_EXPORT ValueEditor : public BaseEditor {
public:
    /** An editor titled `headline` with the given bounds (taken as they are, not
     *  checked), no decimals, no unit, value 0.0, no callback. Draws nothing; the value line
     *  stays empty until the first `setValue`. */
    ValueEditor(IDrawingProvider const& provider, std::u16string const& headline, double minValue,
                double maxValue);
    ValueEditor(ValueEditor const&) = delete;
    ValueEditor& operator=(ValueEditor const&) = delete;
    ValueEditor(ValueEditor&&) = delete;
    ValueEditor& operator=(ValueEditor&&) = delete;
    ~ValueEditor() override;

    /** The value label's start column, plus 1 while the edited value is negative (the
     *  minus sign is not editable). */
    unsigned int getStartOfNumberInLbl() const override;
    /** The value label's end column less the unit with its blank and, while the edited
     *  value is negative, less the trailing blank: the caret visits the digits only (the point
     *  is jumped over). */
    unsigned int getEndOfNumberInLbl() const override;
    /**
     * Steps the digit under the caret: adds `delta` times 10 to the power of the caret
     *        digit's place, clamps to the maximum and then to the minimum (the lower bound wins
     *        if the bounds cross) and shows the result. No wrap-around at the bounds.
     *
     * Nothing happens without focus or outside editor mode. The result is not-a-number only when
     * the sum is (an infinite edited value meeting an infinite step of the other sign, or
     * `delta` 0 with an infinite step); such a result is not clamped.
     */
    void changeValue(int delta) override;

    /** Stores the unit shown after the number (after a blank); no redraw. */
    void setUnit(std::u16string const& unit);
    /**
     * Shows `value` and makes it the edited value; it also becomes the committed value
     *        when no value was set before or the editor has no focus. Never clamps.
     */
    void setValue(double value);
    /** Sets the lower bound: an unchanged bound does nothing; a bound at or above the
     *  maximum becomes maximum - 1.0. If the edited value is now below it, it is set to the
     *  bound (`setValue`); otherwise nothing is redrawn. */
    void setMinValue(double value);
    /** Sets the upper bound: an unchanged bound does nothing; a bound at or below the
     *  minimum becomes minimum + 1.0. If the edited value is now above it, it is set to the
     *  bound (`setValue`); otherwise nothing is redrawn. */
    void setMaxValue(double value);
    /** Formats `value` with `precision` decimals (none: general notation), zero-padded to
     *  `getMaxWidthOfMinMax(min, max, getPrecision())`, adds " " and the unit when there is one,
     *  and for a negative value (not -0.0) a leading "-" and a trailing blank; sets that as the
     *  value text, which redraws the form while it has the focus. */
    void drawValue(double value, unsigned int precision);

    /** The committed value. */
    double getValue() const;
    /** The value being edited and shown. */
    double getEditValue() const;
    /** The lower bound. */
    double getMinValue() const;
    /** The upper bound. */
    double getMaxValue() const;
    /** The number of decimals. */
    unsigned int getPrecision() const;
    /** Stores the number of decimals only; it is used from the next draw of a value. */
    void setPrecision(unsigned int precision);
    /** The unit. */
    std::u16string const& getUnit() const;
    /** Replaces the callback that `apply()` hands the committed value to. */
    void setApplyCallback(std::function<void(double)> const& callback);
    /** Whether an apply callback is set: without one, `apply()` while editable throws
     *  std::bad_function_call after committing. */
    bool hasApplyCallback() const;

protected:
    /** Restarts the edit from the committed value (`setValue(getValue())`). */
    void restartEdit() override;
    /** Commits the edited value, then calls the apply callback with it.
     *  @throws std::bad_function_call when no callback is set (the value has already been
     *  committed then). */
    void commitEdit() override;

private:
    unsigned int precision_ = 0;
    std::u16string unit_;
    double value_ = 0.0;
    double editValue_ = 0.0;
    double maxValue_;
    double minValue_;
    std::atomic<bool> valueInitialised_{false};
    std::function<void(double)> applyCallback_;
};

}  // namespace yxfrontpanel
