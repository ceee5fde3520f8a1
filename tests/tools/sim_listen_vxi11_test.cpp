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

TEST(SimListenVxi11Test, HostAloneLetsTheSystemPickTheCorePort) {
    auto const options = parseOptions(Args{"--headless", "--listen", "vxi11:127.0.0.1"});
    ASSERT_TRUE(options.vxi11.has_value());
    EXPECT_EQ(options.vxi11->host, "127.0.0.1");
    EXPECT_EQ(options.vxi11->port, 0);
    EXPECT_TRUE(options.listen.empty());
}

TEST(SimListenVxi11Test, TakesTheCorePortAndKeepsTheRawSocket) {
    auto const options =
        parseOptions(Args{"--listen", "vxi11:127.0.0.1:1024", "--listen", "127.0.0.1:5025"});
    ASSERT_TRUE(options.vxi11.has_value());
    EXPECT_EQ(options.vxi11->port, 1024);
    EXPECT_EQ(options.listen, (Args{"127.0.0.1:5025"}));
}

TEST(SimListenVxi11Test, RefusesAnAddressThatDoesNotParse) {
    for (Args const& arguments : {Args{"--listen", "vxi11:"}, Args{"--listen", "vxi11:host:"},
                                  Args{"--listen", "vxi11:host:99999"}}) {
        EXPECT_THROW(parseOptions(arguments), UsageError) << ::testing::PrintToString(arguments);
    }
}

TEST(SimListenVxi11Test, KeepsAHeadlessRunGoing) {
    auto const attachments =
        attachmentsFor(parseOptions(Args{"--headless", "--listen", "vxi11:127.0.0.1"}));
    ASSERT_EQ(attachments.size(), 1U);
    EXPECT_TRUE(attachments.front()->keepsRunning());
}

}  // namespace
