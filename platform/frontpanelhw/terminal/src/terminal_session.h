#pragma once

// Curses for the terminal device only; the function-like macros of curses.h (clear, erase,
// move, refresh, timeout, ...) would rewrite member calls of the same names, so they are off.
#define NCURSES_NOMACROS 1
#include <cstdio>
#include <mutex>

#include <curses.h>

namespace frontpanelhw::detail {

/** One curses screen on one terminal, set up for a panel: unbuffered input without echo, keypad
 *  codes on, cursor hidden. Curses keeps process-wide state (the current screen, the output
 *  buffer, the signal flags), so every use of any session goes through one lock and makes its
 *  own screen current first. The destructor restores the terminal. */
class TerminalSession {
public:
    /** @throws std::runtime_error when curses cannot set up the terminal. `terminalType`
     *  null: the type named by $TERM. */
    TerminalSession(std::FILE* out, std::FILE* in, char const* terminalType);
    ~TerminalSession();
    TerminalSession(TerminalSession const&) = delete;
    TerminalSession& operator=(TerminalSession const&) = delete;

    /** Runs `action(window)` on the session's whole-screen window with the session's screen
     *  current, holding the lock shared by every session. */
    template <typename Action>
    decltype(auto) run(Action&& action) {
        std::lock_guard<std::mutex> const lock(cursesLock());
        set_term(screen_);
        return action(window_);
    }

    /** The file descriptor keys are read from, to wait for input without holding the lock. */
    int inputDescriptor() const;

private:
    static std::mutex& cursesLock();

    SCREEN* screen_ = nullptr;
    WINDOW* window_ = nullptr;
    int inputDescriptor_ = -1;
};

}  // namespace frontpanelhw::detail
