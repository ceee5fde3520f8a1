#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace yxfrontpanel::runtime {

/** Where a command server listens or a client connects: a TCP host and port, or a Unix-domain
 *  socket path. */
struct YXFP_RUNTIME_EXPORT Endpoint {
    /** The socket family. */
    enum class Kind {
        /** A TCP host and port (`host`, `port`). */
        Tcp,
        /** A Unix-domain stream socket (`path`). */
        Unix
    };
    /** Which of the fields apply; TCP by default. */
    Kind kind = Kind::Tcp;
    /** Host name or numeric address (IPv6 without brackets); TCP only. */
    std::string host;
    /** Port; 0 lets the system pick one when listening. TCP only. */
    std::uint16_t port = 0;
    /** Socket path; Unix only. */
    std::string path;

    /** "127.0.0.1:5025", "[::1]:5025" or "unix:/run/panel.sock". */
    std::string toString() const;
};

/** Parses "HOST:PORT", "[IPV6]:PORT" or "unix:PATH".
 *  @throws std::invalid_argument with a message naming the text and the expected forms. */
YXFP_RUNTIME_EXPORT Endpoint parseEndpoint(std::string_view text);

/** Opens a blocking stream socket connected to `endpoint` (close-on-exec); returns its
 *  descriptor, which the caller closes. Every address the host name resolves to is tried in
 *  turn (`localhost` may give ::1 before 127.0.0.1); the connection attempts together take at
 *  most `timeout` (zero or negative: no limit).
 *  @throws std::system_error naming the endpoint when the name does not resolve, or no address
 *  accepts the connection in time (the last address's error; timed_out when time ran out). */
YXFP_RUNTIME_EXPORT int connectTo(Endpoint const& endpoint,
                                  std::chrono::milliseconds timeout = std::chrono::seconds{30});

}  // namespace yxfrontpanel::runtime
