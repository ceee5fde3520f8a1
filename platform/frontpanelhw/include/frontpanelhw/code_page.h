#pragma once

#include <frontpanelhw/export.h>

#include <string>

namespace frontpanelhw {

/** The Unicode character that shows display code `code` of the panel's character set.
 *  Codes 0x00-0xFF are code page 437: 0x00 is a blank (U+0020), the other codes below 0x20 are
 *  the code page's glyphs (0x01 ☺ ... 0x1E ▲, 0x1F ▼), 0x20-0x7E are ASCII, 0x7F is ⌂ and the
 *  upper half is the code page's upper half (0xB0 ░, 0xDB █, 0xF8 °, 0xFB √, 0xFF non-breaking
 *  space). Codes above 0xFF are the Unicode character of the same value, except the surrogate
 *  range 0xD800-0xDFFF, which holds no character on its own and gives U+FFFD. Never throws. */
FRONTPANELHW_EXPORT char32_t toUnicode(char16_t code);

/** The UTF-8 bytes of `character`; a surrogate or a value past U+10FFFF, which UTF-8 cannot
 *  carry, gives the bytes of U+FFFD. Never throws except std::bad_alloc. */
FRONTPANELHW_EXPORT std::string toUtf8(char32_t character);

}  // namespace frontpanelhw
