#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <gtest/gtest.h>

#include <chrono>
#include <system_error>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

namespace rt = yxfrontpanel::runtime;

/** A loopback TCP listener that never accepts, with the smallest backlog. */
class FullListener {
public:
    FullListener() {
        fd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::bind(fd_, reinterpret_cast<sockaddr const*>(&address), sizeof(address)), 0);
        EXPECT_EQ(::listen(fd_, 0), 0);
        socklen_t length = sizeof(address);
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
        // Fill the accept queue: once it is full, further connection requests go unanswered.
        for (int i = 0; i < 4; ++i) {
            int const client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
            (void)::connect(client, reinterpret_cast<sockaddr const*>(&address), sizeof(address));
            clients_.push_back(client);
        }
    }
    ~FullListener() {
        for (int const client : clients_) {
            ::close(client);
        }
        ::close(fd_);
    }
    FullListener(FullListener const&) = delete;
    FullListener& operator=(FullListener const&) = delete;
    std::uint16_t port() const { return port_; }

private:
    int fd_ = -1;
    std::uint16_t port_ = 0;
    std::vector<int> clients_;
};

TEST(ConnectToTest, GivesUpWhenTheTimeoutPasses) {
    FullListener const listener;
    rt::Endpoint const endpoint = rt::parseEndpoint("127.0.0.1:" + std::to_string(listener.port()));
    try {
        int const fd = rt::connectTo(endpoint, std::chrono::milliseconds{200});
        ::close(fd);
        FAIL() << "connected to a listener whose queue is full";
    } catch (std::system_error const& error) {
        EXPECT_EQ(error.code(), std::errc::timed_out) << error.what();
        EXPECT_NE(std::string(error.what()).find("127.0.0.1:"), std::string::npos);
    }
}

TEST(ConnectToTest, NamesTheEndpointWhenRefused) {
    int const probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    (void)::bind(probe, reinterpret_cast<sockaddr const*>(&address), sizeof(address));
    socklen_t length = sizeof(address);
    ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    ::close(probe);  // a port nobody listens on
    std::string const text = "localhost:" + std::to_string(ntohs(address.sin_port));
    EXPECT_THROW(rt::connectTo(rt::parseEndpoint(text), std::chrono::seconds{5}),
                 std::system_error);
}

}  // namespace
