#pragma once

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace frontpanelctl {

/** The connection failed, closed or timed out; the message says which. */
class ConnectionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** A line-oriented client connection to a command server. */
class LineConnection {
public:
    /** Connects to `address` (HOST:PORT, [IPV6]:PORT or unix:PATH) within `timeout`, trying
     *  every address a host name resolves to. Response lines longer than `maxLineBytes` are
     *  refused.
     *  @throws ConnectionError naming the address when it cannot connect. */
    LineConnection(std::string const& address, std::chrono::milliseconds timeout,
                   std::size_t maxLineBytes = std::size_t{1} << 20);
    ~LineConnection();
    LineConnection(LineConnection const&) = delete;
    LineConnection& operator=(LineConnection const&) = delete;

    /** Sends `line` and a newline. @throws ConnectionError when the server is gone. */
    void sendLine(std::string const& line);
    /** The next response line without its newline.
     *  @throws ConnectionError when the server closed the connection, sent nothing for the
     *  timeout or sent a line longer than the limit. */
    std::string readLine();

private:
    std::string address_;
    std::chrono::milliseconds timeout_;
    std::size_t maxLineBytes_;
    int fd_;
    std::string buffer_;
};

}  // namespace frontpanelctl
