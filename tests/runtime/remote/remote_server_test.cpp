#include <yxfrontpanel/remote.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "remote_harness.h"
#include "scpi_client.h"
#include <sys/socket.h>

namespace {

using yxfp_test::eventually;
using yxfp_test::LogCapture;
using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;
using yxfrontpanel::runtime::RemoteControlOptions;

bool logged(LogCapture const& log, std::string const& text) {
    auto const records = log.records();
    return std::any_of(records.begin(), records.end(), [&](auto const& record) {
        return record.message.find(text) != std::string::npos;
    });
}

class RemoteServerTest : public ::testing::Test {
protected:
    explicit RemoteServerTest(RemoteControlOptions options = {}) : harness(std::move(options)) {
        harness.start();
    }

    LogCapture log;
    RemoteHarness harness;
};

TEST_F(RemoteServerTest, ListensOnAnEphemeralLoopbackPortAndAUnixSocket) {
    std::string const tcp = harness.tcpAddress();
    EXPECT_EQ(tcp.rfind("127.0.0.1:", 0), 0U) << tcp;
    EXPECT_NE(tcp, "127.0.0.1:0");
    EXPECT_EQ(harness.unixAddress().rfind("unix:/tmp/yxfp-remote-", 0), 0U);
}

TEST_F(RemoteServerTest, AnswersEveryQueryInOrderOverTcp) {
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.sendLine("*IDN?;SYST:KEY DOWN;:DISP:TEXT? 2;INV? 2;:SYST:MODE?"));
    EXPECT_EQ(client.readLine(), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(client.readLine(), R"("Network             ")");
    EXPECT_EQ(client.readLine(), R"("0-18")");
    EXPECT_EQ(client.readLine(), "LOC");
}

TEST_F(RemoteServerTest, AnswersOverTheUnixSocket) {
    ScpiClient client(harness.unixAddress());
    EXPECT_EQ(client.query("SYST:KEY ENTER;:DISP:TEXT? 1"), R"("Voltage             ")");
}

// A key pressed in one line is visible to the queries of the next.
TEST_F(RemoteServerTest, AKeyIsAppliedBeforeTheNextLineRuns) {
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.send("SYST:KEY DOWN\nSYST:KEY DOWN\nDISP:INV? 3\n"));
    EXPECT_EQ(client.readLine(), R"("0-18")");
}

TEST_F(RemoteServerTest, MenuWritesReachTheApplicationOnThePanelsThread) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("MENU:VAL \"Output/Voltage\",7.25;VAL? \"Output/Voltage\";:SYST:MODE?"),
              "7.25");
    EXPECT_EQ(client.readLine(), "REM");
}

TEST_F(RemoteServerTest, EachClientHasItsOwnErrorQueue) {
    ScpiClient first(harness.tcpAddress());
    ScpiClient second(harness.unixAddress());
    ASSERT_TRUE(first.sendLine("NO:SUCH:THING"));
    EXPECT_EQ(second.query("SYST:ERR?"), R"(0,"No error")");
    EXPECT_EQ(first.query("SYST:ERR?"), R"(-113,"Undefined header;NO:SUCH:THING")");
}

TEST_F(RemoteServerTest, ConnectsAndDisconnectsAreLoggedWithThePeer) {
    {
        ScpiClient client(harness.tcpAddress());
        EXPECT_EQ(client.query("*OPC?"), "1");
    }
    ASSERT_TRUE(eventually([&] { return harness.remote->clientCount() == 0; }));
    EXPECT_TRUE(logged(log, "127.0.0.1:"));
    EXPECT_TRUE(logged(log, " connected on " + harness.tcpAddress()));
    EXPECT_TRUE(logged(log, " disconnected: it closed the connection"));
}

TEST_F(RemoteServerTest, TheNinthClientIsRefused) {
    std::vector<std::unique_ptr<ScpiClient>> clients;
    for (int i = 0; i < 8; ++i) {
        clients.push_back(std::make_unique<ScpiClient>(harness.tcpAddress()));
        ASSERT_EQ(clients.back()->query("*OPC?"), "1");
    }
    ScpiClient ninth(harness.tcpAddress());
    EXPECT_EQ(ninth.readLine(), "<closed>");
    EXPECT_TRUE(logged(log, "already 8 clients"));
    EXPECT_EQ(clients.front()->query("*OPC?"), "1");
}

TEST_F(RemoteServerTest, ALineOverTheLimitIsDiscardedWithAnError) {
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.sendLine("*OPC?;" + std::string(4096, ' ')));
    EXPECT_EQ(client.query("*OPC?"), "1");
    EXPECT_EQ(client.query("SYST:ERR?"),
              R"(-363,"Input buffer overrun;line longer than 4096 bytes")");
    EXPECT_EQ(client.query("SYST:ERR?"), R"(0,"No error")");
}

TEST_F(RemoteServerTest, ALineOfExactlyTheLimitIsServed) {
    ScpiClient client(harness.tcpAddress());
    std::string const line = "*OPC?;" + std::string(4096 - 6, ' ');
    EXPECT_EQ(client.query(line), "1");
}

TEST_F(RemoteServerTest, OneMegabyteWithoutNewlineCostsOneErrorAndNothingElse) {
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.send(std::string(std::size_t{1024} * 1024, 'A')));
    EXPECT_EQ(client.query("\n*OPC?"), "1");
    EXPECT_EQ(client.query("SYST:ERR?"),
              R"(-363,"Input buffer overrun;line longer than 4096 bytes")");
    EXPECT_EQ(client.query("SYST:ERR?"), R"(0,"No error")");
}

TEST_F(RemoteServerTest, AClientLeavingInTheMiddleOfALineChangesNothing) {
    {
        ScpiClient leaving(harness.tcpAddress());
        ASSERT_TRUE(leaving.send("SYST:KEY DO"));
    }
    ASSERT_TRUE(eventually([&] { return logged(log, "inside a line"); }));
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("DISP:INV? 1"), R"("0-18")");
}

TEST_F(RemoteServerTest, AClientThatNeverReadsIsDisconnectedAndThePanelGoesOn) {
    ScpiClient reader(harness.tcpAddress());
    ScpiClient neverReads(harness.tcpAddress());
    int const small = 4096;
    ::setsockopt(neverReads.fd(), SOL_SOCKET, SO_RCVBUF, &small, sizeof(small));
    std::string batch;
    for (int i = 0; i < 1000; ++i) {
        batch += "DISP:TEXT?\n";
    }
    bool dropped = false;
    // Each batch asks for about 90 kB of answers: far past every buffer within this bound.
    for (int round = 0; round < 2000 && !dropped; ++round) {
        dropped = !neverReads.send(batch);
    }
    EXPECT_TRUE(dropped);
    EXPECT_TRUE(eventually([&] { return logged(log, "it does not read its responses"); }));
    EXPECT_EQ(reader.query("*OPC?"), "1");
}

TEST_F(RemoteServerTest, StoppingClosesEveryClient) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("*OPC?"), "1");
    harness.remote->stop();
    EXPECT_EQ(client.readLine(), "<closed>");
}

TEST(RemoteServerSetupTest, RefusesAnAddressThatDoesNotParse) {
    yxfrontpanel::runtime::RemoteServerOptions options;
    options.listen = {"localhost"};
    auto table = std::make_shared<yxfrontpanel::runtime::scpi::CommandTable>();
    EXPECT_THROW(yxfrontpanel::runtime::RemoteServer(
                     table, [](std::function<void()> const& /*task*/) { return true; }, options),
                 std::invalid_argument);
}

TEST(RemoteServerSetupTest, NamesTheAddressItCannotBind) {
    yxfrontpanel::runtime::RemoteServerOptions options;
    options.listen = {"unix:/nonexistent-directory/panel.sock"};
    auto table = std::make_shared<yxfrontpanel::runtime::scpi::CommandTable>();
    try {
        yxfrontpanel::runtime::RemoteServer server(
            table, [](std::function<void()> const& /*task*/) { return true; }, options);
        FAIL() << "bound an impossible path";
    } catch (std::system_error const& e) {
        EXPECT_NE(std::string(e.what()).find("unix:/nonexistent-directory/panel.sock"),
                  std::string::npos)
            << e.what();
    }
}

RemoteControlOptions withToken() {
    RemoteControlOptions options;
    options.server.accessToken = "s3cret";
    options.server.authFailureDelay = std::chrono::seconds{5};
    return options;
}

class RemoteServerAuthTest : public RemoteServerTest {
protected:
    RemoteServerAuthTest() : RemoteServerTest(withToken()) {}
};

TEST_F(RemoteServerAuthTest, TheRightTokenLetsTheClientIn) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:AUTH \"s3cret\";*OPC?"), "1");
    EXPECT_EQ(client.query("*IDN?"), "Yx,Test Panel,T-1,0.1");
}

TEST_F(RemoteServerAuthTest, AWrongTokenIsAnsweredAndClosedAfterTheDelay) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:AUTH \"guess\";*IDN?"),
              R"(-203,"Command protected;wrong access token")");
    harness.clock->advance(std::chrono::seconds{5});
    EXPECT_EQ(client.readLine(), "<closed>");
    EXPECT_TRUE(logged(log, "wrong access token; closing the connection"));
}

TEST_F(RemoteServerAuthTest, AnyOtherCommandFirstIsRefused) {
    ScpiClient client(harness.unixAddress());
    EXPECT_EQ(client.query("*IDN?"),
              R"(-203,"Command protected;access token required before *IDN?")");
    harness.clock->advance(std::chrono::seconds{5});
    EXPECT_EQ(client.readLine(), "<closed>");
}

TEST_F(RemoteServerAuthTest, TheConnectionStaysOpenUntilTheDelayHasPassed) {
    ScpiClient refused(harness.tcpAddress());
    EXPECT_EQ(refused.query("*IDN?").substr(0, 5), "-203,");
    harness.clock->advance(std::chrono::seconds{4});
    // Another client's full round trip lets the server see the moved clock first.
    ScpiClient other(harness.tcpAddress());
    EXPECT_EQ(other.query("SYST:AUTH \"s3cret\";*OPC?"), "1");
    EXPECT_EQ(harness.remote->clientCount(), 2U);
    harness.clock->advance(std::chrono::seconds{1});
    EXPECT_EQ(refused.readLine(), "<closed>");
}

}  // namespace
