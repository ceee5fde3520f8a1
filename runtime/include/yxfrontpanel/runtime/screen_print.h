#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/runtime/export.h>

#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

/** Column runs as text: "0-18", "3, 6-8" (a single column alone); empty for no runs. */
YXFP_RUNTIME_EXPORT std::string formatColumnRanges(
    std::vector<frontpanelhw::ColumnRange> const& ranges);

/** A screen as plain UTF-8 text: each line between '|' borders inside a '+--+' frame `width`
 *  columns wide; a line whose entry in `inverted` is not empty is followed, after its right
 *  border, by " < inverted " and that entry (as `formatColumnRanges` gives it). `inverted` may
 *  be shorter than `lines` (no inverted cells in the rest). The simulator's frame printer and
 *  the command-line client print screens this way. */
YXFP_RUNTIME_EXPORT std::string formatScreen(std::vector<std::string> const& lines,
                                             std::vector<std::string> const& inverted,
                                             unsigned width);

/** `frame` in the format of `formatScreen`, e.g. "|>Output            | < inverted 0-18",
 *  each cell with its glyph (`frontpanelhw::lineText`). */
YXFP_RUNTIME_EXPORT std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame);

}  // namespace yxfrontpanel::runtime
