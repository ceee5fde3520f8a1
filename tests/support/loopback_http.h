#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace yxfp_test {

/** A blocking TCP connection to 127.0.0.1 for tests of the project's servers: raw HTTP
 *  requests and a minimal WebSocket client (text frames, client-to-server masking). Every read
 *  waits at most the given timeout, so a test never hangs. */
class LoopbackConnection {
public:
    /** Connects to `port`; a `receiveBuffer` other than 0 sets the socket's receive buffer
     *  (bytes) first, for tests of clients that stop reading. Requests name the host
     *  `127.0.0.1:port` until `setHost` names another. */
    explicit LoopbackConnection(std::uint16_t port, int receiveBuffer = 0)
        : socket_(::socket(AF_INET, SOCK_STREAM, 0)), host_("127.0.0.1:" + std::to_string(port)) {
        if (socket_ < 0) {
            throw std::runtime_error("socket failed");
        }
        if (receiveBuffer > 0) {
            ::setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(socket_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
            ::close(socket_);
            throw std::runtime_error("connect to 127.0.0.1:" + std::to_string(port) + " failed");
        }
    }
    ~LoopbackConnection() { ::close(socket_); }
    LoopbackConnection(LoopbackConnection const&) = delete;
    LoopbackConnection& operator=(LoopbackConnection const&) = delete;

    /** The Host header of the following requests. */
    void setHost(std::string host) { host_ = std::move(host); }

    /** Sends all of `bytes`; false when the peer closed. */
    bool send(std::string const& bytes) {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            auto const written =
                ::send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (written <= 0) {
                return false;
            }
            sent += static_cast<std::size_t>(written);
        }
        return true;
    }

    /** Reads until `marker` has arrived, the peer closed or `timeout` passed; returns all that
     *  was read (the rest stays buffered for the next read). */
    std::string readUntil(std::string const& marker,
                          std::chrono::milliseconds timeout = std::chrono::seconds{5}) {
        auto const deadline = std::chrono::steady_clock::now() + timeout;
        while (buffer_.find(marker) == std::string::npos && fill(deadline)) {
        }
        auto const end = buffer_.find(marker);
        std::size_t const taken = end == std::string::npos ? buffer_.size() : end + marker.size();
        std::string result = buffer_.substr(0, taken);
        buffer_.erase(0, taken);
        return result;
    }

    /** Reads until the peer closes or `timeout` passes. */
    std::string readAll(std::chrono::milliseconds timeout = std::chrono::seconds{5}) {
        auto const deadline = std::chrono::steady_clock::now() + timeout;
        while (fill(deadline)) {
        }
        std::string result;
        result.swap(buffer_);
        return result;
    }

    /** An HTTP/1.1 GET of `path`; returns the response head and as much body as came. */
    std::string get(std::string const& path, std::string const& extraHeaders = {}) {
        send("GET " + path + " HTTP/1.1\r\nHost: " + host_ + "\r\nConnection: close\r\n" +
             extraHeaders + "\r\n");
        return readAll();
    }

    /** The WebSocket opening handshake on `path` (with `extraHeaders`, each ending in CRLF);
     *  returns the server's response head. */
    std::string upgrade(std::string const& path, std::string const& origin = {},
                        std::string const& extraHeaders = {}) {
        std::string request =
            "GET " + path + " HTTP/1.1\r\nHost: " + host_ + "\r\n" + extraHeaders +
            "Upgrade: websocket\r\n"
            "Connection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
            "Sec-WebSocket-Version: 13\r\n";
        if (!origin.empty()) {
            request += "Origin: " + origin + "\r\n";
        }
        send(request + "\r\n");
        return readUntil("\r\n\r\n");
    }

    /** Sends one masked text frame. */
    bool sendText(std::string const& text) {
        std::string frame(1, static_cast<char>(0x81));
        if (text.size() < 126) {
            frame += static_cast<char>(0x80 | text.size());
        } else {
            frame += static_cast<char>(0x80 | 126);
            frame += static_cast<char>((text.size() >> 8) & 0xFF);
            frame += static_cast<char>(text.size() & 0xFF);
        }
        std::uint32_t const mask = std::random_device{}();
        char const key[4] = {static_cast<char>(mask >> 24), static_cast<char>(mask >> 16),
                             static_cast<char>(mask >> 8), static_cast<char>(mask)};
        frame.append(key, 4);
        for (std::size_t index = 0; index < text.size(); ++index) {
            frame += static_cast<char>(text[index] ^ key[index % 4]);
        }
        return send(frame);
    }

    /** The payload of the next text frame from the server; nothing when none came in time or
     *  the connection closed. */
    std::optional<std::string> receiveText(std::chrono::milliseconds timeout = std::chrono::seconds{
                                               5}) {
        auto const deadline = std::chrono::steady_clock::now() + timeout;
        while (true) {
            if (buffer_.size() >= 2) {
                auto const opcode = static_cast<unsigned char>(buffer_[0]) & 0x0F;
                std::size_t length = static_cast<unsigned char>(buffer_[1]) & 0x7F;
                std::size_t header = 2;
                if (length == 126 && buffer_.size() >= 4) {
                    length = (static_cast<unsigned char>(buffer_[2]) << 8) |
                             static_cast<unsigned char>(buffer_[3]);
                    header = 4;
                } else if (length == 127 && buffer_.size() >= 10) {
                    length = 0;
                    for (int index = 2; index < 10; ++index) {
                        length = (length << 8) | static_cast<unsigned char>(buffer_[index]);
                    }
                    header = 10;
                }
                if (length < 126 || header > 2) {
                    if (buffer_.size() >= header + length) {
                        std::string payload = buffer_.substr(header, length);
                        buffer_.erase(0, header + length);
                        if (opcode == 0x8) {
                            return std::nullopt;  // close frame
                        }
                        if (opcode == 0x1) {
                            return payload;
                        }
                        continue;  // ping, pong, binary: not for these tests
                    }
                }
            }
            if (!fill(deadline)) {
                return std::nullopt;
            }
        }
    }

private:
    /** Reads what is there into the buffer; false on close, error or the deadline. */
    bool fill(std::chrono::steady_clock::time_point deadline) {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return false;
        }
        pollfd input{socket_, POLLIN, 0};
        if (::poll(&input, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        char chunk[4096];
        auto const got = ::recv(socket_, chunk, sizeof chunk, 0);
        if (got <= 0) {
            return false;
        }
        buffer_.append(chunk, static_cast<std::size_t>(got));
        return true;
    }

    int socket_;
    std::string host_;
    std::string buffer_;
};

/** The head of an HTTP response (up to its last CRLF, without the blank line) and its body. */
struct HttpResponse {
    std::string head;
    std::string body;
};

/** Splits a whole response at its blank line; all head when there is none. */
inline HttpResponse splitResponse(std::string const& response) {
    std::size_t const end = response.find("\r\n\r\n");
    if (end == std::string::npos) {
        return {response, {}};
    }
    return {response.substr(0, end + 2), response.substr(end + 4)};
}

}  // namespace yxfp_test
