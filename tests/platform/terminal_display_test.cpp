#include <frontpanelhw/code_page.h>
#include <frontpanelhw/terminal_display.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include "locale_guard.h"
#include "xterm_screen.h"
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::TerminalDisplay;
using frontpanelhw::TerminalOrigin;
using frontpanelhw::toUtf8;
using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::drawing::DisplayLine;

/** A terminal that writes into a scratch file, so that a test can read every byte curses sent
 *  and look at the screen they make. The input is an empty file: these tests press no keys. */
class CapturedTerminal {
public:
    CapturedTerminal() : out_(std::tmpfile()), in_(std::tmpfile()) {
        EXPECT_NE(out_, nullptr);
        EXPECT_NE(in_, nullptr);
    }
    ~CapturedTerminal() {
        std::fclose(out_);
        std::fclose(in_);
    }
    CapturedTerminal(CapturedTerminal const&) = delete;
    CapturedTerminal& operator=(CapturedTerminal const&) = delete;

    std::unique_ptr<TerminalDisplay> display(unsigned chars, unsigned lines,
                                             TerminalOrigin origin = {}) {
        return std::make_unique<TerminalDisplay>(chars, lines, out_, in_, "xterm-256color", origin);
    }

    /** The bytes written since the last call; they are shown on screen() too. */
    std::string takeOutput() {
        std::fflush(out_);
        int const descriptor = fileno(out_);
        struct stat status {};
        EXPECT_EQ(fstat(descriptor, &status), 0);
        auto const size = static_cast<std::size_t>(status.st_size);
        std::string bytes(size - taken_, '\0');
        EXPECT_EQ(pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(taken_)),
                  static_cast<ssize_t>(bytes.size()));
        taken_ = size;
        screen_.feed(bytes);
        return bytes;
    }

    /** The terminal's screen after everything written so far. */
    yxfp_test::XtermScreen const& screen() {
        takeOutput();
        return screen_;
    }

private:
    yxfp_test::Utf8Locale locale_;
    std::FILE* out_;
    std::FILE* in_;
    std::size_t taken_ = 0;
    yxfp_test::XtermScreen screen_;
};

DisplayBuffer frameOf(unsigned chars, std::u16string const& line0, std::u16string const& line1) {
    DisplayBuffer frame(chars, 2);
    frame.setLineContent(0, 0, line0);
    frame.setLineContent(1, 0, line1);
    return frame;
}

DisplayBuffer withInverted(DisplayBuffer frame, unsigned first, unsigned last, unsigned line) {
    DisplayLine cells = frame.getLine(line);
    cells.setInverted(first, last, true);
    frame.setDisplayLine(line, cells);
    return frame;
}

bool contains(std::string const& bytes, std::string const& part) {
    return bytes.find(part) != std::string::npos;
}

TEST(TerminalDisplayTest, ReportsItsSize) {
    CapturedTerminal terminal;
    auto const display = terminal.display(20, 4);
    EXPECT_EQ(display->getChars(), 20U);
    EXPECT_EQ(display->getLines(), 4U);
}

TEST(TerminalDisplayTest, ShowsTheFrameAroundTheEmptyPanelAtOnce) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(0, 0, 9), "┌──────┐ ");
    EXPECT_EQ(screen.text(1, 0, 9), "│      │ ");
    EXPECT_EQ(screen.text(2, 0, 9), "│      │ ");
    EXPECT_EQ(screen.text(3, 0, 9), "└──────┘ ");
    EXPECT_EQ(screen.text(4, 0, 9), "         ");
}

TEST(TerminalDisplayTest, FrameStartsAtTheOrigin) {
    CapturedTerminal terminal;
    auto const display = terminal.display(3, 1, TerminalOrigin{2, 4});
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(1, 0, 10), "          ");
    EXPECT_EQ(screen.text(2, 0, 10), "    ┌───┐ ");
    EXPECT_EQ(screen.text(3, 0, 10), "    │   │ ");
    EXPECT_EQ(screen.text(4, 0, 10), "    └───┘ ");
}

TEST(TerminalDisplayTest, OriginBeyondTheTerminalShowsNothing) {
    CapturedTerminal terminal;
    unsigned const far = std::numeric_limits<unsigned>::max();
    auto const display = terminal.display(6, 2, TerminalOrigin{far, far});
    EXPECT_TRUE(display->draw(frameOf(6, u"Volt", u"Amp")));
    display->setStatus("LOCAL");
    auto const& screen = terminal.screen();
    for (unsigned row = 0; row < 30; ++row) {
        EXPECT_EQ(screen.text(row, 0, 100), std::string(100, ' ')) << "row " << row;
    }
}

TEST(TerminalDisplayTest, PanelWithoutCellsIsAnEmptyFrame) {
    CapturedTerminal terminal;
    auto const display = terminal.display(0, 0);
    EXPECT_TRUE(display->draw(DisplayBuffer(0, 0)));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(0, 0, 3), "┌┐ ");
    EXPECT_EQ(screen.text(1, 0, 3), "└┘ ");
}

TEST(TerminalDisplayTest, DrawReturnsTrue) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    EXPECT_TRUE(display->draw(frameOf(6, u"Volt", u"")));
}

TEST(TerminalDisplayTest, CellsAreShownInsideTheFrame) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2, TerminalOrigin{1, 2});
    display->draw(frameOf(6, u"Volt", u"12.5 V"));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(1, 0, 10), "  ┌──────┐");
    EXPECT_EQ(screen.text(2, 0, 10), "  │Volt  │");
    EXPECT_EQ(screen.text(3, 0, 10), "  │12.5 V│");
    EXPECT_EQ(screen.text(4, 0, 10), "  └──────┘");
}

TEST(TerminalDisplayTest, PanelSymbolsAreShownAsTheirGlyphs) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"\x1E\x1F\xDB\xB0\xF8\xFB", u"\x01\x7F\x80\xFE"));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(1, 0, 8), "│▲▼█░°√│");
    EXPECT_EQ(screen.text(2, 0, 8), "│☺⌂Ç■  │");
}

TEST(TerminalDisplayTest, InvertedCellsAreShownInReverseVideo) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(withInverted(frameOf(6, u"Volt", u"Amp"), 1, 3, 1));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.reversed(1, 0, 8), "........");
    EXPECT_EQ(screen.reversed(2, 0, 8), "..###...");
    EXPECT_EQ(screen.text(2, 0, 8), "│Amp   │");
}

TEST(TerminalDisplayTest, SecondDrawSendsOnlyTheChangedCell) {
    CapturedTerminal terminal;
    auto const display = terminal.display(20, 2);
    terminal.takeOutput();
    display->draw(frameOf(20, u"Measurement  12.50 V", u"Range  auto   Filter"));
    std::string const first = terminal.takeOutput();
    display->draw(frameOf(20, u"Measurement  12.50 V", u"Range  auto \x1E Filter"));
    std::string const second = terminal.takeOutput();
    EXPECT_TRUE(contains(second, toUtf8(U'▲'))) << second;
    EXPECT_FALSE(contains(second, "Measurement")) << second;
    EXPECT_LT(second.size() * 4, first.size()) << first << "\n" << second;
    EXPECT_EQ(terminal.screen().text(2, 0, 22), "│Range  auto ▲ Filter│");
}

TEST(TerminalDisplayTest, ChangedInversionAloneIsSent) {
    CapturedTerminal terminal;
    auto const display = terminal.display(20, 2);
    DisplayBuffer const plain = frameOf(20, u"Measurement  12.50 V", u"Range  auto   Filter");
    display->draw(plain);
    std::string const first = terminal.takeOutput();
    display->draw(withInverted(plain, 0, 0, 1));
    std::string const second = terminal.takeOutput();
    EXPECT_FALSE(contains(second, "Measurement")) << second;
    EXPECT_LT(second.size() * 4, first.size()) << first << "\n" << second;
    EXPECT_EQ(terminal.screen().reversed(2, 0, 22), ".#....................");
}

TEST(TerminalDisplayTest, UnchangedFrameSendsNothing) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"Volt", u"\x1E"));
    terminal.takeOutput();
    display->draw(frameOf(6, u"Volt", u"\x1E"));
    EXPECT_EQ(terminal.takeOutput(), "");
}

TEST(TerminalDisplayTest, WideCharacterIsShownAsOneColumnReplacement) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"a\u4E2Db", u""));
    EXPECT_EQ(terminal.screen().text(1, 0, 8), "│a\uFFFDb   │");
}

TEST(TerminalDisplayTest, SmallerBufferShowsTheRestOfThePanelBlank) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"abcdef", u"ghijkl"));
    DisplayBuffer small(2, 1);
    small.setLineContent(0, 0, u"XY");
    display->draw(small);
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(1, 0, 8), "│XY    │");
    EXPECT_EQ(screen.text(2, 0, 8), "│      │");
}

TEST(TerminalDisplayTest, LargerBufferIsClippedToThePanel) {
    CapturedTerminal terminal;
    auto const display = terminal.display(4, 2);
    DisplayBuffer large(8, 3);
    large.setLineContent(0, 0, u"abcdWXYZ");
    large.setLineContent(1, 0, u"efghWXYZ");
    large.setLineContent(2, 0, u"hidden");
    display->draw(large);
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(1, 0, 8), "│abcd│  ");
    EXPECT_EQ(screen.text(2, 0, 8), "│efgh│  ");
    EXPECT_EQ(screen.text(3, 0, 8), "└────┘  ");
    EXPECT_EQ(screen.text(4, 0, 8), "        ");
}

TEST(TerminalDisplayTest, StatusIsShownOnTheLineBelowTheFrame) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2, TerminalOrigin{1, 2});
    display->setStatus("LOCAL ▲ q quit");
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(4, 0, 18), "  └──────┘        ");
    EXPECT_EQ(screen.text(5, 0, 18), "  LOCAL ▲ q quit  ");
}

TEST(TerminalDisplayTest, ShorterStatusReplacesTheWholeOldOne) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->setStatus("REMOTE  keys locked");
    display->setStatus("LOCAL");
    EXPECT_EQ(terminal.screen().text(4, 0, 20), "LOCAL               ");
}

TEST(TerminalDisplayTest, InvalidStatusBytesAreShownAsReplacement) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->setStatus(
        "a\xFF"
        "b");
    EXPECT_EQ(terminal.screen().text(4, 0, 4), "a\uFFFDb ");
}

TEST(TerminalDisplayTest, StatusStopsAtTheRightEdgeOfTheTerminal) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    // Wider than any terminal curses was told about: nothing may wrap onto the next line.
    display->setStatus(std::string(1000, 'x'));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(4, 0, 3), "xxx");
    EXPECT_EQ(screen.text(5, 0, 3), "   ");
}

TEST(TerminalDisplayTest, RepaintClearsTheTerminalAndShowsEverythingAgain) {
    CapturedTerminal terminal;
    auto const display = terminal.display(6, 2);
    display->draw(withInverted(frameOf(6, u"Volt", u"\x1E"), 0, 0, 1));
    display->setStatus("LOCAL");
    terminal.takeOutput();
    display->repaint();
    std::string const shown = terminal.takeOutput();
    EXPECT_TRUE(contains(shown, "\x1b[2J")) << shown;  // starts from a cleared terminal
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.text(0, 0, 8), "┌──────┐");
    EXPECT_EQ(screen.text(1, 0, 8), "│Volt  │");
    EXPECT_EQ(screen.text(2, 0, 8), "│▲     │");
    EXPECT_EQ(screen.reversed(2, 0, 8), ".#......");
    EXPECT_EQ(screen.text(3, 0, 8), "└──────┘");
    EXPECT_EQ(screen.text(4, 0, 8), "LOCAL   ");
}

TEST(TerminalDisplayTest, DestructorRestoresTheTerminal) {
    CapturedTerminal terminal;
    auto display = terminal.display(6, 2);
    terminal.takeOutput();
    display.reset();
    std::string const shown = terminal.takeOutput();
    // Leaves the alternate screen and shows the cursor again.
    EXPECT_TRUE(contains(shown, "\x1b[?1049l")) << shown;
    EXPECT_TRUE(contains(shown, "\x1b[?25h")) << shown;
}

TEST(TerminalDisplayTest, UnknownTerminalTypeThrowsNamingIt) {
    CapturedTerminal terminal;
    std::FILE* const scratch = std::tmpfile();
    ASSERT_NE(scratch, nullptr);
    try {
        TerminalDisplay display(6, 2, scratch, scratch, "no-such-terminal-type");
        ADD_FAILURE() << "no exception for an unknown terminal type";
    } catch (std::runtime_error const& error) {
        EXPECT_TRUE(contains(error.what(), "'no-such-terminal-type' is not in the terminfo"))
            << error.what();
    }
    std::fclose(scratch);
}

TEST(TerminalDisplayTest, ControllingTerminalWithoutTermThrows) {
    // Restores $TERM and the locale, which taking over the controlling terminal sets.
    struct Environment {
        char const* term = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe)
        std::string savedTerm = term != nullptr ? term : "";
        std::string locale = std::setlocale(LC_ALL, nullptr);  // NOLINT(concurrency-mt-unsafe)
        ~Environment() {
            if (term != nullptr) {
                setenv("TERM", savedTerm.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
            }
            std::setlocale(LC_ALL, locale.c_str());  // NOLINT(concurrency-mt-unsafe)
        }
    } const environment;
    unsetenv("TERM");  // NOLINT(concurrency-mt-unsafe): single-threaded test
    EXPECT_THROW(TerminalDisplay(6, 2), std::runtime_error);
}

TEST(TerminalDisplayTest, MissingStreamThrows) {
    EXPECT_THROW(TerminalDisplay(6, 2, nullptr, stdin, "xterm-256color"), std::runtime_error);
}

}  // namespace
