#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace frontpanelhw {

namespace detail {
class TerminalSession;
}  // namespace detail

/** Where the top-left corner of the panel's frame lies on the terminal: row and column from 0. */
struct TerminalOrigin {
    /** Terminal row of the frame's top border. */
    unsigned row = 0;
    /** Terminal column of the frame's left border. */
    unsigned column = 0;
};

/** A display shown on a text terminal through curses (a serial console, an SSH session or the
 *  simulator's own terminal). The panel's cells lie inside a box frame whose top-left corner is
 *  at the origin; inverted cells are shown in reverse video and every display code as its glyph
 *  (see toUnicode), a glyph that would not take exactly one terminal column as U+FFFD so that
 *  the frame never shifts. A status line lies just below the frame. Each draw sends only the
 *  cells that changed since the last one. Whatever falls outside the terminal is clipped.
 *
 *  Thread safety: every operation may be called from any thread. Curses keeps process-wide
 *  state, so all terminal displays and key sources share one lock. Use one terminal display per
 *  terminal; a TerminalKeySource reads the keys typed on it. */
class FRONTPANELHW_EXPORT TerminalDisplay : public IDisplay {
public:
    /** Takes over the controlling terminal (standard output and input, type from $TERM): sets
     *  the locale from the environment so that glyphs are encoded as the terminal expects,
     *  switches to unbuffered input without echo, hides the cursor and shows the empty frame.
     *  @throws std::runtime_error when the terminal cannot be used (no or unknown $TERM). */
    explicit TerminalDisplay(unsigned chars, unsigned lines, TerminalOrigin origin = {});

    /** Shows the panel on the terminal of type `terminalType` (a terminfo name such as
     *  "xterm-256color") that writes to `out` and reads from `in`; both stay owned by the caller
     *  and must outlive this display and its key sources. The locale is left as it is: set a
     *  UTF-8 one first for glyphs beyond ASCII. @throws std::runtime_error when curses cannot
     *  set up the terminal (e.g. an unknown type or a null stream). */
    TerminalDisplay(unsigned chars, unsigned lines, std::FILE* out, std::FILE* in,
                    std::string const& terminalType, TerminalOrigin origin = {});

    /** Restores the terminal to the state it had before (cursor, echo, line buffering) once the
     *  last key source reading it is gone too. */
    ~TerminalDisplay() override;

    unsigned getLines() const override;
    unsigned getChars() const override;

    /** Shows `buffer` and returns true. Sends the cells whose character or inversion changed
     *  since the last draw (every cell on the first draw). A buffer of another size is clipped
     *  to the panel, and panel cells it does not cover are shown blank. */
    bool draw(drawing::DisplayBuffer const& buffer) override;

    /** Shows `text` (UTF-8) on the line below the frame, replacing the previous status; the
     *  rest of that line is cleared. Text past the terminal's right edge is cut. */
    void setStatus(std::string const& text);

    /** Clears the terminal and shows the frame, the last drawn buffer and the status again:
     *  call it after a resize or when something else wrote to the terminal. */
    void repaint();

private:
    friend class TerminalKeySource;

    TerminalDisplay(unsigned chars, unsigned lines,
                    std::shared_ptr<detail::TerminalSession> session, TerminalOrigin origin);

    unsigned chars_;
    unsigned lines_;
    TerminalOrigin origin_;
    std::shared_ptr<detail::TerminalSession> session_;
    std::optional<drawing::DisplayBuffer> lastFrame_;  // guarded by the session's lock
    std::string status_;                               // guarded by the session's lock
};

}  // namespace frontpanelhw
