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

TEST(RemoteControlTest, StatusByteShowsMavForAnAnswerOfTheSameLine) {
    RemoteHarness harness;
    harness.start();
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("*IDN?;*STB?"), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(client.readLine(), "16") << "the *IDN? answer is still in the output queue";
    EXPECT_EQ(client.query("*STB?"), "0");
    EXPECT_EQ(client.query("*SRE 16;*IDN?;*STB?"), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(client.readLine(), "80") << "MAV enabled: MSS";
}

TEST(RemoteControlTest, ReportedErrorGoesToEveryConnectedClient) {
    RemoteHarness harness;
    harness.start();
    ScpiClient first(harness.tcpAddress());
    ScpiClient second(harness.unixAddress());
    ASSERT_EQ(first.query("*ESR?"), "0");
    ASSERT_EQ(second.query("*ESR?"), "0");
    harness.remote->reportError(-315, "disk full");
    harness.remote->reportError(0, "nothing");
    for (ScpiClient* client : {&first, &second}) {
        EXPECT_EQ(client->query("SYST:ERR:COUN?"), "1");
        EXPECT_EQ(client->query("SYST:ERR?"), "-315,\"Configuration memory lost;disk full\"");
        EXPECT_EQ(client->query("*ESR?"), "8");  // device-specific error
    }
    ScpiClient later(harness.tcpAddress());
    EXPECT_EQ(later.query("SYST:ERR?"), "0,\"No error\"") << "a later client has none";
}

}  // namespace
