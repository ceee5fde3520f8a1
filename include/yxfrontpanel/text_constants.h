#pragma once

#include <string>

// Texts shared by the whole toolkit. Each translation unit gets its own copy (internal
// linkage), so they are usable even while other static objects are being initialised.
namespace yxfrontpanel {

/** The degree sign of the display's character set (0xF8) followed by "C". */
const std::u16string kCelsiusUnitText{char16_t{0x00F8}, u'C'};
/** Opens the frame around a headline or a value that is pointed at. */
const std::u16string kMarkerOpen = u">> ";
/** Closes that frame. */
const std::u16string kMarkerClose = u" <<";
/** Shown on an item's line when a change is refused outside local mode. */
const std::u16string kOnlyInLocalModeText = u"Only in local mode!";

}  // namespace yxfrontpanel
