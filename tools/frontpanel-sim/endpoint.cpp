#include "endpoint.h"

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <stdexcept>

#include "sim_options.h"

namespace frontpanelsim {

Endpoint parseEndpoint(std::string const& option, std::string const& text) {
    // The runtime parses addresses for every server; a Unix socket is no HOST:PORT here.
    yxfrontpanel::runtime::Endpoint parsed;
    try {
        parsed = yxfrontpanel::runtime::parseEndpoint(text);
    } catch (std::invalid_argument const&) {
        parsed.kind = yxfrontpanel::runtime::Endpoint::Kind::Unix;
    }
    if (parsed.kind != yxfrontpanel::runtime::Endpoint::Kind::Tcp) {
        throw UsageError(option + " wants HOST:PORT, e.g. 127.0.0.1:8080 or [::1]:8080; got '" +
                         text + "'");
    }
    return Endpoint{parsed.host, parsed.port};
}

}  // namespace frontpanelsim
