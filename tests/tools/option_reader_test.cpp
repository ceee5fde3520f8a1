#include "option_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using frontpaneltools::OptionReader;
using frontpaneltools::UsageError;
using Args = std::vector<std::string>;

TEST(OptionReaderTest, WalksEveryArgumentInOrder) {
    Args const arguments{"--flag", "plain", "-h"};
    OptionReader reader(arguments);
    Args seen;
    while (reader.next()) {
        seen.push_back(reader.argument());
        EXPECT_EQ(reader.name(), reader.argument());
    }
    EXPECT_EQ(seen, arguments);
    EXPECT_FALSE(reader.next());
}

TEST(OptionReaderTest, NothingToReadIsNotAnError) {
    Args const arguments;
    OptionReader reader(arguments);
    EXPECT_FALSE(reader.next());
}

TEST(OptionReaderTest, SplitsNameAndValueAtTheFirstEqualsSign) {
    Args const arguments{"--token=a=b", "next"};
    OptionReader reader(arguments);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.argument(), "--token=a=b");
    EXPECT_EQ(reader.name(), "--token");
    EXPECT_EQ(reader.takeValue(), "a=b");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.argument(), "next");
}

TEST(OptionReaderTest, AnEmptyValueAfterTheEqualsSignCounts) {
    Args const arguments{"--token="};
    OptionReader reader(arguments);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.takeValue(), "");
}

TEST(OptionReaderTest, OnlyLongOptionsCarryAValueAfterAnEqualsSign) {
    Args const arguments{"-t=1", "key=value"};
    OptionReader reader(arguments);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.name(), "-t=1");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.name(), "key=value");
}

TEST(OptionReaderTest, WithoutAnEqualsSignTheValueIsTheNextArgument) {
    Args const arguments{"--size", "16x2", "--help"};
    OptionReader reader(arguments);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.takeValue(), "16x2");
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.argument(), "--help");
    EXPECT_FALSE(reader.next());
}

TEST(OptionReaderTest, AMissingValueNamesTheOption) {
    Args const arguments{"--keys"};
    OptionReader reader(arguments);
    ASSERT_TRUE(reader.next());
    try {
        reader.takeValue();
        FAIL() << "no value to take";
    } catch (UsageError const& error) {
        EXPECT_STREQ(error.what(), "--keys needs a value");
    }
}

}  // namespace
