#pragma once

#include <yxfrontpanel/runtime/settings_store.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace yxfp_test {

/** The settings of a bench supply, one of every type: voltage (number 12.5, 0..30), channel
 *  (integer 3, 1..16), mode (choice 1 of 0, 1, 2), output (boolean false), name (text "Bench",
 *  at most 20 bytes) and address (IPv4 192.168.1.10). */
inline std::vector<yxfrontpanel::settings::SettingDefinition> benchDefinitions() {
    using yxfrontpanel::settings::SettingDefinition;
    return {SettingDefinition::number("voltage", 12.5, 0.0, 30.0),
            SettingDefinition::integer("channel", 3, 1, 16),
            SettingDefinition::choice("mode", 1, {0, 1, 2}),
            SettingDefinition::boolean("output", false),
            SettingDefinition::text("name", "Bench", 20),
            SettingDefinition::ipv4("address", ip::IpV4Address(192, 168, 1, 10))};
}

/** Options of the application "bench-supply", schema `version`. */
inline yxfrontpanel::settings::SettingsStoreOptions benchOptions(unsigned version = 2) {
    yxfrontpanel::settings::SettingsStoreOptions options;
    options.applicationName = "bench-supply";
    options.schemaVersion = version;
    return options;
}

/** A store of the bench supply's settings on `path`. */
inline std::unique_ptr<yxfrontpanel::settings::SettingsStore> benchStore(std::string const& path,
                                                                         unsigned version = 2) {
    return std::make_unique<yxfrontpanel::settings::SettingsStore>(path, benchOptions(version),
                                                                   benchDefinitions());
}

/** A store of the bench supply's settings on `path` that makes its file calls through `fs`,
 *  with `changed` applied to its options. */
inline std::unique_ptr<yxfrontpanel::settings::SettingsStore> benchStoreOn(
    std::string const& path, std::shared_ptr<yxfrontpanel::settings::IFileSystem> fs,
    std::function<void(yxfrontpanel::settings::SettingsStoreOptions&)> const& changed = {}) {
    auto options = benchOptions();
    options.fileSystem = std::move(fs);
    if (changed) {
        changed(options);
    }
    return std::make_unique<yxfrontpanel::settings::SettingsStore>(path, options,
                                                                   benchDefinitions());
}

/** The channel a bench store loads from the file at `path`. */
inline std::int64_t savedChannel(std::string const& path) {
    auto store = benchStore(path);
    store->load();
    return store->integer("channel");
}

/** A valid file of the bench supply with values that differ from every default. */
inline std::string benchFile(unsigned version = 2) {
    return "{\n  \"application\": \"bench-supply\",\n  \"schemaVersion\": " +
           std::to_string(version) +
           ",\n  \"values\": {\n    \"voltage\": 7.25,\n    \"channel\": 9,\n    \"mode\": 2,\n"
           "    \"output\": true,\n    \"name\": \"Lab 4\",\n    \"address\": \"10.0.0.7\"\n"
           "  }\n}\n";
}

}  // namespace yxfp_test
