#pragma once

#include <yxfrontpanel/export.h>

#include <array>
#include <exception>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

/** IPv4 address value type with its dotted-decimal text forms; independent of the toolkit. */
namespace ip {

/**
 * An IPv4 address held as its four fields in dotted order (element 0 is the most
 * significant), copied by value, without heap use.
 *
 * Stepping works on the 32-bit value, so carries and borrows run across fields and the ends wrap
 * around (255.255.255.255 + 1 is 0.0.0.0).
 */
class YXFP_EXPORT IpV4Address {
public:
    /** Builds the address a.b.c.d. */
    IpV4Address(unsigned char a, unsigned char b, unsigned char c, unsigned char d);

    /** Builds the address from its fields in dotted order. */
    explicit IpV4Address(std::array<unsigned char, 4u> const& fields);

    /** Builds the address from its 32-bit value (0xC0A80102 is 192.168.1.2). */
    explicit IpV4Address(unsigned int value);

    /**
     * Gives access to field @p index (0 is the first field of the dotted form).
     * @throws std::out_of_range for an index above 3, with the standard array::at message.
     */
    unsigned char& operator[](unsigned int index);

    /**
     * Returns the value of field @p index (0 is the first field of the dotted form).
     * @throws std::out_of_range for an index above 3, with the standard array::at message.
     */
    unsigned char operator[](unsigned int index) const;

    /** Adds 1 to the 32-bit value (wrapping to 0.0.0.0) and returns this address. */
    IpV4Address& operator++();

    /** Subtracts 1 from the 32-bit value (wrapping to 255.255.255.255), returns this. */
    IpV4Address& operator--();

    /** Adds 1 like the prefix form and returns a copy of the address before the step. */
    IpV4Address operator++(int);

    /** Subtracts 1 like the prefix form and returns a copy of the address before it. */
    IpV4Address operator--(int);

private:
    std::array<unsigned char, 4u> fields_;
};

/** Orders addresses by their unsigned 32-bit values. */
YXFP_EXPORT bool operator<(IpV4Address const& lhs, IpV4Address const& rhs);

/** True when both addresses have the same 32-bit value. */
YXFP_EXPORT bool operator==(IpV4Address const& lhs, IpV4Address const& rhs);

/** Negation of operator==. */
YXFP_EXPORT bool operator!=(IpV4Address const& lhs, IpV4Address const& rhs);

/** Writes the four fields as decimal numbers separated by dots, without padding. */
YXFP_EXPORT std::ostream& operator<<(std::ostream& stream, IpV4Address const& address);

/**
 * Returns the host-order 32-bit value: field 0 in the top byte, field 3 in the lowest,
 * whatever the machine's byte order.
 */
YXFP_EXPORT unsigned int toUint32(IpV4Address const& address);

/** Returns the plain dotted form, such as 10.0.0.1 or 0.0.0.0 (no leading zeros). */
YXFP_EXPORT std::string toString(IpV4Address const& address);

/**
 * Returns the dotted form with every field right-aligned in three characters, padded on
 * the left with @p fill; always 15 characters (192.168.001.002 with '0' as fill,
 * "192.168.  1.  2" with a blank).
 */
YXFP_EXPORT std::string toFullWidthString(IpV4Address const& address, char fill);

/**
 * Parses dotted decimal text.
 *
 * The text is cut with split() at '.', so one trailing dot is tolerated. Each field is read like
 * std::stoi (leading white space skipped, optional sign, anything after the digits ignored) and
 * narrowed to its low 8 bits without range check: 256 gives 0, -1 gives 255, 010 is 10.
 *
 * @throws InvalidIpAddressFormat if the text does not have exactly four fields.
 * @throws std::invalid_argument (from std::stoi) for an empty or non-numeric field.
 * @throws std::out_of_range (from std::stoi) for a field beyond the range of int.
 */
YXFP_EXPORT IpV4Address fromString(std::string const& text);

/**
 * Writes the pieces of @p text between @p delimiter to @p out, one std::string each.
 *
 * Pieces are read like std::getline with a delimiter: adjacent delimiters and a leading one give
 * empty pieces, a single trailing delimiter gives no empty last piece and an empty text gives
 * none at all.
 */
template <typename OutputIterator>
void split(std::string const& text, char delimiter, OutputIterator out) {
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, delimiter);) {
        *out++ = piece;
    }
}

/** Returns the pieces of @p text between @p delimiter, cut as by the iterator form. */
YXFP_EXPORT std::vector<std::string> split(std::string const& text, char delimiter);

/** Thrown by fromString() for text that does not have four fields. */
class YXFP_EXPORT InvalidIpAddressFormat : public std::exception {
public:
    /** Builds the message "Invalid IP address format: " followed by @p text. */
    explicit InvalidIpAddressFormat(std::string const& text);

    /** Returns the full message. */
    char const* what() const noexcept override;

private:
    std::string message_;
};

}  // namespace ip
