#include "lxi_identification.h"

namespace yxfrontpanel::runtime::detail {

namespace {

std::string escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char const byte : text) {
        switch (byte) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            default:
                // XML 1.0 has no place for the other control characters.
                out += (static_cast<unsigned char>(byte) < 0x20 && byte != '\t') ? ' ' : byte;
        }
    }
    return out;
}

void element(std::string& out, std::string_view indent, std::string_view name,
             std::string_view text) {
    out += indent;
    out += '<';
    out += name;
    out += '>';
    out += escaped(text);
    out += "</";
    out += name;
    out += ">\n";
}

/** The host part of a Host header: without the port, an IPv6 literal without its brackets. */
std::string hostName(std::string_view host) {
    if (!host.empty() && host.front() == '[') {
        std::size_t const close = host.find(']');
        return std::string(host.substr(1, close == std::string_view::npos ? close : close - 1));
    }
    return std::string(host.substr(0, host.find(':')));
}

bool isWildcard(std::string_view address) {
    return address == "0.0.0.0" || address == "::" || address == "[::]";
}

}  // namespace

std::string lxiIdentification(InstrumentIdentity const& identity, LxiReach const& reach,
                              std::vector<std::string> const& instrumentAddresses) {
    InstrumentIdentity const shown = shownIdentity(identity);
    std::string const base = "http://" + reach.host;
    std::string const name = hostName(reach.host);
    std::string address = reach.listenAddress;
    if (!address.empty() && address.front() == '[') {
        address = hostName(address);
    }
    if (isWildcard(address)) {
        address = name;
    }
    bool const ipv6 = address.find(':') != std::string::npos;

    std::string out =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<LXIDevice xmlns=\"http://www.lxistandard.org/InstrumentIdentification/1.0\" "
        "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
        "xsi:schemaLocation=\"http://www.lxistandard.org/InstrumentIdentification/1.0 "
        "http://www.lxistandard.org/InstrumentIdentification/1.0/LXIIdentification.xsd\">\n";
    element(out, "  ", "Manufacturer", shown.manufacturer);
    element(out, "  ", "Model", shown.model);
    element(out, "  ", "SerialNumber", shown.serialNumber);
    element(out, "  ", "FirmwareRevision", shown.firmwareVersion);
    element(out, "  ", "ManufacturerDescription", shown.manufacturer + " " + shown.model);
    element(out, "  ", "HomepageURL", base + "/");
    element(out, "  ", "DriverURL", base + "/");
    element(out, "  ", "UserDescription", shown.model + " " + shown.serialNumber);
    element(out, "  ", "IdentificationURL", base + std::string(kLxiIdentificationPath));
    out += "  <Interface xsi:type=\"NetworkInformation\" InterfaceType=\"LXI\" IPType=\"";
    out += ipv6 ? "IPv6" : "IPv4";
    out += "\" InterfaceName=\"network\">\n";
    element(out, "    ", "InstrumentAddressString", base + "/");
    for (std::string const& resource : instrumentAddresses) {
        element(out, "    ", "InstrumentAddressString", resource);
    }
    element(out, "    ", "Hostname", name);
    element(out, "    ", "IPAddress", address);
    out += "  </Interface>\n";
    out += "</LXIDevice>\n";
    return out;
}

}  // namespace yxfrontpanel::runtime::detail
