#pragma once

#include <yxfrontpanel/export.h>

namespace yxfrontpanel {

/** A full-screen view that can take the focus from the menu: editors, dialogs, sliders,
 *  scrolling texts and the menu trees themselves. Exactly one view has the focus at a time,
 *  and only the focused view draws. */
class YXFP_EXPORT IForm {
public:
    IForm() = default;
    IForm(IForm const&) = delete;
    IForm& operator=(IForm const&) = delete;
    virtual ~IForm();

    /** Gives (true) or takes (false) the focus; gaining it draws the view. */
    virtual void setFocus(bool focus) = 0;
    /** Whether the view has the focus. */
    virtual bool getFocus() const = 0;
};

}  // namespace yxfrontpanel
