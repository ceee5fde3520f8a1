#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/testing/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace yxfrontpanel::testing {

/** A frame as plain UTF-8 text, the form `frontpanel-sim --print` writes: the panel's lines
 *  between '|' borders inside a '+--+' frame, every cell shown with its glyph of the panel's
 *  character set. A line with inverted cells is followed, after its right border, by
 *  " < inverted " and the inverted columns (see `invertedColumns`), e.g.
 *  "|>Output            | < inverted 0-18". Every line ends with '\n'. */
YXFP_TESTING_EXPORT std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame);

/** One frame of a key-script run as the simulator prints it: the heading
 *  "frame NUMBER after step STEP: WORD" on a line of its own, then `formatFrame(frame)`.
 *  Frames drawn before the first step are "after step 0: start". */
YXFP_TESTING_EXPORT std::string formatScriptFrame(
    std::size_t number, std::size_t step, std::string const& word,
    frontpanelhw::drawing::DisplayBuffer const& frame);

/** The inverted columns of line `line` of `frame` (`frontpanelhw::invertedRanges`), 0-based,
 *  runs written first-last and separated by ", ": "0-18" or "3, 6-8"; a run of one column is
 *  its number. Empty when none is inverted or the line does not exist. A line's text is
 *  `frontpanelhw::lineText`. */
YXFP_TESTING_EXPORT std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame,
                                                unsigned line);

/** All lines of `frame` as their 16-bit codes. */
YXFP_TESTING_EXPORT std::vector<std::u16string> screenLines(
    frontpanelhw::drawing::DisplayBuffer const& frame);

/** Inversion of `line`, one character a cell: '#' for an inverted cell, '.' otherwise. */
YXFP_TESTING_EXPORT std::string inversionMask(frontpanelhw::drawing::DisplayLine const& line);

}  // namespace yxfrontpanel::testing
