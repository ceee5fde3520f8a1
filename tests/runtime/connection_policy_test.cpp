#include <yxfrontpanel/runtime/connection_policy.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace rt = yxfrontpanel::runtime;
using namespace std::chrono_literals;

TEST(ConnectionQuotaTest, LocalListenerKeepsItsOwnQuotaWhenNetworkIsFull) {
    rt::ConnectionPolicyOptions options;
    options.maxClientsPerListener = 2;
    options.maxLocalClients = 1;
    rt::ConnectionQuota quota(options);
    std::size_t const tcp = quota.addListener(rt::ListenerKind::Network);
    std::size_t const local = quota.addListener(rt::ListenerKind::Local);
    EXPECT_TRUE(quota.admit(tcp));
    EXPECT_TRUE(quota.admit(tcp));
    EXPECT_FALSE(quota.admit(tcp));
    EXPECT_TRUE(quota.admit(local));
    EXPECT_FALSE(quota.admit(local));
    quota.release(tcp);
    EXPECT_EQ(quota.count(tcp), 1U);
    EXPECT_TRUE(quota.admit(tcp));
    quota.release(local);
    quota.release(local);  // an extra release is ignored
    EXPECT_EQ(quota.count(local), 0U);
    EXPECT_EQ(quota.limit(local), 1U);
    EXPECT_THROW(quota.admit(7), std::out_of_range);
}

TEST(ConnectionDeadlineTest, LoginDeadlineAppliesOnlyUntilLoggedIn) {
    rt::ConnectionPolicyOptions options;
    options.loginDeadline = 2s;
    options.idleTimeout = 10s;
    rt::ManualClock clock;
    rt::ConnectionDeadline deadline(options, clock.now(), true);
    EXPECT_TRUE(deadline.loginPending());
    EXPECT_EQ(deadline.next(), clock.now() + 2s);
    clock.advance(1999ms);
    EXPECT_EQ(deadline.expired(clock.now()), rt::ConnectionExpiry::None);
    clock.advance(1ms);
    EXPECT_EQ(deadline.expired(clock.now()), rt::ConnectionExpiry::LoginDeadline);
    deadline.loggedIn();
    EXPECT_EQ(deadline.expired(clock.now()), rt::ConnectionExpiry::None);
    EXPECT_FALSE(deadline.loginPending());
}

TEST(ConnectionDeadlineTest, IdleTimeoutRestartsOnActivityAndCanBeOff) {
    rt::ConnectionPolicyOptions options;
    options.idleTimeout = 5s;
    rt::ManualClock clock;
    rt::ConnectionDeadline deadline(options, clock.now(), false);
    clock.advance(4s);
    deadline.activity(clock.now());
    clock.advance(4s);
    EXPECT_EQ(deadline.expired(clock.now()), rt::ConnectionExpiry::None);
    clock.advance(1s);
    EXPECT_EQ(deadline.expired(clock.now()), rt::ConnectionExpiry::Idle);
    EXPECT_NE(rt::describeExpiry(rt::ConnectionExpiry::Idle, options).find("5000 ms"),
              std::string::npos);

    options.idleTimeout = 0ms;
    rt::ConnectionDeadline never(options, clock.now(), false);
    clock.advance(std::chrono::hours{100});
    EXPECT_EQ(never.expired(clock.now()), rt::ConnectionExpiry::None);
    EXPECT_FALSE(never.next());
}

TEST(ConnectionPolicyTest, PollTimeoutWaitsForDeadlineOnlyOnRealClock) {
    rt::ManualClock manual;
    EXPECT_EQ(rt::pollTimeout(manual.now() + 5s, manual), -1);
    rt::SteadyClock steady;
    EXPECT_EQ(rt::pollTimeout(std::nullopt, steady), -1);
    EXPECT_EQ(rt::pollTimeout(steady.now() - 5s, steady), 0);
    int const wait = rt::pollTimeout(steady.now() + 500s, steady);
    EXPECT_EQ(wait, 60000);
    EXPECT_EQ(rt::earliest(std::nullopt, manual.now()), manual.now());
    EXPECT_EQ(rt::earliest(manual.now() + 1s, manual.now()), manual.now());
}

TEST(AcceptPauseTest, PausesOnDescriptorExhaustionAndResumes) {
    rt::ConnectionPolicyOptions options;
    options.acceptPause = 100ms;
    rt::AcceptPause pause(options);
    rt::ManualClock clock;
    EXPECT_FALSE(pause.failed(ECONNABORTED, clock.now()));
    EXPECT_FALSE(pause.paused(clock.now()));
    EXPECT_TRUE(pause.failed(EMFILE, clock.now()));
    EXPECT_TRUE(pause.paused(clock.now()));
    clock.advance(99ms);
    EXPECT_TRUE(pause.paused(clock.now()));
    clock.advance(1ms);
    EXPECT_FALSE(pause.paused(clock.now()));
    EXPECT_TRUE(pause.failed(ENFILE, clock.now()));
    EXPECT_TRUE(pause.paused(clock.now()));
}

TEST(ConnectionPolicyTest, TcpKeepAliveFollowsTheOption) {
    int const fd = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    rt::ConnectionPolicyOptions options;
    auto keepAlive = [fd] {
        int value = -1;
        socklen_t length = sizeof(value);
        ::getsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &value, &length);
        return value;
    };
    options.tcpKeepAlive = true;
    EXPECT_TRUE(rt::applyTcpOptions(fd, options));
    EXPECT_NE(keepAlive(), 0);
    options.tcpKeepAlive = false;
    EXPECT_TRUE(rt::applyTcpOptions(fd, options));
    EXPECT_EQ(keepAlive(), 0);
    ::close(fd);
}

TEST(TokenMatchesTest, AcceptsOnlyTheWholeTokenWithinTheLimit) {
    std::string const token = "s3cret-token";
    EXPECT_TRUE(rt::tokenMatches("s3cret-token", token, 256));
    EXPECT_FALSE(rt::tokenMatches("s3cret-toke", token, 256));
    EXPECT_FALSE(rt::tokenMatches("s3cret-tokenX", token, 256));
    EXPECT_FALSE(rt::tokenMatches("S3cret-token", token, 256));
    EXPECT_FALSE(rt::tokenMatches("", token, 256));
    EXPECT_FALSE(rt::tokenMatches("", "", 256));

    std::string const longToken(300, 'k');
    // Longer than the limit: refused whole, never compared in part.
    EXPECT_FALSE(rt::tokenMatches(longToken, longToken, 256));
    EXPECT_FALSE(rt::tokenMatches(longToken, longToken.substr(0, 256), 256));
    EXPECT_TRUE(rt::tokenMatches(longToken.substr(0, 256), longToken.substr(0, 256), 256));
}

TEST(TokenMatchesTest, ConfiguredTokenOverTheLimitIsRefused) {
    rt::ConnectionPolicyOptions options;
    options.maxTokenBytes = 8;
    EXPECT_NO_THROW(rt::checkAccessToken("12345678", options));
    EXPECT_THROW(rt::checkAccessToken("123456789", options), std::invalid_argument);
}

TEST(HostAllowListTest, AllowsLoopbackNamesAndConfiguredNamesWithTheBoundPort) {
    rt::HostAllowList const list("127.0.0.1", 8080, {"Panel.Example."});
    EXPECT_TRUE(list.allowsHost("127.0.0.1:8080"));
    EXPECT_TRUE(list.allowsHost("localhost:8080"));
    EXPECT_TRUE(list.allowsHost("LOCALHOST.:8080"));
    EXPECT_TRUE(list.allowsHost("[::1]:8080"));
    EXPECT_TRUE(list.allowsHost("panel.example:8080"));
    EXPECT_FALSE(list.allowsHost("evil.example:8080"));
    EXPECT_FALSE(list.allowsHost("localhost:8081"));
    EXPECT_FALSE(list.allowsHost("localhost"));  // port 80 implied
    EXPECT_FALSE(list.allowsHost(""));
    EXPECT_FALSE(list.allowsHost("[::1"));
    EXPECT_FALSE(list.allowsHost("localhost:80a"));
    EXPECT_FALSE(list.allowsHost("::1:8080"));
    EXPECT_FALSE(list.allowsHost("localhost:99999999999"));
}

TEST(HostAllowListTest, BoundAddressIsAllowedUnlessItIsAWildcard) {
    rt::HostAllowList const v6("::1", 80, {});
    EXPECT_TRUE(v6.allowsHost("[::1]"));
    EXPECT_TRUE(v6.allowsHost("[::1]:80"));
    rt::HostAllowList const lan("192.0.2.7", 9000, {});
    EXPECT_TRUE(lan.allowsHost("192.0.2.7:9000"));
    rt::HostAllowList const any("0.0.0.0", 9000, {});
    EXPECT_FALSE(any.allowsHost("0.0.0.0:9000"));
    EXPECT_TRUE(any.allowsHost("localhost:9000"));
}

TEST(HostAllowListTest, OriginMustNameThisServer) {
    rt::HostAllowList const list("127.0.0.1", 8080, {});
    EXPECT_TRUE(list.allowsOrigin("http://localhost:8080"));
    EXPECT_TRUE(list.allowsOrigin("http://127.0.0.1:8080"));
    EXPECT_FALSE(list.allowsOrigin("http://evil.example:8080"));
    EXPECT_FALSE(list.allowsOrigin("null"));
    EXPECT_FALSE(list.allowsOrigin("ftp://localhost:8080"));
    EXPECT_FALSE(list.allowsOrigin("http://localhost:8080/x"));
    EXPECT_FALSE(list.allowsOrigin("http://user@localhost:8080"));
}
