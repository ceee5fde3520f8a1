#pragma once

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <string>
#include <vector>

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

/** Every socket address `endpoint` resolves to, in the resolver's order (one for a Unix-domain
 *  endpoint; `passive` for listening). Never empty. @throws std::system_error naming the endpoint
 * when it does not resolve. */
std::vector<SocketAddress> resolveAll(Endpoint const& endpoint, bool passive);

/** "127.0.0.1:5025", "[::1]:5025" for an IP address; `unixName` for a Unix-domain one (whose
 *  peers have no name of their own). */
std::string describe(SocketAddress const& address, std::string const& unixName);

}  // namespace yxfrontpanel::runtime
