#pragma once

#include <yxfrontpanel/runtime/connection_policy.h>
#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/vxi11_instrument.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace yxfrontpanel::runtime {

/** Where and how a VXI-11 server listens. */
struct Vxi11ServerOptions {
    /** The IPv4 address of every socket of the server; loopback by default. */
    std::string host = "127.0.0.1";
    /** The core channel's TCP port; 0 lets the system pick. */
    std::uint16_t corePort = 0;
    /** Registers the core channel with the system's rpcbind when one answers on this host. */
    bool useRpcbind = true;
    /** Without rpcbind, the port on which the server answers portmapper GETPORT requests for
     *  its own program itself (TCP and UDP); 111 as clients expect, 0 lets the system pick
     *  (tests), empty for none. */
    std::optional<std::uint16_t> portmapperPort = 111;
    /** Client quota, idle timeout and keepalive of the core channel's connections. */
    ConnectionPolicyOptions policy;
    /** Most links open at once over all clients. */
    std::size_t maxLinks = 16;
    /** Longest RPC record a client may send. */
    std::size_t maxRecordBytes = std::size_t{1} << 20;
};

/** A VXI-11 instrument server: the core channel over ONC RPC on TCP, each link a session of
 *  `instruments`, registered with rpcbind or answering GETPORT itself. Serves from its own
 *  threads (one per connection) between `start` and `stop`. */
class YXFP_RUNTIME_EXPORT Vxi11Server {
public:
    /** Binds the core channel and, unless rpcbind runs, the portmapper port. A portmapper
     *  port that cannot be bound (port 111 needs root) is not an error: `registration` says
     *  so and clients must name the core port.
     *  @throws std::invalid_argument for a host that is not an IPv4 address;
     *  std::system_error when the core port cannot be bound. */
    Vxi11Server(Vxi11InstrumentFactory instruments, Vxi11ServerOptions options);
    /** `stop`. */
    ~Vxi11Server();
    Vxi11Server(Vxi11Server const&) = delete;
    Vxi11Server& operator=(Vxi11Server const&) = delete;

    /** Starts serving. A second call does nothing. */
    void start();
    /** Closes every connection, unregisters from rpcbind and joins the threads. Idempotent. */
    void stop();
    /** The bound core channel port. */
    std::uint16_t corePort() const;
    /** The port of the server's own portmapper; empty when it has none. */
    std::optional<std::uint16_t> portmapperPort() const;
    /** How clients find the core port: "registered with rpcbind", "portmapper on port 111",
     *  or why neither works. */
    std::string registration() const;
    /** The number of open links. */
    std::size_t linkCount() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace yxfrontpanel::runtime
