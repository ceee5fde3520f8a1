#include "settings_codec.h"

#include <limits>
#include <utility>

namespace yxfrontpanel::settings::detail {

namespace {

constexpr char const* kApplication = "application";
constexpr char const* kSchemaVersion = "schemaVersion";
constexpr char const* kValues = "values";

char const* jsonTypeName(nlohmann::json const& json) {
    if (json.is_number_float()) {
        return "number";
    }
    if (json.is_number()) {
        return "integer";
    }
    return json.type_name();
}

}  // namespace

std::optional<SettingsDocument> parseDocument(std::string const& text, std::string& reason) {
    if (text.empty()) {
        reason = "the file is empty";
        return std::nullopt;
    }
    // No exceptions: a parse error gives a discarded value.
    nlohmann::json root = nlohmann::json::parse(text, nullptr, false);
    if (root.is_discarded()) {
        reason = "not valid JSON (truncated or damaged)";
        return std::nullopt;
    }
    if (!root.is_object()) {
        reason = std::string("the top level is a JSON ") + root.type_name() + ", not an object";
        return std::nullopt;
    }
    auto const application = root.find(kApplication);
    if (application == root.end() || !application->is_string()) {
        reason = "no text member \"application\"";
        return std::nullopt;
    }
    auto const version = root.find(kSchemaVersion);
    if (version == root.end() || !version->is_number_integer() ||
        (version->is_number_unsigned() ? version->get<std::uint64_t>() == 0
                                       : version->get<std::int64_t>() < 1)) {
        reason = "no integer member \"schemaVersion\" of 1 or more";
        return std::nullopt;
    }
    auto const values = root.find(kValues);
    if (values == root.end() || !values->is_object()) {
        reason = "no object member \"values\"";
        return std::nullopt;
    }
    SettingsDocument document;
    document.application = application->get<std::string>();
    document.schemaVersion = version->get<std::uint64_t>();
    document.values = std::move(*values);
    root.erase(kApplication);
    root.erase(kSchemaVersion);
    root.erase(kValues);
    document.otherMembers = std::move(root);
    return document;
}

std::string serialiseDocument(SettingsDocument const& document) {
    nlohmann::json root = document.otherMembers;
    root[kApplication] = document.application;
    root[kSchemaVersion] = document.schemaVersion;
    root[kValues] = document.values;
    return root.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::optional<SettingValue> fromJson(nlohmann::json const& json, SettingType wanted,
                                     std::string& reason) {
    switch (wanted) {
        case SettingType::Number:
            if (json.is_number_float()) {
                return json.get<double>();
            }
            if (json.is_number_unsigned()) {
                return static_cast<double>(json.get<std::uint64_t>());
            }
            if (json.is_number_integer()) {
                return static_cast<double>(json.get<std::int64_t>());
            }
            break;
        case SettingType::Integer:
            if (json.is_number_unsigned()) {
                auto const number = json.get<std::uint64_t>();
                if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                    reason = "integer too large";
                    return std::nullopt;
                }
                return static_cast<std::int64_t>(number);
            }
            if (json.is_number_integer()) {
                return json.get<std::int64_t>();
            }
            break;
        case SettingType::Boolean:
            if (json.is_boolean()) {
                return json.get<bool>();
            }
            break;
        case SettingType::Text:
            if (json.is_string()) {
                return json.get<std::string>();
            }
            break;
        case SettingType::Ipv4Address:
            if (json.is_string()) {
                if (auto address = parseIpv4(json.get_ref<std::string const&>())) {
                    return SettingValue(*address);
                }
                reason = "\"" + json.get<std::string>() + "\" is not a dotted IPv4 address";
                return std::nullopt;
            }
            break;
    }
    reason = std::string("expected ") + typeName(wanted) + ", found " + jsonTypeName(json);
    return std::nullopt;
}

nlohmann::json toJson(SettingValue const& value) {
    switch (typeOf(value)) {
        case SettingType::Number:
            return std::get<double>(value);
        case SettingType::Integer:
            return std::get<std::int64_t>(value);
        case SettingType::Boolean:
            return std::get<bool>(value);
        case SettingType::Text:
            return std::get<std::string>(value);
        case SettingType::Ipv4Address:
            return ip::toString(std::get<ip::IpV4Address>(value));
    }
    return nullptr;
}

}  // namespace yxfrontpanel::settings::detail
