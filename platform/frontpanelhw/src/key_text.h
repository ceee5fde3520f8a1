#pragma once

#include <frontpanelhw/key_source.h>

#include <optional>
#include <string_view>

namespace frontpanelhw::detail {

/** `text` without blanks at either end. */
std::string_view trimmedText(std::string_view text);

/** The panel key named `name` as panelKeyName spells it, in any case; nothing for other
 *  names. */
std::optional<PanelKey> panelKeyFromName(std::string_view name);

}  // namespace frontpanelhw::detail
