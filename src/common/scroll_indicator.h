#pragma once

#include <cstddef>

#include "common/glyphs.h"

namespace yxfrontpanel::detail {

/** The scroll-indicator cell of screen line `line` when `shownLines` lines show entries
 *  `first`.. of `total`: the up arrow on the top line while entries lie above, the down arrow
 *  on the bottom line while entries follow below (the down arrow wins on a one-line screen),
 *  a blank otherwise. */
inline char16_t scrollIndicator(std::size_t line, std::size_t shownLines, std::size_t first,
                                std::size_t total) {
    char16_t cell = (line == 0 && first > 0) ? kUpArrowGlyph : kBlankGlyph;
    if (line + 1 == shownLines && line + 1 + first < total) {
        cell = kDownArrowGlyph;
    }
    return cell;
}

}  // namespace yxfrontpanel::detail
