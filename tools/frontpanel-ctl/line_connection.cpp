#include "line_connection.h"

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace frontpanelctl {

LineConnection::LineConnection(std::string const& address, std::chrono::milliseconds timeout,
                               std::size_t maxLineBytes)
    : address_(address), timeout_(timeout), maxLineBytes_(maxLineBytes), fd_(-1) {
    try {
        fd_ = yxfrontpanel::runtime::connectTo(yxfrontpanel::runtime::parseEndpoint(address),
                                               timeout);
    } catch (std::exception const& error) {
        throw ConnectionError(error.what());
    }
}

LineConnection::~LineConnection() { ::close(fd_); }

void LineConnection::sendLine(std::string const& line) {
    std::string const text = line + '\n';
    std::size_t sent = 0;
    while (sent < text.size()) {
        ssize_t const count = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throw ConnectionError(address_ + " closed the connection (" +
                                  std::generic_category().message(errno) + ")");
        }
        sent += static_cast<std::size_t>(count);
    }
}

std::string LineConnection::readLine() {
    while (true) {
        std::size_t const newline = buffer_.find('\n');
        if (newline != std::string::npos) {
            std::string line = buffer_.substr(0, newline);
            buffer_.erase(0, newline + 1);
            return line;
        }
        if (buffer_.size() > maxLineBytes_) {
            throw ConnectionError(address_ + " sent a line longer than " +
                                  std::to_string(maxLineBytes_) + " bytes");
        }
        pollfd ready{fd_, POLLIN, 0};
        int const waited = ::poll(&ready, 1, static_cast<int>(timeout_.count()));
        if (waited < 0 && errno == EINTR) {
            continue;
        }
        if (waited == 0) {
            throw ConnectionError("no response from " + address_ + " within " +
                                  std::to_string(timeout_.count()) +
                                  " ms (a failed query answers nothing; see the errors below)");
        }
        char chunk[4096];
        ssize_t const count = ::recv(fd_, chunk, sizeof(chunk), 0);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throw ConnectionError(address_ + " closed the connection");
        }
        buffer_.append(chunk, static_cast<std::size_t>(count));
    }
}

}  // namespace frontpanelctl
