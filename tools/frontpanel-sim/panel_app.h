#pragma once

#include <frontpanelhw/terminal_keys.h>

namespace frontpanelsim {

/** An application behind a simulated panel: it receives the six keys, the operating mode and
 *  the passing of time, all on the one thread that drives the panel. */
class PanelApp {
public:
    PanelApp() = default;
    PanelApp(PanelApp const&) = delete;
    PanelApp& operator=(PanelApp const&) = delete;
    virtual ~PanelApp();

    /** Shows the first screen. */
    virtual void start() = 0;
    /** One key press. */
    virtual void press(frontpanelhw::PanelKey key) = 0;
    /** LOCAL (true: front-panel edits allowed) or REMOTE mode. */
    virtual void setLocal(bool local) = 0;
    virtual bool isLocal() const = 0;
    /** Half a second has passed: periodic updates such as measurements. */
    virtual void tick() = 0;
};

}  // namespace frontpanelsim
