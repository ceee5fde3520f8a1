#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/remote_server.h>
#include <yxfrontpanel/runtime/scpi_commands.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

class Panel;

/** Everything about a panel's command server. */
struct RemoteControlOptions {
    /** The addresses, limits and access token of the server. */
    RemoteServerOptions server;
    /** What `*IDN?` answers. */
    scpi::Identity identity;
    /** What `*RST` and `*TST?` call. */
    scpi::InstrumentHooks hooks;
    /** The current screen as a PNG file, called on the panel's thread for
     *  `HCOPy:SDUMp:DATA?`; the command exists only when this is set. The application (or a
     *  glue library built with the PNG component) supplies it, so the remote library itself
     *  never depends on an image library. */
    std::function<std::string()> screenshotPng;
    /** How the panel commands behave (e.g. `MENU:VALue` writes switching to REMOTE). */
    PanelCommandOptions panel;
    /** How `SYSTem:REMote`, `SYSTem:LOCal` and `SYSTem:MODE?` switch and read the mode; by
     *  default the root tree's flag. */
    LocalMode localMode;
};

/** A panel's command server: the common and panel commands (plus the application's own, added
 *  to `commands()` before `start`) served on the addresses of the options, every command run on
 *  the panel's thread through `Panel::post`, each response sent once its work has run.
 *
 *  Use: construct it on the panel, add commands, `start()` (before or after the panel's `run`
 *  started), and destroy it (or `stop()`) before the panel. */
class YXFP_RUNTIME_EXPORT RemoteControl {
public:
    /** Registers the common and panel commands; binds nothing yet. The panel must outlive the
     *  server's work on it. */
    RemoteControl(Panel& panel, RemoteControlOptions options);
    ~RemoteControl();
    RemoteControl(RemoteControl const&) = delete;
    RemoteControl& operator=(RemoteControl const&) = delete;

    /** The command table, for the application's own commands (their handlers run on the
     *  panel's thread). Before `start` only. */
    scpi::CommandTable& commands();
    /** The remote operations on the panel (for other remote channels of the application). */
    PanelControl& control();
    /** Sets the application's condition bits of `set` selected by `mask` to those of `bits`
     *  ("over-temperature" in QUEStionable) for the whole instrument: every client (connection,
     *  VXI-11 link on `commands()`) sees the change through its own transition filters, a
     *  client that connects later starts with the condition. Any thread. */
    void setCondition(scpi::StatusModel::Set set, std::uint16_t mask, std::uint16_t bits);
    /** Reports an error of the instrument itself (-315 "Configuration memory lost" when the
     *  settings could not be saved) with `text` as its detail: it goes into every client's
     *  error queue and sets the ESR bit of its range there. 0 reports nothing. Any thread. */
    void reportError(int code, std::string text);
    /** Binds the addresses and starts serving; after `stop`, starts a new server on the
     *  addresses of the options (an ephemeral port then gets a new number). A call while
     *  serving does nothing. Any thread.
     *  @throws as `RemoteServer`'s constructor and `start`. */
    void start();
    /** Stops serving (see `RemoteServer::stop`) and closes the addresses. Idempotent. Any
     *  thread, but not from a command's handler (it waits for the server's thread). */
    void stop();
    /** The bound addresses (empty before `start` and after `stop`); see
     *  `RemoteServer::addresses`. Any thread. */
    std::vector<std::string> addresses() const;
    /** The number of connected clients (0 while stopped). Any thread. */
    std::size_t clientCount() const;
    /** Why the server's loop ended by itself (poll failed), if it did; also reported through
     *  `RemoteServerOptions::onFailure`. */
    std::optional<std::string> failure() const;
    /** The server itself (null before `start` and after `stop`), for its counters; the
     *  thread that starts and stops the remote control may use it. */
    RemoteServer const* server() const { return server_.get(); }

private:
    Panel& panel_;
    RemoteControlOptions options_;
    std::shared_ptr<PanelControl> control_;
    std::shared_ptr<scpi::CommandTable> table_;
    mutable std::mutex mutex_;  // guards server_; start and stop hold it while they work
    std::unique_ptr<RemoteServer> server_;
    // The id of the frame listener that publishes the screen (0 until the panel's thread added
    // it); shared with the task that adds it.
    std::shared_ptr<std::size_t> frameListener_ = std::make_shared<std::size_t>(0);
};

}  // namespace yxfrontpanel::runtime
