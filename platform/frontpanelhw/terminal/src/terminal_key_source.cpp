#include <frontpanelhw/terminal_display.h>
#include <frontpanelhw/terminal_keys.h>

#include <algorithm>

#include "terminal_key_map.h"
#include "terminal_session.h"
#include <poll.h>
#include <sys/ioctl.h>

namespace frontpanelhw {

namespace {

using Clock = std::chrono::steady_clock;

// Longer waits are cut to this, so that the deadline can never overflow the clock.
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24);

/** What one read of curses without waiting gave: an event, a key without panel meaning to
 *  skip, or neither when no key was pending. */
struct Read {
    std::optional<KeyEvent> event;
    bool skipped = false;
};

Read readPending(detail::TerminalSession& session) {
    return session.run([](WINDOW* window) {
        wtimeout(window, 0);
        wint_t code = 0;
        int const status = wget_wch(window, &code);
        if (status == ERR) {
            return Read{};
        }
        bool const isFunctionKey = status == KEY_CODE_YES;
        int const value = static_cast<int>(code);
        if (isFunctionKey && value == KEY_RESIZE) {
            return Read{KeyEvent::resize()};
        }
        if (auto const key = panelKeyFor(value, isFunctionKey)) {
            return Read{KeyEvent::panel(*key)};
        }
        if (isFunctionKey) {
            return Read{std::nullopt, true};
        }
        return Read{KeyEvent::typed(static_cast<char32_t>(code))};
    });
}

/** Waits until the input has bytes or `timeout` passed; false on timeout. A signal (e.g. the
 *  one curses turns into a resize) ends the wait early, which is true too. */
bool waitForInput(int descriptor, std::chrono::milliseconds timeout) {
    pollfd input{descriptor, POLLIN, 0};
    int const ready = ::poll(&input, 1, static_cast<int>(timeout.count()));
    return ready != 0;
}

/** True when the input can never give a key again: the terminal hung up, or it reports data
 *  but has not a single byte to read (end of file). Input that cannot tell how much it holds
 *  (a regular file, /dev/null) and is readable although curses found nothing is at its end
 *  too: otherwise a loop waiting on it would wake at once, forever. */
bool inputEnded(int descriptor) {
    pollfd input{descriptor, POLLIN, 0};
    if (::poll(&input, 1, 0) <= 0) {
        return false;
    }
    if ((input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
        return true;
    }
    int available = 0;
    if (ioctl(descriptor, FIONREAD, &available) != 0) {
        return true;
    }
    return available == 0;
}

}  // namespace

TerminalKeySource::TerminalKeySource(TerminalDisplay const& display) : session_(display.session_) {}

TerminalKeySource::~TerminalKeySource() = default;

int TerminalKeySource::waitDescriptor() const { return session_->inputDescriptor(); }

std::optional<KeyEvent> TerminalKeySource::poll(std::chrono::milliseconds timeout) {
    auto const deadline = Clock::now() + std::min(timeout, kLongestWait);
    while (true) {
        Read const read = readPending(*session_);
        if (read.event) {
            return read.event;
        }
        if (read.skipped) {
            continue;
        }
        if (inputEnded(session_->inputDescriptor())) {
            return KeyEvent::closed();
        }
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !waitForInput(session_->inputDescriptor(), left)) {
            return std::nullopt;
        }
    }
}

}  // namespace frontpanelhw
