#pragma once

#include <yxfrontpanel/testing/key_script.h>

#include <functional>
#include <string>

#include "panel_app.h"

namespace frontpanelsim {

/** The simulator's key script: the six panel keys go to the application's `press`; `local`
 *  and `remote` switch the operating mode; `tick` lets half a second pass (one measurement
 *  update). `app` is asked for the application each time a step runs, so a script can be
 *  parsed (and refused) before the application exists. */
yxfrontpanel::testing::KeyScript simulatorKeyScript(std::function<PanelApp&()> app);

/** The words a key script understands, with what each does, one per line (for --help). */
std::string keyScriptHelp();

}  // namespace frontpanelsim
