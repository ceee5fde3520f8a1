#pragma once

#include <yxfrontpanel/drawing.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/form.h>

#include <memory>
#include <string>

namespace yxfrontpanel {

class Label;

/** A centred one-line label of `width` cells at `position` showing `text`, every byte
 *  widened to one code unit (no decoding). A text longer than `width` shows nothing (the
 *  centred-label rule). */
YXFP_EXPORT std::unique_ptr<Label> createLine(std::string const& text, drawing::Point position,
                                              unsigned width);

/** The confirm hint of a dialog: a right-aligned label of `width` cells at column
 *  `width + 1` of line 2 showing "OK: " followed by `okText` (widened byte by byte). */
YXFP_EXPORT std::unique_ptr<Label> createOkLbl(unsigned width, std::string const& okText);

/**
 * A full-screen confirmation: two centred message lines and, on line 2, the key hints
 * "BACK: Cancel" and "OK: <word>".
 *
 * For a panel of W columns and H = W / 2 (rounded down) the cancel hint covers columns 0..H-1
 * (left-aligned, so on narrow panels it is cut: "BACK: Canc" when H is 10), column H stays
 * blank, and the right-aligned confirm hint covers columns H+1..2H+1. On a panel of even width
 * that is one column past the right edge, which the screen simply drops: its last character is
 * not seen. Message texts are not wrapped; one longer than W shows nothing. Lines below line 2
 * stay blank; on a panel of fewer lines the lines past the last are not shown.
 *
 * The dialog only shows: it has no keys of its own. Focus works as for every `Form`. Key thread
 * only, except the atomic focus flag.
 */
class YXFP_EXPORT UserDialog : public Form {
public:
    /** Lays out the four labels on `provider`'s width and adds them in the order first
     *  line, second line, cancel hint, confirm hint. Draws nothing (no focus yet). Any texts are
     *  accepted. */
    UserDialog(IDrawingProvider const& provider, std::string const& firstLine,
               std::string const& secondLine, std::string const& okText);
    UserDialog(UserDialog const&) = delete;
    UserDialog& operator=(UserDialog const&) = delete;
    UserDialog(UserDialog&&) = delete;
    UserDialog& operator=(UserDialog&&) = delete;
    /** Destroys the labels, then the form. */
    ~UserDialog() override;

private:
    std::unique_ptr<Label> firstLine_;
    std::unique_ptr<Label> secondLine_;
    std::unique_ptr<Label> cancelHint_;
    std::unique_ptr<Label> confirmHint_;
};

}  // namespace yxfrontpanel
