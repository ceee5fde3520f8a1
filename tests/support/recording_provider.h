#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/recording_display.h>

#include <cstddef>
#include <string>
#include <vector>

namespace yxfp_test {

/** The installed kit's recording display under the name the suites grew up with. */
using RecordingProvider = yxfrontpanel::testing::RecordingDisplay;

/** All lines of `buffer`. */
inline std::vector<std::u16string> screenOf(frontpanelhw::drawing::DisplayBuffer const& buffer) {
    return yxfrontpanel::testing::screenLines(buffer);
}
/** Inversion of one line of `buffer`: '#' for an inverted cell, '.' otherwise. */
inline std::string inversionOf(frontpanelhw::drawing::DisplayBuffer const& buffer, unsigned line) {
    return yxfrontpanel::testing::inversionMask(buffer.getLine(line));
}
/** Inversion of a `DisplayLine`, as above. */
inline std::string inversionOf(frontpanelhw::drawing::DisplayLine const& line) {
    return yxfrontpanel::testing::inversionMask(line);
}
/** `text` cut or padded with blanks to `width` characters: how a panel line shows it. */
inline std::u16string padded(std::u16string const& text, std::size_t width) {
    std::u16string result = text.substr(0, width);
    result.resize(width, u' ');
    return result;
}

}  // namespace yxfp_test
