#pragma once

#include <yxfrontpanel/export.h>

#include <string>
#include <vector>

/** Conversions between narrow and display text, splitting, trimming and word wrapping. */
namespace yxfrontpanel::stringhelper {

/**
 * Widens every byte of @p text to one UTF-16 code unit of the same value (0..255).
 *
 * No character-set decoding happens: bytes 0x80..0xFF become U+0080..U+00FF and multi-byte UTF-8
 * sequences are widened byte by byte. The length is kept.
 */
YXFP_EXPORT std::u16string toU16(std::string const& text);

/**
 * Narrows every code unit of @p text to one byte by keeping its low 8 bits.
 *
 * The high byte is dropped (U+20AC becomes 0xAC). The length is kept.
 */
YXFP_EXPORT std::string toStr(std::u16string const& text);

/**
 * Removes, in place, all trailing spaces, line feeds, carriage returns and tabs.
 *
 * A text made only of these characters becomes empty; leading whitespace is never touched.
 */
YXFP_EXPORT void rTrim(std::u16string& text);

/**
 * Replaces the contents of @p parts with the pieces of @p text between @p delimiter.
 *
 * Every delimiter ends one piece, and the rest after the last delimiter is always appended, so
 * adjacent delimiters give empty pieces, a trailing delimiter gives a trailing empty piece and an
 * empty text gives one empty piece.
 *
 * @return the number of elements in @p parts afterwards (never 0).
 */
YXFP_EXPORT unsigned split(std::u16string const& text, std::vector<std::u16string>& parts,
                           char16_t delimiter);

/**
 * Greedily wraps one line without line feeds at its spaces into lines shorter than
 * @p width, appending every finished line to @p lines.
 *
 * Words are never cut. A line without spaces is appended unchanged, however long, and the result
 * is empty. Otherwise a word joins the current line only while word length plus current length
 * stays below @p width; else the right-trimmed current line is appended (even when empty) and
 * the word starts the next one. Hence a first word at least @p width long is preceded by an
 * empty line, and a longer word stands alone on a line wider than @p width. Runs of spaces inside
 * a line are kept, but a wrapped line never starts with spaces.
 *
 * @return the last, unfinished line, not yet appended to @p lines and not trimmed.
 */
YXFP_EXPORT std::u16string SplitLineAtWhitespaces(  // NOLINT(readability-identifier-naming)
    std::u16string const& line, unsigned width, std::vector<std::u16string>& lines);

/**
 * Wraps @p text into lines for a view @p width characters wide.
 *
 * The text is split at line feeds. A piece that fits the width is right-trimmed and kept (an
 * empty piece gives an empty line, so a trailing line feed yields a final empty line, and the
 * carriage return of CR LF line ends is trimmed away). A longer piece is wrapped with
 * SplitLineAtWhitespaces, whose non-empty last line is right-trimmed and appended. With width 0
 * every non-empty piece is wrapped.
 */
YXFP_EXPORT std::vector<std::u16string> splitStringToLines(std::u16string const& text,
                                                           unsigned width);

}  // namespace yxfrontpanel::stringhelper
