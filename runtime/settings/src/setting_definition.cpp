#include <yxfrontpanel/runtime/setting_definition.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace yxfrontpanel::settings {

namespace {

void requireKey(std::string const& key) {
    if (key.empty()) {
        throw std::invalid_argument("setting key must not be empty");
    }
}

[[noreturn]] void invalid(std::string const& key, std::string const& what) {
    throw std::invalid_argument("setting '" + key + "': " + what);
}

SettingCheck accepted(SettingValue value) {
    return {SettingCheck::Outcome::Accepted, std::move(value), {}};
}

}  // namespace

SettingType typeOf(SettingValue const& value) { return static_cast<SettingType>(value.index()); }

char const* typeName(SettingType type) {
    switch (type) {
        case SettingType::Number:
            return "number";
        case SettingType::Integer:
            return "integer";
        case SettingType::Boolean:
            return "boolean";
        case SettingType::Text:
            return "text";
        case SettingType::Ipv4Address:
            return "IPv4 address";
    }
    return "unknown";
}

std::string toText(SettingValue const& value) {
    switch (typeOf(value)) {
        case SettingType::Number: {
            // to_chars gives the shortest text that reads back exactly, independent of locale.
            char buffer[64];
            auto const result =
                std::to_chars(buffer, buffer + sizeof buffer, std::get<double>(value));
            return {buffer, result.ptr};
        }
        case SettingType::Integer:
            return std::to_string(std::get<std::int64_t>(value));
        case SettingType::Boolean:
            return std::get<bool>(value) ? "true" : "false";
        case SettingType::Text:
            return std::get<std::string>(value);
        case SettingType::Ipv4Address:
            return ip::toString(std::get<ip::IpV4Address>(value));
    }
    return {};
}

std::optional<ip::IpV4Address> parseIpv4(std::string_view text) {
    std::array<unsigned char, 4> fields{};
    std::size_t position = 0;
    for (std::size_t field = 0; field < fields.size(); ++field) {
        if (field > 0) {
            if (position >= text.size() || text[position] != '.') {
                return std::nullopt;
            }
            ++position;
        }
        std::size_t digits = 0;
        unsigned value = 0;
        while (position < text.size() && text[position] >= '0' && text[position] <= '9' &&
               digits < 4) {
            value = value * 10 + static_cast<unsigned>(text[position] - '0');
            ++position;
            ++digits;
        }
        if (digits == 0 || digits > 3 || value > 255) {
            return std::nullopt;
        }
        fields[field] = static_cast<unsigned char>(value);
    }
    if (position != text.size()) {
        return std::nullopt;
    }
    return ip::IpV4Address(fields);
}

SettingDefinition::SettingDefinition(std::string key, SettingValue defaultValue)
    : key_(std::move(key)), default_(std::move(defaultValue)) {
    requireKey(key_);
}

SettingDefinition SettingDefinition::number(std::string key, double defaultValue, double minimum,
                                            double maximum) {
    SettingDefinition definition(std::move(key), defaultValue);
    if (!std::isfinite(defaultValue) || !std::isfinite(minimum) || !std::isfinite(maximum)) {
        invalid(definition.key_, "default and bounds must be finite numbers");
    }
    if (minimum > maximum || defaultValue < minimum || defaultValue > maximum) {
        invalid(definition.key_, "the default must lie within minimum <= maximum");
    }
    definition.minimum_ = minimum;
    definition.maximum_ = maximum;
    return definition;
}

SettingDefinition SettingDefinition::integer(std::string key, std::int64_t defaultValue,
                                             std::int64_t minimum, std::int64_t maximum) {
    SettingDefinition definition(std::move(key), defaultValue);
    if (minimum > maximum || defaultValue < minimum || defaultValue > maximum) {
        invalid(definition.key_, "the default must lie within minimum <= maximum");
    }
    definition.minimum_ = minimum;
    definition.maximum_ = maximum;
    return definition;
}

SettingDefinition SettingDefinition::choice(std::string key, std::int64_t defaultValue,
                                            std::vector<std::int64_t> choices) {
    SettingDefinition definition(std::move(key), defaultValue);
    if (std::find(choices.begin(), choices.end(), defaultValue) == choices.end()) {
        invalid(definition.key_, "the default must be one of the choices");
    }
    std::sort(choices.begin(), choices.end());
    choices.erase(std::unique(choices.begin(), choices.end()), choices.end());
    definition.choices_ = std::move(choices);
    return definition;
}

SettingDefinition SettingDefinition::boolean(std::string key, bool defaultValue) {
    return SettingDefinition(std::move(key), defaultValue);
}

SettingDefinition SettingDefinition::text(std::string key, std::string defaultValue,
                                          std::size_t maxLength) {
    std::size_t const length = defaultValue.size();
    SettingDefinition definition(std::move(key), std::move(defaultValue));
    if (length > maxLength) {
        invalid(definition.key_, "the default is longer than the maximum length");
    }
    definition.maxLength_ = maxLength;
    return definition;
}

SettingDefinition SettingDefinition::ipv4(std::string key, ip::IpV4Address const& defaultValue) {
    return SettingDefinition(std::move(key), defaultValue);
}

std::string const& SettingDefinition::key() const { return key_; }

SettingType SettingDefinition::type() const { return typeOf(default_); }

SettingValue const& SettingDefinition::defaultValue() const { return default_; }

std::vector<std::int64_t> const& SettingDefinition::choices() const { return choices_; }

SettingCheck SettingDefinition::check(SettingValue const& value) const {
    SettingType const wanted = type();
    SettingValue candidate = value;
    if (wanted == SettingType::Number && typeOf(value) == SettingType::Integer) {
        candidate = static_cast<double>(std::get<std::int64_t>(value));
    }
    if (typeOf(candidate) != wanted) {
        return {SettingCheck::Outcome::Rejected, default_,
                std::string("expected ") + typeName(wanted) + ", found " + typeName(typeOf(value))};
    }
    switch (wanted) {
        case SettingType::Number: {
            double const number = std::get<double>(candidate);
            if (!std::isfinite(number)) {
                return {SettingCheck::Outcome::Rejected, default_, "not a finite number"};
            }
            double const minimum = std::get<double>(minimum_);
            double const maximum = std::get<double>(maximum_);
            if (number < minimum || number > maximum) {
                return {
                    SettingCheck::Outcome::Clamped, std::clamp(number, minimum, maximum),
                    toText(candidate) + " outside " + toText(minimum_) + ".." + toText(maximum_)};
            }
            return accepted(candidate);
        }
        case SettingType::Integer: {
            std::int64_t const number = std::get<std::int64_t>(candidate);
            if (!choices_.empty()) {
                if (!std::binary_search(choices_.begin(), choices_.end(), number)) {
                    return {SettingCheck::Outcome::Rejected, default_,
                            toText(candidate) + " is not one of the choices"};
                }
                return accepted(candidate);
            }
            std::int64_t const minimum = std::get<std::int64_t>(minimum_);
            std::int64_t const maximum = std::get<std::int64_t>(maximum_);
            if (number < minimum || number > maximum) {
                return {
                    SettingCheck::Outcome::Clamped, std::clamp(number, minimum, maximum),
                    toText(candidate) + " outside " + toText(minimum_) + ".." + toText(maximum_)};
            }
            return accepted(candidate);
        }
        case SettingType::Text:
            if (std::get<std::string>(candidate).size() > maxLength_) {
                return {SettingCheck::Outcome::Rejected, default_,
                        "text longer than " + std::to_string(maxLength_) + " bytes"};
            }
            return accepted(candidate);
        case SettingType::Boolean:
        case SettingType::Ipv4Address:
            return accepted(candidate);
    }
    return accepted(candidate);
}

}  // namespace yxfrontpanel::settings
