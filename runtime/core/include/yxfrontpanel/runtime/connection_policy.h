#pragma once

#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/export.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime {

/** How a server treats its connections: the rules the command server and the web panel share,
 *  so that a client that connects and says nothing, or never logs in, cannot hold a place that
 *  an operator needs. Every value has a safe default. */
struct ConnectionPolicyOptions {
    /** Most clients at once on one network (TCP) listener; further clients are refused. */
    std::size_t maxClientsPerListener = 8;
    /** Most clients at once on one local (Unix-domain) listener. Local listeners count apart
     *  from the network ones, so that idle network clients never lock the local socket out. */
    std::size_t maxLocalClients = 4;
    /** When the server has an access token: a client that has not logged in this long after
     *  connecting is disconnected. Zero: no deadline. */
    std::chrono::milliseconds loginDeadline{10000};
    /** A client that sends nothing this long is disconnected. Zero: never. */
    std::chrono::milliseconds idleTimeout{std::chrono::minutes{10}};
    /** TCP keepalive on network connections, so that peers that vanished without closing
     *  (a pulled cable) are noticed. */
    bool tcpKeepAlive = true;
    /** How long a listener stops accepting after the process ran out of descriptors
     *  (EMFILE/ENFILE), instead of trying again at once. */
    std::chrono::milliseconds acceptPause{250};
    /** Longest access token accepted; a longer one given by a client is refused as a whole,
     *  never shortened, and a longer configured one is refused by `checkAccessToken`. */
    std::size_t maxTokenBytes = 256;
};

/** What kind of listener a connection arrived on. */
enum class ListenerKind {
    Network,  ///< TCP
    Local,    ///< Unix-domain socket
};

/** Counts the connections of each listener and admits new ones within its quota. Thread-safe. */
class YXFP_RUNTIME_EXPORT ConnectionQuota {
public:
    /** Quotas from `options` (`maxClientsPerListener`, `maxLocalClients`). */
    explicit ConnectionQuota(ConnectionPolicyOptions const& options);

    /** Registers a listener; returns its id for `admit`, `release` and `count`. */
    std::size_t addListener(ListenerKind kind);
    /** True, and counted, when the listener has room for one more client; false otherwise.
     *  @throws std::out_of_range for an unknown id. */
    bool admit(std::size_t listener);
    /** A client admitted on `listener` is gone. Extra releases are ignored. */
    void release(std::size_t listener);
    /** The clients currently counted on `listener`. */
    std::size_t count(std::size_t listener) const;
    /** The quota of `listener`. */
    std::size_t limit(std::size_t listener) const;

private:
    struct Entry {
        std::size_t limit = 0;
        std::size_t count = 0;
    };
    std::size_t networkLimit_;
    std::size_t localLimit_;
    mutable std::mutex mutex_;
    std::vector<Entry> listeners_;
};

/** Why a connection's time ran out. */
enum class ConnectionExpiry {
    None,           ///< still within its time
    LoginDeadline,  ///< it did not log in in time
    Idle,           ///< it sent nothing for the idle timeout
};

/** The deadlines of one connection: login (when a token is required) and idleness, measured
 *  on the server's clock. A value type owned by the server's I/O thread. */
class YXFP_RUNTIME_EXPORT ConnectionDeadline {
public:
    /** A connection opened at `now`; `loginRequired` when the server has an access token. */
    ConnectionDeadline(ConnectionPolicyOptions const& options, IClock::TimePoint now,
                       bool loginRequired);

    /** The client sent something at `now`: the idle time starts again. */
    void activity(IClock::TimePoint now);
    /** The client logged in: the login deadline no longer applies. */
    void loggedIn();
    /** Whether the client still has to log in. */
    bool loginPending() const { return loginPending_; }
    /** The next moment at which `expired` may change, if any. */
    std::optional<IClock::TimePoint> next() const;
    /** Whether, and why, the connection's time is over at `now`. */
    ConnectionExpiry expired(IClock::TimePoint now) const;

private:
    std::chrono::milliseconds idleTimeout_;
    std::optional<IClock::TimePoint> loginBy_;
    IClock::TimePoint lastActivity_;
    bool loginPending_;
};

/** A short text for a log line: "it did not log in within 10 s", "idle for 600 s". */
YXFP_RUNTIME_EXPORT std::string describeExpiry(ConnectionExpiry expiry,
                                               ConnectionPolicyOptions const& options);

/** The poll(2) timeout in milliseconds until `deadline` on `clock`: -1 without a deadline or
 *  on a clock moved by hand (its advance listeners wake the loop instead), else 0 to 60,000. */
YXFP_RUNTIME_EXPORT int pollTimeout(std::optional<IClock::TimePoint> deadline, IClock const& clock);

/** The earlier of two optional moments. */
YXFP_RUNTIME_EXPORT std::optional<IClock::TimePoint> earliest(std::optional<IClock::TimePoint> a,
                                                              std::optional<IClock::TimePoint> b);

/** A listener's pause after the process ran out of descriptors: while paused, a server leaves
 *  the listener out of its poll set instead of polling a socket it cannot accept from. */
class YXFP_RUNTIME_EXPORT AcceptPause {
public:
    /** Pauses of `options.acceptPause`. */
    explicit AcceptPause(ConnectionPolicyOptions const& options);

    /** Call with the errno of a failed accept(2); pauses (and returns true) for EMFILE, ENFILE,
     *  ENOBUFS and ENOMEM. */
    bool failed(int error, IClock::TimePoint now);
    /** Whether the listener is paused at `now`; the pause ends by itself. */
    bool paused(IClock::TimePoint now) const;
    /** When the pause ends, while one lasts. */
    std::optional<IClock::TimePoint> resumeAt() const { return resumeAt_; }

private:
    std::chrono::milliseconds pause_;
    std::optional<IClock::TimePoint> resumeAt_;
};

/** Applies the policy's socket options to an accepted TCP connection (keepalive on or off, with
 *  probes that give up on a dead peer within about two minutes). Returns false when the system
 *  refused an option; the connection is still usable. */
YXFP_RUNTIME_EXPORT bool applyTcpOptions(int fd, ConnectionPolicyOptions const& options);

/** @throws std::invalid_argument when a configured access token is longer than
 *  `options.maxTokenBytes` (it would be refused to every client). */
YXFP_RUNTIME_EXPORT void checkAccessToken(std::string_view token,
                                          ConnectionPolicyOptions const& options);

/** Whether `given` equals `expected`, in time that depends only on `expected`'s length, so the
 *  time taken tells nothing about how much of a guess was right. A `given` longer than
 *  `maxTokenBytes` is refused whole; an empty `expected` matches nothing. */
YXFP_RUNTIME_EXPORT bool tokenMatches(std::string_view given, std::string_view expected,
                                      std::size_t maxTokenBytes);

/** The host names an HTTP server answers to, against DNS rebinding: a page from another site
 *  whose name was made to resolve to this machine sends its own name in `Host` and `Origin`,
 *  and is refused. Allowed: the bound address (when it is not a wildcard), `localhost`,
 *  `127.0.0.1`, `[::1]` and the names the application configures, each with the bound port
 *  (or without a port when the port is 80). Names compare case-insensitively; a trailing dot is
 *  ignored. */
class YXFP_RUNTIME_EXPORT HostAllowList {
public:
    /** `boundHost` as listened on ("127.0.0.1", "::1", "0.0.0.0"), `port` as bound, `names`
     *  configured by the application ("panel.example", "192.0.2.7"). */
    HostAllowList(std::string_view boundHost, std::uint16_t port,
                  std::vector<std::string> const& names);

    /** Whether a request's `Host` header value names this server. */
    bool allowsHost(std::string_view host) const;
    /** Whether an `Origin` header value ("http://localhost:8080") names this server; "null"
     *  and origins with a path or another scheme than http/https are refused. */
    bool allowsOrigin(std::string_view origin) const;
    /** The allowed names, lower case, IPv6 addresses in brackets. */
    std::vector<std::string> const& names() const { return names_; }

private:
    std::uint16_t port_;
    std::vector<std::string> names_;
};

}  // namespace yxfrontpanel::runtime
