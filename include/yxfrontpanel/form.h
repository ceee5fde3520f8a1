#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/i_form.h>

#include <atomic>
#include <memory>
#include <vector>

namespace yxfrontpanel {

class Control;

/**
 * A full-screen view composed of one-line controls.
 *
 * The form owns one buffer of the whole panel (`provider.getChars()` columns by
 * `provider.getLines()` lines). On every redraw it clears the buffer, lets each visible control
 * write the text of its line 0 at the control's location and hands the buffer to the drawing
 * provider. Only a focused form ever calls the provider.
 *
 * The form keeps plain `Control*` in insertion order and does not own them: the derived form that
 * creates a control owns it and keeps it alive as long as the form. Destroying a form leaves its
 * controls untouched; the callbacks it installed on them stay in place and do nothing once the
 * form is gone, so a control may safely outlive its form.
 *
 * The focus flag is atomic (sequentially consistent), so `getFocus()` and `setFocus()` may be
 * called from any thread; drawing, `addControl()` and key handling run on one thread at a time.
 * The provider is held by reference and must outlive the form.
 */
class YXFP_EXPORT Form : public IForm {
public:
    /** A form without controls and without focus on `provider`; draws nothing. */
    explicit Form(IDrawingProvider const& provider);
    Form(Form const&) = delete;
    Form& operator=(Form const&) = delete;
    Form(Form&&) = delete;
    Form& operator=(Form&&) = delete;
    /** Releases the control list and the buffer; the controls themselves are untouched. */
    ~Form() override;

    /** Stores a changed focus; gaining it draws the form once, losing it draws nothing.
     *  Setting the current value again does nothing. */
    void setFocus(bool focus) override;
    /** The focus flag. */
    bool getFocus() const override;

    /**
     * Places `control` on the form (after the controls already there).
     *
     * Installs on the control an on-draw callback that writes the text of line 0 of the
     * control's buffer into the form's buffer at the control's location (inversion and further
     * lines are not carried over; a buffer without lines writes nothing) and a redraw-parent
     * callback that calls `draw()`. Adding the same control twice is allowed: it is then drawn
     * twice. Nothing is drawn here.
     * @return false, changing nothing, for a null pointer; true otherwise.
     */
    bool addControl(Control* control);

    /** Clears the buffer, draws every visible control in insertion order (later controls
     *  overwrite earlier ones) and hands the buffer to the provider. Does nothing without focus.
     */
    void draw();

    /** The form's screen as composed by the last draw (blank before it). */
    frontpanelhw::drawing::DisplayBuffer const& getDisplayBuffer() const;

protected:
    /** Takes every occurrence of `control` off the form and leaves the control's
     *  callbacks in place; false when it was not on the form. Nothing is redrawn. */
    bool removeControl(Control const* control);

private:
    std::atomic<bool> focus_{false};
    IDrawingProvider const& drawingProvider_;
    frontpanelhw::drawing::DisplayBuffer displayBuffer_;
    std::vector<Control*> controls_;
    // Shared with the callbacks handed to the controls (as weak references), so that a control
    // that outlives the form finds out that the form is gone instead of touching freed memory.
    std::shared_ptr<Form*> self_;
};

}  // namespace yxfrontpanel
