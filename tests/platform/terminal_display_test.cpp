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
#include <vector>

#include "display_lines.h"
#include "locale_guard.h"
#include "xterm_screen.h"
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::TerminalDisplay;
using frontpanelhw::TerminalOrigin;
using frontpanelhw::toUtf8;
using frontpanelhw::drawing::DisplayBuffer;

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

// `frame` with the cells `first` to `last` of the plain line `line` inverted.
DisplayBuffer withInverted(DisplayBuffer frame, unsigned first, unsigned last, unsigned line) {
    frame.setDisplayLine(line, yxfp_test::invertedLine(frame.getLineString(line), first, last));
    return frame;
}

bool contains(std::string const& bytes, std::string const& part) {
    return bytes.find(part) != std::string::npos;
}

using Rows = std::vector<std::string>;

/** Each test starts with a fresh captured terminal. */
class TerminalDisplayTest : public testing::Test {
protected:
    /** Rows `first` on, `columns` wide, of the terminal's screen after everything sent. */
    Rows rows(unsigned first, unsigned count, unsigned columns) {
        return terminal.screen().rows(first, count, columns);
    }

    CapturedTerminal terminal;
};

TEST_F(TerminalDisplayTest, ReportsItsSize) {
    auto const display = terminal.display(20, 4);
    EXPECT_EQ(display->getChars(), 20U);
    EXPECT_EQ(display->getLines(), 4U);
}

TEST_F(TerminalDisplayTest, ShowsTheFrameAroundTheEmptyPanelAtOnce) {
    auto const display = terminal.display(6, 2);
    EXPECT_EQ(rows(0, 5, 9),
              (Rows{"┌──────┐ ", "│      │ ", "│      │ ", "└──────┘ ", "         "}));
}

TEST_F(TerminalDisplayTest, FrameStartsAtTheOrigin) {
    auto const display = terminal.display(3, 1, TerminalOrigin{2, 4});
    EXPECT_EQ(rows(1, 4, 10), (Rows{"          ", "    ┌───┐ ", "    │   │ ", "    └───┘ "}));
}

TEST_F(TerminalDisplayTest, OriginBeyondTheTerminalShowsNothing) {
    unsigned const far = std::numeric_limits<unsigned>::max();
    auto const display = terminal.display(6, 2, TerminalOrigin{far, far});
    EXPECT_TRUE(display->draw(frameOf(6, u"Volt", u"Amp")));
    display->setStatus("LOCAL");
    EXPECT_EQ(rows(0, 30, 100), Rows(30, std::string(100, ' ')));
}

TEST_F(TerminalDisplayTest, PanelWithoutCellsIsAnEmptyFrame) {
    auto const display = terminal.display(0, 0);
    EXPECT_TRUE(display->draw(DisplayBuffer(0, 0)));
    EXPECT_EQ(rows(0, 2, 3), (Rows{"┌┐ ", "└┘ "}));
}

TEST_F(TerminalDisplayTest, CellsAreShownInsideTheFrame) {
    auto const display = terminal.display(6, 2, TerminalOrigin{1, 2});
    EXPECT_TRUE(display->draw(frameOf(6, u"Volt", u"12.5 V")));
    EXPECT_EQ(rows(1, 4, 10), (Rows{"  ┌──────┐", "  │Volt  │", "  │12.5 V│", "  └──────┘"}));
}

// Panel symbols are shown as their glyphs; a wide character as a one-column replacement.
TEST_F(TerminalDisplayTest, CellsAreShownAsOneColumnGlyphs) {
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"\x1E\x1F\xDB\xB0\xF8\xFB", u"\x01\x7F\x80\xFE"));
    EXPECT_EQ(rows(1, 2, 8), (Rows{"│▲▼█░°√│", "│☺⌂Ç■  │"}));
    display->draw(frameOf(6, u"a\u4E2Db", u""));
    EXPECT_EQ(rows(1, 2, 8), (Rows{"│a\uFFFDb   │", "│      │"}));
}

TEST_F(TerminalDisplayTest, InvertedCellsAreShownInReverseVideo) {
    auto const display = terminal.display(6, 2);
    display->draw(withInverted(frameOf(6, u"Volt", u"Amp"), 1, 3, 1));
    auto const& screen = terminal.screen();
    EXPECT_EQ(screen.reversed(1, 0, 8), "........");
    EXPECT_EQ(screen.reversed(2, 0, 8), "..###...");
    EXPECT_EQ(screen.text(2, 0, 8), "│Amp   │");
}

TEST_F(TerminalDisplayTest, SecondDrawSendsOnlyTheChangedCell) {
    auto const display = terminal.display(20, 2);
    terminal.takeOutput();
    display->draw(frameOf(20, u"Measurement  12.50 V", u"Range  auto   Filter"));
    std::string const first = terminal.takeOutput();
    display->draw(frameOf(20, u"Measurement  12.50 V", u"Range  auto \x1E Filter"));
    std::string const second = terminal.takeOutput();
    EXPECT_TRUE(contains(second, toUtf8(U'▲'))) << second;
    EXPECT_FALSE(contains(second, "Measurement")) << second;
    EXPECT_LT(second.size() * 4, first.size()) << first << "\n" << second;
    EXPECT_EQ(rows(2, 1, 22), Rows{"│Range  auto ▲ Filter│"});
}

TEST_F(TerminalDisplayTest, ChangedInversionAloneIsSent) {
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

TEST_F(TerminalDisplayTest, UnchangedFrameSendsNothing) {
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"Volt", u"\x1E"));
    terminal.takeOutput();
    display->draw(frameOf(6, u"Volt", u"\x1E"));
    EXPECT_EQ(terminal.takeOutput(), "");
}

TEST_F(TerminalDisplayTest, SmallerBufferShowsTheRestOfThePanelBlank) {
    auto const display = terminal.display(6, 2);
    display->draw(frameOf(6, u"abcdef", u"ghijkl"));
    DisplayBuffer small(2, 1);
    small.setLineContent(0, 0, u"XY");
    display->draw(small);
    EXPECT_EQ(rows(1, 2, 8), (Rows{"│XY    │", "│      │"}));
}

TEST_F(TerminalDisplayTest, LargerBufferIsClippedToThePanel) {
    auto const display = terminal.display(4, 2);
    DisplayBuffer large(8, 3);
    large.setLineContent(0, 0, u"abcdWXYZ");
    large.setLineContent(1, 0, u"efghWXYZ");
    large.setLineContent(2, 0, u"hidden");
    display->draw(large);
    EXPECT_EQ(rows(1, 4, 8), (Rows{"│abcd│  ", "│efgh│  ", "└────┘  ", "        "}));
}

TEST_F(TerminalDisplayTest, StatusIsShownOnTheLineBelowTheFrame) {
    auto const display = terminal.display(6, 2, TerminalOrigin{1, 2});
    display->setStatus("LOCAL ▲ q quit");
    EXPECT_EQ(rows(4, 2, 18), (Rows{"  └──────┘        ", "  LOCAL ▲ q quit  "}));
}

// The status line below a 6 x 2 panel after each status in turn.
TEST_F(TerminalDisplayTest, StatusReplacesTheWholeOldOneAndStaysOnItsLine) {
    auto const display = terminal.display(6, 2);
    display->setStatus("REMOTE  keys locked");
    display->setStatus("LOCAL");
    EXPECT_EQ(rows(4, 1, 20), Rows{"LOCAL               "});
    display->setStatus(
        "a\xFF"
        "b");  // invalid bytes are shown as a replacement
    EXPECT_EQ(rows(4, 2, 4), (Rows{"a\uFFFDb ", "    "}));
    // Wider than any terminal curses was told about: nothing may wrap onto the next line.
    display->setStatus(std::string(1000, 'x'));
    EXPECT_EQ(rows(4, 2, 3), (Rows{"xxx", "   "}));
}

TEST_F(TerminalDisplayTest, RepaintClearsTheTerminalAndShowsEverythingAgain) {
    auto const display = terminal.display(6, 2);
    display->draw(withInverted(frameOf(6, u"Volt", u"\x1E"), 0, 0, 1));
    display->setStatus("LOCAL");
    terminal.takeOutput();
    display->repaint();
    std::string const shown = terminal.takeOutput();
    EXPECT_TRUE(contains(shown, "\x1b[2J")) << shown;  // starts from a cleared terminal
    EXPECT_EQ(rows(0, 5, 8), (Rows{"┌──────┐", "│Volt  │", "│▲     │", "└──────┘", "LOCAL   "}));
    EXPECT_EQ(terminal.screen().reversed(2, 0, 8), ".#......");
}

TEST_F(TerminalDisplayTest, DestructorRestoresTheTerminal) {
    auto display = terminal.display(6, 2);
    terminal.takeOutput();
    display.reset();
    std::string const shown = terminal.takeOutput();
    // Leaves the alternate screen and shows the cursor again.
    EXPECT_TRUE(contains(shown, "\x1b[?1049l")) << shown;
    EXPECT_TRUE(contains(shown, "\x1b[?25h")) << shown;
}

TEST_F(TerminalDisplayTest, UnknownTerminalTypeThrowsNamingIt) {
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

TEST_F(TerminalDisplayTest, ControllingTerminalWithoutTermThrows) {
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

TEST_F(TerminalDisplayTest, MissingStreamThrows) {
    EXPECT_THROW(TerminalDisplay(6, 2, nullptr, stdin, "xterm-256color"), std::runtime_error);
}

}  // namespace
