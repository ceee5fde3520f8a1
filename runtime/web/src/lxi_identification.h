#pragma once

#include <yxfrontpanel/runtime/instrument_identity.h>

#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime::detail {

/** The web panel's path of the LXI identification document. */
inline constexpr std::string_view kLxiIdentificationPath = "/lxi/identification";

/** Where a client reached the web panel, for the addresses in the identification document. */
struct LxiReach {
    /** The Host header the client sent (host and port as it named them). */
    std::string host;
    /** The address the web panel listens on. */
    std::string listenAddress;
};

/** The LXI identification document (namespace
 *  http://www.lxistandard.org/InstrumentIdentification/1.0): the four `*IDN?` fields of
 *  `identity` as the remote channels show them, the document's own URL, and one LXI network
 *  interface listing the web panel's URL followed by `instrumentAddresses`. Text is escaped
 *  for XML. */
std::string lxiIdentification(InstrumentIdentity const& identity, LxiReach const& reach,
                              std::vector<std::string> const& instrumentAddresses);

}  // namespace yxfrontpanel::runtime::detail
