#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/menu_item.h>

#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

class Slider;

/**
 * The menu entry that opens a `Slider` for an integer setting.
 *
 * Enter on the line opens the slider; left and right move its shown value (only in editor
 * mode); enter in the open slider commits the shown value (`Slider::apply`, which in editor mode
 * calls the connected callback) and leaves the slider open: only the back key closes it, and
 * closing does not commit. The local mode that the menu passes in switches the slider's editor
 * mode, unless the item is read only.
 *
 * Left and right reach the slider whenever the menu hands them to the item, also while only the
 * menu cursor is on the line: in editor mode they then move the shown value unseen, and the next
 * opening shows the committed value again. Up and down do nothing. Key thread only.
 */
class YXFP_EXPORT SliderMenuItem : public MenuItem {
public:
    /** An item named `text` that owns `Slider(provider, text, minCaption, maxCaption,
     *  captionWidth, barWidth, minimum)` (so the name is also the slider's headline) as its
     *  form. @throws std::out_of_range "Labels and Bar does not fit into line!" from the
     *  slider. */
    SliderMenuItem(IDrawingProvider const& provider, std::u16string const& text,
                   std::u16string const& minCaption, std::u16string const& maxCaption,
                   unsigned captionWidth, unsigned barWidth, int minimum);
    /** Destroys the slider, then the item. */
    ~SliderMenuItem() override;

    /** Slider open: commits the shown value first. Then `MenuItem::enter()`: opens the
     *  slider when it is closed (and the item available); returns false while it is open. */
    bool enter() override;
    /** Unless read only, the slider's editor mode becomes `local`. */
    void setLocal(bool local) override;
    /** The slider's `moveLeft()`: whether the shown value moved. */
    bool left() override;
    /** The slider's `moveRight()`: whether the shown value moved. */
    bool right() override;

    /** Makes a copy of `callback` the slider's commit callback, replacing (and
     *  destroying) the previous one. It is called with the committed value. */
    void connectSlider(std::function<void(int)> const& callback);
    /** The slider's `setValue`: shows and commits `value`; false outside the range. */
    bool setValue(int value);
    /** Stores the flag only: while set, `setLocal` leaves the slider's editor mode as
     *  it is (the current mode is not changed here). */
    void setReadOnly(bool readOnly);
    /** The read-only flag. */
    bool getReadOnly() const;
    /** The slider this item opens (owned by the item). */
    Slider& getSlider() const;

private:
    std::unique_ptr<Slider> slider_;
    bool readOnly_ = false;
};

}  // namespace yxfrontpanel
