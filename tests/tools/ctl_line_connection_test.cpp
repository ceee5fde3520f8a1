#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "line_connection.h"
#include "temp_directory.h"
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using frontpanelctl::ConnectionError;
using frontpanelctl::LineConnection;

/** A Unix-socket server that sends `reply` to its one client, then closes. */
class ReplyServer {
public:
    ReplyServer(std::string const& path, std::string reply) : reply_(std::move(reply)) {
        fd_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(::bind(fd_, reinterpret_cast<sockaddr const*>(&address), sizeof(address)), 0);
        EXPECT_EQ(::listen(fd_, 1), 0);
        thread_ = std::thread([this] {
            int const client = ::accept(fd_, nullptr, nullptr);
            std::size_t sent = 0;
            while (client >= 0 && sent < reply_.size()) {
                ssize_t const count =
                    ::send(client, reply_.data() + sent, reply_.size() - sent, MSG_NOSIGNAL);
                if (count <= 0) {
                    break;
                }
                sent += static_cast<std::size_t>(count);
            }
            ::close(client);
        });
    }
    ~ReplyServer() {
        thread_.join();
        ::close(fd_);
    }
    ReplyServer(ReplyServer const&) = delete;
    ReplyServer& operator=(ReplyServer const&) = delete;

private:
    std::string reply_;
    int fd_ = -1;
    std::thread thread_;
};

TEST(CtlLineConnectionTest, RefusesAnAnswerLineOverTheLimit) {
    yxfp_test::TempDirectory directory;
    std::string const path = directory.file("panel.sock");
    ReplyServer const server(path, std::string(std::size_t{256} * 1024, 'x'));
    LineConnection connection("unix:" + path, std::chrono::seconds{30}, std::size_t{64} * 1024);
    try {
        connection.readLine();
        FAIL() << "a line over the limit was taken";
    } catch (ConnectionError const& error) {
        EXPECT_NE(std::string(error.what()).find("longer than 65536 bytes"), std::string::npos)
            << error.what();
    }
}

TEST(CtlLineConnectionTest, TakesLinesWithinTheLimit) {
    yxfp_test::TempDirectory directory;
    std::string const path = directory.file("panel.sock");
    ReplyServer const server(path, std::string(std::size_t{60} * 1024, 'y') + "\nshort\n");
    LineConnection connection("unix:" + path, std::chrono::seconds{30}, std::size_t{64} * 1024);
    EXPECT_EQ(connection.readLine().size(), 60U * 1024U);
    EXPECT_EQ(connection.readLine(), "short");
}

}  // namespace
