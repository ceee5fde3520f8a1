#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/export.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel {

/** The root of everything drawn: a rectangle of cells with its own buffer, a location inside
 *  its parent, a text and a visibility flag. The parent installs an on-draw callback that
 *  copies the control's cells into its screen and a redraw-parent callback that makes it push
 *  its screen out; until then drawing is silent. Visibility and the shown flag are atomic, so
 *  other threads may read and switch them; text and callbacks belong to the key thread. */
class YXFP_EXPORT Control {
public:
    /** Receives the control's location and the control's cells to copy into the parent. */
    using DrawCallback = std::function<void(drawing::Point, frontpanelhw::drawing::DisplayBuffer&)>;

    /** A control of `size` cells at `location`, text "Ctrl", visible, not shown, no callbacks. */
    Control(drawing::Point location, drawing::Rectangle size);
    Control(Control const&) = delete;
    Control& operator=(Control const&) = delete;
    /** Releases the callbacks and the buffer without calling them. */
    virtual ~Control();

    /** Stores the visibility and draws (with a parent redraw) when it changed. */
    virtual void setVisible(bool visible);
    /** Hands the cells to the on-draw callback (a blank area of the control's size while hidden)
     *  and then, when `redrawParent` is true, asks the parent to redraw. Does nothing at all
     *  while no on-draw callback is installed. */
    virtual void draw(bool redrawParent);

    /** The visibility flag. */
    bool getVisible() const;
    /** Stores a different text and draws with a parent redraw; the same text does nothing. */
    void setText(std::u16string const& text);
    /** Widens every byte to one code unit (no decoding) and sets that text. */
    void setText(std::string const& text);
    /** Stores a different location and, when `redraw` is true, draws with a parent redraw. */
    void setLocation(drawing::Point const& location, bool redraw);
    /** Replaces the on-draw callback. */
    void onDrawCallback(DrawCallback const& callback);
    /** Replaces the redraw-parent callback. */
    void setRedrawParentCallback(std::function<void()> const& callback);
    /** Stores a new size only; the buffer keeps its dimensions. */
    void overwriteSize(drawing::Rectangle const& size);
    /** Calls the redraw-parent callback; false when none is installed. */
    bool redrawParent();

    /** The text. */
    std::u16string const& getText() const;
    /** The location inside the parent. */
    drawing::Point getLocation() const;
    /** The size in cells, as given or last overwritten. */
    drawing::Rectangle getSize() const;
    /** The control's own cells (a shared empty buffer for a control of no cells). */
    frontpanelhw::drawing::DisplayBuffer const& getBuffer() const;
    /** Whether the owning menu is the active screen (set by the menu tree). */
    bool getShown() const;
    /** Stores the shown flag (atomic; any thread); draws nothing. */
    void setShown(bool shown);

protected:
    /** The control's own cells, for derived controls to draw into. */
    frontpanelhw::drawing::DisplayBuffer& buffer();

    /** Called by `setText` with this control just before it replaces the text by a different
     *  one (the old text is still in place); for subclasses that keep state derived from it. */
    using TextReplacingHook = void (*)(Control& control);
    /** Installs the text-replacing hook (null: none; one per control, replacing the last). */
    void setTextReplacingHook(TextReplacingHook hook);

private:
    // Null for a control of no cells at all (every menu item is created 0 x 0 and never draws
    // into a buffer of its own), so that large menus do not carry an empty buffer per item.
    std::unique_ptr<frontpanelhw::drawing::DisplayBuffer> buffer_;
    // Null until an on-draw callback is installed: only controls inside a form or widget get
    // one, never menu items, and a menu may hold a great many of those.
    std::unique_ptr<DrawCallback> onDraw_;
    std::u16string text_;
    drawing::Point location_;
    drawing::Rectangle size_;
    std::function<void()> redrawParent_;
    TextReplacingHook textReplacing_ = nullptr;
    std::atomic<bool> shown_{false};
    std::atomic<bool> visible_{true};
};

/** A one-line text control that places its text left, right or centred within its width. A
 *  text longer than the width under `Right` or `Center` alignment starts at a wrapped-around
 *  column and is therefore dropped whole by the buffer's clipping; under `Left` it is cut. */
class YXFP_EXPORT Label : public Control {
public:
    /** A label of `width` cells at `location`, left-aligned, showing `text`. */
    Label(drawing::Point location, unsigned int width, std::u16string const& text);
    /** A label at (0, 0) exactly as wide as `text`. */
    explicit Label(std::u16string const& text);
    /** An empty label of width 0 at (0, 0). */
    Label();
    ~Label() override;

    /** Renders the aligned text into the own buffer, then draws as a `Control`. */
    void draw(bool redrawParent) override;

    /** Stores the alignment and draws with a parent redraw, also when it is unchanged. */
    void setTextAllignment(  // NOLINT(readability-identifier-naming)
        drawing::TextAllignment alignment);
    /** The alignment. */
    drawing::TextAllignment getTextAllignment() const;  // NOLINT(readability-identifier-naming)
    /** First column of the text as computed by the last draw. */
    unsigned getStartColumn() const;
    /** Start column plus text length, as computed by the last draw. */
    unsigned getEndColumn() const;

private:
    drawing::TextAllignment alignment_ = drawing::TextAllignment::Left;
    unsigned startColumn_ = 0;
    unsigned endColumn_ = 0;
};

}  // namespace yxfrontpanel
