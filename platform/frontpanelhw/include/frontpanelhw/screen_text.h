#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>

#include <string>
#include <vector>

namespace frontpanelhw {

/** A run of neighbouring columns of one line, both ends included (0-based). */
struct ColumnRange {
    unsigned first;
    unsigned last;
};

FRONTPANELHW_EXPORT bool operator==(ColumnRange const& lhs, ColumnRange const& rhs);

/** The runs of inverted cells of `line` of `frame`, left to right; empty when none is inverted
 *  or the line does not exist. */
FRONTPANELHW_EXPORT std::vector<ColumnRange> invertedRanges(drawing::DisplayBuffer const& frame,
                                                            unsigned line);

/** The cells of `line` of `frame` as UTF-8 text, each with the glyph of the panel's character
 *  set (`toUnicode`); empty when the line does not exist. */
FRONTPANELHW_EXPORT std::string lineText(drawing::DisplayBuffer const& frame, unsigned line);

}  // namespace frontpanelhw
