#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>

#include <optional>
#include <vector>

namespace frontpanelhw::drawing {

/** The position of one cell of a buffer: column from the left, line from the top. */
struct CellPosition {
    /** Column, from 0 at the left. */
    unsigned column;
    /** Line, from 0 at the top. */
    unsigned line;
};

/** Positions are equal when column and line are equal. */
FRONTPANELHW_EXPORT bool operator==(CellPosition const& lhs, CellPosition const& rhs);
/** The negation of `operator==`. */
FRONTPANELHW_EXPORT bool operator!=(CellPosition const& lhs, CellPosition const& rhs);

/** The cells of `next` a device has to send again when it last showed `previous`: those whose
 *  character or inverted flag differ, line by line from the top, left to right within a line.
 *  Every cell of `next` when there is no previous frame or its size differs from `next`; none
 *  when the frames are equal. Never throws except std::bad_alloc. */
FRONTPANELHW_EXPORT std::vector<CellPosition> changedCells(
    std::optional<DisplayBuffer> const& previous, DisplayBuffer const& next);

}  // namespace frontpanelhw::drawing
