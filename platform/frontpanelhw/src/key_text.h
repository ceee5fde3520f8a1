#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/key_source.h>

#include <optional>
#include <string_view>

// Exported for the device back-end libraries (gpio/, evdev/), which parse key names too; the
// header itself is not installed.
namespace frontpanelhw::detail {

/** `text` without blanks at either end. */
FRONTPANELHW_EXPORT std::string_view trimmedText(std::string_view text);

/** The panel key named `name` as panelKeyName spells it, in any case; nothing for other
 *  names. */
FRONTPANELHW_EXPORT std::optional<PanelKey> panelKeyFromName(std::string_view name);

}  // namespace frontpanelhw::detail
