#include "panel_app.h"

#include <yxfrontpanel/components.h>
#if YXFP_HAS_SETTINGS
#include <yxfrontpanel/runtime/setting_definition.h>
#endif

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
PanelApp::~PanelApp() = default;

#if YXFP_HAS_SETTINGS

std::vector<yxfrontpanel::settings::SettingDefinition> PanelApp::settingDefinitions() const {
    return {};
}

void PanelApp::useSettings(yxfrontpanel::settings::SettingsStore& /*store*/) {}

void PanelApp::releaseSettings() noexcept {}

#endif

}  // namespace frontpanelsim
