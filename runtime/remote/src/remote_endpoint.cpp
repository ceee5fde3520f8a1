#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "socket_address.h"
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace yxfrontpanel::runtime {

namespace {

std::invalid_argument badEndpoint(std::string_view text, char const* why) {
    return std::invalid_argument("not an address: \"" + std::string(text) + "\" (" + why +
                                 "; expected HOST:PORT, [IPV6]:PORT or unix:PATH)");
}

/** Waits for a non-blocking connect on `fd`; 0 when connected, else the error (ETIMEDOUT when
 *  `deadline` passed first). */
int waitForConnect(int fd, bool limited, std::chrono::steady_clock::time_point deadline) {
    while (true) {
        int wait = -1;
        if (limited) {
            auto const left = std::chrono::ceil<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) {
                return ETIMEDOUT;
            }
            wait = static_cast<int>(std::min<std::chrono::milliseconds::rep>(left.count(), 60000));
        }
        pollfd entry{fd, POLLOUT, 0};
        int const ready = ::poll(&entry, 1, wait);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready < 0) {
            return errno;
        }
        if (ready == 0) {
            continue;  // the loop's check of the deadline decides
        }
        int result = 0;
        socklen_t length = sizeof(result);
        if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &result, &length) != 0) {
            return errno;
        }
        return result;
    }
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

int connectTo(Endpoint const& endpoint, std::chrono::milliseconds timeout) {
    std::vector<SocketAddress> const addresses = resolveAll(endpoint, false);
    bool const limited = timeout.count() > 0;
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    int error = ECONNREFUSED;
    for (auto const& address : addresses) {
        int const fd = ::socket(address.family(), SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (fd < 0) {
            error = errno;
            continue;
        }
        int status = ::connect(fd, address.get(), address.length);
        if (status != 0 && errno == EINPROGRESS) {
            status = waitForConnect(fd, limited, deadline);
        } else if (status != 0) {
            status = errno;
        }
        if (status == 0 && ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) == 0) {
            return fd;
        }
        error = status != 0 ? status : errno;
        ::close(fd);
        if (error == ETIMEDOUT) {
            break;  // the time was for all addresses together
        }
    }
    throw std::system_error(error, std::generic_category(),
                            "cannot connect to " + endpoint.toString());
}

}  // namespace yxfrontpanel::runtime
