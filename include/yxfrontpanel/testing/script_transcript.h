#pragma once

#include <yxfrontpanel/testing/export.h>

#include <string>

namespace yxfrontpanel::testing {

class KeyScript;
class RecordingDisplay;

/** Runs `keys` with `script` and returns the frames `display` kept, in the form
 *  `frontpanel-sim --print all` writes them (see `formatScriptFrame`): frames kept before the
 *  run are "after step 0: start", every later one is headed by the step during which it was
 *  drawn; frames are numbered from 1 over the display's whole record. An application's golden
 *  files thus read like the simulator's. @throws KeyScriptError as `KeyScript::parse` (before
 *  any key); whatever a step throws passes through. */
YXFP_TESTING_EXPORT std::string recordKeyScript(KeyScript const& script, std::string const& keys,
                                                RecordingDisplay const& display);

}  // namespace yxfrontpanel::testing
