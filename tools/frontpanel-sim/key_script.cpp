#include "key_script.h"

#include <stdexcept>

namespace frontpanelsim {

yxfrontpanel::testing::KeyScript simulatorKeyScript(std::function<PanelApp&()> app) {
    yxfrontpanel::testing::KeyScript script(
        [app](frontpanelhw::PanelKey key) { app().press(key); });
    script.addWord("local", "switch to local mode (front-panel edits allowed)",
                   [app] { app().setLocal(true); });
    script.addWord("remote", "switch to remote mode (front-panel edits refused)",
                   [app] { app().setLocal(false); });
    script.addWord("tick", "let half a second pass (one measurement update)",
                   [app] { app().tick(); });
    return script;
}

std::string keyScriptHelp() {
    // Help only lists the words; no step ever runs, so no application is needed.
    return simulatorKeyScript([]() -> PanelApp& { throw std::logic_error("no application"); })
        .help();
}

}  // namespace frontpanelsim
