#pragma once

#include <yxfrontpanel/menu_item.h>
#include <yxfrontpanel/text_constants.h>

#include <chrono>
#include <string>

namespace yxfrontpanel::detail {

/** How long an item shows that a change needs local mode, unless it has its own duration. */
constexpr std::chrono::milliseconds kLocalModeHintDuration{1000};

/** Refuses a change outside local mode: shows "Only in local mode!" on `item`'s line for
 *  `duration` (`MenuItem::showHint`, blocking the key thread), then `restore` unless it is
 *  empty; with an empty `restore` the hint stays until the caller rebuilds the line. */
inline void showLocalModeHint(MenuItem& item,
                              std::chrono::milliseconds duration = kLocalModeHintDuration,
                              std::u16string const& restore = {}) {
    item.showHint(std::u16string(kOnlyInLocalModeText), restore, duration);
}

}  // namespace yxfrontpanel::detail
