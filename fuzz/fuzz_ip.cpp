// Parses arbitrary text as an IPv4 address and checks the text forms of what it accepts.

#include <yxfrontpanel/ip.h>

#include <sstream>
#include <stdexcept>

#include "fuzz_support.h"

namespace {

using yxfp_fuzz::check;

size_t getlinePieces(std::string const& text, char delimiter) {
    std::istringstream stream(text);
    size_t count = 0;
    for (std::string piece; std::getline(stream, piece, delimiter);) {
        ++count;
    }
    return count;
}

void checkAddress(ip::IpV4Address const& address) {
    check(ip::fromString(ip::toString(address)) == address, "toString does not parse back");
    check(ip::toFullWidthString(address, ' ').size() == 15u, "blank-filled form is not 15 wide");
    check(ip::toFullWidthString(address, '0').size() == 15u, "zero-filled form is not 15 wide");
    check(ip::fromString(ip::toFullWidthString(address, '0')) == address,
          "zero-filled form does not parse back");
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    check(ip::split(text, '.').size() == getlinePieces(text, '.'), "split count differs");
    try {
        checkAddress(ip::fromString(text));
    } catch (ip::InvalidIpAddressFormat const&) {
    } catch (std::invalid_argument const&) {
    } catch (std::out_of_range const&) {
    }
    if (size >= 4u) {
        checkAddress(ip::IpV4Address(data[0], data[1], data[2], data[3]));
    }
    return 0;
}
