#include <frontpanelhw/frame_diff.h>

namespace frontpanelhw::drawing {

bool operator==(CellPosition const& lhs, CellPosition const& rhs) {
    return lhs.column == rhs.column && lhs.line == rhs.line;
}

bool operator!=(CellPosition const& lhs, CellPosition const& rhs) { return !(lhs == rhs); }

namespace {

bool sameSize(DisplayBuffer const& lhs, DisplayBuffer const& rhs) {
    return lhs.getChars() == rhs.getChars() && lhs.getLineCount() == rhs.getLineCount();
}

}  // namespace

std::vector<CellPosition> changedCells(std::optional<DisplayBuffer> const& previous,
                                       DisplayBuffer const& next) {
    bool const everything = !previous || !sameSize(*previous, next);
    std::vector<CellPosition> changed;
    for (unsigned line = 0; line < next.getLineCount(); ++line) {
        for (unsigned column = 0; column < next.getChars(); ++column) {
            if (everything || previous->getCell(column, line) != next.getCell(column, line)) {
                changed.push_back(CellPosition{column, line});
            }
        }
    }
    return changed;
}

}  // namespace frontpanelhw::drawing
