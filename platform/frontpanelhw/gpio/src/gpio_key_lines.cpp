#include <frontpanelhw/gpio_key_source.h>

#include <set>

#include "../../src/key_text.h"

namespace frontpanelhw {

namespace {

unsigned numberIn(std::string_view value, std::string_view entry, unsigned largest) {
    unsigned long number = 0;
    bool digits = !value.empty();
    for (char const c : value) {
        digits = digits && c >= '0' && c <= '9';
        if (!digits) {
            break;
        }
        number = number * 10 + static_cast<unsigned>(c - '0');
        if (number > largest) {
            digits = false;
            break;
        }
    }
    if (!digits) {
        throw KeyMapError("'" + std::string(value) + "' in GPIO entry '" + std::string(entry) +
                          "' is not a number from 0 to " + std::to_string(largest));
    }
    return static_cast<unsigned>(number);
}

}  // namespace

GpioKeyOptions parseGpioKeyLines(std::string_view text) {
    constexpr unsigned kLargestOffset = 65535;
    constexpr unsigned kLongestDebounceMs = 10000;
    GpioKeyOptions options;
    std::set<unsigned> usedOffsets;
    while (true) {
        auto const comma = text.find(',');
        std::string_view const entry = detail::trimmedText(text.substr(0, comma));
        auto const equals = entry.find('=');
        std::string_view const word = detail::trimmedText(entry.substr(0, equals));
        std::string_view const value = equals == std::string_view::npos
                                           ? std::string_view()
                                           : detail::trimmedText(entry.substr(equals + 1));
        bool known = true;
        if (equals == std::string_view::npos) {
            if (word == "active-low") {
                options.activeLow = true;
            } else if (word == "active-high") {
                options.activeLow = false;
            } else if (word == "pull-up") {
                options.bias = GpioBias::PullUp;
            } else if (word == "pull-down") {
                options.bias = GpioBias::PullDown;
            } else if (word == "bias-disable") {
                options.bias = GpioBias::Disabled;
            } else {
                known = false;
            }
        } else if (word == "debounce") {
            options.debounce =
                std::chrono::milliseconds(numberIn(value, entry, kLongestDebounceMs));
        } else {
            auto const key = detail::panelKeyFromName(word);
            known = key.has_value();
            if (key) {
                unsigned const offset = numberIn(value, entry, kLargestOffset);
                if (options.lines.count(*key) != 0 || !usedOffsets.insert(offset).second) {
                    throw KeyMapError("GPIO entry '" + std::string(entry) +
                                      "' gives a key or line a second time: each key needs its "
                                      "own line");
                }
                options.lines[*key] = offset;
            }
        }
        if (!known) {
            throw KeyMapError("unknown GPIO entry '" + std::string(entry) +
                              "': use KEY=OFFSET (KEY one of up, down, left, right, enter, back), "
                              "active-low, active-high, pull-up, pull-down, bias-disable or "
                              "debounce=MS");
        }
        if (comma == std::string_view::npos) {
            break;
        }
        text.remove_prefix(comma + 1);
    }
    if (options.lines.empty()) {
        throw KeyMapError("no GPIO line for any key: give at least one, e.g. enter=13");
    }
    return options;
}

}  // namespace frontpanelhw
