#include "utf.h"

#include <frontpanelhw/code_page.h>

namespace yxfrontpanel::runtime {

std::string utf16ToUtf8(std::u16string const& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        char32_t unit = text[index];
        bool const high = unit >= 0xD800 && unit <= 0xDBFF;
        if (high && index + 1 < text.size() && text[index + 1] >= 0xDC00 &&
            text[index + 1] <= 0xDFFF) {
            unit = 0x10000 + ((unit - 0xD800) << 10) + (text[index + 1] - 0xDC00);
            ++index;
        }
        // toUtf8 turns a lone surrogate into U+FFFD.
        result += frontpanelhw::toUtf8(unit);
    }
    return result;
}

}  // namespace yxfrontpanel::runtime
