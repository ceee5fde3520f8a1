#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/key_source.h>

#include <chrono>
#include <memory>
#include <optional>

namespace frontpanelhw {

class TerminalDisplay;

namespace detail {
class TerminalSession;
}  // namespace detail

/** Reads the keys typed on the terminal of a TerminalDisplay and maps them to panel keys: the
 *  arrow keys give the four directions; the keypad's Enter, Return and line feed give Enter;
 *  Backspace, DEL (127), BS (8) and Escape (27) give Back.
 *  Function keys without a panel meaning (F1, Home, ...) are skipped. Escape is told from the
 *  start of a key sequence after 50 ms without a further byte.
 *
 *  Thread safety: poll may be called from any thread, also while another thread draws; only the
 *  moments of reading hold the lock shared with the display, never the wait for a key. Use one
 *  key source per terminal. */
class FRONTPANELHW_EXPORT TerminalKeySource : public IKeySource {
public:
    /** Reads the input of `display`'s terminal; keeps that terminal set up as long as it lives,
     *  even past the display's own lifetime. */
    explicit TerminalKeySource(TerminalDisplay const& display);
    ~TerminalKeySource() override;

    /** Waits up to `timeout` (zero or less: not at all; more than a day: a day) for a key and
     *  returns it; nothing when no key arrived in time. Once the input has ended, returns
     * KeyEvent::closed() at once on every call. Never throws. */
    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) override;
    /** The terminal's input descriptor. Curses may hold keys it has already read, so a loop
     *  calls poll(0) until it gives nothing after the descriptor became readable. */
    int waitDescriptor() const override;

private:
    std::shared_ptr<detail::TerminalSession> session_;
};

}  // namespace frontpanelhw
