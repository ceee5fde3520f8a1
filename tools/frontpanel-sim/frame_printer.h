#pragma once

#include <frontpanelhw/display_types.h>

#include <string>

namespace frontpanelsim {

/** A frame as plain UTF-8 text: the panel's lines between '|' borders inside a '+--+' frame,
 *  every cell shown with its glyph of the panel's character set. A line with inverted cells is
 *  followed, after its right border, by " < inverted" and the inverted columns (0-based, runs
 *  as first-last), e.g. "|>Output            | < inverted 0-18". */
std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame);

/** The inverted columns of one line of `frame` as "0-18" or "3, 6-8"; empty when none are. */
std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame, unsigned line);

}  // namespace frontpanelsim
