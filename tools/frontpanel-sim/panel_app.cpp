#include "panel_app.h"

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
PanelApp::~PanelApp() = default;

}  // namespace frontpanelsim
