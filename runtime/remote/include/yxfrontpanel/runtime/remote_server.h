#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/connection_policy.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_parser.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

/** The limits and addresses of a command server. Every limit has a safe default. */
struct RemoteServerOptions {
    /** Where to listen ("HOST:PORT", "[IPV6]:PORT", "unix:PATH"; see `parseEndpoint`).
     *  Loopback by default; other addresses only when named here. */
    std::vector<std::string> listen{"127.0.0.1:5025"};
    /** When not empty, a client must send `SYSTem:AUTH "token"` before any other command; a
     *  wrong token or another command first is answered with an error line, and the
     *  connection is closed `authFailureDelay` later. */
    std::string accessToken;
    /** How long after a failed authentication the connection is closed; meanwhile the error
     *  line is sent and nothing more is read. 1 s by default. */
    std::chrono::milliseconds authFailureDelay{1000};
    /** Client quotas per listener (a Unix socket has its own), the login deadline, the idle
     *  timeout, TCP keepalive, the pause on running out of descriptors and the longest token.
     *  Clients beyond a quota are refused (closed at once, and logged). */
    ConnectionPolicyOptions policy;
    /** What one line may hold (commands, mnemonics per header, parameters); a line beyond
     *  them runs the commands before the offending one, then queues "Too much data". */
    scpi::ParseLimits parseLimits;
    /** A longer line is discarded and "Input buffer overrun" is queued. */
    std::size_t maxLineBytes = 4096;
    /** Permissions of the Unix socket files (before the umask is applied: the mode is set
     *  with chmod after binding). */
    unsigned unixSocketMode = 0660;
    /** A client whose unsent responses pass this size (it sends without reading) is
     *  disconnected. */
    std::size_t maxOutputBytes = std::size_t{256} * 1024;
    /** Memory of one client's parsed commands waiting for the panel (their bytes plus a fixed
     *  charge per command, mnemonic and parameter). Past half of it the server stops reading
     *  from that client until the panel has caught up; a client whose lines in one read push
     *  it past the whole of it is disconnected. */
    std::size_t maxPendingBytes = std::size_t{512} * 1024;
    /** Most lines one turn of the panel's loop runs for one client before letting the panel
     *  serve its keys and other clients. */
    std::size_t linesPerTurn = 32;
    /** The clock of the authentication delay, the login deadline, the idle timeout and the
     *  listener's pause; the steady clock when empty. */
    std::shared_ptr<IClock> clock;
    /** Called on the I/O thread when its loop ends because of an error (poll(2) failed), with
     *  the reason; the server then serves nobody until it is made again. */
    std::function<void(std::string const& reason)> onFailure;
};

/** A SCPI-style command server: accepts clients on TCP and Unix-domain sockets, reads their
 *  newline-terminated command lines on its own I/O thread (poll(2)), runs the commands through
 *  `executor` (e.g. a panel's `post`) on the thread that executor serves, and sends each
 *  client its response lines in order once the work has run. Each client has its own error
 *  queue. Connects, disconnects and refusals are logged with the peer address (category
 *  "libYxFrontPanelRuntime.remote").
 *
 *  The server never waits for the executor's thread and never blocks it: a client that sends
 *  faster than commands run stops being read, one that does not read its responses is
 *  disconnected. */
class YXFP_RUNTIME_EXPORT RemoteServer {
public:
    /** Runs a task on the thread that owns the commands' targets (the panel's thread); false
     *  when it refuses (stopped). */
    using Executor = std::function<bool(std::function<void()>)>;

    /** Binds and listens on every address of `options.listen` (a stale Unix socket file is
     *  replaced; one a running server still answers on is not), but serves nobody until
     *  `start`. The table is shared with the tasks, so it
     *  stays alive while any runs; do not change it after `start`.
     *  @throws std::invalid_argument for an address that does not parse, an empty table or
     *  executor, or an access token longer than `policy.maxTokenBytes`; std::system_error
     *  naming the address when it cannot be bound or another server answers on its socket. */
    RemoteServer(std::shared_ptr<scpi::CommandTable const> table, Executor executor,
                 RemoteServerOptions options);
    /** `stop`, then removes the Unix socket files it created. */
    ~RemoteServer();
    RemoteServer(RemoteServer const&) = delete;
    RemoteServer& operator=(RemoteServer const&) = delete;

    /** Starts the I/O thread. A second call does nothing.
     *  @throws std::system_error when the thread cannot be started. */
    void start();
    /** Closes every client and the listening sockets and joins the I/O thread. Work already
     *  handed to the executor still runs; its responses are dropped. Idempotent; not from the
     *  I/O thread. */
    void stop();
    /** The bound addresses, in the order of `options.listen`, with the port the system picked
     *  for port 0 ("127.0.0.1:41873", "unix:/tmp/panel.sock"). Any thread. */
    std::vector<std::string> addresses() const;
    /** The number of connected clients. Any thread. */
    std::size_t clientCount() const;
    /** Why the I/O thread's loop ended by itself, if it did (see `onFailure`). Any thread. */
    std::optional<std::string> failure() const;
    /** The memory held by parsed lines waiting for the panel, over all clients, in the units
     *  of `maxPendingBytes`; and the most any one client has held since the start. Any
     *  thread; for tests and monitoring. */
    std::size_t pendingBytes() const;
    /** The most parsed-line memory one client has held at once since the start. */
    std::size_t peakPendingBytes() const;

private:
    class Impl;
    std::shared_ptr<Impl> impl_;
};

}  // namespace yxfrontpanel::runtime
