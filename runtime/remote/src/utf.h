#pragma once

#include <string>

namespace yxfrontpanel::runtime {

/** UTF-16 text (item names, value texts) as UTF-8; a lone surrogate becomes U+FFFD. */
std::string utf16ToUtf8(std::u16string const& text);

}  // namespace yxfrontpanel::runtime
