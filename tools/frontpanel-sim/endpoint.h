#pragma once

#include <cstdint>
#include <string>

namespace frontpanelsim {

/** A host and port named on the command line, e.g. "127.0.0.1:8080" or "[::1]:5025". */
struct Endpoint {
    std::string host;
    std::uint16_t port = 0;
};

/** Parses HOST:PORT (an IPv6 host in brackets); PORT 0 picks a free port.
 *  @throws UsageError naming `option` and what is wrong. */
Endpoint parseEndpoint(std::string const& option, std::string const& text);

}  // namespace frontpanelsim
