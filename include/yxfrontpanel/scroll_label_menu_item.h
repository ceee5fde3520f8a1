#pragma once

#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>

#include <memory>
#include <string>

namespace yxfrontpanel {

class ScrollableLabel;

/**
 * A menu entry that opens a full-screen scrollable text (help, long status texts).
 *
 * The item can be entered once it has a text. Enter gives the text view the focus directly:
 * there is no availability test, so an unavailable item with a text opens too, and the tree is
 * not told through the focus-changed callback (it learns from `enter`'s answer instead). The
 * tree's items therefore stay marked as shown while the text is open, so a change of an item's
 * menu text meanwhile makes the tree draw the menu over the text until the text is drawn again
 * (by a scroll or a new text). Up and down scroll the text, back closes it through the
 * inherited `exit()` (the menu takes the focus back and redraws). Local mode, left and right
 * are ignored.
 *
 * The text view keeps its scroll position when a new text is set; a shorter text set while it
 * is scrolled further than that text allows makes its drawing throw `std::out_of_range` (see
 * `ScrollableLabel::setText`), which then passes through `setText`, `enter` and `up`/`down`
 * until the view is scrolled back up far enough. Key thread only.
 */
class YXFP_EXPORT ScrollLabelMenuItem : public MenuItem {
public:
    /** An item named `text` with a new, empty text view on `provider` as its form. */
    ScrollLabelMenuItem(IDrawingProvider const& provider, std::u16string const& text);
    /** Destroys the text view, then the item. */
    ~ScrollLabelMenuItem() override;

    /** Without a text: false, nothing happens. Otherwise gives the text view the focus
     *  (it draws) and returns true, also while it is already open (it then redraws). */
    bool enter() override;
    /** Ignored. */
    void setLocal(bool local) override;
    /** Scrolls the text one line up; always true (the key was handed on). */
    bool up() override;
    /** Scrolls the text one line down; always true (the key was handed on). */
    bool down() override;

    /** Gives the text view `text` with `alignment` (drawn at once while it is open) and
     *  makes the item enterable. */
    void setText(std::u16string const& text, drawing::TextAllignment alignment);
    /** Whether a text was given, i.e. whether enter opens the view. */
    bool hasText() const;
    /** The text view this item opens (owned by the item). */
    ScrollableLabel& getLabel() const;

private:
    std::unique_ptr<ScrollableLabel> label_;
    bool hasText_ = false;
};

/**
 * A menu entry that shows one value read-only: entering it shows the item's name between
 *        ">> " and " <<" on the first line and the value centred below.
 *
 * The menu line itself shows the name only; the value is seen after entering. The title is the
 * name given at construction, whatever the control's text becomes later. Numbers are formatted
 * as the application's streams format them: in the process-wide (global) locale, so a global
 * locale with a decimal comma shows a comma.
 */
class YXFP_EXPORT ReadOnlyMenuItem : public ScrollLabelMenuItem {
public:
    /** An item named `text`; its title is a copy of `text`. */
    ReadOnlyMenuItem(IDrawingProvider const& provider, std::u16string const& text);
    ~ReadOnlyMenuItem() override;

    using ScrollLabelMenuItem::setText;
    /** Shows ">> title <<", a line feed and `value` (every byte widened to one code
     *  unit, no decoding), centred. */
    void setText(std::string const& value);
    /** Shows `value` in fixed-point notation with exactly `decimals` digits after the
     *  point, rounded as the standard streams round, in the process-wide locale ("nan" and "inf"
     *  for those values). The text is as long as `decimals` asks, so keep it to what the panel
     *  can show. */
    void setValue(double value, unsigned int decimals);

private:
    std::u16string titleName_;
    std::u16string suffix_;
};

}  // namespace yxfrontpanel
