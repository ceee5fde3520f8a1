#pragma once

// Everything an application needs to run its panel: the panel loop and its clocks.

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/web_panel.h>
