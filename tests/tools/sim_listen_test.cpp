#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attachment.h"
#include "sim_options.h"

namespace {

using frontpanelsim::attachmentsFor;
using frontpanelsim::parseOptions;
using frontpanelsim::UsageError;
using Args = std::vector<std::string>;

TEST(SimListenTest, ListenIsRepeatable) {
    auto const options = parseOptions(
        Args{"--headless", "--listen", "127.0.0.1:5025", "--listen=unix:/tmp/panel.sock"});
    EXPECT_EQ(options.listen, (Args{"127.0.0.1:5025", "unix:/tmp/panel.sock"}));
}

TEST(SimListenTest, RefusesAnAddressThatDoesNotParse) {
    for (Args const& arguments : {Args{"--listen", "5025"}, Args{"--listen", "host:"},
                                  Args{"--listen", "::1:5025"}, Args{"--listen"}}) {
        EXPECT_THROW(parseOptions(arguments), UsageError) << ::testing::PrintToString(arguments);
    }
}

TEST(SimListenTest, ListeningKeepsAHeadlessRunGoing) {
    auto const options = parseOptions(Args{"--headless", "--listen", "127.0.0.1:0"});
    auto const attachments = attachmentsFor(options);
    ASSERT_EQ(attachments.size(), 1U);
    EXPECT_TRUE(attachments.front()->keepsRunning());
    EXPECT_TRUE(attachmentsFor(parseOptions(Args{"--headless"})).empty());
}

}  // namespace
