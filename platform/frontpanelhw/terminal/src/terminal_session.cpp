#include "terminal_session.h"

// After curses.h; its capability macros (lines, columns, ...) are confined to this file.
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <term.h>

namespace frontpanelhw::detail {

namespace {

// Long enough for the rest of a key sequence to follow its Escape over a slow link, short
// enough that Escape alone, the Back key, still feels immediate.
constexpr int kEscapeDelayMs = 50;

std::string describe(char const* terminalType) {
    if (terminalType != nullptr) {
        return std::string("terminal type '") + terminalType + "'";
    }
    char const* const fromEnvironment = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe)
    return fromEnvironment != nullptr
               ? std::string("terminal type '") + fromEnvironment + "' (from $TERM)"
               : std::string("$TERM, which is not set,");
}

/** Looks the terminal type up before newterm is asked for a screen: a failing newterm keeps a
 *  half-made screen that can never be freed, and this lookup also tells why the type is of no
 *  use. Leaves the current terminal of any other session as it was. */
void checkTerminalType(char const* terminalType, int outputDescriptor) {
    TERMINAL* const previous = cur_term;
    int error = 0;
    bool const usable = setupterm(terminalType, outputDescriptor, &error) == OK;
    if (usable) {
        del_curterm(cur_term);
    }
    set_curterm(previous);
    if (!usable) {
        char const* const reason = error == 0    ? "is not in the terminfo database"
                                   : error == -1 ? "cannot be looked up: no terminfo database"
                                                 : "names a terminal curses cannot drive";
        throw std::runtime_error("TerminalSession: " + describe(terminalType) + " " + reason);
    }
}

}  // namespace

std::mutex& TerminalSession::cursesLock() {
    static std::mutex lock;
    return lock;
}

TerminalSession::TerminalSession(std::FILE* out, std::FILE* in, char const* terminalType) {
    if (out == nullptr || in == nullptr) {
        throw std::runtime_error("TerminalSession: the terminal needs an output and an input");
    }
    std::lock_guard<std::mutex> const lock(cursesLock());
    checkTerminalType(terminalType, fileno(out));
    screen_ = newterm(terminalType, out, in);
    if (screen_ == nullptr) {
        throw std::runtime_error("TerminalSession: curses cannot set up " + describe(terminalType));
    }
    set_term(screen_);
    window_ = stdscr;
    inputDescriptor_ = fileno(in);
    // Each of these fails harmlessly where the terminal lacks the capability (e.g. no cursor
    // hiding, or output that is not a terminal): the panel is still shown.
    cbreak();
    noecho();
    keypad(window_, TRUE);
    leaveok(window_, TRUE);
    curs_set(0);
    set_escdelay(kEscapeDelayMs);
}

TerminalSession::~TerminalSession() {
    std::lock_guard<std::mutex> const lock(cursesLock());
    set_term(screen_);
    endwin();
    delscreen(screen_);
}

int TerminalSession::inputDescriptor() const { return inputDescriptor_; }

}  // namespace frontpanelhw::detail
