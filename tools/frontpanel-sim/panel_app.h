#pragma once

#include <yxfrontpanel/components.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/menu_tree.h>

#include <functional>
#include <vector>

namespace yxfrontpanel::settings {
class SettingDefinition;
class SettingsStore;
}  // namespace yxfrontpanel::settings

namespace frontpanelsim {

/** An application behind a simulated panel: its menu tree, its operating mode, its measurement
 *  and its home screen. The simulator's runners hand all of it to a panel of the runtime. */
class PanelApp {
public:
    /** Work that shows a measurement, run on the panel's thread. */
    using Update = std::function<void()>;

    PanelApp() = default;
    PanelApp(PanelApp const&) = delete;
    PanelApp& operator=(PanelApp const&) = delete;
    virtual ~PanelApp();

    /** The root menu the six keys go to. */
    virtual yxfrontpanel::IMenuTree& root() = 0;
    /** LOCAL (true: front-panel edits allowed) or REMOTE mode. Panel's thread. */
    virtual void setLocal(bool local) = 0;
    virtual bool isLocal() const = 0;
    /** Puts the instrument to its defaults (`*RST`; "Reset defaults" without the question).
     *  Returns whether it worked. On the panel's thread. */
    virtual bool resetDefaults() = 0;
    /** Takes measurement number `sample` (1, 2, ... one every half second) of the instrument
     *  and returns the update that shows it. Any thread: an acquisition thread calls it and
     *  publishes the update to the panel. */
    virtual Update acquire(unsigned sample) = 0;
    /** Draws the home screen (a status screen) through `provider`. Panel's thread. */
    virtual void drawHomeScreen(yxfrontpanel::IDrawingProvider const& provider) = 0;

#if YXFP_HAS_SETTINGS
    /** The values the application keeps in a settings file (--settings); none by default. */
    virtual std::vector<yxfrontpanel::settings::SettingDefinition> settingDefinitions() const;
    /** Binds the application's items to `store`, loaded from the file: they show its values,
     *  edits go into it, and the save and reset entries act on it. The store stays until
     *  `releaseSettings`. Panel's thread; by default nothing. */
    virtual void useSettings(yxfrontpanel::settings::SettingsStore& store);
    /** Ends the use of the store before it goes (the panel has stopped). Never throws. */
    virtual void releaseSettings() noexcept;
#endif
};

}  // namespace frontpanelsim
