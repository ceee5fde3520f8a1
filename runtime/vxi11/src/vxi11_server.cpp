#include <yxfrontpanel/runtime/owned_descriptor.h>
#include <yxfrontpanel/runtime/vxi11_protocol.h>
#include <yxfrontpanel/runtime/vxi11_server.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <list>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <rpc/pmap_clnt.h>
#include <rpc/rpc.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace yxfrontpanel::runtime {

namespace {

constexpr std::uint32_t kCoreProgram = 0x0607AF;

using Fd = OwnedDescriptor;

sockaddr_in addressOf(std::string const& host, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    std::string const numeric = host == "localhost" ? "127.0.0.1" : host;
    if (inet_pton(AF_INET, numeric.c_str(), &address.sin_addr) != 1) {
        throw std::invalid_argument("VXI-11: not an IPv4 address: " + host);
    }
    return address;
}

/** A bound socket of `type` on host:port, or the errno of the failure. */
Fd bindSocket(sockaddr_in const& address, int type, int& error) {
    Fd fd(::socket(AF_INET, type | SOCK_CLOEXEC, 0));
    if (fd.get() < 0) {
        error = errno;
        return {};
    }
    int const one = 1;
    ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    if (::bind(fd.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0 ||
        (type == SOCK_STREAM && ::listen(fd.get(), 16) != 0)) {
        error = errno;
        return {};
    }
    error = 0;
    return fd;
}

std::uint16_t portOf(int fd) {
    sockaddr_in bound{};
    socklen_t length = sizeof bound;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&bound), &length);
    return ntohs(bound.sin_port);
}

/** Whether something accepts TCP connections on port 111 of `host` (an rpcbind). */
bool rpcbindAnswers(std::string const& host) {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in const address = addressOf(host, 111);
    return fd.get() >= 0 &&
           ::connect(fd.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
}

/** Sends `record` framed as one fragment: mark and record in one call, without copying them
 *  together. */
bool sendRecord(int fd, std::string& record) {
    std::array<char, 4> mark = rpcRecordMark(record.size());
    iovec parts[2] = {{mark.data(), mark.size()}, {record.data(), record.size()}};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = 2;
    while (message.msg_iovlen > 0) {
        ssize_t const n = ::sendmsg(fd, &message, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        // A partial send: skip what went out.
        auto sent = static_cast<std::size_t>(n);
        while (message.msg_iovlen > 0 && sent >= message.msg_iov->iov_len) {
            sent -= message.msg_iov->iov_len;
            ++message.msg_iov;
            --message.msg_iovlen;
        }
        if (message.msg_iovlen > 0) {
            message.msg_iov->iov_base = static_cast<char*>(message.msg_iov->iov_base) + sent;
            message.msg_iov->iov_len -= sent;
        }
    }
    return true;
}

}  // namespace

class Vxi11Server::Impl {
public:
    Impl(Vxi11InstrumentFactory instruments, Vxi11ServerOptions options)
        : options_(std::move(options)),
          device_(std::move(instruments), options_.maxLinks),
          quota_(options_.policy),
          listener_(quota_.addListener(ListenerKind::Network)) {
        sockaddr_in const core = addressOf(options_.host, options_.corePort);
        int error = 0;
        core_ = bindSocket(core, SOCK_STREAM, error);
        if (core_.get() < 0) {
            throw std::system_error(error, std::generic_category(),
                                    "VXI-11 core channel on " + options_.host + ":" +
                                        std::to_string(options_.corePort));
        }
        corePort_ = portOf(core_.get());
        device_.setCorePort(corePort_);
        if (options_.useRpcbind && rpcbindAnswers(options_.host)) {
            if (pmap_set(kCoreProgram, 1, IPPROTO_TCP, corePort_)) {
                registered_ = true;
                registration_ = "registered with rpcbind";
            } else {
                registration_ = "rpcbind refused the registration; clients must name port " +
                                std::to_string(corePort_);
            }
        } else if (options_.portmapperPort) {
            sockaddr_in const pm = addressOf(options_.host, *options_.portmapperPort);
            mapperTcp_ = bindSocket(pm, SOCK_STREAM, error);
            if (mapperTcp_.get() >= 0) {
                mapperPort_ = portOf(mapperTcp_.get());
                mapperUdp_ = bindSocket(addressOf(options_.host, *mapperPort_), SOCK_DGRAM, error);
            }
            if (mapperTcp_.get() < 0 || mapperUdp_.get() < 0) {
                mapperTcp_.reset();
                mapperPort_.reset();
                registration_ = "no rpcbind, and portmapper port " +
                                std::to_string(*options_.portmapperPort) + " cannot be bound (" +
                                std::generic_category().message(error) +
                                "); clients must name core port " + std::to_string(corePort_);
            } else {
                registration_ = "portmapper on port " + std::to_string(*mapperPort_);
            }
        } else {
            registration_ = "no rpcbind and no portmapper; clients must name core port " +
                            std::to_string(corePort_);
        }
        int pipeFds[2];
        if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "VXI-11 wake pipe");
        }
        wakeRead_ = Fd(pipeFds[0]);
        wakeWrite_ = Fd(pipeFds[1]);
    }

    ~Impl() { stop(); }

    void start() {
        if (started_.exchange(true)) {
            return;
        }
        acceptor_ = std::thread([this] { acceptLoop(); });
    }

    void stop() {
        if (stopped_.exchange(true)) {
            return;
        }
        char const byte = 0;
        [[maybe_unused]] ssize_t const n = ::write(wakeWrite_.get(), &byte, 1);
        device_.shutdown();
        if (acceptor_.joinable()) {
            acceptor_.join();
        }
        std::list<std::thread> connections;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            connections.swap(connections_);
        }
        for (auto& thread : connections) {
            thread.join();
        }
        if (registered_) {
            pmap_unset(kCoreProgram, 1);
        }
    }

    std::uint16_t corePort_ = 0;
    std::optional<std::uint16_t> mapperPort_;
    std::string registration_;
    Vxi11ServerOptions options_;
    Vxi11Device device_;

private:
    void acceptLoop() {
        for (;;) {
            pollfd fds[4] = {{wakeRead_.get(), POLLIN, 0},
                             {core_.get(), POLLIN, 0},
                             {mapperTcp_.get(), POLLIN, 0},
                             {mapperUdp_.get(), POLLIN, 0}};
            nfds_t const count = mapperTcp_.get() >= 0 ? 4 : 2;
            if (::poll(fds, count, -1) < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return;
            }
            if (fds[0].revents != 0) {
                return;
            }
            if ((fds[1].revents & POLLIN) != 0) {
                accept(core_.get());
            }
            if (count == 4 && (fds[2].revents & POLLIN) != 0) {
                accept(mapperTcp_.get());
            }
            if (count == 4 && (fds[3].revents & POLLIN) != 0) {
                answerDatagram();
            }
        }
    }

    void accept(int listenFd) {
        Fd client(::accept4(listenFd, nullptr, nullptr, SOCK_CLOEXEC));
        if (client.get() < 0 || !quota_.admit(listener_)) {
            return;
        }
        applyTcpOptions(client.get(), options_.policy);
        // Each reply is one send; nothing is gained by holding it back.
        int const one = 1;
        ::setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        std::uint64_t const id = ++nextConnection_;
        std::lock_guard<std::mutex> const lock(mutex_);
        connections_.emplace_back([this, id, fd = std::make_shared<Fd>(std::move(client))] {
            serve(fd->get(), id);
            device_.disconnect(id);
            quota_.release(listener_);
        });
    }

    /** Answers GETPORT over UDP: one datagram in, one out, to the sender only. */
    void answerDatagram() {
        std::string buffer(8192, '\0');
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        ssize_t const n = ::recvfrom(mapperUdp_.get(), buffer.data(), buffer.size(), 0,
                                     reinterpret_cast<sockaddr*>(&peer), &length);
        if (n <= 0 || peer.sin_addr.s_addr == htonl(INADDR_BROADCAST)) {
            return;
        }
        buffer.resize(static_cast<std::size_t>(n));
        std::optional<std::string> const reply = device_.call(buffer, 0);
        if (reply) {
            ::sendto(mapperUdp_.get(), reply->data(), reply->size(), 0,
                     reinterpret_cast<sockaddr const*>(&peer), length);
        }
    }

    /** Reads records from one connection and answers each in turn until it closes, idles
     *  past the policy's timeout or the server stops. */
    void serve(int fd, std::uint64_t id) {
        RpcRecordReader reader(options_.maxRecordBytes);
        std::string buffer(65536, '\0');
        auto const idle = options_.policy.idleTimeout.count();
        int const timeout = idle > 0 && idle < 0x7FFFFFFF ? static_cast<int>(idle) : -1;
        for (;;) {
            pollfd fds[2] = {{wakeRead_.get(), POLLIN, 0}, {fd, POLLIN, 0}};
            int const ready = ::poll(fds, 2, timeout);
            if (ready < 0 && errno == EINTR) {
                continue;
            }
            if (ready <= 0 || fds[0].revents != 0) {
                return;
            }
            ssize_t const n = ::recv(fd, buffer.data(), buffer.size(), 0);
            if (n <= 0 ||
                !reader.feed(std::string_view(buffer.data(), static_cast<std::size_t>(n)))) {
                return;
            }
            while (std::optional<std::string> record = reader.next()) {
                std::optional<std::string> reply = device_.call(*record, id);
                if (reply && !sendRecord(fd, *reply)) {
                    return;
                }
            }
        }
    }

    ConnectionQuota quota_;
    std::size_t listener_;
    Fd core_;
    Fd mapperTcp_;
    Fd mapperUdp_;
    Fd wakeRead_;
    Fd wakeWrite_;
    bool registered_ = false;
    std::atomic<bool> started_{false};
    std::atomic<bool> stopped_{false};
    std::atomic<std::uint64_t> nextConnection_{0};
    std::thread acceptor_;
    std::mutex mutex_;
    std::list<std::thread> connections_;
};

Vxi11Server::Vxi11Server(Vxi11InstrumentFactory instruments, Vxi11ServerOptions options)
    : impl_(std::make_unique<Impl>(std::move(instruments), std::move(options))) {}

Vxi11Server::~Vxi11Server() { impl_->stop(); }

void Vxi11Server::start() { impl_->start(); }

void Vxi11Server::stop() { impl_->stop(); }

std::uint16_t Vxi11Server::corePort() const { return impl_->corePort_; }

std::optional<std::uint16_t> Vxi11Server::portmapperPort() const { return impl_->mapperPort_; }

std::string Vxi11Server::registration() const { return impl_->registration_; }

std::size_t Vxi11Server::linkCount() const { return impl_->device_.linkCount(); }

}  // namespace yxfrontpanel::runtime
