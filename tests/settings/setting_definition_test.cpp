#include <yxfrontpanel/runtime/setting_definition.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace yxfrontpanel::settings;
using Outcome = SettingCheck::Outcome;

TEST(SettingDefinitionTest, NumbersOutsideTheRangeAreClampedToTheNearerBound) {
    auto const voltage = SettingDefinition::number("voltage", 5.0, 0.0, 30.0);
    EXPECT_EQ(voltage.check(12.0).outcome, Outcome::Accepted);
    SettingCheck const high = voltage.check(30.5);
    EXPECT_EQ(high.outcome, Outcome::Clamped);
    EXPECT_EQ(std::get<double>(high.value), 30.0);
    EXPECT_EQ(std::get<double>(voltage.check(-1.0).value), 0.0);
    EXPECT_EQ(std::get<double>(voltage.check(std::int64_t{7}).value), 7.0);
}

TEST(SettingDefinitionTest, WrongTypesAndNonFiniteNumbersAreRejectedForTheDefault) {
    auto const voltage = SettingDefinition::number("voltage", 5.0, 0.0, 30.0);
    for (SettingValue const& bad : {SettingValue(true), SettingValue(std::string("5")),
                                    SettingValue(std::numeric_limits<double>::quiet_NaN()),
                                    SettingValue(std::numeric_limits<double>::infinity())}) {
        SettingCheck const check = voltage.check(bad);
        EXPECT_EQ(check.outcome, Outcome::Rejected) << toText(bad);
        EXPECT_EQ(std::get<double>(check.value), 5.0);
        EXPECT_FALSE(check.reason.empty());
    }
}

TEST(SettingDefinitionTest, ChoicesAcceptOnlyTheirKeys) {
    auto const mode = SettingDefinition::choice("mode", 2, {2, 0, 1});
    EXPECT_EQ(mode.check(std::int64_t{0}).outcome, Outcome::Accepted);
    EXPECT_EQ(mode.check(std::int64_t{3}).outcome, Outcome::Rejected);
    EXPECT_EQ(mode.choices(), (std::vector<std::int64_t>{0, 1, 2}));
}

TEST(SettingDefinitionTest, TextsLongerThanTheLimitAreRejected) {
    auto const name = SettingDefinition::text("name", "ab", 3);
    EXPECT_EQ(name.check(std::string("abc")).outcome, Outcome::Accepted);
    EXPECT_EQ(name.check(std::string("abcd")).outcome, Outcome::Rejected);
}

TEST(SettingDefinitionTest, InvalidDeclarationsThrow) {
    EXPECT_THROW(SettingDefinition::number("", 0.0, 0.0, 1.0), std::invalid_argument);
    EXPECT_THROW(SettingDefinition::number("v", 2.0, 0.0, 1.0), std::invalid_argument);
    EXPECT_THROW(SettingDefinition::number("v", 0.0, 1.0, 0.0), std::invalid_argument);
    EXPECT_THROW(SettingDefinition::integer("i", 5, 0, 4), std::invalid_argument);
    EXPECT_THROW(SettingDefinition::choice("c", 5, {1, 2}), std::invalid_argument);
    EXPECT_THROW(SettingDefinition::text("t", "toolong", 3), std::invalid_argument);
}

TEST(SettingDefinitionTest, TypesAndTextsOfValues) {
    EXPECT_EQ(SettingDefinition::ipv4("a", ip::IpV4Address(1, 2, 3, 4)).type(),
              SettingType::Ipv4Address);
    EXPECT_EQ(toText(SettingValue(0.1)), "0.1");
    EXPECT_EQ(toText(SettingValue(std::int64_t{-3})), "-3");
    EXPECT_EQ(toText(SettingValue(true)), "true");
    EXPECT_EQ(toText(SettingValue(ip::IpV4Address(10, 0, 0, 1))), "10.0.0.1");
}

TEST(SettingDefinitionTest, Ipv4ParsingIsStrict) {
    EXPECT_EQ(parseIpv4("192.168.0.1"), ip::IpV4Address(192, 168, 0, 1));
    EXPECT_EQ(parseIpv4("0.0.0.0"), ip::IpV4Address(0, 0, 0, 0));
    for (char const* bad : {"", "1.2.3", "1.2.3.4.", "256.1.1.1", "1.2.3.-4", " 1.2.3.4",
                            "1.2.3.4 ", "1..3.4", "1.2.3.0004", "a.b.c.d"}) {
        EXPECT_FALSE(parseIpv4(bad).has_value()) << bad;
    }
}

}  // namespace
