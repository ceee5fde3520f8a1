#include <yxbase2/log.h>
#include <yxfrontpanel/runtime/remote_endpoint.h>
#include <yxfrontpanel/runtime/remote_server.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "socket_address.h"
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace yxfrontpanel::runtime {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelRuntime.remote";
constexpr int kLogWarning = 4;
constexpr int kLogInfo = 6;
constexpr int kListenBacklog = 16;
constexpr std::size_t kReadChunk = std::size_t{64} * 1024;
// The kernel's share of a client's unsent responses. Without a limit, loopback connections grow
// their buffers to megabytes, and a client that does not read would hold that much before the
// server's own output limit is even reached.
constexpr int kSocketSendBuffer = 64 * 1024;

void logRecord(int level, std::string const& text) {
    if (!log::detail::isEnabled(level)) {
        return;
    }
    std::ostringstream message;
    message << text;
    log::log(level, kLogCategory, message);
}

std::system_error systemError(std::string const& what) {
    return std::system_error(errno, std::generic_category(), what);
}

/** An owned descriptor. */
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() { reset(); }

    int get() const { return fd_; }
    void reset() {
        if (fd_ >= 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }

private:
    int fd_ = -1;
};

/** The I/O thread's wake-up: written by the tasks when responses are ready, by `stop` and by a
 *  clock moved by hand. Shared with the tasks so that a task that runs after the server is gone
 *  still writes to an open descriptor. */
class Waker {
public:
    Waker() : fd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (fd_.get() < 0) {
            throw systemError("cannot create the command server's wake-up descriptor");
        }
    }
    void wake() const {
        std::uint64_t const one = 1;
        // A full counter already wakes the thread; nothing else can go wrong with an eventfd.
        [[maybe_unused]] ssize_t const written = ::write(fd_.get(), &one, sizeof(one));
    }
    void drain() const {
        std::uint64_t count = 0;
        [[maybe_unused]] ssize_t const read = ::read(fd_.get(), &count, sizeof(count));
    }
    int fd() const { return fd_.get(); }

private:
    Descriptor fd_;
};

/** What the I/O thread and the executor's thread share for one client. */
struct ClientWork {
    std::mutex mutex;
    std::deque<scpi::ParsedLine> pending;  // parsed lines waiting for the executor
    bool scheduled = false;                // a task for this client is posted or running
    bool refused = false;                  // the executor refused a task: it has stopped
    bool closed = false;                   // the client is gone: drop its work
    std::string output;                    // response lines ready to send

    // The executor's thread only, except the session's error queue, which has a lock of its own
    // and takes the I/O thread's "line too long" errors.
    scpi::Session session;
    std::optional<scpi::ParsedLine> current;  // a line whose rest waits for the next turn
    std::size_t next = 0;
};

/** Everything a task needs; shared so that tasks outlive the server safely. */
struct TaskContext {
    std::shared_ptr<scpi::CommandTable const> table;
    RemoteServer::Executor executor;
    std::shared_ptr<Waker> waker;
    std::size_t linesPerTurn;
};

void serveClient(std::shared_ptr<TaskContext> const& context,
                 std::shared_ptr<ClientWork> const& work);

bool schedule(std::shared_ptr<TaskContext> const& context,
              std::shared_ptr<ClientWork> const& work) {
    return context->executor([context, work] { serveClient(context, work); });
}

/** One turn for one client on the executor's thread: up to `linesPerTurn` lines, or fewer when
 *  a command lets the rest wait for the next turn (a key press the panel applies then). */
void serveClient(std::shared_ptr<TaskContext> const& context,
                 std::shared_ptr<ClientWork> const& work) {
    std::string output;
    std::vector<std::string> responses;
    bool deferred = false;
    for (std::size_t lines = 0; lines < context->linesPerTurn && !deferred;) {
        if (!work->current) {
            std::lock_guard<std::mutex> const lock(work->mutex);
            if (work->closed || work->pending.empty()) {
                break;
            }
            work->current = std::move(work->pending.front());
            work->pending.pop_front();
            work->next = 0;
        }
        responses.clear();
        scpi::RunResult const result =
            context->table->run(*work->current, work->next, work->session, responses);
        for (auto const& response : responses) {
            output += response;
            output += '\n';
        }
        deferred = result.deferred;
        if (result.next >= work->current->commands.size()) {
            work->current.reset();
            ++lines;
        } else {
            work->next = result.next;
        }
    }
    bool more = false;
    {
        std::lock_guard<std::mutex> const lock(work->mutex);
        work->output += output;
        more = !work->closed && (work->current || !work->pending.empty());
        work->scheduled = more;
    }
    if (more && !schedule(context, work)) {
        std::lock_guard<std::mutex> const lock(work->mutex);
        work->scheduled = false;
        work->refused = true;
    }
    context->waker->wake();
}

/** A client as the I/O thread sees it. */
struct Connection {
    Descriptor fd;
    std::string peer;
    std::string input;
    bool discarding = false;  // inside a line that was too long: skip up to its newline
    std::string output;
    std::size_t outputSent = 0;
    bool authenticated = false;
    std::optional<IClock::TimePoint> closeAt;  // after a failed authentication
    std::shared_ptr<ClientWork> work = std::make_shared<ClientWork>();
};

struct Listener {
    Descriptor fd;
    Endpoint endpoint;
    std::string address;  // as bound, with the picked port
};

}  // namespace

class RemoteServer::Impl {
public:
    Impl(std::shared_ptr<scpi::CommandTable const> table, Executor executor,
         RemoteServerOptions options)
        : options_(std::move(options)),
          clock_(options_.clock ? options_.clock : std::make_shared<SteadyClock>()),
          context_(std::make_shared<TaskContext>()) {
        if (!table || !executor) {
            throw std::invalid_argument("a command server needs a command table and an executor");
        }
        context_->table = std::move(table);
        context_->executor = std::move(executor);
        context_->waker = std::make_shared<Waker>();
        context_->linesPerTurn = std::max<std::size_t>(options_.linesPerTurn, 1);
        for (auto const& text : options_.listen) {
            listeners_.push_back(listen(parseEndpoint(text)));
        }
    }

    ~Impl() {
        stop();
        for (auto const& listener : listeners_) {
            if (listener.endpoint.kind == Endpoint::Kind::Unix) {
                ::unlink(listener.endpoint.path.c_str());
            }
        }
    }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void start() {
        std::lock_guard<std::mutex> const lock(startMutex_);
        if (thread_.joinable() || stopping_) {
            return;
        }
        if (!clock_->movesByItself()) {
            std::weak_ptr<Waker> const waker = context_->waker;
            advanceListener_ = clock_->addAdvanceListener([waker] {
                if (auto const alive = waker.lock()) {
                    alive->wake();
                }
            });
        }
        thread_ = std::thread([this] { loop(); });
    }

    void stop() {
        std::lock_guard<std::mutex> const lock(startMutex_);
        stopping_ = true;
        context_->waker->wake();
        if (thread_.joinable()) {
            thread_.join();
        }
        if (advanceListener_ != 0) {
            clock_->removeAdvanceListener(advanceListener_);
            advanceListener_ = 0;
        }
        for (auto& connection : connections_) {
            disconnect(connection, "the server stopped");
        }
        connections_.clear();
        for (auto& listener : listeners_) {
            listener.fd.reset();
        }
    }

    std::vector<std::string> addresses() const {
        std::vector<std::string> result;
        for (auto const& listener : listeners_) {
            result.push_back(listener.address);
        }
        return result;
    }

    std::size_t clientCount() const { return clientCount_.load(); }

private:
    static Listener listen(Endpoint const& endpoint) {
        SocketAddress address = resolve(endpoint, true);
        Descriptor fd(::socket(address.family(), SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (fd.get() < 0) {
            throw systemError("cannot create a socket for " + endpoint.toString());
        }
        if (endpoint.kind == Endpoint::Kind::Unix) {
            // Replace a socket file left by a server that died, but never any other file.
            struct stat status {};
            if (::lstat(endpoint.path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) {
                ::unlink(endpoint.path.c_str());
            }
        } else {
            int const on = 1;
            ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
            if (address.family() == AF_INET6) {
                ::setsockopt(fd.get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof(on));
            }
        }
        if (::bind(fd.get(), address.get(), address.length) != 0) {
            throw systemError("cannot listen on " + endpoint.toString());
        }
        if (::listen(fd.get(), kListenBacklog) != 0) {
            throw systemError("cannot listen on " + endpoint.toString());
        }
        Listener listener{std::move(fd), endpoint, endpoint.toString()};
        if (endpoint.kind == Endpoint::Kind::Tcp) {
            SocketAddress bound;
            bound.length = sizeof(bound.storage);
            ::getsockname(listener.fd.get(), bound.get(), &bound.length);
            listener.address = describe(bound, listener.address);
        }
        logRecord(kLogInfo, "command server listening on " + listener.address);
        return listener;
    }

    void loop() {
        std::vector<pollfd> fds;
        while (!stopping_) {
            fds.clear();
            fds.push_back(pollfd{context_->waker->fd(), POLLIN, 0});
            for (auto const& listener : listeners_) {
                fds.push_back(pollfd{listener.fd.get(), POLLIN, 0});
            }
            for (auto& connection : connections_) {
                fds.push_back(pollfd{connection.fd.get(), events(connection), 0});
            }
            if (::poll(fds.data(), fds.size(), timeout()) < 0 && errno != EINTR) {
                logRecord(kLogWarning, std::string("command server: poll failed: ") +
                                           std::generic_category().message(errno));
                return;
            }
            if ((fds[0].revents & POLLIN) != 0) {
                context_->waker->drain();
            }
            if (stopping_) {
                return;
            }
            std::size_t index = 1;
            for (auto& listener : listeners_) {
                if ((fds[index++].revents & POLLIN) != 0) {
                    accept(listener);
                }
            }
            auto connection = connections_.begin();
            for (std::size_t i = 0; connection != connections_.end(); ++i) {
                short const revents =
                    i + index < fds.size() && fds[i + index].fd == connection->fd.get()
                        ? fds[i + index].revents
                        : short{0};
                if (serve(*connection, revents)) {
                    ++connection;
                } else {
                    connection = connections_.erase(connection);
                    clientCount_.store(connections_.size());
                }
            }
        }
    }

    short events(Connection& connection) const {
        short events = 0;
        std::lock_guard<std::mutex> const lock(connection.work->mutex);
        if (!connection.closeAt && connection.work->pending.size() < options_.maxPendingLines) {
            events |= POLLIN;
        }
        if (connection.outputSent < connection.output.size() || !connection.work->output.empty()) {
            events |= POLLOUT;
        }
        return events;
    }

    int timeout() const {
        std::optional<IClock::TimePoint> earliest;
        for (auto const& connection : connections_) {
            if (connection.closeAt && (!earliest || *connection.closeAt < *earliest)) {
                earliest = connection.closeAt;
            }
        }
        if (!earliest || !clock_->movesByItself()) {
            return -1;
        }
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(*earliest - clock_->now());
        return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60000));
    }

    void accept(Listener& listener) {
        SocketAddress peer;
        peer.length = sizeof(peer.storage);
        Descriptor fd(
            ::accept4(listener.fd.get(), peer.get(), &peer.length, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (fd.get() < 0) {
            return;  // the client gave up already, or descriptors ran out: it may try again
        }
        std::string const name = peerName(fd.get(), peer, listener);
        if (connections_.size() >= options_.maxClients) {
            logRecord(kLogWarning, "command server: refused " + name + " on " + listener.address +
                                       ": already " + std::to_string(options_.maxClients) +
                                       " clients");
            return;
        }
        ::setsockopt(fd.get(), SOL_SOCKET, SO_SNDBUF, &kSocketSendBuffer,
                     sizeof(kSocketSendBuffer));
        Connection connection;
        connection.fd = std::move(fd);
        connection.peer = name;
        connection.authenticated = options_.accessToken.empty();
        connections_.push_back(std::move(connection));
        clientCount_.store(connections_.size());
        logRecord(kLogInfo, "command server: " + name + " connected on " + listener.address);
    }

    /** The peer's address; for a Unix-domain client, which has none, its process and user. */
    static std::string peerName(int fd, SocketAddress const& peer, Listener const& listener) {
        if (listener.endpoint.kind == Endpoint::Kind::Tcp) {
            return describe(peer, listener.address);
        }
        ucred credentials{};
        socklen_t length = sizeof(credentials);
        if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
            return "a client";
        }
        return "pid " + std::to_string(credentials.pid) + " (uid " +
               std::to_string(credentials.uid) + ")";
    }

    /** Serves one client after poll; false when it is gone. */
    bool serve(Connection& connection, short revents) {
        bool refused = false;
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            connection.output += connection.work->output;
            connection.work->output.clear();
            refused = connection.work->refused;
        }
        if (refused) {
            return disconnect(connection, "the panel stopped taking commands");
        }
        if (connection.output.size() - connection.outputSent > options_.maxOutputBytes) {
            return disconnect(connection, "it does not read its responses (over " +
                                              std::to_string(options_.maxOutputBytes) +
                                              " bytes waiting)");
        }
        if ((revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !connection.closeAt &&
            !read(connection)) {
            return false;
        }
        if (!write(connection)) {
            return false;
        }
        if (connection.closeAt && clock_->now() >= *connection.closeAt) {
            return disconnect(connection, "authentication failed");
        }
        return true;
    }

    bool read(Connection& connection) {
        char buffer[kReadChunk];
        ssize_t const count = ::recv(connection.fd.get(), buffer, sizeof(buffer), 0);
        if (count == 0) {
            return disconnect(connection, connection.input.empty() && !connection.discarding
                                              ? "it closed the connection"
                                              : "it closed the connection inside a line");
        }
        if (count < 0) {
            if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) {
                return true;
            }
            return disconnect(
                connection, std::string("read failed: ") + std::generic_category().message(errno));
        }
        std::string_view data(buffer, static_cast<std::size_t>(count));
        while (!data.empty() && !connection.closeAt) {
            std::size_t const newline = data.find('\n');
            std::string_view const piece = data.substr(0, newline);
            if (!connection.discarding) {
                connection.input.append(piece);
                if (connection.input.size() > options_.maxLineBytes) {
                    connection.input.clear();
                    connection.discarding = true;
                    connection.work->session.errors.push(scpi::ErrorEntry{
                        scpi::ErrorCode::InputBufferOverrun,
                        "line longer than " + std::to_string(options_.maxLineBytes) + " bytes"});
                }
            }
            if (newline == std::string_view::npos) {
                break;
            }
            data.remove_prefix(newline + 1);
            if (connection.discarding) {
                connection.discarding = false;
                continue;
            }
            std::string line = std::move(connection.input);
            connection.input.clear();
            if (!handleLine(connection, line)) {
                return false;
            }
        }
        return true;
    }

    /** Parses one line here, so the panel's thread only runs it. */
    bool handleLine(Connection& connection, std::string const& line) {
        scpi::ParsedLine parsed = scpi::parseLine(line);
        if (!authenticate(connection, parsed)) {
            return true;
        }
        if (parsed.commands.empty() && !parsed.error) {
            return true;
        }
        bool post = false;
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            connection.work->pending.push_back(std::move(parsed));
            post = !connection.work->scheduled;
            connection.work->scheduled = true;
        }
        if (post && !schedule(context_, connection.work)) {
            return disconnect(connection, "the panel stopped taking commands");
        }
        return true;
    }

    /** Takes the `SYSTem:AUTH` commands out of `parsed`; false (and the connection closing
     *  after the delay) when the client is not allowed in. */
    bool authenticate(Connection& connection, scpi::ParsedLine& parsed) {
        auto& commands = parsed.commands;
        std::string failure;
        for (auto command = commands.begin(); command != commands.end();) {
            bool const isAuth = scpi::matches("SYSTem:AUTH", *command);
            if (!isAuth && !connection.authenticated) {
                failure = "access token required before " + command->header();
                break;
            }
            if (!isAuth) {
                ++command;
                continue;
            }
            if (!options_.accessToken.empty()) {
                bool const right = command->parameters.size() == 1 &&
                                   tokensEqual(command->parameters[0].text, options_.accessToken);
                if (!right) {
                    failure = "wrong access token";
                    break;
                }
                connection.authenticated = true;
            }
            command = commands.erase(command);
        }
        if (failure.empty() && !connection.authenticated && parsed.error) {
            failure = "access token required";
        }
        if (failure.empty()) {
            return true;
        }
        connection.output +=
            scpi::ErrorEntry{scpi::ErrorCode::CommandProtected, failure}.format() + '\n';
        connection.closeAt = clock_->now() + options_.authFailureDelay;
        logRecord(kLogWarning, "command server: " + connection.peer + ": " + failure +
                                   "; closing the connection");
        return false;
    }

    /** Compares without stopping at the first difference, so the time taken tells nothing
     *  about how much of a guess was right. */
    static bool tokensEqual(std::string const& given, std::string const& expected) {
        unsigned char difference = given.size() == expected.size() ? 0 : 1;
        for (std::size_t i = 0; i < given.size(); ++i) {
            difference |= static_cast<unsigned char>(given[i] ^ expected[i % expected.size()]);
        }
        return difference == 0;
    }

    bool write(Connection& connection) {
        while (connection.outputSent < connection.output.size()) {
            ssize_t const sent =
                ::send(connection.fd.get(), connection.output.data() + connection.outputSent,
                       connection.output.size() - connection.outputSent, MSG_NOSIGNAL);
            if (sent < 0) {
                if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) {
                    break;
                }
                return disconnect(connection, std::string("write failed: ") +
                                                  std::generic_category().message(errno));
            }
            connection.outputSent += static_cast<std::size_t>(sent);
        }
        if (connection.outputSent == connection.output.size()) {
            connection.output.clear();
            connection.outputSent = 0;
        }
        return true;
    }

    /** Logs and closes; always false, for `return disconnect(...)`. */
    static bool disconnect(Connection& connection, std::string const& why) {
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            connection.work->closed = true;
            connection.work->pending.clear();
        }
        connection.fd.reset();
        logRecord(kLogInfo, "command server: " + connection.peer + " disconnected: " + why);
        return false;
    }

    RemoteServerOptions options_;
    std::shared_ptr<IClock> clock_;
    std::shared_ptr<TaskContext> context_;
    std::vector<Listener> listeners_;
    std::list<Connection> connections_;
    std::atomic<std::size_t> clientCount_{0};
    std::atomic<bool> stopping_{false};
    std::mutex startMutex_;
    std::thread thread_;
    std::size_t advanceListener_ = 0;
};

RemoteServer::RemoteServer(std::shared_ptr<scpi::CommandTable const> table, Executor executor,
                           RemoteServerOptions options)
    : impl_(std::make_shared<Impl>(std::move(table), std::move(executor), std::move(options))) {}

RemoteServer::~RemoteServer() = default;

void RemoteServer::start() { impl_->start(); }

void RemoteServer::stop() { impl_->stop(); }

std::vector<std::string> RemoteServer::addresses() const { return impl_->addresses(); }

std::size_t RemoteServer::clientCount() const { return impl_->clientCount(); }

}  // namespace yxfrontpanel::runtime
