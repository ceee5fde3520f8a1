#pragma once

#include <frontpanelhw/export.h>

#include <chrono>
#include <memory>
#include <optional>

namespace frontpanelhw {

class TerminalDisplay;

namespace detail {
class TerminalSession;
}  // namespace detail

/** The six keys of the front panel. */
enum class PanelKey { Up, Down, Left, Right, Enter, Back };

/** What a TerminalKeySource read: a panel key, another typed character the application may
 *  handle itself (e.g. 'q' to quit), a change of the terminal's size (repaint the display), or
 *  the end of the input (the terminal hung up). Build it with the static functions. */
struct KeyEvent {
    enum class Kind { Panel, Character, Resize, Closed };

    Kind kind;
    PanelKey panelKey;   // the key when kind is Panel, else PanelKey::Up
    char32_t character;  // the typed character when kind is Character, else 0

    /** One of the six panel keys. */
    static constexpr KeyEvent panel(PanelKey key) { return KeyEvent{Kind::Panel, key, 0}; }
    /** Any other typed character. */
    static constexpr KeyEvent typed(char32_t typed) {
        return KeyEvent{Kind::Character, PanelKey::Up, typed};
    }
    /** The terminal changed its size. */
    static constexpr KeyEvent resize() { return KeyEvent{Kind::Resize, PanelKey::Up, 0}; }
    /** The input has ended. */
    static constexpr KeyEvent closed() { return KeyEvent{Kind::Closed, PanelKey::Up, 0}; }
};

/** Events are equal when kind, panel key and character are equal. */
FRONTPANELHW_EXPORT bool operator==(KeyEvent const& lhs, KeyEvent const& rhs);
FRONTPANELHW_EXPORT bool operator!=(KeyEvent const& lhs, KeyEvent const& rhs);

/** The panel key for what curses read: `code` is the value wget_wch stored and `isFunctionKey`
 *  tells whether it returned KEY_CODE_YES (a key code such as KEY_UP) rather than a character.
 *  The arrow keys give the four directions; KEY_ENTER, '\n' and '\r' give Enter; KEY_BACKSPACE,
 *  DEL (127), BS (8) and Escape (27) give Back. Anything else gives no panel key. */
FRONTPANELHW_EXPORT std::optional<PanelKey> panelKeyFor(int code, bool isFunctionKey);

/** Reads the keys typed on the terminal of a TerminalDisplay and maps them to panel keys.
 *  Function keys without a panel meaning (F1, Home, ...) are skipped. Escape is told from the
 *  start of a key sequence after 50 ms without a further byte.
 *
 *  Thread safety: poll may be called from any thread, also while another thread draws; only the
 *  moments of reading hold the lock shared with the display, never the wait for a key. Use one
 *  key source per terminal. */
class FRONTPANELHW_EXPORT TerminalKeySource {
public:
    /** Reads the input of `display`'s terminal; keeps that terminal set up as long as it lives,
     *  even past the display's own lifetime. */
    explicit TerminalKeySource(TerminalDisplay const& display);
    ~TerminalKeySource();
    TerminalKeySource(TerminalKeySource const&) = delete;
    TerminalKeySource& operator=(TerminalKeySource const&) = delete;

    /** Waits up to `timeout` (zero or less: not at all; more than a day: a day) for a key and
     *  returns it; nothing when no key arrived in time. Once the input has ended, returns
     * KeyEvent::closed() at once on every call. Never throws. */
    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout);

private:
    std::shared_ptr<detail::TerminalSession> session_;
};

}  // namespace frontpanelhw
