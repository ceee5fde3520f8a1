#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <optional>
#include <string_view>

namespace yxfrontpanel::runtime::scpi {

/** What `MINimum`, `MAXimum` and `DEFault` stand for in a numeric parameter: a value editor's
 *  bounds and default. */
struct YXFP_RUNTIME_EXPORT NumericBounds {
    /** `MINimum`. */
    double minimum = 0.0;
    /** `MAXimum`. */
    double maximum = 0.0;
    /** `DEFault`. */
    double defaultValue = 0.0;
};

/** Reads `text` as a SCPI decimal numeric parameter ("12.5", "-3", "+1e3"), classic notation
 *  whatever the locale, optionally followed by blanks and a suffix: `unit` (such as "V", "A",
 *  "HZ", "OHM", "S"; case-insensitive) with or without an SI prefix (EX, PE, T, G, MA, K, M, U,
 *  N, P, F, A). As SCPI has it, "M" is milli except in "MHZ" and "MOHM", which are mega; "MA"
 *  is mega except in "MA" for the unit "A", which is milliampere. With `bounds`, the words
 *  MINimum, MAXimum and DEFault stand for its values. The result is in the base unit.
 *  @throws Error: data type error (not a number), suffix not allowed (a suffix when `unit` is
 *  empty), invalid suffix (another unit or prefix). */
YXFP_RUNTIME_EXPORT double parseNumber(std::string_view text, std::string_view unit = {},
                                       std::optional<NumericBounds> const& bounds = std::nullopt);

}  // namespace yxfrontpanel::runtime::scpi
