#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/control.h>
#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/export.h>

#include <memory>
#include <string>

namespace yxfrontpanel {

/** A one-line bar of filled (0xDB) and empty (0xB0) cells showing an integer within a range;
 *  one cell per column of its width. Its text is always the bar. */
class YXFP_EXPORT ProgressBar : public Label {
public:
    /** A bar of `width` cells at `position`. The range is set through `setMin(min)` and then
     *  `setMax(max)` starting from 0..100, so a `min` of 100 or more meets the old maximum and
     *  becomes 99; the value then starts at the `min` argument as given, unclamped. */
    ProgressBar(drawing::Point position, unsigned width, int min, int max);
    ~ProgressBar() override;

    /** Stores `value` clamped to the range and redraws; false (and nothing) when `value` equals
     *  the stored value. A value beyond the range is compared before clamping, so setting it
     *  twice redraws twice. */
    bool setValue(int value);
    /** A new minimum (max - 1 when not below the maximum), pulling the value up to it; false
     *  when unchanged. */
    bool setMin(int value);
    /** A new maximum (min + 1 when not above the minimum), pulling the value down to it; false
     *  when unchanged. */
    bool setMax(int value);
    /** The bar text. The filled count is computed in single precision exactly as
     *  (value - min) / (max - min) * width, truncated, so it may fall one cell short of the
     *  exact quotient (13 of 22 on 22 cells fills 12); at the minimum no cell is filled. */
    std::u16string createBar() const;
    /** Sets the bar text (which draws when it changed). */
    void updateControl();

    /** The value as last set. */
    int getValue() const;
    /** The value of an empty bar. */
    int getMin() const;
    /** The value of a full bar. */
    int getMax() const;

private:
    int min_ = 0;
    int max_ = 100;
    int value_ = 0;
};

/** One line with a symbol, a `ProgressBar` and a right-aligned reading, e.g. a power level:
 *  column 0 the symbol, columns 1..barWidth the bar, then `textWidth` columns of text. The parts
 *  render into a private line that becomes the widget's own label text. */
class YXFP_EXPORT PowerWidget : public Label {
public:
    /** A widget at `position`, barWidth + textWidth + 1 columns wide: `symbol`, a bar from `min`
     *  to `max` showing 0, and `text` right-aligned in the last `textWidth` columns. */
    PowerWidget(drawing::Point position, unsigned barWidth, unsigned textWidth, int min, int max,
                char16_t symbol, std::u16string const& text);
    ~PowerWidget() override;

    /** Moves the bar to `value`, sets the reading and shows the composed line. */
    void setValue(int value, std::u16string const& text);
    /** Sets the bar's maximum. The widget shows the new bar only from the next `setValue`. */
    void setMax(int value);
    /** The bar, for reading its range and value. */
    ProgressBar const& getBar() const;

private:
    frontpanelhw::drawing::DisplayBuffer composed_;
    Label textLabel_;
    std::unique_ptr<ProgressBar> bar_;
};

}  // namespace yxfrontpanel
