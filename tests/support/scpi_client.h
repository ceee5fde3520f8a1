#pragma once

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace yxfp_test {

/** A blocking client of the command server for tests: whole lines in, whole lines out. Reads
 *  give up after 30 s (a broken server fails the test instead of hanging it). */
class ScpiClient {
public:
    explicit ScpiClient(std::string const& address)
        : fd_(yxfrontpanel::runtime::connectTo(yxfrontpanel::runtime::parseEndpoint(address))) {
        timeval const limit{30, 0};
        ::setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    }
    ~ScpiClient() { close(); }
    ScpiClient(ScpiClient const&) = delete;
    ScpiClient& operator=(ScpiClient const&) = delete;

    /** Sends `text` as it is (no newline added); false when the connection is gone. */
    bool send(std::string const& text) {
        std::size_t sent = 0;
        while (sent < text.size()) {
            ssize_t const count = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) {
                return false;
            }
            sent += static_cast<std::size_t>(count);
        }
        return true;
    }
    /** Sends `line` and a newline. */
    bool sendLine(std::string const& line) { return send(line + '\n'); }
    /** The next response line without its newline; "<closed>" when the server closed the
     *  connection, "<timeout>" after the read limit. */
    std::string readLine() {
        while (true) {
            std::size_t const newline = buffer_.find('\n');
            if (newline != std::string::npos) {
                std::string line = buffer_.substr(0, newline);
                buffer_.erase(0, newline + 1);
                return line;
            }
            char chunk[4096];
            ssize_t const count = ::recv(fd_, chunk, sizeof(chunk), 0);
            if (count == 0 || (count < 0 && errno == ECONNRESET)) {
                return "<closed>";
            }
            if (count < 0) {
                return errno == EAGAIN || errno == EWOULDBLOCK ? "<timeout>" : "<error>";
            }
            buffer_.append(chunk, static_cast<std::size_t>(count));
        }
    }
    /** Sends `line` and returns the one response line it asks for. */
    std::string query(std::string const& line) {
        EXPECT_TRUE(sendLine(line)) << line;
        return readLine();
    }
    /** Closes the connection now. */
    void close() {
        if (fd_ >= 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }
    int fd() const { return fd_; }

private:
    int fd_;
    std::string buffer_;
};

}  // namespace yxfp_test
