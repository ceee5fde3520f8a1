#pragma once

#include <yxfrontpanel/runtime/setting_definition.h>

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

// The settings file's format, as pure functions from text to a document and back:
//   {"application": NAME, "schemaVersion": N, "values": {KEY: VALUE, ...}, ...}
// Members other than these three are kept as they are.
namespace yxfrontpanel::settings::detail {

/** A settings file's content after its structure was checked. */
struct SettingsDocument {
    std::string application;
    std::uint64_t schemaVersion = 0;
    /** An object: the values by key, as written. */
    nlohmann::json values = nlohmann::json::object();
    /** An object: the file's other top-level members, kept for writing back. */
    nlohmann::json otherMembers = nlohmann::json::object();
};

/** Parses and checks the structure of `text`: a JSON object with a text "application", an
 *  integer "schemaVersion" of 1 or more and an object "values". Nothing and the reason
 *  otherwise. Never throws for any input. */
std::optional<SettingsDocument> parseDocument(std::string const& text, std::string& reason);

/** The file's text for `document`: indented JSON with a final line feed. Invalid UTF-8 in texts
 *  is replaced rather than thrown. */
std::string serialiseDocument(SettingsDocument const& document);

/** A file's value read as `wanted`: nothing (with the reason) when its JSON type does not fit
 *  (an integer is accepted for a number; an address must be strict dotted text). */
std::optional<SettingValue> fromJson(nlohmann::json const& json, SettingType wanted,
                                     std::string& reason);

/** The JSON form of `value` (addresses as dotted text). */
nlohmann::json toJson(SettingValue const& value);

}  // namespace yxfrontpanel::settings::detail
