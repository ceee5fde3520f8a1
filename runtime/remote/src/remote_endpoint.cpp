#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>

#include "socket_address.h"
#include <netdb.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace yxfrontpanel::runtime {

namespace {

std::invalid_argument badEndpoint(std::string_view text, char const* why) {
    return std::invalid_argument("not an address: \"" + std::string(text) + "\" (" + why +
                                 "; expected HOST:PORT, [IPV6]:PORT or unix:PATH)");
}

}  // namespace

std::string Endpoint::toString() const {
    if (kind == Kind::Unix) {
        return "unix:" + path;
    }
    bool const v6 = host.find(':') != std::string::npos;
    return (v6 ? "[" + host + "]" : host) + ':' + std::to_string(port);
}

Endpoint parseEndpoint(std::string_view text) {
    Endpoint endpoint;
    constexpr std::string_view kUnix = "unix:";
    if (text.substr(0, kUnix.size()) == kUnix) {
        endpoint.kind = Endpoint::Kind::Unix;
        endpoint.path = std::string(text.substr(kUnix.size()));
        if (endpoint.path.empty()) {
            throw badEndpoint(text, "empty socket path");
        }
        if (endpoint.path.size() >= sizeof(sockaddr_un::sun_path)) {
            throw badEndpoint(text, "socket path too long");
        }
        return endpoint;
    }
    std::size_t const colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) {
        throw badEndpoint(text, "no host or port");
    }
    std::string_view host = text.substr(0, colon);
    if (host.front() == '[') {
        if (host.back() != ']' || host.size() < 3) {
            throw badEndpoint(text, "unclosed bracket");
        }
        host = host.substr(1, host.size() - 2);
    } else if (host.find(':') != std::string_view::npos) {
        throw badEndpoint(text, "an IPv6 address needs brackets");
    }
    std::string_view const port = text.substr(colon + 1);
    unsigned value = 0;
    auto const [last, error] = std::from_chars(port.data(), port.data() + port.size(), value);
    if (port.empty() || error != std::errc{} || last != port.data() + port.size() ||
        value > 65535) {
        throw badEndpoint(text, "port must be 0 to 65535");
    }
    endpoint.host = std::string(host);
    endpoint.port = static_cast<std::uint16_t>(value);
    return endpoint;
}

int connectTo(Endpoint const& endpoint) {
    SocketAddress const address = resolve(endpoint, false);
    int const fd = ::socket(address.family(), SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot create a socket for " + endpoint.toString());
    }
    if (::connect(fd, address.get(), address.length) != 0) {
        int const error = errno;
        ::close(fd);
        throw std::system_error(error, std::generic_category(),
                                "cannot connect to " + endpoint.toString());
    }
    return fd;
}

}  // namespace yxfrontpanel::runtime
