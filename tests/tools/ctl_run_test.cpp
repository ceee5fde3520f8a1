#include "ctl_run.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "remote_harness.h"

namespace {

using frontpanelctl::CtlOptions;
using frontpanelctl::runCtl;
using yxfp_test::RemoteHarness;

class CtlRunTest : public ::testing::Test {
protected:
    CtlRunTest() { harness.start(); }

    int run(std::vector<std::string> commands, bool screen = false, std::string token = {}) {
        CtlOptions options;
        options.address = harness.tcpAddress();
        options.commands = std::move(commands);
        options.screen = screen;
        options.token = std::move(token);
        options.timeout = std::chrono::seconds{30};
        return runCtl(options, out, err);
    }

    RemoteHarness harness;
    std::ostringstream out;
    std::ostringstream err;
};

TEST_F(CtlRunTest, PrintsOneLinePerQuery) {
    EXPECT_EQ(run({"*IDN?", "SYST:KEY DOWN", "DISP:TEXT? 2;INV? 2"}), 0);
    EXPECT_EQ(out.str(), "Yx,Test Panel,T-1,0.1\n\"Network             \"\n\"0-18\"\n");
    EXPECT_EQ(err.str(), "");
}

TEST_F(CtlRunTest, PrintsTheScreenInTheSimulatorsFormat) {
    EXPECT_EQ(run({"SYST:KEY DOWN"}, true), 0);
    EXPECT_EQ(out.str(),
              "+--------------------+\n"
              "|Output              |\n"
              "|Network             | < inverted 0-18\n"
              "|Display             |\n"
              "|Info                |\n"
              "+--------------------+\n");
}

TEST_F(CtlRunTest, ReportsThePanelsErrorsAndFails) {
    EXPECT_EQ(run({"NO:SUCH", "SYST:KEY SIDEWAYS"}), 1);
    EXPECT_EQ(err.str(),
              "frontpanel-ctl: the panel reports -113,\"Undefined header;NO:SUCH\"\n"
              "frontpanel-ctl: the panel reports -224,\"Illegal parameter value;no key "
              "SIDEWAYS\"\n");
}

TEST(CtlRunConnectTest, FailsWithTheAddressWhenNobodyListens) {
    CtlOptions options;
    options.address = "unix:/nonexistent-directory/panel.sock";
    options.commands = {"*IDN?"};
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(runCtl(options, out, err), 1);
    EXPECT_NE(err.str().find("cannot connect to unix:/nonexistent-directory/panel.sock"),
              std::string::npos)
        << err.str();
}

}  // namespace
