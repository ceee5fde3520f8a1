#pragma once

#include <frontpanelhw/display_types.h>

#include <string>

namespace yxfp_test {

/** A display line showing `text` with the cells `first` to `last` inverted. */
inline frontpanelhw::drawing::DisplayLine invertedLine(std::u16string const& text, unsigned first,
                                                       unsigned last) {
    frontpanelhw::drawing::DisplayLine line;
    line.setLine(text);
    line.setInverted(first, last, true);
    return line;
}

}  // namespace yxfp_test
