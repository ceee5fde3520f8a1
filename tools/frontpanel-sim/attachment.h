#pragma once

#include <yxfrontpanel/runtime/panel.h>

#include <memory>
#include <string>
#include <vector>

#include "panel_app.h"
#include "sim_options.h"

namespace frontpanelsim {

/** How the simulator runs: on a terminal, headless in real time (--headless), or headless from
 *  a key script on a clock that only the script moves. */
enum class RunKind { Interactive, Headless, KeyScript };

/** What an attachment gets: the running panel, the demo application on it and the command
 *  line. The references are valid from `attach` until `detach` returns. */
struct SimContext {
    yxfrontpanel::runtime::Panel& panel;
    PanelApp& app;
    SimOptions const& options;
    RunKind kind;
};

/** A part plugged into a simulator run: a server that drives the panel remotely, an input
 *  device, a settings store, the measurement feed. Every runner calls `attach` on each of its
 *  attachments after the panel and the application are built and before the panel runs, and
 *  `detach`, in reverse order, after the panel stopped and before either is destroyed. Both
 *  are called on the thread that runs the panel. */
class Attachment {
public:
    Attachment() = default;
    Attachment(Attachment const&) = delete;
    Attachment& operator=(Attachment const&) = delete;
    virtual ~Attachment();

    /** Plugs in: add key sources, timers, frame listeners, start threads that post or publish
     *  to `context.panel`. Throwing std::exception fails the run (exit status 1 with the
     *  message); attachments attached before it are detached again. */
    virtual void attach(SimContext const& context) = 0;
    /** Unplugs: stops the threads started by `attach` and waits for them. Never throws. An
     *  attachment may be attached again afterwards, to a new session (a restart). */
    virtual void detach() noexcept = 0;
    /** True for a server: a --headless run then keeps going when all key sources have closed
     *  and ends only on SIGINT, SIGTERM or SIGHUP. */
    virtual bool keepsRunning() const;
    /** The VISA resource strings of the remote interfaces this attachment serves while
     *  attached (`TCPIP::HOST::PORT::SOCKET`, `TCPIP::HOST::inst0::INSTR`), for the LXI
     *  identification; none by default. */
    virtual std::vector<std::string> instrumentAddresses() const;
};

using Attachments = std::vector<std::unique_ptr<Attachment>>;

/** The attachments the command line asks for (servers, input devices, settings): the one place
 *  where a new option is turned into an attachment. The measurement feed is not among them:
 *  each runner adds the feed that suits its clock. */
Attachments attachmentsFor(SimOptions const& options);

}  // namespace frontpanelsim
