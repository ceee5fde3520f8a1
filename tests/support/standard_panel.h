#pragma once

namespace yxfp_test {

/** Width, in characters, of the 20 x 4 character panel that most form and editor tests draw
 *  on. */
constexpr unsigned kChars = 20;

/** Height, in lines, of that panel. */
constexpr unsigned kLines = 4;

}  // namespace yxfp_test
