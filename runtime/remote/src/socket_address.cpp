#include "socket_address.h"

#include <cstring>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/un.h>

namespace yxfrontpanel::runtime {

std::vector<SocketAddress> resolveAll(Endpoint const& endpoint, bool passive) {
    SocketAddress address;
    if (endpoint.kind == Endpoint::Kind::Unix) {
        sockaddr_un unixAddress{};
        unixAddress.sun_family = AF_UNIX;
        std::strncpy(unixAddress.sun_path, endpoint.path.c_str(), sizeof(unixAddress.sun_path) - 1);
        std::memcpy(&address.storage, &unixAddress, sizeof(unixAddress));
        address.length = sizeof(unixAddress);
        return {address};
    }
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV | (passive ? AI_PASSIVE : 0);
    addrinfo* found = nullptr;
    std::string const port = std::to_string(endpoint.port);
    int const status = ::getaddrinfo(endpoint.host.c_str(), port.c_str(), &hints, &found);
    if (status != 0 || found == nullptr) {
        throw std::system_error(
            std::make_error_code(std::errc::host_unreachable),
            "cannot resolve " + endpoint.toString() + ": " + ::gai_strerror(status));
    }
    std::vector<SocketAddress> result;
    for (addrinfo const* entry = found; entry != nullptr; entry = entry->ai_next) {
        if (entry->ai_addrlen > sizeof(address.storage)) {
            continue;
        }
        std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
        address.length = entry->ai_addrlen;
        result.push_back(address);
    }
    ::freeaddrinfo(found);
    if (result.empty()) {
        throw std::system_error(std::make_error_code(std::errc::host_unreachable),
                                "cannot resolve " + endpoint.toString());
    }
    return result;
}

std::string describe(SocketAddress const& address, std::string const& unixName) {
    char text[INET6_ADDRSTRLEN] = {};
    if (address.family() == AF_INET) {
        auto const* ip = reinterpret_cast<sockaddr_in const*>(&address.storage);
        ::inet_ntop(AF_INET, &ip->sin_addr, text, sizeof(text));
        return std::string(text) + ':' + std::to_string(ntohs(ip->sin_port));
    }
    if (address.family() == AF_INET6) {
        auto const* ip = reinterpret_cast<sockaddr_in6 const*>(&address.storage);
        ::inet_ntop(AF_INET6, &ip->sin6_addr, text, sizeof(text));
        return '[' + std::string(text) + "]:" + std::to_string(ntohs(ip->sin6_port));
    }
    return unixName;
}

}  // namespace yxfrontpanel::runtime
