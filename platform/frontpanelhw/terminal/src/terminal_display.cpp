#include <frontpanelhw/code_page.h>
#include <frontpanelhw/frame_diff.h>
#include <frontpanelhw/terminal_display.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <utility>

#include "terminal_session.h"

namespace frontpanelhw {

using drawing::CellPosition;
using drawing::DisplayBuffer;
using drawing::DisplayChar;

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

// Far beyond any terminal, small enough that adding the panel's size never overflows an int.
constexpr unsigned kMaxCoordinate = 1U << 15;

int coordinate(unsigned value) { return static_cast<int>(std::min(value, kMaxCoordinate)); }

/** Terminal positions of the frame, the panel cells inside it and the status line below. */
struct Layout {
    int top;
    int left;
    int chars;
    int lines;

    Layout(TerminalOrigin origin, unsigned panelChars, unsigned panelLines)
        : top(coordinate(origin.row)),
          left(coordinate(origin.column)),
          chars(coordinate(panelChars)),
          lines(coordinate(panelLines)) {}

    int bottom() const { return top + lines + 1; }
    int right() const { return left + chars + 1; }
    int statusRow() const { return bottom() + 1; }
};

// A glyph that takes exactly one terminal column, so that a wide or zero-width character can
// never shift the rest of the line or the frame.
wchar_t oneColumnGlyph(wchar_t glyph) {
    if (wcwidth(glyph) == 1) {
        return glyph;
    }
    return wcwidth(kReplacement) == 1 ? kReplacement : L'?';
}

void putGlyph(WINDOW* window, int row, int column, wchar_t glyph, attr_t attributes) {
    wchar_t const text[] = {glyph, L'\0'};
    cchar_t shown;
    setcchar(&shown, text, attributes, 0, nullptr);
    // Outside the terminal this fails and the cell is simply not shown.
    mvwadd_wch(window, row, column, &shown);
}

void paintFrame(WINDOW* window, Layout const& layout) {
    mvwadd_wch(window, layout.top, layout.left, WACS_ULCORNER);
    mvwhline_set(window, layout.top, layout.left + 1, WACS_HLINE, layout.chars);
    mvwadd_wch(window, layout.top, layout.right(), WACS_URCORNER);
    mvwvline_set(window, layout.top + 1, layout.left, WACS_VLINE, layout.lines);
    mvwvline_set(window, layout.top + 1, layout.right(), WACS_VLINE, layout.lines);
    mvwadd_wch(window, layout.bottom(), layout.left, WACS_LLCORNER);
    mvwhline_set(window, layout.bottom(), layout.left + 1, WACS_HLINE, layout.chars);
    mvwadd_wch(window, layout.bottom(), layout.right(), WACS_LRCORNER);
}

void paintCells(WINDOW* window, Layout const& layout, DisplayBuffer const& frame,
                std::vector<CellPosition> const& cells) {
    for (CellPosition const& cell : cells) {
        DisplayChar const& shown = frame.getCell(cell.column, cell.line);
        putGlyph(window, layout.top + 1 + static_cast<int>(cell.line),
                 layout.left + 1 + static_cast<int>(cell.column),
                 oneColumnGlyph(static_cast<wchar_t>(toUnicode(shown.character))),
                 shown.inverted ? A_REVERSE : A_NORMAL);
    }
}

// The status text is decoded as curses decodes text: in the locale's multibyte encoding. It is
// written glyph by glyph so that it stops at the right edge instead of wrapping.
void paintStatus(WINDOW* window, Layout const& layout, std::string const& text) {
    int const width = getmaxx(window);
    int column = layout.left;
    std::mbstate_t state{};
    char const* next = text.data();
    char const* const end = text.data() + text.size();
    while (next < end) {
        wchar_t glyph = L'?';
        // mbrtowc keeps its shift state in `state`, not in a global.
        std::size_t const length =
            // NOLINTNEXTLINE(concurrency-mt-unsafe)
            std::mbrtowc(&glyph, next, static_cast<std::size_t>(end - next), &state);
        if (length == static_cast<std::size_t>(-1) || length == static_cast<std::size_t>(-2)) {
            glyph = kReplacement;
            state = std::mbstate_t{};
            next += 1;
        } else {
            next += std::max<std::size_t>(length, 1);
        }
        glyph = oneColumnGlyph(glyph);
        if (column >= width) {
            break;
        }
        putGlyph(window, layout.statusRow(), column++, glyph, A_NORMAL);
    }
    if (column < width) {
        wmove(window, layout.statusRow(), column);
        wclrtoeol(window);
    }
}

// The panel cells `buffer` gives, cut or padded with blank cells to the panel's size.
DisplayBuffer fitted(DisplayBuffer const& buffer, unsigned chars, unsigned lines) {
    if (buffer.getChars() == chars && buffer.getLineCount() == lines) {
        return buffer;
    }
    DisplayBuffer panel(chars, lines);
    for (unsigned line = 0; line < std::min(lines, buffer.getLineCount()); ++line) {
        panel.setDisplayLine(line, buffer.getLine(line));
    }
    return panel;
}

std::shared_ptr<detail::TerminalSession> controllingTerminal() {
    // Curses encodes glyphs for the terminal in the locale's encoding; the environment's
    // locale is the one the user's terminal is set up for.
    std::setlocale(LC_ALL, "");  // NOLINT(concurrency-mt-unsafe): before any thread draws
    return std::make_shared<detail::TerminalSession>(stdout, stdin, nullptr);
}

}  // namespace

TerminalDisplay::TerminalDisplay(unsigned chars, unsigned lines, TerminalOrigin origin)
    : TerminalDisplay(chars, lines, controllingTerminal(), origin) {}

TerminalDisplay::TerminalDisplay(unsigned chars, unsigned lines, std::FILE* out, std::FILE* in,
                                 std::string const& terminalType, TerminalOrigin origin)
    : TerminalDisplay(chars, lines,
                      std::make_shared<detail::TerminalSession>(out, in, terminalType.c_str()),
                      origin) {}

TerminalDisplay::TerminalDisplay(unsigned chars, unsigned lines,
                                 std::shared_ptr<detail::TerminalSession> session,
                                 TerminalOrigin origin)
    : chars_(chars), lines_(lines), origin_(origin), session_(std::move(session)) {
    session_->run([this](WINDOW* window) {
        Layout const layout(origin_, chars_, lines_);
        paintFrame(window, layout);
        wrefresh(window);
    });
}

TerminalDisplay::~TerminalDisplay() = default;

unsigned TerminalDisplay::getLines() const { return lines_; }

unsigned TerminalDisplay::getChars() const { return chars_; }

bool TerminalDisplay::draw(DisplayBuffer const& buffer) {
    DisplayBuffer frame = fitted(buffer, chars_, lines_);
    session_->run([this, &frame](WINDOW* window) {
        paintCells(window, Layout(origin_, chars_, lines_), frame,
                   drawing::changedCells(lastFrame_, frame));
        lastFrame_ = std::move(frame);
        wrefresh(window);
    });
    return true;
}

void TerminalDisplay::setStatus(std::string const& text) {
    session_->run([this, &text](WINDOW* window) {
        status_ = text;
        paintStatus(window, Layout(origin_, chars_, lines_), status_);
        wrefresh(window);
    });
}

void TerminalDisplay::repaint() {
    session_->run([this](WINDOW* window) {
        Layout const layout(origin_, chars_, lines_);
        werase(window);
        paintFrame(window, layout);
        if (lastFrame_) {
            paintCells(window, layout, *lastFrame_,
                       drawing::changedCells(std::nullopt, *lastFrame_));
        }
        paintStatus(window, layout, status_);
        clearok(window, TRUE);
        wrefresh(window);
    });
}

}  // namespace frontpanelhw
