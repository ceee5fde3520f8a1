#pragma once

#include <frontpanelhw/code_page.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace yxfp_test {

/** A minimal xterm: feeds on the bytes curses sends to an "xterm-256color" terminal and keeps
 *  the resulting screen, so that a test can compare what a person would see instead of the
 *  escape sequences curses happened to pick. Understands the cursor motions, erasures,
 *  repetition, reverse video and line-drawing set that curses uses for this terminal type; any
 *  other control sequence fails the test, so that nothing is silently shown wrong. The screen
 *  grows as far as it is written to. */
class XtermScreen {
public:
    /** Interprets `bytes` (UTF-8 text and control sequences) from where the last call stopped. */
    void feed(std::string const& bytes) {
        pending_ += bytes;
        std::size_t used = 0;
        while (used < pending_.size()) {
            std::size_t const length = step(pending_, used);
            if (length == 0) {
                break;  // an incomplete sequence: wait for the rest
            }
            used += length;
        }
        pending_.erase(0, used);
    }

    /** The glyphs of row `row` from column `column` on, `count` of them, as UTF-8 (blank cells
     *  as spaces). */
    std::string text(unsigned row, unsigned column, unsigned count) const {
        std::string result;
        for (unsigned i = 0; i < count; ++i) {
            result += frontpanelhw::toUtf8(cellAt(row, column + i).glyph);
        }
        return result;
    }

    /** Rows `first` to `first + count - 1`, each as text(row, 0, columns): a piece of the screen
     *  to compare whole. */
    std::vector<std::string> rows(unsigned first, unsigned count, unsigned columns) const {
        std::vector<std::string> result;
        for (unsigned row = first; row < first + count; ++row) {
            result.push_back(text(row, 0, columns));
        }
        return result;
    }

    /** Which of those cells are in reverse video: '#' for reversed, '.' for not. */
    std::string reversed(unsigned row, unsigned column, unsigned count) const {
        std::string mask;
        for (unsigned i = 0; i < count; ++i) {
            mask += cellAt(row, column + i).reverse ? '#' : '.';
        }
        return mask;
    }

private:
    struct Cell {
        char32_t glyph = U' ';
        bool reverse = false;
    };

    Cell cellAt(unsigned row, unsigned column) const {
        if (row < cells_.size() && column < cells_[row].size()) {
            return cells_[row][column];
        }
        return Cell{};
    }

    void put(char32_t glyph) {
        if (cells_.size() <= row_) {
            cells_.resize(row_ + 1);
        }
        auto& line = cells_[row_];
        if (line.size() <= column_) {
            line.resize(column_ + 1);
        }
        line[column_] = Cell{lineDrawing_ ? lineDrawingGlyph(glyph) : glyph, reverse_};
        last_ = glyph;
        ++column_;
    }

    static char32_t lineDrawingGlyph(char32_t glyph) {
        static constexpr char32_t kCodes[] = U"qxlkmj";
        static constexpr char32_t kShown[] = U"─│┌┐└┘";
        for (std::size_t i = 0; kCodes[i] != U'\0'; ++i) {
            if (kCodes[i] == glyph) {
                return kShown[i];
            }
        }
        return glyph;
    }

    void eraseLine(unsigned from) {
        if (row_ < cells_.size() && cells_[row_].size() > from) {
            cells_[row_].resize(from);
        }
    }

    static unsigned parameter(std::vector<unsigned> const& parameters, std::size_t index,
                              unsigned fallback) {
        return index < parameters.size() && parameters[index] != 0 ? parameters[index] : fallback;
    }

    void controlSequence(std::string const& body, char final) {
        bool const isPrivate = !body.empty() && (body[0] == '?' || body[0] == '>');
        std::vector<unsigned> parameters{0};
        for (char c : body.substr(isPrivate ? 1 : 0)) {
            if (c == ';') {
                parameters.push_back(0);
            } else {
                parameters.back() = parameters.back() * 10 + static_cast<unsigned>(c - '0');
            }
        }
        unsigned const first = parameter(parameters, 0, 1);
        if (isPrivate) {
            EXPECT_TRUE(final == 'h' || final == 'l') << "unknown private sequence " << body;
            return;
        }
        switch (final) {
            case 'H':
                row_ = first - 1;
                column_ = parameter(parameters, 1, 1) - 1;
                return;
            case 'd':
                row_ = first - 1;
                return;
            case 'G':
                column_ = first - 1;
                return;
            case 'A':
                row_ -= std::min(row_, first);
                return;
            case 'B':
                row_ += first;
                return;
            case 'C':
                column_ += first;
                return;
            case 'D':
                column_ -= std::min(column_, first);
                return;
            case 'K':
                EXPECT_EQ(parameters[0], 0U) << "only erasing to the end of the line is known";
                eraseLine(column_);
                return;
            case 'J':
                EXPECT_EQ(parameters[0], 2U) << "only erasing the whole screen is known";
                cells_.clear();
                return;
            case 'X': {
                unsigned const column = column_;
                for (unsigned i = 0; i < first; ++i) {
                    put(U' ');
                }
                column_ = column;
                return;
            }
            case 'b':
                for (unsigned i = 0; i < first; ++i) {
                    put(last_);
                }
                return;
            case 'm':
                for (unsigned value : parameters) {
                    if (value == 0 || value == 27) {
                        reverse_ = false;
                    } else if (value == 7) {
                        reverse_ = true;
                    }
                }
                return;
            case 'r':  // scrolling region: the whole screen, cursor home
                row_ = 0;
                column_ = 0;
                return;
            case 'l':  // insert mode off
            case 't':  // window title stack
                return;
            default:
                ADD_FAILURE() << "unknown control sequence ESC [ " << body << ' ' << final;
        }
    }

    // Interprets one item at `at`; returns its length in bytes, 0 when it is incomplete.
    std::size_t step(std::string const& bytes, std::size_t at) {
        auto const byte = static_cast<unsigned char>(bytes[at]);
        std::size_t const left = bytes.size() - at;
        if (byte == 0x1B) {
            if (left < 2) {
                return 0;
            }
            char const kind = bytes[at + 1];
            if (kind == '[') {
                std::size_t end = at + 2;
                while (end < bytes.size() && (bytes[end] < 0x40 || bytes[end] > 0x7E)) {
                    ++end;
                }
                if (end == bytes.size()) {
                    return 0;
                }
                controlSequence(bytes.substr(at + 2, end - at - 2), bytes[end]);
                return end - at + 1;
            }
            if (kind == '(') {
                if (left < 3) {
                    return 0;
                }
                lineDrawing_ = bytes[at + 2] == '0';
                return 3;
            }
            EXPECT_TRUE(kind == '=' || kind == '>') << "unknown escape ESC " << kind;
            return 2;
        }
        if (byte < 0x20) {
            control(byte);
            return 1;
        }
        std::size_t const length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        if (left < length) {
            return 0;
        }
        char32_t glyph = length == 1 ? byte : byte & (0x3F >> (length - 1));
        for (std::size_t i = 1; i < length; ++i) {
            glyph = (glyph << 6) | (static_cast<unsigned char>(bytes[at + i]) & 0x3F);
        }
        put(glyph);
        return length;
    }

    void control(unsigned char byte) {
        switch (byte) {
            case '\b':
                column_ -= std::min(column_, 1U);
                return;
            case '\r':
                column_ = 0;
                return;
            case '\n':
                ++row_;
                return;
            default:
                ADD_FAILURE() << "unknown control character " << int{byte};
        }
    }

    std::vector<std::vector<Cell>> cells_;
    std::string pending_;
    unsigned row_ = 0;
    unsigned column_ = 0;
    bool reverse_ = false;
    bool lineDrawing_ = false;
    char32_t last_ = U' ';
};

}  // namespace yxfp_test
