#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_number.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <string>
#include <utility>

#include "ascii_case.h"

namespace yxfrontpanel::runtime::scpi {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

/** Whether `word` is `shortForm` or a longer leading part of `longForm` (SCPI's MIN/MINIMUM). */
bool isKeyword(std::string const& word, std::string_view shortForm, std::string_view longForm) {
    return word == shortForm || word == longForm;
}

/** The multiplier of SI prefix `prefix` (upper case), if it is one. */
std::optional<double> prefixValue(std::string_view prefix) {
    static constexpr std::array<std::pair<std::string_view, double>, 12> kPrefixes{{
        {"EX", 1e18},
        {"PE", 1e15},
        {"T", 1e12},
        {"G", 1e9},
        {"MA", 1e6},
        {"K", 1e3},
        {"M", 1e-3},
        {"U", 1e-6},
        {"N", 1e-9},
        {"P", 1e-12},
        {"F", 1e-15},
        {"A", 1e-18},
    }};
    if (prefix.empty()) {
        return 1.0;
    }
    for (auto const& [name, value] : kPrefixes) {
        if (name == prefix) {
            return value;
        }
    }
    return std::nullopt;
}

/** The multiplier of `suffix` (upper case) for `unit` (upper case). */
std::optional<double> suffixValue(std::string const& suffix, std::string const& unit) {
    // SCPI's exceptions to the prefixes: "M" before HZ and OHM is mega, and "MA" alone for
    // amperes is milliampere.
    if ((unit == "HZ" || unit == "OHM") && suffix == "M" + unit) {
        return 1e6;
    }
    if (unit == "A" && suffix == "MA") {
        return 1e-3;
    }
    if (suffix.size() < unit.size() ||
        suffix.compare(suffix.size() - unit.size(), unit.size(), unit) != 0) {
        return std::nullopt;
    }
    return prefixValue(std::string_view(suffix).substr(0, suffix.size() - unit.size()));
}

}  // namespace

double parseNumber(std::string_view text, std::string_view unit,
                   std::optional<NumericBounds> const& bounds) {
    if (bounds) {
        std::string const word = upper(text);
        if (isKeyword(word, "MIN", "MINIMUM")) {
            return bounds->minimum;
        }
        if (isKeyword(word, "MAX", "MAXIMUM")) {
            return bounds->maximum;
        }
        if (isKeyword(word, "DEF", "DEFAULT")) {
            return bounds->defaultValue;
        }
    }
    char const* const begin = text.data();
    char const* const end = begin + text.size();
    // from_chars does not take a leading '+', which SCPI numbers may have.
    char const* const start = (begin != end && *begin == '+') ? begin + 1 : begin;
    double result = 0.0;
    auto const [last, error] = std::from_chars(start, end, result, std::chars_format::general);
    if (error != std::errc{} || start == end || (start != begin && *start == '-')) {
        throw Error(ErrorCode::DataTypeError, "not a number: " + std::string(text));
    }
    char const* suffixStart = last;
    while (suffixStart != end && isBlank(*suffixStart)) {
        ++suffixStart;
    }
    if (suffixStart == end) {
        return result;
    }
    std::string const suffix =
        upper(std::string_view(suffixStart, static_cast<std::size_t>(end - suffixStart)));
    if (!std::all_of(suffix.begin(), suffix.end(),
                     [](unsigned char c) { return std::isalpha(c) != 0; })) {
        throw Error(ErrorCode::DataTypeError, "not a number: " + std::string(text));
    }
    if (unit.empty()) {
        throw Error(ErrorCode::SuffixNotAllowed, std::string(text));
    }
    std::optional<double> const multiplier = suffixValue(suffix, upper(unit));
    if (!multiplier) {
        throw Error(ErrorCode::InvalidSuffix, suffix + " for " + upper(unit));
    }
    return result * *multiplier;
}

}  // namespace yxfrontpanel::runtime::scpi
