#include <yxfrontpanel/ip.h>

#include <array>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace ip {

namespace {

constexpr char kFieldSeparator = '.';

// Writes the four fields separated by dots. Each field gets the given width (with the stream's
// fill) and is written as a number, not as a character; the dots are never padded.
void writeFields(std::ostream& stream, IpV4Address const& address, int width) {
    for (unsigned int index = 0; index < 4u; ++index) {
        if (index > 0u) {
            stream << kFieldSeparator;
        }
        stream << std::setw(width) << static_cast<unsigned int>(address[index]);
    }
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, IpV4Address const& address) {
    writeFields(stream, address, 0);
    return stream;
}

std::string toString(IpV4Address const& address) {
    std::ostringstream stream;
    stream << address;
    return stream.str();
}

std::string toFullWidthString(IpV4Address const& address, char fill) {
    std::ostringstream stream;
    stream << std::right << std::setfill(fill);
    writeFields(stream, address, 3);
    return stream.str();
}

IpV4Address fromString(std::string const& text) {
    std::vector<std::string> const fields = split(text, kFieldSeparator);
    if (fields.size() != 4u) {
        throw InvalidIpAddressFormat(text);
    }
    // std::stoi's own exceptions for empty, non-numeric or huge fields are left to reach the
    // caller; values outside 0..255 keep only their low byte on purpose.
    std::array<unsigned char, 4u> values{};
    for (unsigned int index = 0; index < 4u; ++index) {
        values.at(index) = static_cast<unsigned char>(std::stoi(fields.at(index), nullptr, 10));
    }
    return IpV4Address(values);
}

std::vector<std::string> split(std::string const& text, char delimiter) {
    std::vector<std::string> pieces;
    split(text, delimiter, std::back_inserter(pieces));
    return pieces;
}

InvalidIpAddressFormat::InvalidIpAddressFormat(std::string const& text)
    : message_("Invalid IP address format: " + text) {}

// Out of line so that the vtable and type info have one home in the library, which users need
// to catch this type across the shared-library boundary.
char const* InvalidIpAddressFormat::what() const noexcept { return message_.c_str(); }

}  // namespace ip
