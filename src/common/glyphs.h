#pragma once

namespace yxfrontpanel::detail {

/** The display's up-arrow glyph: scroll indicator "more above" and the slider's cursor. */
constexpr char16_t kUpArrowGlyph = 0x1E;
/** The display's down-arrow glyph: scroll indicator "more below". */
constexpr char16_t kDownArrowGlyph = 0x1F;
/** An empty cell. */
constexpr char16_t kBlankGlyph = 0x20;

}  // namespace yxfrontpanel::detail
