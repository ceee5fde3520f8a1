#pragma once

// The panel runtime's core: the panel loop, its clocks, posted work, timers and signals, the
// connection policy its servers share and the instrument identity its remote channels name. The
// optional parts have umbrella headers of their own, installed with their libraries:
// <yxfrontpanel/remote.h>, <yxfrontpanel/settings.h> and <yxfrontpanel/web.h>;
// <yxfrontpanel/components.h> says which ones this installation has.

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/connection_policy.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/instrument_identity.h>
#include <yxfrontpanel/runtime/owned_descriptor.h>
#include <yxfrontpanel/runtime/panel.h>
