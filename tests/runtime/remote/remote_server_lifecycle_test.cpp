#include <yxfrontpanel/remote.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "long_run.h"
#include "remote_harness.h"
#include "scpi_client.h"

// Command servers created and destroyed on a running panel, with clients connected and their
// commands queued for the panel: run it under the thread and address sanitizers too.
namespace {

using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;
namespace rt = yxfrontpanel::runtime;

TEST(RemoteServerLifecycleTest, ThousandServersComeAndGoWhileThePanelRuns) {
    RemoteHarness harness;
    harness.start();
    for (int cycle = 0; cycle < yxfp_test::lifecycleCycles(); ++cycle) {
        rt::RemoteControlOptions options;
        options.server.listen = {"127.0.0.1:0"};
        options.identity = {"Yx", "Cycle", std::to_string(cycle), "0.1"};
        auto server = std::make_unique<rt::RemoteControl>(harness.panel, options);
        server->start();
        ScpiClient client(server->addresses().at(0));
        ASSERT_EQ(client.query("*IDN?"), "Yx,Cycle," + std::to_string(cycle) + ",0.1");
        // A key press and a change queued for the panel, the second maybe still waiting when
        // the server goes; every other cycle the client leaves first.
        ASSERT_TRUE(client.sendLine(cycle % 2 == 0 ? "SYST:KEY DOWN;*OPC?" : "SYST:KEY UP"));
        if (cycle % 2 == 0) {
            ASSERT_EQ(client.readLine(), "1") << "cycle " << cycle;
            ASSERT_TRUE(client.sendLine("SYST:KEY UP;*OPC?"));
        } else {
            client.close();
        }
        server.reset();
    }
    // The panel and the harness's own server still serve.
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:KEY DOWN;*OPC?"), "1");
    EXPECT_EQ(client.query("*IDN?"), "Yx,Test Panel,T-1,0.1");
}

}  // namespace
