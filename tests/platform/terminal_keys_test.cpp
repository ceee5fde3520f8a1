#define NCURSES_NOMACROS 1
#include <frontpanelhw/terminal_display.h>
#include <frontpanelhw/terminal_keys.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <future>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "locale_guard.h"
#include "terminal_key_map.h"
#include <curses.h>
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace frontpanelhw {

// Readable failure messages.
void PrintTo(KeyEvent const& event,  // NOLINT(readability-identifier-naming): GoogleTest's name
             std::ostream* out) {
    char const* const kinds[] = {"Panel", "Character", "Resize", "Closed"};
    *out << kinds[static_cast<int>(event.kind)] << "(key " << static_cast<int>(event.panelKey)
         << ", U+" << std::hex << static_cast<unsigned long>(event.character) << std::dec << ')';
}

}  // namespace frontpanelhw

namespace {

using frontpanelhw::KeyEvent;
using frontpanelhw::PanelKey;
using frontpanelhw::panelKeyFor;
using frontpanelhw::TerminalDisplay;
using frontpanelhw::TerminalKeySource;
using frontpanelhw::drawing::DisplayBuffer;
using namespace std::chrono_literals;

// Long enough that reaching it means a key was lost; tests never wait for it to pass.
constexpr auto kLongWait = 10s;

// The panel key that curses codes stand for, each code with whether curses called it a key code
// (true) or a character (false).
struct KeyCodes {
    std::optional<PanelKey> panelKey;
    std::vector<std::pair<int, bool>> codes;
};

TEST(PanelKeyForTest, KeysMapToThePanelKeysTheyStandFor) {
    KeyCodes const mappings[] = {
        {PanelKey::Up, {{KEY_UP, true}}},
        {PanelKey::Down, {{KEY_DOWN, true}}},
        {PanelKey::Left, {{KEY_LEFT, true}}},
        {PanelKey::Right, {{KEY_RIGHT, true}}},
        // The enter key and the line ends.
        {PanelKey::Enter, {{KEY_ENTER, true}, {'\n', false}, {'\r', false}}},
        // Backspace, delete and escape.
        {PanelKey::Back, {{KEY_BACKSPACE, true}, {127, false}, {8, false}, {27, false}}},
        // Other keys are no panel key.
        {std::nullopt,
         {{'q', false}, {' ', false}, {KEY_F(1), true}, {KEY_HOME, true}, {KEY_RESIZE, true}}},
        // Curses' key codes start at 0x101, where Unicode has letters such as U+0103 'ă': a
        // character with the value of a key code is no panel key, nor are character codes
        // given as key codes.
        {std::nullopt,
         {{KEY_UP, false}, {KEY_ENTER, false}, {KEY_BACKSPACE, false}, {'\n', true}, {27, true}}},
    };
    for (KeyCodes const& mapping : mappings) {
        for (auto const& [code, isKeyCode] : mapping.codes) {
            EXPECT_EQ(panelKeyFor(code, isKeyCode), mapping.panelKey)
                << "code " << code << (isKeyCode ? " (key code)" : " (character)");
        }
    }
}

TEST(KeyEventTest, EventsCompareKindKeyAndCharacter) {
    EXPECT_EQ(KeyEvent::panel(PanelKey::Up), KeyEvent::panel(PanelKey::Up));
    EXPECT_NE(KeyEvent::panel(PanelKey::Up), KeyEvent::panel(PanelKey::Down));
    EXPECT_EQ(KeyEvent::typed(U'q'), KeyEvent::typed(U'q'));
    EXPECT_NE(KeyEvent::typed(U'q'), KeyEvent::typed(U'l'));
    EXPECT_NE(KeyEvent::resize(), KeyEvent::closed());
    EXPECT_EQ(KeyEvent::panel(PanelKey::Enter).kind, KeyEvent::Kind::Panel);
    EXPECT_EQ(KeyEvent::typed(U'q').character, U'q');
}

/** A pseudo-terminal as an SSH session would give: the display and its key source use the
 *  terminal side, the test types on the other side as the user would. */
class TypedTerminal {
public:
    TypedTerminal() {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = 80;
        EXPECT_EQ(openpty(&user_, &terminal_, nullptr, nullptr, &size), 0);
        // Curses' output piles up on the user side; it is thrown away, so it must not block.
        fcntl(user_, F_SETFL, fcntl(user_, F_GETFL) | O_NONBLOCK);
        stream_ = fdopen(terminal_, "r+");
        EXPECT_NE(stream_, nullptr);
        display_ = std::make_unique<TerminalDisplay>(4, 1, stream_, stream_, "xterm-256color");
        keys_ = std::make_unique<TerminalKeySource>(*display_);
    }
    ~TypedTerminal() {
        keys_.reset();
        display_.reset();
        std::fclose(stream_);
        closeUserSide();
    }
    TypedTerminal(TypedTerminal const&) = delete;
    TypedTerminal& operator=(TypedTerminal const&) = delete;

    void type(std::string const& bytes) {
        discardOutput();
        EXPECT_EQ(write(user_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    void closeUserSide() {
        if (user_ >= 0) {
            close(user_);
            user_ = -1;
        }
    }

    TerminalDisplay& display() { return *display_; }
    TerminalKeySource& keys() { return *keys_; }

private:
    void discardOutput() const {
        char buffer[4096];
        while (read(user_, buffer, sizeof buffer) > 0) {
        }
    }

    yxfp_test::Utf8Locale locale_;
    int user_ = -1;
    int terminal_ = -1;
    std::FILE* stream_ = nullptr;
    std::unique_ptr<TerminalDisplay> display_;
    std::unique_ptr<TerminalKeySource> keys_;
};

TEST(TerminalKeySourceTest, NothingTypedGivesNothing) {
    TypedTerminal terminal;
    EXPECT_EQ(terminal.keys().poll(0ms), std::nullopt);
}

TEST(TerminalKeySourceTest, LongestTimeoutStillGivesTheTypedKey) {
    TypedTerminal terminal;
    terminal.type("k");
    EXPECT_EQ(terminal.keys().poll(std::chrono::milliseconds::max()), KeyEvent::typed(U'k'));
}

TEST(TerminalKeySourceTest, NegativeTimeoutDoesNotWait) {
    TypedTerminal terminal;
    EXPECT_EQ(terminal.keys().poll(-kLongWait), std::nullopt);
}

// What the user types on a fresh terminal and the events it gives, after which there are no
// more.
struct Typing {
    char const* what;
    std::string bytes;
    std::vector<KeyEvent> events;
};

TEST(TerminalKeySourceTest, TypedBytesGiveTheirKeyEvents) {
    Typing const typings[] = {
        // The arrow keys of an xterm in keypad mode, which curses switched on.
        {"arrows",
         "\x1bOA\x1bOB\x1bOD\x1bOC",
         {KeyEvent::panel(PanelKey::Up), KeyEvent::panel(PanelKey::Down),
          KeyEvent::panel(PanelKey::Left), KeyEvent::panel(PanelKey::Right)}},
        {"return is enter, delete and backspace are back",
         "\r\x7f\b",
         {KeyEvent::panel(PanelKey::Enter), KeyEvent::panel(PanelKey::Back),
          KeyEvent::panel(PanelKey::Back)}},
        {"other characters go to the application",
         "q\xC3\xA9",  // 'q' and 'é' in UTF-8
         {KeyEvent::typed(U'q'), KeyEvent::typed(U'é')}},
        {"function keys without panel meaning are skipped",
         "\x1bOP\x1bOHl",  // F1, Home, 'l'
         {KeyEvent::typed(U'l')}},
    };
    for (Typing const& typing : typings) {
        SCOPED_TRACE(typing.what);
        TypedTerminal terminal;
        terminal.type(typing.bytes);
        for (KeyEvent const& event : typing.events) {
            EXPECT_EQ(terminal.keys().poll(kLongWait), event);
        }
        EXPECT_EQ(terminal.keys().poll(0ms), std::nullopt);
    }
}

TEST(TerminalKeySourceTest, TerminalSizeChangeIsAResize) {
    TypedTerminal terminal;
    std::raise(SIGWINCH);
    EXPECT_EQ(terminal.keys().poll(kLongWait), KeyEvent::resize());
    EXPECT_EQ(terminal.keys().poll(0ms), std::nullopt);
}

TEST(TerminalKeySourceTest, HangUpIsClosedOnEveryPoll) {
    TypedTerminal terminal;
    terminal.closeUserSide();
    EXPECT_EQ(terminal.keys().poll(kLongWait), KeyEvent::closed());
    EXPECT_EQ(terminal.keys().poll(kLongWait), KeyEvent::closed());
}

// Input that is no terminal, pipe or socket (a file, /dev/null) ends after its last byte
// instead of being readable forever.
TEST(TerminalKeySourceTest, EndOfAFileIsClosed) {
    yxfp_test::Utf8Locale const locale;
    std::FILE* out = std::tmpfile();
    std::FILE* in = std::tmpfile();
    ASSERT_NE(out, nullptr);
    ASSERT_NE(in, nullptr);
    std::fputs("x", in);
    std::fflush(in);
    std::rewind(in);
    {
        TerminalDisplay display(4, 1, out, in, "xterm-256color");
        TerminalKeySource keys(display);
        EXPECT_EQ(keys.poll(kLongWait), KeyEvent::typed(U'x'));
        EXPECT_EQ(keys.poll(kLongWait), KeyEvent::closed());
    }
    std::fclose(in);
    std::fclose(out);
}

TEST(TerminalKeySourceTest, KeyTypedDuringTheWaitEndsItAtOnce) {
    TypedTerminal terminal;
    auto const start = std::chrono::steady_clock::now();
    auto key =
        std::async(std::launch::async, [&terminal] { return terminal.keys().poll(kLongWait); });
    terminal.type("x");
    EXPECT_EQ(key.get(), KeyEvent::typed(U'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - start, kLongWait / 2);
}

TEST(TerminalKeySourceTest, DrawingIsNotHeldUpByAWaitingPoll) {
    TypedTerminal terminal;
    std::promise<void> polling;
    auto key = std::async(std::launch::async, [&terminal, &polling] {
        polling.set_value();
        return terminal.keys().poll(kLongWait);
    });
    polling.get_future().wait();
    auto const start = std::chrono::steady_clock::now();
    DisplayBuffer frame(4, 1);
    frame.setLineContent(0, 0, u"Volt");
    EXPECT_TRUE(terminal.display().draw(frame));
    EXPECT_LT(std::chrono::steady_clock::now() - start, kLongWait / 2);
    terminal.type("x");
    EXPECT_EQ(key.get(), KeyEvent::typed(U'x'));
}

TEST(TerminalKeySourceTest, KeepsTheTerminalUsableAfterTheDisplayIsGone) {
    yxfp_test::Utf8Locale locale;
    int user = -1;
    int terminalSide = -1;
    ASSERT_EQ(openpty(&user, &terminalSide, nullptr, nullptr, nullptr), 0);
    std::FILE* const stream = fdopen(terminalSide, "r+");
    ASSERT_NE(stream, nullptr);
    auto display = std::make_unique<TerminalDisplay>(4, 1, stream, stream, "xterm-256color");
    TerminalKeySource keys(*display);
    display.reset();
    ASSERT_EQ(write(user, "z", 1), 1);
    EXPECT_EQ(keys.poll(kLongWait), KeyEvent::typed(U'z'));
    std::fclose(stream);
    close(user);
}

}  // namespace
