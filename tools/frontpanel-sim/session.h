#pragma once

#include <frontpanelhw/display.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/panel.h>

#include <functional>
#include <memory>

#include "attachment.h"
#include "panel_app.h"
#include "sim_options.h"

namespace frontpanelsim {

/** Builds the application on a drawing provider of the panel's size. */
using AppFactory =
    std::function<std::unique_ptr<PanelApp>(yxfrontpanel::IDrawingProvider const& provider)>;

/** The panel options of a run: the frame limit (none in a key script, which records every
 *  frame), the idle time (--idle; by default off in a key script and a minute otherwise), and
 *  whether the run ends when its key sources close (unless an attachment keeps it running). */
yxfrontpanel::runtime::PanelOptions panelOptionsFor(SimOptions const& options, RunKind kind,
                                                    Attachments const& attachments);

/** One run of the application on a panel of the runtime: the panel on `display`, the
 *  application built on the panel's provider (its root tree and home screen handed to the
 *  panel) and the attachments. The destructor detaches the attachments in reverse order, then
 *  destroys the application, then the panel. */
class Session {
public:
    /** @throws what the panel's constructor and the factory throw. */
    Session(frontpanelhw::IDisplay& display,
            yxfrontpanel::runtime::PanelOptions const& panelOptions,
            std::shared_ptr<yxfrontpanel::runtime::IClock> clock, AppFactory const& makeApp,
            SimOptions const& options, RunKind kind);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /** Attaches each of `attachments`, in order, and keeps them. When one throws, those attached
     *  before it are detached again and the exception passes on. */
    void attach(Attachments attachments);
    /** Detaches the attachments, in reverse order, and hands them back in their order, so that
     *  a new session can attach them again (a restart of the application). */
    Attachments detach() noexcept;

    yxfrontpanel::runtime::Panel& panel();
    PanelApp& app();

private:
    void detachAll() noexcept;

    SimOptions const& options_;
    RunKind kind_;
    yxfrontpanel::runtime::Panel panel_;
    std::unique_ptr<PanelApp> app_;
    Attachments attached_;
};

/** Stops `panel` on SIGINT, SIGTERM and SIGHUP (a closed terminal) until the guard goes, which
 *  puts the earlier handlers back. A stopped run detaches its parts, so each of these signals
 *  saves the settings and ends the run with status 0. */
yxfrontpanel::runtime::SignalStopGuard stopOnEndSignals(yxfrontpanel::runtime::Panel& panel);

}  // namespace frontpanelsim
