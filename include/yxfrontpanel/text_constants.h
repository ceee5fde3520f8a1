#pragma once

#include <string_view>

// Texts shared by the whole toolkit. Constant views of string literals: one definition for the
// whole program and nothing to initialise at start-up.
namespace yxfrontpanel {

/** The degree sign of the display's character set (0xF8) followed by "C". */
inline constexpr std::u16string_view kCelsiusUnitText = u"\u00F8C";
/** Opens the frame around a headline or a value that is pointed at. */
inline constexpr std::u16string_view kMarkerOpen = u">> ";
/** Closes that frame. */
inline constexpr std::u16string_view kMarkerClose = u" <<";
/** Shown on an item's line when a change is refused outside local mode. */
inline constexpr std::u16string_view kOnlyInLocalModeText = u"Only in local mode!";

}  // namespace yxfrontpanel
