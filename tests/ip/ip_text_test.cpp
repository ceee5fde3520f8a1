#include <yxfrontpanel/ip.h>

#include <gtest/gtest.h>

#include <array>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ip::IpV4Address;
using Pieces = std::vector<std::string>;

// Parses text that must fail and returns the message of the expected exception type; any
// other exception escapes and fails the test.
template <typename Exception>
std::string failureMessage(std::string const& text) {
    try {
        static_cast<void>(ip::fromString(text));
    } catch (Exception const& error) {
        return error.what();
    }
    ADD_FAILURE() << "\"" << text << "\" was accepted";
    return {};
}

// --- toString / operator<< -----------------------------------------------------------------

TEST(IpTextTest, ToStringWritesPlainDottedDecimal) {
    EXPECT_EQ(ip::toString(IpV4Address(10, 0, 0, 1)), "10.0.0.1");
    EXPECT_EQ(ip::toString(IpV4Address(192, 168, 1, 2)), "192.168.1.2");
}

TEST(IpTextTest, ToStringWritesZeroFieldsWithoutPadding) {
    EXPECT_EQ(ip::toString(IpV4Address(0, 0, 0, 0)), "0.0.0.0");
}

TEST(IpTextTest, ToStringWritesGreatestAddress) {
    EXPECT_EQ(ip::toString(IpV4Address(255, 255, 255, 255)), "255.255.255.255");
}

TEST(IpTextTest, StreamOperatorWritesDottedFieldsInPlace) {
    std::ostringstream stream;
    stream << "[" << IpV4Address(172, 16, 0, 9) << "]";
    EXPECT_EQ(stream.str(), "[172.16.0.9]");
}

// --- toFullWidthString ---------------------------------------------------------------------

TEST(IpTextTest, ToFullWidthStringPadsFieldsWithZeros) {
    EXPECT_EQ(ip::toFullWidthString(IpV4Address(192, 168, 1, 2), '0'), "192.168.001.002");
}

TEST(IpTextTest, ToFullWidthStringPadsFieldsWithBlanksOnTheLeft) {
    EXPECT_EQ(ip::toFullWidthString(IpV4Address(192, 168, 1, 2), ' '), "192.168.  1.  2");
}

TEST(IpTextTest, ToFullWidthStringUsesAnyFillCharacter) {
    EXPECT_EQ(ip::toFullWidthString(IpV4Address(1, 22, 0, 255), '_'), "__1._22.__0.255");
}

TEST(IpTextTest, ToFullWidthStringIsAlwaysFifteenCharacters) {
    for (char const fill : {'0', ' '}) {
        for (unsigned int value : {0u, 0x01020304u, 0x0A0B0C0Du, 0x64646464u, 0xFFFFFFFFu}) {
            std::string const text = ip::toFullWidthString(IpV4Address(value), fill);
            EXPECT_EQ(text.size(), 15u) << '"' << text << '"';
            EXPECT_EQ(text.substr(3, 1) + text.substr(7, 1) + text.substr(11, 1), "...")
                << '"' << text << '"';
        }
    }
}

TEST(IpTextTest, ToFullWidthStringOfZeroAddress) {
    EXPECT_EQ(ip::toFullWidthString(IpV4Address(0, 0, 0, 0), '0'), "000.000.000.000");
    EXPECT_EQ(ip::toFullWidthString(IpV4Address(0, 0, 0, 0), ' '), "  0.  0.  0.  0");
}

// --- split ---------------------------------------------------------------------------------

TEST(IpTextTest, SplitCutsAtEveryDelimiter) {
    EXPECT_EQ(ip::split("1.2.3.4", '.'), (Pieces{"1", "2", "3", "4"}));
}

TEST(IpTextTest, SplitGivesEmptyPieceBetweenAdjacentDelimiters) {
    EXPECT_EQ(ip::split("a..b", '.'), (Pieces{"a", "", "b"}));
}

TEST(IpTextTest, SplitGivesEmptyFirstPieceForLeadingDelimiter) {
    EXPECT_EQ(ip::split(".a", '.'), (Pieces{"", "a"}));
}

TEST(IpTextTest, SplitDropsSingleTrailingDelimiter) {
    EXPECT_EQ(ip::split("1.2.3.4.", '.'), (Pieces{"1", "2", "3", "4"}));
}

TEST(IpTextTest, SplitKeepsEmptyPieceBeforeSecondTrailingDelimiter) {
    EXPECT_EQ(ip::split("a..", '.'), (Pieces{"a", ""}));
}

TEST(IpTextTest, SplitOfEmptyTextGivesNoPieces) { EXPECT_TRUE(ip::split("", '.').empty()); }

TEST(IpTextTest, SplitWithoutDelimiterGivesWholeText) {
    EXPECT_EQ(ip::split("a b", ';'), Pieces{"a b"});
}

TEST(IpTextTest, SplitWritesPiecesToAnyOutputIterator) {
    std::array<std::string, 3> pieces;
    ip::split("x;;z", ';', pieces.begin());
    EXPECT_EQ(pieces, (std::array<std::string, 3>{"x", "", "z"}));
}

// --- fromString: accepted text -------------------------------------------------------------

TEST(IpTextTest, FromStringParsesDottedDecimal) {
    EXPECT_EQ(ip::fromString("192.168.1.2"), IpV4Address(192, 168, 1, 2));
}

// Text fromString accepts, with the address it reads.
struct ReadCase {
    char const* text;
    IpV4Address address;
};

TEST(IpTextTest, FromStringReadsLenientText) {
    ReadCase const cases[] = {
        {"192.168.001.010", IpV4Address(192, 168, 1, 10)},  // leading zeros are decimal
        {"010.09.08.00", IpV4Address(10, 9, 8, 0)},
        {"192.168.  1.  2", IpV4Address(192, 168, 1, 2)},  // blank-filled full width
        {"1.2.3.4.", IpV4Address(1, 2, 3, 4)},             // one trailing dot
        {" 7.8.9.10", IpV4Address(7, 8, 9, 10)},           // leading blank
        {"256.1.1.1", IpV4Address(0, 1, 1, 1)},            // low byte of a large field
        {"1.300.1.1", IpV4Address(1, 44, 1, 1)},
        {"-1.0.0.0", IpV4Address(255, 0, 0, 0)},  // low byte of a negative field
        {"+1.2.3.4", IpV4Address(1, 2, 3, 4)},    // plus sign
        {"1.2.3.4x", IpV4Address(1, 2, 3, 4)},    // characters after the digits
        {"1y.2.3.4", IpV4Address(1, 2, 3, 4)},
    };
    for (ReadCase const& read : cases) {
        EXPECT_EQ(ip::fromString(read.text), read.address) << '"' << read.text << '"';
    }
}

TEST(IpTextTest, FromStringReadsBackZeroFilledFullWidthText) {
    IpV4Address const address = ip::fromString("192.168.001.010");
    EXPECT_EQ(ip::toFullWidthString(address, '0'), "192.168.001.010");
}

TEST(IpTextTest, FromStringReadsBackToString) {
    for (unsigned int value : {0u, 0x7F000001u, 0xC0A80102u, 0xFFFFFFFFu}) {
        IpV4Address const address(value);
        EXPECT_EQ(ip::fromString(ip::toString(address)), address) << value;
    }
}

// --- fromString: refused text --------------------------------------------------------------

TEST(IpTextTest, FromStringRefusesTextWithoutFourFields) {
    for (char const* text : {"1.2.3", "1.2.3.4.5", "1.2.3.4..", "", "abc"}) {
        EXPECT_EQ(failureMessage<ip::InvalidIpAddressFormat>(text),
                  std::string("Invalid IP address format: ") + text);
    }
}

TEST(IpTextTest, FromStringLetsFieldsThatAreNoNumberThrowInvalidArgument) {
    for (char const* text : {"1..2.3", ".1.2.3", "a.b.c.d"}) {
        EXPECT_EQ(failureMessage<std::invalid_argument>(text), "stoi") << '"' << text << '"';
    }
}

TEST(IpTextTest, FromStringLetsFieldBeyondIntThrowOutOfRange) {
    EXPECT_EQ(failureMessage<std::out_of_range>("99999999999.1.1.1"), "stoi");
}

// --- InvalidIpAddressFormat ----------------------------------------------------------------

TEST(IpTextTest, InvalidIpAddressFormatPrefixesOffendingText) {
    ip::InvalidIpAddressFormat const error("abc");
    EXPECT_STREQ(error.what(), "Invalid IP address format: abc");
}

TEST(IpTextTest, InvalidIpAddressFormatIsCaughtAsStdException) {
    EXPECT_EQ(failureMessage<std::exception>("1.2"), "Invalid IP address format: 1.2");
}

}  // namespace
