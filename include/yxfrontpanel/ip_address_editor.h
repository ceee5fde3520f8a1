#pragma once

#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/ip.h>

#include <functional>
#include <string>

namespace yxfrontpanel {

/**
 * Full-screen editor of an IPv4 address, edited digit by digit.
 *
 * The value line shows the address in its 15-column form with blanks as fill ("192.168.  1.  2"),
 * centred. Left and right move the caret over the digit columns, jumping over the points and
 * wrapping at both ends; up and down step the digit under the caret by its place within its
 * octet (100, 10 or 1), clamped to 0..255 without wrap-around.
 *
 * Every step is shown and committed at once, so leaving without `apply()` keeps the stepped
 * address for the next opening; only `apply()` calls the apply callback (with the dotted text,
 * such as "10.0.0.1"). This differs on purpose from the number editor, which discards an
 * unapplied edit.
 *
 * The focus and editor-mode flags are atomic; everything else belongs to the thread that feeds
 * keys and draws. Copy and move are deleted.
 */
class YXFP_EXPORT IpAddressEditor : public BaseEditor {
public:
    /** An editor titled `headline`, both addresses 0.0.0.0, no callback; the value line
     *  stays empty until an address is set or the editor gains the focus. Draws nothing. */
    IpAddressEditor(IDrawingProvider const& provider, std::u16string const& headline);
    IpAddressEditor(IpAddressEditor const&) = delete;
    IpAddressEditor& operator=(IpAddressEditor const&) = delete;
    IpAddressEditor(IpAddressEditor&&) = delete;
    IpAddressEditor& operator=(IpAddressEditor&&) = delete;
    ~IpAddressEditor() override;

    /**
     * Steps the digit under the caret by `delta` times its place (100, 10 or 1) within
     *        its octet, clamps the octet to 0..255, then shows and commits the address
     *        (`setValue`).
     *
     * Nothing happens without focus, outside editor mode, or while the caret is not on a digit
     * column (`getSelectedBlock()` is 5).
     */
    void changeValue(int delta) override;

    /**
     * The octet under the caret: for the caret's index into the value text
     *        (`getMarkerInValuePosition(0)`), 0 for indices 0..2, 1 for 4..6, 2 for 8..10, 3 for
     *        12..14, and 5 for the points (3, 7, 11), for indices above 14 and for negative
     *        indices.
     */
    unsigned int getSelectedBlock() const;
    /** Shows `address` ("  1.  2.  3.  4" form) and makes it the edited address. */
    void drawValue(ip::IpV4Address const& address);
    /** Makes `address` the committed and the edited address and shows it. */
    void setValue(ip::IpV4Address const& address);
    /**
     * Parses dotted text (`ip::fromString`) and sets that address; true on success.
     *        Text that does not parse (any `std::exception` from parsing) sets 0.0.0.0 instead
     *        and yields false; no exception leaves the editor.
     */
    bool setValue(std::string const& text);

    /** The committed address. */
    ip::IpV4Address getValue() const;
    /** The address being edited and shown. */
    ip::IpV4Address getEditValue() const;
    /** Replaces the callback that `apply()` hands the committed address text to. */
    void setApplyCallback(std::function<void(std::string const&)> const& callback);
    /** Whether an apply callback is set: without one, `apply()` while editable throws
     *  std::bad_function_call after committing. */
    bool hasApplyCallback() const;

protected:
    /** Shows the committed address (`setValue(getValue())`). */
    void restartEdit() override;
    /** Commits the edited address and calls the apply callback with its dotted text.
     *  @throws std::bad_function_call when no callback is set (the address has already been
     *  committed then). */
    void commitEdit() override;
    /**
     * Whether the caret jumps over the place at `index` (`BaseEditor::moveMarker`): when
     *        the point search (`getDotPosition(index)`) lands on that very place.
     *
     * The point search falls back to the first blank of the text when no point follows, so
     * with the first three octets at three digits and a last octet below 100
     * ("192.168.100.  4"), moving left from the middle digit of the last octet takes its
     * leading blank for a point and lands on the point before it. `changeValue()` does nothing
     * there.
     */
    bool isPointAt(int index) const override;

private:
    ip::IpV4Address value_;
    ip::IpV4Address editValue_;
    std::function<void(std::string const&)> applyCallback_;
};

}  // namespace yxfrontpanel
