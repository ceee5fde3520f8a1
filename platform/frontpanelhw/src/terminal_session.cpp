#include "terminal_session.h"

#include <stdexcept>
#include <string>

namespace frontpanelhw::detail {

namespace {

// Long enough for the rest of a key sequence to follow its Escape over a slow link, short
// enough that Escape alone, the Back key, still feels immediate.
constexpr int kEscapeDelayMs = 50;

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
    screen_ = newterm(terminalType, out, in);
    if (screen_ == nullptr) {
        throw std::runtime_error(std::string("TerminalSession: cannot use terminal type '") +
                                 (terminalType != nullptr ? terminalType : "$TERM") + "'");
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
