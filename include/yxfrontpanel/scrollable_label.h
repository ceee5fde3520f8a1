#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/i_form.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace yxfrontpanel {

class Label;

/** A full-screen text, wrapped to the panel width less one column and scrolled line by line.
 *  The last column shows 0x1E on the top line while text is hidden above and 0x1F on the
 *  bottom line while text is hidden below (on a one-line panel the down arrow wins). Draws only
 *  while it has the focus; key-thread only, except `getFocus`. */
class YXFP_EXPORT ScrollableLabel : public IForm {
public:
    /** Reads the panel size once. A panel of 0 columns is treated as 1 (the indicator column). */
    explicit ScrollableLabel(IDrawingProvider const& provider);
    ~ScrollableLabel() override;

    /** Stores the focus; gaining it draws. Losing it draws nothing and leaves the panel as is. */
    void setFocus(bool focus) override;
    bool getFocus() const override;

    /** Wraps `text` to the text width, stores the alignment of every line and draws. The scroll
     *  position is kept: a text shorter than the position allows makes the drawing throw
     *  `std::out_of_range` from its checked line access until the view is scrolled back or
     *  rebuilt. */
    void setText(std::u16string const& text, drawing::TextAllignment alignment);
    /** Rebuilds the line labels and hands the screen to the provider; nothing while unfocused or
     *  before the first text. @throws std::out_of_range as described at `setText`. */
    void draw();
    /** Scrolls one line up and draws; nothing at the top. */
    void moveUp();
    /** Scrolls one line down and draws while text is hidden below; nothing otherwise. */
    void moveDown();
    /** Writes the indicator cell (blank, 0x1E or 0x1F, never inverted) of display line
     *  `lineIndex` into the last column of `line`; a shorter line is first padded with blanks. */
    void addScrollbar(frontpanelhw::drawing::DisplayLine& line, unsigned lineIndex) const;
    /** Rebuilds one label per display line for the current scroll position; keeps the old
     *  labels while there is no text. */
    void createLblList();

    /** Index of the wrapped line shown on the top display line. */
    unsigned getFirstLine() const;
    /** The wrapped lines of the text. */
    std::vector<std::u16string> const& getLines() const;

private:
    IDrawingProvider const& provider_;
    unsigned textWidth_;
    unsigned firstLine_ = 0;
    unsigned visibleLines_;
    frontpanelhw::drawing::DisplayBuffer buffer_;
    std::vector<std::unique_ptr<Label>> labels_;
    std::vector<std::u16string> lines_;
    std::atomic<bool> focus_{false};
    drawing::TextAllignment alignment_ = drawing::TextAllignment::Center;
};

}  // namespace yxfrontpanel
