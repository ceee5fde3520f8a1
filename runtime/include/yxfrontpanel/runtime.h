#pragma once

// Everything an application needs to run its panel: the panel loop and its clocks, the settings
// store with its item bindings (built when YXFP_WITH_SETTINGS is on), the command server that
// lets programs press its keys, read its screen and set its values, and the web panel.

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/panel_save_scheduler.h>
#include <yxfrontpanel/runtime/remote_control.h>
#include <yxfrontpanel/runtime/remote_endpoint.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/remote_server.h>
#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_parser.h>
#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/runtime/setting_definition.h>
#include <yxfrontpanel/runtime/settings_store.h>
#include <yxfrontpanel/runtime/web_panel.h>
