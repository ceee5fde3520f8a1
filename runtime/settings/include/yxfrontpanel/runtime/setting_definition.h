#pragma once

#include <yxfrontpanel/ip.h>
#include <yxfrontpanel/runtime/export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace yxfrontpanel::settings {

/** The kinds of value a settings store keeps. */
enum class SettingType {
    /** A floating-point number (`double`); a definition accepts finite ones only. */
    Number,
    /** A signed 64-bit integer (`std::int64_t`), also the type of a choice. */
    Integer,
    /** `true` or `false` (`bool`). */
    Boolean,
    /** A UTF-8 text (`std::string`). */
    Text,
    /** An IPv4 address (`ip::IpV4Address`). */
    Ipv4Address
};

/** One setting's value: a number (double), an integer, a boolean, a text (UTF-8) or an IPv4
 *  address. The alternative held is the value's type. */
using SettingValue = std::variant<double, std::int64_t, bool, std::string, ip::IpV4Address>;

/** The type of the alternative `value` holds. */
YXFP_RUNTIME_EXPORT SettingType typeOf(SettingValue const& value);
/** "number", "integer", "boolean", "text" or "IPv4 address": for messages. */
YXFP_RUNTIME_EXPORT char const* typeName(SettingType type);
/** The value as a person reads it: numbers in the shortest form that reads back exactly (always
 *  with '.' as decimal point), "true"/"false", texts as they are, addresses dotted. */
YXFP_RUNTIME_EXPORT std::string toText(SettingValue const& value);
/** Strict dotted-decimal IPv4: exactly four fields of 1 to 3 decimal digits, each 0..255, no
 *  signs, blanks or trailing dot; nothing otherwise. */
YXFP_RUNTIME_EXPORT std::optional<ip::IpV4Address> parseIpv4(std::string_view text);

/** What `SettingDefinition::check` made of a value. */
struct SettingCheck {
    /** Whether the value was kept, clamped or rejected. */
    enum class Outcome {
        /** The value is valid as it is. */
        Accepted,
        /** A number or integer outside the range, moved to the nearer bound. */
        Clamped,
        /** Wrong type, not finite, not one of the choices or too long a text. */
        Rejected
    };
    /** What the check made of the value. */
    Outcome outcome = Outcome::Accepted;
    /** The value to keep: the value itself, the clamped one, or the default when rejected. */
    SettingValue value;
    /** Why it was clamped or rejected; empty when accepted. */
    std::string reason;
};

/** The declaration of one setting: its key, type, default and limits. Values outside the range
 *  of a number or integer are clamped to the nearer bound; values of the wrong type, numbers
 *  that are not finite, integers that are not one of the choices and texts longer than the
 *  limit are rejected (replaced by the default). Copyable value type. */
class YXFP_RUNTIME_EXPORT SettingDefinition {
public:
    /** A number in `minimum`..`maximum`.
     *  @throws std::invalid_argument for an empty key, a bound or default that is not finite,
     *  `minimum` > `maximum` or a default outside the range. */
    static SettingDefinition number(std::string key, double defaultValue, double minimum,
                                    double maximum);
    /** An integer in `minimum`..`maximum`. @throws std::invalid_argument as `number`. */
    static SettingDefinition integer(std::string key, std::int64_t defaultValue,
                                     std::int64_t minimum, std::int64_t maximum);
    /** An integer that must be one of `choices` (the keys of a choice item or radio group).
     *  @throws std::invalid_argument for an empty key, no choices or a default not among
     *  them. */
    static SettingDefinition choice(std::string key, std::int64_t defaultValue,
                                    std::vector<std::int64_t> choices);
    /** A boolean. @throws std::invalid_argument for an empty key. */
    static SettingDefinition boolean(std::string key, bool defaultValue);
    /** A text of at most `maxLength` bytes. @throws std::invalid_argument for an empty key or a
     *  longer default. */
    static SettingDefinition text(std::string key, std::string defaultValue,
                                  std::size_t maxLength = 256);
    /** An IPv4 address. @throws std::invalid_argument for an empty key. */
    static SettingDefinition ipv4(std::string key, ip::IpV4Address const& defaultValue);

    /** The key the value is stored under (never empty). */
    std::string const& key() const;
    /** The value's type: that of the default. */
    SettingType type() const;
    /** The value before any load or change and after a factory reset. */
    SettingValue const& defaultValue() const;
    /** The allowed integers of a choice; empty for every other setting. */
    std::vector<std::int64_t> const& choices() const;

    /** Checks `value` against the type and limits (see the class comment). An integer given
     *  for a number is taken as that number; nothing else is converted. */
    SettingCheck check(SettingValue const& value) const;

private:
    SettingDefinition(std::string key, SettingValue defaultValue);

    std::string key_;
    SettingValue default_;
    SettingValue minimum_;
    SettingValue maximum_;
    std::vector<std::int64_t> choices_;
    std::size_t maxLength_ = 0;
};

}  // namespace yxfrontpanel::settings
