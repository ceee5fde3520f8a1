#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace yxfrontpanel::runtime::scpi {

/** `text` in upper case, for matching SCPI's case-blind mnemonics, suffixes and words. */
inline std::string upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return result;
}

}  // namespace yxfrontpanel::runtime::scpi
