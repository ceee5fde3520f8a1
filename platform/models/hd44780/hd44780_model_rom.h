#pragma once

#include <frontpanelhw/hd44780_charset.h>

#include <cstdint>

namespace yxfp_model {

/** What the character generator ROM of an HD44780U shows for character code `code`, as the
 *  nearest Unicode character, read off the datasheet's character tables (Table 4, ROM codes A00
 *  and A02) column by column: U+0020 for a code whose pattern is blank, 0 for the CGRAM codes
 *  0x00-0x0F. The model's own table: it shares nothing with any driver's. */
char32_t romPattern(frontpanelhw::Hd44780Rom rom, std::uint8_t code);

}  // namespace yxfp_model
