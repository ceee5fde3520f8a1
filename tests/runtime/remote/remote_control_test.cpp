#include <yxfrontpanel/remote.h>

#include <gtest/gtest.h>

#include <string>

#include "remote_harness.h"
#include "scpi_client.h"

namespace {

using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;

TEST(RemoteControlTest, StartAfterStopServesAgain) {
    RemoteHarness harness;
    harness.start();
    EXPECT_EQ(ScpiClient(harness.unixAddress()).query("*IDN?"), "Yx,Test Panel,T-1,0.1");
    harness.remote->stop();
    EXPECT_TRUE(harness.remote->addresses().empty()) << "a stopped server has no addresses";
    harness.remote->start();
    ASSERT_EQ(harness.remote->addresses().size(), 2U);
    EXPECT_EQ(ScpiClient(harness.tcpAddress()).query("*IDN?"), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(ScpiClient(harness.unixAddress()).query("*IDN?"), "Yx,Test Panel,T-1,0.1");
}

TEST(RemoteControlTest, StopTwiceAndStartTwiceAreHarmless) {
    RemoteHarness harness;
    harness.start();
    harness.remote->start();
    EXPECT_EQ(harness.remote->addresses().size(), 2U);
    harness.remote->stop();
    harness.remote->stop();
    EXPECT_EQ(harness.remote->clientCount(), 0U);
}

}  // namespace
