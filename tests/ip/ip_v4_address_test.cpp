#include <yxfrontpanel/ip.h>

#include <gtest/gtest.h>

#include <array>
#include <ios>
#include <stdexcept>
#include <string>

namespace {

using ip::IpV4Address;

// Runs the index operator with index 4 and returns the message of the std::out_of_range.
template <typename Address>
std::string outOfRangeMessageForIndexFour(Address& address) {
    try {
        static_cast<void>(address[4]);
    } catch (std::out_of_range const& error) {
        return error.what();
    }
    ADD_FAILURE() << "index 4 did not throw std::out_of_range";
    return {};
}

TEST(IpV4AddressTest, FieldConstructorKeepsDottedOrder) {
    IpV4Address const address(192, 168, 1, 2);
    EXPECT_EQ(address[0], 192);
    EXPECT_EQ(address[1], 168);
    EXPECT_EQ(address[2], 1);
    EXPECT_EQ(address[3], 2);
}

TEST(IpV4AddressTest, ArrayConstructorCopiesFields) {
    std::array<unsigned char, 4u> fields{10, 20, 30, 40};
    IpV4Address const address(fields);
    fields[0] = 99;
    EXPECT_EQ(address, IpV4Address(10, 20, 30, 40));
}

TEST(IpV4AddressTest, ValueConstructorPutsHighByteFirst) {
    EXPECT_EQ(IpV4Address(0xC0A80102u), IpV4Address(192, 168, 1, 2));
}

TEST(IpV4AddressTest, ToUint32GivesHostOrderValue) {
    EXPECT_EQ(ip::toUint32(IpV4Address(192, 168, 1, 2)), 0xC0A80102u);
}

TEST(IpV4AddressTest, ToUint32ReturnsValueGivenToConstructor) {
    for (unsigned int value : {0u, 1u, 0x01020304u, 0x80000000u, 0xC0A80102u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ip::toUint32(IpV4Address(value)), value) << std::hex << value;
    }
}

TEST(IpV4AddressTest, IndexGivesWritableField) {
    IpV4Address address(10, 0, 0, 1);
    address[2] = 7;
    EXPECT_EQ(ip::toUint32(address), 0x0A000701u);
}

TEST(IpV4AddressTest, IndexFourThrowsStandardArrayMessage) {
    IpV4Address address(1, 2, 3, 4);
    EXPECT_EQ(outOfRangeMessageForIndexFour(address),
              "array::at: __n (which is 4) >= _Nm (which is 4)");
}

TEST(IpV4AddressTest, ConstIndexFourThrowsStandardArrayMessage) {
    IpV4Address const address(1, 2, 3, 4);
    EXPECT_EQ(outOfRangeMessageForIndexFour(address),
              "array::at: __n (which is 4) >= _Nm (which is 4)");
}

TEST(IpV4AddressTest, HugeIndexThrowsOutOfRange) {
    IpV4Address address(1, 2, 3, 4);
    EXPECT_THROW(static_cast<void>(address[0xFFFFFFFFu]), std::out_of_range);
}

// One step up or down from `before` gives `after`: carries and borrows run across the fields,
// and the ends wrap around.
struct StepCase {
    char const* name;
    IpV4Address before;
    bool up;
    IpV4Address after;
};

TEST(IpV4AddressTest, PreIncrementAndDecrementCarryBorrowAndWrap) {
    StepCase const cases[] = {
        {"carry into the next field", IpV4Address(10, 0, 0, 255), true, IpV4Address(10, 0, 1, 0)},
        {"carry across several fields", IpV4Address(10, 255, 255, 255), true,
         IpV4Address(11, 0, 0, 0)},
        {"borrow from the next field", IpV4Address(10, 0, 1, 0), false, IpV4Address(10, 0, 0, 255)},
        {"greatest wraps to zero", IpV4Address(255, 255, 255, 255), true, IpV4Address(0, 0, 0, 0)},
        {"zero wraps to greatest", IpV4Address(0, 0, 0, 0), false, IpV4Address(255, 255, 255, 255)},
        {"increment returns itself", IpV4Address(1, 2, 3, 4), true, IpV4Address(1, 2, 3, 5)},
        {"decrement returns itself", IpV4Address(1, 2, 3, 4), false, IpV4Address(1, 2, 3, 3)},
    };
    for (StepCase const& step : cases) {
        SCOPED_TRACE(step.name);
        IpV4Address address = step.before;
        IpV4Address& result = step.up ? ++address : --address;
        EXPECT_EQ(&result, &address);
        EXPECT_EQ(address, step.after);
    }
}

TEST(IpV4AddressTest, PostIncrementAndDecrementReturnOldValueAndWrap) {
    IpV4Address address(255, 255, 255, 255);
    EXPECT_EQ(address++, IpV4Address(255, 255, 255, 255));
    EXPECT_EQ(address, IpV4Address(0, 0, 0, 0));
    EXPECT_EQ(address--, IpV4Address(0, 0, 0, 0));
    EXPECT_EQ(address, IpV4Address(255, 255, 255, 255));
}

TEST(IpV4AddressTest, LessThanOrdersNeighbours) {
    EXPECT_TRUE(IpV4Address(0, 0, 0, 0) < IpV4Address(0, 0, 0, 1));
    EXPECT_FALSE(IpV4Address(0, 0, 0, 1) < IpV4Address(0, 0, 0, 0));
    EXPECT_FALSE(IpV4Address(0, 0, 0, 1) < IpV4Address(0, 0, 0, 1));
}

TEST(IpV4AddressTest, LessThanWeighsFirstFieldMost) {
    EXPECT_TRUE(IpV4Address(0, 255, 255, 255) < IpV4Address(1, 0, 0, 0));
    EXPECT_FALSE(IpV4Address(1, 0, 0, 0) < IpV4Address(0, 255, 255, 255));
}

// A signed comparison would put 128.0.0.0 below 127.255.255.255.
TEST(IpV4AddressTest, LessThanComparesUnsignedValues) {
    EXPECT_TRUE(IpV4Address(127, 255, 255, 255) < IpV4Address(128, 0, 0, 0));
    EXPECT_FALSE(IpV4Address(128, 0, 0, 0) < IpV4Address(127, 255, 255, 255));
}

TEST(IpV4AddressTest, AllOnesIsTheGreatestAddress) {
    IpV4Address const greatest(255, 255, 255, 255);
    for (IpV4Address const& other :
         {IpV4Address(0, 0, 0, 0), IpV4Address(127, 255, 255, 255), IpV4Address(128, 0, 0, 0),
          IpV4Address(255, 255, 255, 254), IpV4Address(254, 255, 255, 255)}) {
        EXPECT_TRUE(other < greatest) << ip::toUint32(other);
        EXPECT_FALSE(greatest < other) << ip::toUint32(other);
    }
}

TEST(IpV4AddressTest, EqualityComparesAllFields) {
    EXPECT_TRUE(IpV4Address(1, 2, 3, 4) == IpV4Address(1, 2, 3, 4));
    EXPECT_FALSE(IpV4Address(1, 2, 3, 4) == IpV4Address(1, 2, 3, 5));
    EXPECT_FALSE(IpV4Address(1, 2, 3, 4) == IpV4Address(0, 2, 3, 4));
}

TEST(IpV4AddressTest, InequalityIsNegationOfEquality) {
    EXPECT_FALSE(IpV4Address(1, 2, 3, 4) != IpV4Address(1, 2, 3, 4));
    EXPECT_TRUE(IpV4Address(1, 2, 3, 4) != IpV4Address(4, 3, 2, 1));
    EXPECT_TRUE(IpV4Address(4, 3, 2, 1) != IpV4Address(1, 2, 3, 4));
}

TEST(IpV4AddressTest, CopiesAreIndependentValues) {
    IpV4Address const original(10, 0, 0, 1);
    IpV4Address copy = original;
    ++copy;
    EXPECT_EQ(original, IpV4Address(10, 0, 0, 1));
    EXPECT_EQ(copy, IpV4Address(10, 0, 0, 2));
}

}  // namespace
