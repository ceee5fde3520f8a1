#pragma once

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <string>

#include <sys/socket.h>

namespace yxfrontpanel::runtime {

/** A socket address of any family, as the socket calls take it. */
struct SocketAddress {
    sockaddr_storage storage{};
    socklen_t length = 0;

    sockaddr const* get() const { return reinterpret_cast<sockaddr const*>(&storage); }
    sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
    int family() const { return storage.ss_family; }
};

/** The socket address of `endpoint` (the first one a host name resolves to; `passive` for
 *  listening). @throws std::system_error naming the endpoint when it does not resolve. */
SocketAddress resolve(Endpoint const& endpoint, bool passive);

/** "127.0.0.1:5025", "[::1]:5025" for an IP address; `unixName` for a Unix-domain one (whose
 *  peers have no name of their own). */
std::string describe(SocketAddress const& address, std::string const& unixName);

}  // namespace yxfrontpanel::runtime
