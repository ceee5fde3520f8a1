#include "settings_attachment.h"

#include <yxfrontpanel/runtime/setting_definition.h>

#include <iostream>
#include <string>
#include <utility>

namespace frontpanelsim {

SettingsAttachment::SettingsAttachment(std::string path, std::shared_ptr<DeviceErrors> errors)
    : path_(std::move(path)), errors_(std::move(errors)) {}

SettingsAttachment::~SettingsAttachment() { unplug(); }

void SettingsAttachment::attach(SimContext const& context) {
    yxfrontpanel::settings::SettingsStoreOptions options;
    options.applicationName = kApplicationName;
    options.schemaVersion = kSchemaVersion;
    store_ = std::make_unique<yxfrontpanel::settings::SettingsStore>(
        path_, options, context.app.settingDefinitions());
    // A save that fails (and is retried) or a file the store refuses is said on stderr, where
    // the simulator reports everything else that goes wrong, from whichever thread saw it, and
    // to the clients of the remote channels that serve.
    store_->subscribeErrors([errors = errors_](std::string const& error) {
        std::cerr << "frontpanel-sim: " << error << std::endl;
        if (errors) {
            errors->report(DeviceErrors::kConfigurationMemoryLost, error);
        }
    });
    store_->load();
    app_ = &context.app;
    app_->useSettings(*store_);
    saving_ = std::make_unique<yxfrontpanel::settings::PanelSaveScheduler>(context.panel, *store_);
}

void SettingsAttachment::detach() noexcept { unplug(); }

void SettingsAttachment::unplug() noexcept {
    // Unsaved changes first, while the application still holds its bindings.
    saving_.reset();
    if (app_ != nullptr) {
        app_->releaseSettings();
        app_ = nullptr;
    }
    store_.reset();
}

}  // namespace frontpanelsim
