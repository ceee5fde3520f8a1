#include "endpoint.h"

#include <charconv>

#include "sim_options.h"

namespace frontpanelsim {

Endpoint parseEndpoint(std::string const& option, std::string const& text) {
    auto const fail = [&]() -> Endpoint {
        throw UsageError(option + " wants HOST:PORT, e.g. 127.0.0.1:8080 or [::1]:8080; got '" +
                         text + "'");
    };
    auto const colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) {
        return fail();
    }
    Endpoint endpoint;
    endpoint.host = text.substr(0, colon);
    if (endpoint.host.front() == '[') {
        if (endpoint.host.back() != ']' || endpoint.host.size() < 3) {
            return fail();
        }
        endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
    } else if (endpoint.host.find(':') != std::string::npos) {
        return fail();  // an IPv6 address needs its brackets
    }
    unsigned port = 0;
    char const* first = text.data() + colon + 1;
    char const* last = text.data() + text.size();
    auto const [end, error] = std::from_chars(first, last, port);
    if (error != std::errc{} || end != last || port > 65535) {
        return fail();
    }
    endpoint.port = static_cast<std::uint16_t>(port);
    return endpoint;
}

}  // namespace frontpanelsim
