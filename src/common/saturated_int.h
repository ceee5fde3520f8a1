#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace yxfrontpanel::detail {

/** `value` brought into the `int` range: values beyond it become INT_MIN or INT_MAX. Sums and
 *  differences of ints and unsigned columns are formed in 64 bits first, where they cannot
 *  overflow, so that no out-of-range value is ever converted to int. */
inline int saturatedInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

}  // namespace yxfrontpanel::detail
