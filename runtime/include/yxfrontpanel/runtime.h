#pragma once

// Everything an application needs to run its panel: the panel loop and its clocks, and the
// settings store with its item bindings (built when YXFP_WITH_SETTINGS is on).

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/panel_save_scheduler.h>
#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/runtime/setting_definition.h>
#include <yxfrontpanel/runtime/settings_store.h>
#include <yxfrontpanel/runtime/web_panel.h>
