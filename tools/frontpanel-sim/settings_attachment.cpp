#include "settings_attachment.h"

#include <yxfrontpanel/runtime/setting_definition.h>

#include <utility>

namespace frontpanelsim {

SettingsAttachment::SettingsAttachment(std::string path) : path_(std::move(path)) {}

SettingsAttachment::~SettingsAttachment() { unplug(); }

void SettingsAttachment::attach(SimContext const& context) {
    yxfrontpanel::settings::SettingsStoreOptions options;
    options.applicationName = kApplicationName;
    options.schemaVersion = kSchemaVersion;
    store_ = std::make_unique<yxfrontpanel::settings::SettingsStore>(
        path_, options, context.app.settingDefinitions());
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
