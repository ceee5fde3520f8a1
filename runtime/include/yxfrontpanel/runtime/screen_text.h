#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/runtime/export.h>

#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

/** Line `line` of `frame` as UTF-8 text: every cell as the glyph of the panel's character set
 *  (frontpanelhw::toUnicode), the full width, trailing blanks kept. Empty for a line past the
 *  bottom. Any thread (the frame must not change meanwhile). */
YXFP_RUNTIME_EXPORT std::string lineText(frontpanelhw::drawing::DisplayBuffer const& frame,
                                         unsigned line);

/** Every line of `frame` as `lineText`. */
YXFP_RUNTIME_EXPORT std::vector<std::string> screenText(
    frontpanelhw::drawing::DisplayBuffer const& frame);

/** The inverted columns of line `line` of `frame` (0-based, runs as first-last), e.g. "0-18" or
 *  "3, 6-8"; empty when none are or the line is past the bottom. */
YXFP_RUNTIME_EXPORT std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame,
                                                unsigned line);

/** A screen as plain UTF-8 text: each line between '|' borders inside a '+--+' frame as wide
 *  as `width` columns; a line with inverted columns is followed, after its right border, by
 *  " < inverted " and the columns (as `invertedColumns` gives them). `inverted` may be shorter
 *  than `lines` (no inverted cells in the rest). */
YXFP_RUNTIME_EXPORT std::string formatScreen(std::vector<std::string> const& lines,
                                             std::vector<std::string> const& inverted,
                                             unsigned width);

/** `frame` in the format of `formatScreen`, e.g. "|>Output            | < inverted 0-18". */
YXFP_RUNTIME_EXPORT std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame);

}  // namespace yxfrontpanel::runtime
