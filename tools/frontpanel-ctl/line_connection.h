#pragma once

#include <chrono>
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
    /** Connects to `address` (HOST:PORT, [IPV6]:PORT or unix:PATH).
     *  @throws ConnectionError naming the address when it cannot connect. */
    LineConnection(std::string const& address, std::chrono::milliseconds timeout);
    ~LineConnection();
    LineConnection(LineConnection const&) = delete;
    LineConnection& operator=(LineConnection const&) = delete;

    /** Sends `line` and a newline. @throws ConnectionError when the server is gone. */
    void sendLine(std::string const& line);
    /** The next response line without its newline.
     *  @throws ConnectionError when the server closed the connection or sent nothing for the
     *  timeout. */
    std::string readLine();

private:
    std::string address_;
    std::chrono::milliseconds timeout_;
    int fd_;
    std::string buffer_;
};

}  // namespace frontpanelctl
