// The command server against hostile and careless clients: bounded parsing and memory, no
// spinning, quotas per listener, deadlines, half-closed connections and line ends.
#include <yxfrontpanel/remote.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "platform_capture.h"
#include "remote_harness.h"
#include "scpi_client.h"
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

namespace rt = yxfrontpanel::runtime;
using namespace std::chrono_literals;
using yxfp_test::eventually;
using yxfp_test::LogCapture;
using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;

bool logged(LogCapture const& log, std::string const& text) {
    auto const records = log.records();
    return std::any_of(records.begin(), records.end(), [&](auto const& record) {
        return record.message.find(text) != std::string::npos;
    });
}

/** Options whose server runs on `clock`. */
rt::RemoteControlOptions onClock(std::shared_ptr<yxfrontpanel::testing::ManualClock> const& clock) {
    rt::RemoteControlOptions options;
    options.server.clock = clock;
    return options;
}

/** The process's descriptor limit lowered for a while, and restored at the end. */
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t soft) {
        ::getrlimit(RLIMIT_NOFILE, &saved_);
        rlimit lowered = saved_;
        lowered.rlim_cur = soft;
        ::setrlimit(RLIMIT_NOFILE, &lowered);
    }
    ~DescriptorLimit() { restore(); }
    DescriptorLimit(DescriptorLimit const&) = delete;
    DescriptorLimit& operator=(DescriptorLimit const&) = delete;
    void restore() { ::setrlimit(RLIMIT_NOFILE, &saved_); }

private:
    rlimit saved_{};
};

/** The lowest descriptor number the next open would get. */
int lowestFreeDescriptor() {
    int const probe = ::dup(0);
    ::close(probe);
    return probe;
}

std::string repeat(std::string const& text, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

// Forty lines of a deep header followed by relative headers, and forty of relative headers only:
// each line costs at most `maxCommands` commands of the panel's work, and the parsed lines
// waiting for the panel stay within the client's quota.
TEST(RemoteServerHostileTest, TheFortyLineAttackStaysWithinTheLineAndMemoryBounds) {
    LogCapture log;
    RemoteHarness harness;
    std::atomic<int> runs{0};
    harness.remote->commands().add("A", [&runs](rt::scpi::Request&) { ++runs; });
    harness.start();
    rt::RemoteServerOptions const defaults;
    std::string const deep = repeat("A:", 1000) + "A" + repeat(";A", 999);
    std::string const wide = "A" + repeat(";A", 1999);
    ScpiClient attacker(harness.tcpAddress());
    for (int line = 0; line < 40; ++line) {
        ASSERT_TRUE(attacker.sendLine(deep));
        ASSERT_TRUE(attacker.sendLine(wide));
    }
    EXPECT_EQ(attacker.query("*OPC?"), "1");
    EXPECT_EQ(runs.load(), 40 * static_cast<int>(defaults.parseLimits.maxCommands));
    EXPECT_EQ(attacker.query("SYST:ERR?"),
              R"(-223,"Too much data;more than 12 mnemonics in a header")");
    EXPECT_EQ(attacker.query("SYST:ERR?"),
              R"(-223,"Too much data;more than 64 commands on one line")");
    ASSERT_NE(harness.remote->server(), nullptr);
    EXPECT_LE(harness.remote->server()->peakPendingBytes(), defaults.maxPendingBytes);
    ScpiClient other(harness.tcpAddress());
    EXPECT_EQ(other.query("*IDN?"), "Yx,Test Panel,T-1,0.1");
}

// With the panel's thread held, a client whose lines pass its quota in one read is
// disconnected, with the reason in the log; the panel then goes on.
TEST(RemoteServerHostileTest, AClientPastItsPendingQuotaIsDisconnected) {
    LogCapture log;
    rt::RemoteControlOptions options;
    options.server.maxPendingBytes = std::size_t{8} * 1024;
    RemoteHarness harness(options);
    harness.start();
    std::promise<void> release;
    std::shared_future<void> const released = release.get_future().share();
    std::promise<void> holding;
    ASSERT_TRUE(harness.panel.post([released, &holding] {
        holding.set_value();
        released.wait();
    }));
    holding.get_future().wait();
    ScpiClient flood(harness.tcpAddress());
    // Commands that change something: they wait for the panel (reads would be answered here).
    ASSERT_TRUE(flood.send(repeat("*CLS;*CLS;*CLS;*CLS\n", 600)));
    ASSERT_TRUE(
        eventually([&] { return logged(log, "its commands waiting for the panel passed"); }));
    release.set_value();
    EXPECT_EQ(flood.readLine(), "<closed>");
    ASSERT_NE(harness.remote->server(), nullptr);
    ScpiClient other(harness.tcpAddress());
    EXPECT_EQ(other.query("*OPC?"), "1");
}

class RemoteServerTokenTest : public ::testing::Test {
protected:
    static rt::RemoteControlOptions withToken(
        std::shared_ptr<yxfrontpanel::testing::ManualClock> const& clock) {
        rt::RemoteControlOptions options = onClock(clock);
        options.server.accessToken = "s3cret";
        options.server.policy.loginDeadline = 5s;
        return options;
    }

    LogCapture log;
    std::shared_ptr<yxfrontpanel::testing::ManualClock> serverClock =
        std::make_shared<yxfrontpanel::testing::ManualClock>();
    RemoteHarness harness{withToken(serverClock)};
    void SetUp() override { harness.start(); }
};

// The server's clock stands still: only the client's hanging up can close the connection.
TEST_F(RemoteServerTokenTest, AClientThatFailedTheTokenAndHungUpIsClosedAtOnce) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:AUTH \"wrong\""),
              R"(-203,"Command protected;wrong access token")");
    ASSERT_TRUE(eventually([&] { return harness.remote->clientCount() == 1; }));
    client.close();
    EXPECT_TRUE(eventually([&] { return harness.remote->clientCount() == 0; }));
    EXPECT_TRUE(logged(log, "authentication failed; it hung up"));
}

TEST_F(RemoteServerTokenTest, AClientThatDoesNotLogInInTimeIsDisconnected) {
    ScpiClient silent(harness.tcpAddress());
    ScpiClient loggedIn(harness.tcpAddress());
    EXPECT_EQ(loggedIn.query("SYST:AUTH \"s3cret\";*OPC?"), "1");
    serverClock->advance(5s);
    EXPECT_EQ(silent.readLine(), "<closed>");
    EXPECT_TRUE(logged(log, "it did not log in within 5000 ms"));
    EXPECT_EQ(loggedIn.query("*OPC?"), "1");
}

TEST_F(RemoteServerTokenTest, ATokenLongerThanTheLimitIsRefusedWhole) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:AUTH \"s3cret" + std::string(300, 'x') + "\""),
              R"(-203,"Command protected;wrong access token")");
}

TEST(RemoteServerSetupTest, RefusesAConfiguredTokenLongerThanTheLimit) {
    rt::RemoteControlOptions options;
    options.server.accessToken = std::string(257, 'k');
    RemoteHarness harness(options);
    EXPECT_THROW(harness.remote->start(), std::invalid_argument);
}

TEST(RemoteServerHostileTest, EightIdleTcpClientsLockNeitherTheUnixSocketNorLaterClientsOut) {
    LogCapture log;
    auto const clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
    rt::RemoteControlOptions options = onClock(clock);
    options.server.policy.idleTimeout = 60s;
    RemoteHarness harness(options);
    harness.start();
    std::vector<std::unique_ptr<ScpiClient>> idle;
    idle.reserve(8);
    for (int i = 0; i < 8; ++i) {
        idle.push_back(std::make_unique<ScpiClient>(harness.tcpAddress()));
    }
    ASSERT_TRUE(eventually([&] { return harness.remote->clientCount() == 8; }));
    ScpiClient ninth(harness.tcpAddress());
    EXPECT_EQ(ninth.readLine(), "<closed>");
    ScpiClient local(harness.unixAddress());
    EXPECT_EQ(local.query("*OPC?"), "1");
    clock->advance(60s);
    EXPECT_EQ(idle.front()->readLine(), "<closed>");
    ASSERT_TRUE(eventually([&] { return harness.remote->clientCount() == 0; }));
    EXPECT_TRUE(logged(log, "it sent nothing for 60000 ms"));
    ScpiClient later(harness.tcpAddress());
    EXPECT_EQ(later.query("*OPC?"), "1");
}

TEST(RemoteServerHostileTest, AnIdleTimeoutOfZeroNeverDisconnects) {
    auto const clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
    rt::RemoteControlOptions options = onClock(clock);
    options.server.policy.idleTimeout = 0ms;
    RemoteHarness harness(options);
    harness.start();
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("*OPC?"), "1");
    clock->advance(std::chrono::hours{24});
    EXPECT_EQ(client.query("*OPC?"), "1");
}

// Out of descriptors, the listener pauses (logged once, no busy loop) and serves again after
// the pause.
TEST(RemoteServerDescriptorLimitTest, TheListenerPausesWhenDescriptorsRunOutAndResumes) {
    LogCapture log;
    auto const clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
    rt::RemoteControlOptions options = onClock(clock);
    options.server.policy.acceptPause = 200ms;
    RemoteHarness harness(options);
    harness.start();
    rt::Endpoint const endpoint = rt::parseEndpoint(harness.tcpAddress());
    int const fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(fd, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    {
        DescriptorLimit const limit(static_cast<rlim_t>(lowestFreeDescriptor()));
        ASSERT_EQ(::connect(fd, reinterpret_cast<sockaddr const*>(&address), sizeof(address)), 0);
        ASSERT_TRUE(eventually([&] { return logged(log, "pausing the listener"); }));
    }
    auto const records = log.records();
    EXPECT_EQ(std::count_if(records.begin(), records.end(),
                            [](auto const& r) {
                                return r.message.find("pausing the listener") != std::string::npos;
                            }),
              1);
    clock->advance(200ms);
    ASSERT_EQ(::send(fd, "*OPC?\n", 6, MSG_NOSIGNAL), 6);
    char answer[8] = {};
    EXPECT_EQ(::recv(fd, answer, sizeof(answer), 0), 2);
    EXPECT_EQ(std::string(answer), "1\n");
    ::close(fd);
}

TEST(RemoteServerDescriptorLimitTest, APollFailureEndsTheLoopWithAReportTheApplicationSees) {
    LogCapture log;
    auto const clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
    rt::RemoteControlOptions options = onClock(clock);
    std::promise<std::string> reported;
    options.server.onFailure = [&reported](std::string const& reason) {
        reported.set_value(reason);
    };
    RemoteHarness harness(options);
    harness.start();
    auto reason = reported.get_future();
    {
        // More descriptors to poll than the limit allows: poll(2) fails with EINVAL.
        DescriptorLimit const limit(1);
        clock->advance(0ms);
        ASSERT_EQ(reason.wait_for(30s), std::future_status::ready);
    }
    EXPECT_NE(reason.get().find("poll failed"), std::string::npos);
    ASSERT_TRUE(harness.remote->failure().has_value());
    EXPECT_NE(harness.remote->failure()->find("poll failed"), std::string::npos);
    EXPECT_TRUE(logged(log, "command server stopped serving"));
}

// `printf '*IDN?\n' | nc -N HOST PORT`: the client shuts its sending side at once.
TEST(RemoteServerClientEdgesTest, AHalfClosedClientGetsEveryAnswerThenTheConnectionCloses) {
    RemoteHarness harness;
    harness.start();
    int answered = 0;
    for (int i = 0; i < 100; ++i) {
        ScpiClient client(harness.tcpAddress());
        ASSERT_TRUE(client.send("*IDN?\n"));
        ::shutdown(client.fd(), SHUT_WR);
        if (client.readLine() == "Yx,Test Panel,T-1,0.1" && client.readLine() == "<closed>") {
            ++answered;
        }
    }
    EXPECT_EQ(answered, 100);
}

TEST(RemoteServerClientEdgesTest, TheLastLineCountsWithoutANewline) {
    RemoteHarness harness;
    harness.start();
    ScpiClient client(harness.unixAddress());
    ASSERT_TRUE(client.send("SYST:KEY DOWN\n*OPC?;:DISP:INV? 2"));
    ::shutdown(client.fd(), SHUT_WR);
    EXPECT_EQ(client.readLine(), "1");
    EXPECT_EQ(client.readLine(), R"("0-18")");
    EXPECT_EQ(client.readLine(), "<closed>");
}

TEST(RemoteServerClientEdgesTest, CrLfAndCrLfEachEndALine) {
    RemoteHarness harness;
    harness.start();
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.send("*OPC?\r*IDN?\n*OPC?\r\nSYST:ERR?\n"));
    EXPECT_EQ(client.readLine(), "1");
    EXPECT_EQ(client.readLine(), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(client.readLine(), "1");
    EXPECT_EQ(client.readLine(), R"(0,"No error")");
}

TEST(RemoteServerClientEdgesTest, ErrorDetailsShowControlBytesAndInvalidUtf8Escaped) {
    RemoteHarness harness;
    harness.start();
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.sendLine("SYST:KEY \"\x1b[2J\xff\xc3\xa9\\\""));
    EXPECT_EQ(client.query("SYST:ERR?"),
              "-224,\"Illegal parameter value;no key \\x1B[2J\\xFF\xc3\xa9\\\\\"");
}

TEST(RemoteServerClientEdgesTest, AHandlerThrowingAnythingLeavesTheClientServed) {
    RemoteHarness harness;
    harness.remote->commands().add("BOOM", [](rt::scpi::Request&) { throw 42; });
    harness.start();
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.sendLine("BOOM"));
    EXPECT_EQ(client.query("*OPC?"), "1");
    EXPECT_EQ(client.query("SYST:ERR?"), R"(-200,"Execution error;the command failed")");
}

/** A server on a Unix socket only, whose commands run on its own thread. */
std::unique_ptr<rt::RemoteServer> unixServer(std::string const& path, unsigned mode = 0660) {
    rt::RemoteServerOptions options;
    options.listen = {"unix:" + path};
    options.unixSocketMode = mode;
    auto table = std::make_shared<rt::scpi::CommandTable>();
    rt::scpi::addCommonCommands(*table, {"Yx", "Unix", "U-1", "0.1"});
    return std::make_unique<rt::RemoteServer>(
        table,
        [](std::function<void()> const& task) {
            task();
            return true;
        },
        options);
}

class RemoteServerUnixSocketTest : public ::testing::Test {
public:
    ~RemoteServerUnixSocketTest() override {
        ::unlink(path.c_str());
        ::rmdir(directory.c_str());
    }

protected:
    RemoteServerUnixSocketTest() {
        char pattern[] = "/tmp/yxfp-socket-XXXXXX";
        directory = ::mkdtemp(pattern);
        path = directory + "/panel.sock";
    }
    std::string directory;
    std::string path;
};

TEST_F(RemoteServerUnixSocketTest, ASecondServerDoesNotTakeOverALiveSocket) {
    auto const first = unixServer(path);
    first->start();
    EXPECT_THROW(unixServer(path), std::system_error);
    ScpiClient client("unix:" + path);
    EXPECT_EQ(client.query("*IDN?"), "Yx,Unix,U-1,0.1");
}

TEST_F(RemoteServerUnixSocketTest, AStaleSocketFileIsReplaced) {
    int const fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof(address)), 0);
    ::close(fd);  // the file stays, with nobody listening
    auto const server = unixServer(path);
    server->start();
    ScpiClient client("unix:" + path);
    EXPECT_EQ(client.query("*IDN?"), "Yx,Unix,U-1,0.1");
}

TEST_F(RemoteServerUnixSocketTest, TheSocketModeIs0660UnlessConfigured) {
    {
        auto const server = unixServer(path);
        struct stat status {};
        ASSERT_EQ(::lstat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0660U);
    }
    auto const server = unixServer(path, 0600);
    struct stat status {};
    ASSERT_EQ(::lstat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

// A file that is no longer this server's (replaced after its start) is left alone.
TEST_F(RemoteServerUnixSocketTest, AServerRemovesOnlyItsOwnSocketFile) {
    auto first = unixServer(path);
    ::unlink(path.c_str());
    auto const second = unixServer(path);
    second->start();
    first.reset();
    ScpiClient client("unix:" + path);
    EXPECT_EQ(client.query("*IDN?"), "Yx,Unix,U-1,0.1");
}

}  // namespace
