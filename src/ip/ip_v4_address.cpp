#include <yxfrontpanel/ip.h>

#include <array>

namespace ip {

IpV4Address::IpV4Address(unsigned char a, unsigned char b, unsigned char c, unsigned char d)
    : fields_{a, b, c, d} {}

IpV4Address::IpV4Address(std::array<unsigned char, 4u> const& fields) : fields_(fields) {}

IpV4Address::IpV4Address(unsigned int value)
    : fields_{static_cast<unsigned char>(value >> 24u), static_cast<unsigned char>(value >> 16u),
              static_cast<unsigned char>(value >> 8u), static_cast<unsigned char>(value)} {}

// at() rather than [] so that a bad index reaches the caller as the standard library's own
// std::out_of_range instead of undefined behaviour.
unsigned char& IpV4Address::operator[](unsigned int index) { return fields_.at(index); }

unsigned char IpV4Address::operator[](unsigned int index) const { return fields_.at(index); }

// Stepping goes through the 32-bit value so that carries run across fields; unsigned
// arithmetic makes both ends wrap around.
IpV4Address& IpV4Address::operator++() {
    *this = IpV4Address(toUint32(*this) + 1u);
    return *this;
}

IpV4Address& IpV4Address::operator--() {
    *this = IpV4Address(toUint32(*this) - 1u);
    return *this;
}

IpV4Address IpV4Address::operator++(int) {
    IpV4Address const before = *this;
    ++*this;
    return before;
}

IpV4Address IpV4Address::operator--(int) {
    IpV4Address const before = *this;
    --*this;
    return before;
}

bool operator<(IpV4Address const& lhs, IpV4Address const& rhs) {
    return toUint32(lhs) < toUint32(rhs);
}

bool operator==(IpV4Address const& lhs, IpV4Address const& rhs) {
    return toUint32(lhs) == toUint32(rhs);
}

bool operator!=(IpV4Address const& lhs, IpV4Address const& rhs) { return !(lhs == rhs); }

unsigned int toUint32(IpV4Address const& address) {
    // Widen before shifting: a promoted int would overflow for first fields above 127.
    return static_cast<unsigned int>(address[0]) << 24u |
           static_cast<unsigned int>(address[1]) << 16u |
           static_cast<unsigned int>(address[2]) << 8u | static_cast<unsigned int>(address[3]);
}

}  // namespace ip
