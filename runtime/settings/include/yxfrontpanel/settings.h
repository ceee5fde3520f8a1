#pragma once

// The settings store: an atomic file of settings bound to menu items, saved when they change
// (library YxFrontPanelSettings).

#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/runtime/panel_save_scheduler.h>
#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/runtime/setting_definition.h>
#include <yxfrontpanel/runtime/settings_file_system.h>
#include <yxfrontpanel/runtime/settings_store.h>
