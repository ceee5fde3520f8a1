#include "panel_app.h"

#include <yxfrontpanel/runtime/setting_definition.h>

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
PanelApp::~PanelApp() = default;

std::vector<yxfrontpanel::settings::SettingDefinition> PanelApp::settingDefinitions() const {
    return {};
}

void PanelApp::useSettings(yxfrontpanel::settings::SettingsStore& /*store*/) {}

void PanelApp::releaseSettings() noexcept {}

}  // namespace frontpanelsim
