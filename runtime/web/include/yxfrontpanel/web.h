#pragma once

// The web front panel: the panel in a browser over HTTP and WebSocket (library YxFrontPanelWeb).

#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/runtime/web_panel.h>
