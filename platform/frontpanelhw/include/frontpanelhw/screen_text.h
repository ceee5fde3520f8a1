#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>

#include <string>
#include <vector>

namespace frontpanelhw {

/** A run of neighbouring columns of one line, both ends included (0-based). */
struct ColumnRange {
    /** The leftmost column of the run. */
    unsigned first;
    /** The rightmost column of the run (equal to `first` for a single column). */
    unsigned last;
};

/** Ranges are equal when both ends are equal. */
FRONTPANELHW_EXPORT bool operator==(ColumnRange const& lhs, ColumnRange const& rhs);

/** The runs of inverted cells of `line` of `frame`, left to right; empty when none is inverted
 *  or the line does not exist. */
FRONTPANELHW_EXPORT std::vector<ColumnRange> invertedRanges(drawing::DisplayBuffer const& frame,
                                                            unsigned line);

/** The cells of `line` of `frame` as UTF-8 text, each with the glyph of the panel's character
 *  set (`toUnicode`); empty when the line does not exist. */
FRONTPANELHW_EXPORT std::string lineText(drawing::DisplayBuffer const& frame, unsigned line);

/** Column runs as text: "0-18", "3, 6-8" (a run of one column is its number); empty for no
 *  runs. */
FRONTPANELHW_EXPORT std::string formatColumnRanges(std::vector<ColumnRange> const& ranges);

/** A screen as plain UTF-8 text: each line between '|' borders inside a '+--+' frame `width`
 *  columns wide; a line whose entry in `inverted` is not empty is followed, after its right
 *  border, by " < inverted " and that entry (as `formatColumnRanges` writes it). `inverted` may
 *  be shorter than `lines` (no inverted cells in the rest). Every line ends with '\n'. */
FRONTPANELHW_EXPORT std::string formatScreen(std::vector<std::string> const& lines,
                                             std::vector<std::string> const& inverted,
                                             unsigned width);

/** `frame` in the form of `formatScreen`, each cell with its glyph (`lineText`), e.g.
 *  "|>Output            | < inverted 0-18". The simulator's printed frames, the command-line
 *  client's screens and the testing kit's frame text are all this one form. */
FRONTPANELHW_EXPORT std::string formatFrame(drawing::DisplayBuffer const& frame);

}  // namespace frontpanelhw
