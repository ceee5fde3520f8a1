#pragma once

#include <frontpanelhw/export.h>

#include <array>
#include <string>
#include <vector>

namespace frontpanelhw::drawing {

/** One cell of the panel: a 16-bit character code of the display's character set and whether
 *  the cell is shown inverted. Build it as an aggregate: `DisplayChar{u'A', false}`. */
struct DisplayChar {
    /** The code of the display's character set. */
    char16_t character;
    /** Shown inverted. */
    bool inverted;
};

/** Cells are equal when both the character and the inverted flag are equal. */
FRONTPANELHW_EXPORT bool operator==(DisplayChar const& lhs, DisplayChar const& rhs);
/** The negation of `operator==`. */
FRONTPANELHW_EXPORT bool operator!=(DisplayChar const& lhs, DisplayChar const& rhs);

/** A row of cells of any length; a copyable value. A line taken from a `DisplayBuffer` has the
 *  buffer's width, a line built by hand has as many cells as were added. Lines of up to
 *  `kInlineCells` cells keep their cells inside the object, so composing and copying the lines
 *  of a panel never touches the heap; longer lines move to the heap. */
class FRONTPANELHW_EXPORT DisplayLine {
public:
    /** Cells held without a heap allocation. */
    static constexpr unsigned kInlineCells = 48;

    /** An empty line without cells. */
    DisplayLine() = default;
    /** A copy of the cells of `other`. */
    DisplayLine(DisplayLine const& other);
    /** Makes the cells a copy of those of `other`. */
    DisplayLine& operator=(DisplayLine const& other);
    /** Takes the cells of `other`, which is left empty. */
    DisplayLine(DisplayLine&& other) noexcept;
    /** Takes the cells of `other`, which is left empty. */
    DisplayLine& operator=(DisplayLine&& other) noexcept;
    ~DisplayLine() = default;

    /** Appends one cell at the end. */
    void addCharacter(DisplayChar const& character);
    /** Appends `count` cells showing `text[0..count)`, all with the inverted flag `inverted`. */
    void appendText(char16_t const* text, unsigned count, bool inverted);
    /** Appends `count` cells showing `character`, all with the inverted flag `inverted`. */
    void appendFill(char16_t character, unsigned count, bool inverted);
    /** Replaces the cell at `index`. @throws std::out_of_range when index >= size(). */
    void setCharacter(unsigned index, DisplayChar const& character);
    /** Sets the inverted flag of the cells first..last (both included), clipped to the line;
     *  first > last changes nothing. */
    void setInverted(unsigned first, unsigned last, bool inverted);
    /** Makes the cells the characters of `text`, none inverted; the size becomes text.size(). */
    void setLine(std::u16string const& text);
    /** The characters of the line, without the inverted flags. */
    std::u16string getString() const;
    /** Number of cells. */
    unsigned size() const;
    /** The cell at `index`. @throws std::out_of_range when index >= size(). */
    DisplayChar const& getCharacter(unsigned index) const;
    /** The cells, `size()` of them, for copying a line in one go. */
    DisplayChar const* data() const;

private:
    DisplayChar* cells();
    void assign(DisplayChar const* cells, unsigned count);
    /** Makes room for `count` more cells and returns where they go; size() grows by `count`. */
    DisplayChar* grow(unsigned count);

    unsigned size_ = 0;
    std::array<DisplayChar, kInlineCells> inline_{};
    std::vector<DisplayChar> heap_;  // holds the cells once the line outgrows inline_
};

/** The image of a whole panel: `getLineCount()` lines of exactly `getChars()` cells each; a
 *  copyable value. Writes that fall outside the buffer are clipped, never an error, because the
 *  toolkit places aligned text whose start column may lie past the right edge. */
class FRONTPANELHW_EXPORT DisplayBuffer {
public:
    /** A blank buffer (spaces, not inverted) of `lines` lines of `chars` cells.
     *  @throws std::length_error when that many cells exceed what a vector can hold (on a
     *  32-bit target already beyond 2^32 / 4 cells); std::bad_alloc when memory runs out. */
    DisplayBuffer(unsigned chars, unsigned lines);

    /** Makes every cell a space, not inverted; the dimensions stay. */
    void clear();
    /** Width in cells. */
    unsigned getChars() const;
    /** Number of lines. */
    unsigned getLineCount() const;
    /** A copy of line `line`. @throws std::out_of_range when line >= getLineCount(). */
    DisplayLine getLine(unsigned line) const;
    /** The characters of line `line`. @throws std::out_of_range when line >= getLineCount(). */
    std::u16string getLineString(unsigned line) const;
    /** Replaces line `line` with `content` (characters and inverted flags), cut or padded with
     *  blank, non-inverted cells to getChars(). A line past the last is ignored. */
    void setDisplayLine(unsigned line, DisplayLine const& content);
    /** Writes `text` into line `line` from `column` on, clipped at the right edge. A column at
     *  or past the width (a wrapped-around huge value included) writes nothing, and so does a
     *  line past the last. The inverted flags are left untouched. */
    void setLineContent(unsigned line, unsigned column, std::u16string const& text);
    /** The cell at (column, line). @throws std::out_of_range outside the buffer. */
    DisplayChar const& getCell(unsigned column, unsigned line) const;

private:
    std::size_t offsetOf(unsigned line) const;
    void checkLine(unsigned line) const;

    unsigned chars_;
    unsigned lines_;
    std::vector<DisplayChar> cells_;  // line after line, chars_ cells each
};

}  // namespace frontpanelhw::drawing
