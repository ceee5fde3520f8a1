#include <yxbase2/log.h>
#include <yxfrontpanel/runtime/connection_policy.h>
#include <yxfrontpanel/runtime/owned_descriptor.h>
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
constexpr int kListenBacklog = 16;
// One read's worth: small enough that the lines of one read, parsed, fit in the half of a
// client's pending-memory quota that is left when reading stops, unless the lines are made of
// the tiniest commands (then the client is disconnected: that is no instrument program).
constexpr std::size_t kReadChunk = 4096;
// The kernel's share of a client's unsent responses. Without a limit, loopback connections grow
// their buffers to megabytes, and a client that does not read would hold that much before the
// server's own output limit is even reached.
constexpr int kSocketSendBuffer = 64 * 1024;

std::system_error systemError(std::string const& what) {
    return std::system_error(errno, std::generic_category(), what);
}

using Descriptor = OwnedDescriptor;

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

/** A parsed line waiting for the executor, with what it costs. */
struct PendingLine {
    scpi::ParsedLine line;
    std::size_t cost = 0;  // see `lineCost`
};

/** The memory a parsed line holds, in bytes: its text's bytes plus a fixed charge for each
 *  command, mnemonic, parameter and distinct shared path. An upper estimate, so that a quota of
 *  these units bounds the real memory. */
std::size_t lineCost(scpi::ParsedLine const& line, std::size_t textBytes) {
    std::size_t cost = sizeof(PendingLine) + textBytes;
    scpi::SharedPath::element_type const* previous = nullptr;
    for (auto const& command : line.commands) {
        cost += sizeof(scpi::Command) + command.mnemonics.size() * sizeof(std::string) +
                command.parameters.size() * sizeof(scpi::Parameter);
        if (command.path && command.path.get() != previous) {
            cost += 2 * sizeof(void*) * 4 + command.path->size() * sizeof(std::string);
            previous = command.path.get();
        }
    }
    return cost;
}

/** What the I/O thread and the executor's thread share for one client. */
struct ClientWork {
    /** A client of the instrument whose state `device` holds. */
    explicit ClientWork(std::shared_ptr<scpi::DeviceStatus> device) : session(std::move(device)) {}

    std::mutex mutex;
    std::deque<PendingLine> pending;  // parsed lines waiting for the executor
    std::size_t pendingCost = 0;      // the sum of their costs
    bool scheduled = false;           // a task for this client is posted or running
    bool refused = false;             // the executor refused a task: it has stopped
    bool closed = false;              // the client is gone: drop its work
    std::string output;               // response lines ready to send

    // The executor's thread only, except the session's error queue, which has a lock of its own
    // and takes the I/O thread's "line too long" errors.
    scpi::Session session;
    std::optional<scpi::ParsedLine> current;  // a line whose rest waits for the next turn
    std::size_t next = 0;

    /** Nothing waits for or runs on the executor. With `mutex` held. */
    bool idle() const { return pending.empty() && !scheduled; }
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
    bool ran = false;
    for (std::size_t lines = 0; lines < context->linesPerTurn && !deferred;) {
        if (!work->current) {
            std::lock_guard<std::mutex> const lock(work->mutex);
            if (work->closed || work->pending.empty()) {
                break;
            }
            work->current = std::move(work->pending.front().line);
            work->pendingCost -= work->pending.front().cost;
            work->pending.pop_front();
            work->next = 0;
        }
        ran = true;
        responses.clear();
        // MAV for `*STB?`: responses of this turn not yet handed to the socket.
        work->session.messageAvailable = !output.empty();
        scpi::RunResult result{work->current->commands.size(), false};
        try {
            result = context->table->run(*work->current, work->next, work->session, responses);
        } catch (...) {
            // The table turns handlers' exceptions into errors; this is anything else (out of
            // memory): the line ends here and the client stays served.
            work->session.errors.push(
                scpi::ErrorEntry{scpi::ErrorCode::ExecutionError, "the line failed"});
        }
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
        // After a turn that ran commands one more turn follows even with nothing left: it
        // comes after whatever they posted to the panel (a key press the panel applies in its
        // next turn, a value's publication, an application's own work), so whatever runs after
        // each turn (the panel publishing its screen) sees all of it before the client counts
        // as idle and its reads are answered from the published screen.
        more = !work->closed && (work->current || !work->pending.empty() || deferred || ran);
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
    Connection(std::size_t listener, ConnectionDeadline deadline)
        : listener(listener), deadline(deadline) {}

    Descriptor fd;
    std::size_t listener;  // its listener's index (and quota id)
    std::string peer;
    std::string input;
    bool discarding = false;  // inside a line that was too long: skip up to its end
    bool inputEnded = false;  // the client shut its sending side: answer, then close
    bool endedInsideLine = false;
    std::string output;
    std::size_t outputSent = 0;
    bool authenticated = false;
    std::optional<IClock::TimePoint> closeAt;  // after a failed authentication
    ConnectionDeadline deadline;
    std::shared_ptr<ClientWork> work;
};

struct Listener {
    Descriptor fd;
    Endpoint endpoint;
    std::string address;  // as bound, with the picked port
    std::size_t quota = 0;
    AcceptPause pause;
    dev_t device = 0;  // a Unix socket file's identity, so that only our own file is removed
    ino_t inode = 0;
};

/** Whether a server answers on the Unix socket `path` (a live one, not a stale file). */
bool unixSocketAnswers(SocketAddress const& address) {
    Descriptor probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (probe.get() < 0) {
        return false;
    }
    if (::connect(probe.get(), address.get(), address.length) == 0) {
        return true;
    }
    // A full backlog (EAGAIN) is a live server too; ECONNREFUSED is a file nobody listens on.
    return errno == EAGAIN || errno == EINPROGRESS;
}

}  // namespace

class RemoteServer::Impl {
public:
    Impl(std::shared_ptr<scpi::CommandTable const> table, Executor executor,
         RemoteServerOptions options)
        : options_(std::move(options)),
          clock_(options_.clock ? options_.clock : std::make_shared<SteadyClock>()),
          context_(std::make_shared<TaskContext>()),
          quota_(options_.policy) {
        if (!table || !executor) {
            throw std::invalid_argument("a command server needs a command table and an executor");
        }
        checkAccessToken(options_.accessToken, options_.policy);
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
            if (listener.endpoint.kind != Endpoint::Kind::Unix) {
                continue;
            }
            // Only the file this server made: another server may have replaced it since.
            struct stat status {};
            if (::lstat(listener.endpoint.path.c_str(), &status) == 0 &&
                status.st_dev == listener.device && status.st_ino == listener.inode) {
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
        clientCount_.store(0);
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

    std::optional<std::string> failure() const {
        std::lock_guard<std::mutex> const lock(failureMutex_);
        return failure_;
    }

    std::size_t pendingBytes() const { return pendingBytes_.load(); }
    std::size_t peakPendingBytes() const { return peakPendingBytes_.load(); }

private:
    Listener listen(Endpoint const& endpoint) {
        std::vector<SocketAddress> const addresses = resolveAll(endpoint, true);
        std::system_error lastError(std::make_error_code(std::errc::address_not_available),
                                    "cannot listen on " + endpoint.toString());
        for (auto const& address : addresses) {
            try {
                return listenOn(endpoint, address);
            } catch (std::system_error const& error) {
                lastError = error;
            }
        }
        throw lastError;
    }

    Listener listenOn(Endpoint const& endpoint, SocketAddress const& address) {
        Descriptor fd(::socket(address.family(), SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (fd.get() < 0) {
            throw systemError("cannot create a socket for " + endpoint.toString());
        }
        bool const isUnix = endpoint.kind == Endpoint::Kind::Unix;
        if (isUnix) {
            // Replace a socket file left by a server that died, but never any other file, and
            // never the socket of a server that still answers on it.
            struct stat status {};
            if (::lstat(endpoint.path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) {
                if (unixSocketAnswers(address)) {
                    throw std::system_error(std::make_error_code(std::errc::address_in_use),
                                            "cannot listen on " + endpoint.toString() +
                                                ": a running server answers on it");
                }
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
        Listener listener{std::move(fd), endpoint, endpoint.toString(),
                          quota_.addListener(isUnix ? ListenerKind::Local : ListenerKind::Network),
                          AcceptPause(options_.policy)};
        if (isUnix) {
            struct stat status {};
            if (::chmod(endpoint.path.c_str(), static_cast<mode_t>(options_.unixSocketMode)) != 0 ||
                ::lstat(endpoint.path.c_str(), &status) != 0) {
                int const error = errno;
                ::unlink(endpoint.path.c_str());
                throw std::system_error(error, std::generic_category(),
                                        "cannot set the mode of " + endpoint.toString());
            }
            listener.device = status.st_dev;
            listener.inode = status.st_ino;
        }
        if (::listen(listener.fd.get(), kListenBacklog) != 0) {
            throw systemError("cannot listen on " + endpoint.toString());
        }
        if (!isUnix) {
            SocketAddress bound;
            bound.length = sizeof(bound.storage);
            ::getsockname(listener.fd.get(), bound.get(), &bound.length);
            listener.address = describe(bound, listener.address);
        }
        log::write(log::Level::Info, kLogCategory, "command server listening on ",
                   listener.address);
        return listener;
    }

    void fail(std::string const& reason) {
        log::write(log::Level::Warning, kLogCategory, "command server stopped serving: ", reason);
        {
            std::lock_guard<std::mutex> const lock(failureMutex_);
            failure_ = reason;
        }
        if (options_.onFailure) {
            options_.onFailure(reason);
        }
    }

    void loop() {
        std::vector<pollfd> fds;
        while (!stopping_) {
            IClock::TimePoint const now = clock_->now();
            fds.clear();
            fds.push_back(pollfd{context_->waker->fd(), POLLIN, 0});
            for (auto const& listener : listeners_) {
                // A paused listener stays out of the set (a negative descriptor is skipped).
                fds.push_back(
                    pollfd{listener.pause.paused(now) ? -1 : listener.fd.get(), POLLIN, 0});
            }
            for (auto& connection : connections_) {
                fds.push_back(pollfd{connection.fd.get(), events(connection), 0});
            }
            if (::poll(fds.data(), fds.size(), pollTimeout(nextDeadline(), *clock_)) < 0) {
                if (errno == EINTR) {
                    continue;
                }
                fail(std::string("poll failed: ") + std::generic_category().message(errno));
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
            updatePending();
        }
    }

    void updatePending() {
        std::size_t total = 0;
        for (auto& connection : connections_) {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            total += connection.work->pendingCost;
        }
        pendingBytes_.store(total);
    }

    short events(Connection& connection) const {
        bool const unsent = connection.outputSent < connection.output.size();
        if (connection.closeAt) {
            // Nothing more is read; only the error line and the client's hanging up matter.
            return static_cast<short>(POLLRDHUP | (unsent ? POLLOUT : 0));
        }
        short events = 0;
        std::lock_guard<std::mutex> const lock(connection.work->mutex);
        if (!connection.inputEnded && connection.work->pendingCost < options_.maxPendingBytes / 2) {
            events |= POLLIN;
        }
        if (unsent || !connection.work->output.empty()) {
            events |= POLLOUT;
        }
        return events;
    }

    std::optional<IClock::TimePoint> nextDeadline() const {
        std::optional<IClock::TimePoint> next;
        for (auto const& listener : listeners_) {
            next = earliest(next, listener.pause.resumeAt());
        }
        for (auto const& connection : connections_) {
            next = earliest(next, connection.closeAt);
            next = earliest(next, connection.deadline.next());
        }
        return next;
    }

    void accept(Listener& listener) {
        SocketAddress peer;
        peer.length = sizeof(peer.storage);
        Descriptor fd(
            ::accept4(listener.fd.get(), peer.get(), &peer.length, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (fd.get() < 0) {
            int const error = errno;
            if (listener.pause.failed(error, clock_->now())) {
                log::write(log::Level::Warning, kLogCategory, "command server: cannot accept on ",
                           listener.address, ": ", std::generic_category().message(error),
                           "; pausing the listener");
            }
            return;  // otherwise the client gave up already
        }
        std::string const name = peerName(fd.get(), peer, listener);
        if (!quota_.admit(listener.quota)) {
            log::write(log::Level::Warning, kLogCategory, "command server: refused ", name, " on ",
                       listener.address, ": already ", quota_.limit(listener.quota), " clients");
            return;
        }
        ::setsockopt(fd.get(), SOL_SOCKET, SO_SNDBUF, &kSocketSendBuffer,
                     sizeof(kSocketSendBuffer));
        if (listener.endpoint.kind == Endpoint::Kind::Tcp) {
            applyTcpOptions(fd.get(), options_.policy);
        }
        bool const loginRequired = !options_.accessToken.empty();
        Connection& connection = connections_.emplace_back(
            static_cast<std::size_t>(&listener - listeners_.data()),
            ConnectionDeadline(options_.policy, clock_->now(), loginRequired));
        connection.work = std::make_shared<ClientWork>(context_->table->deviceStatus());
        connection.fd = std::move(fd);
        connection.peer = name;
        connection.authenticated = !loginRequired;
        clientCount_.store(connections_.size());
        log::write(log::Level::Info, kLogCategory, "command server: ", name, " connected on ",
                   listener.address);
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

    /** Takes the responses the executor has ready; returns whether nothing waits for or runs
     *  on the executor, as of the same moment (so that "idle with nothing to send" is never
     *  concluded while responses are on their way). */
    static bool collect(Connection& connection, bool& refused) {
        std::lock_guard<std::mutex> const lock(connection.work->mutex);
        connection.output += connection.work->output;
        connection.work->output.clear();
        refused = refused || connection.work->refused;
        return connection.work->idle();
    }

    /** Serves one client after poll; false when it is gone. */
    bool serve(Connection& connection, short revents) {
        bool refused = false;
        bool idle = collect(connection, refused);
        if (refused) {
            return disconnect(connection, "the panel stopped taking commands");
        }
        if (connection.output.size() - connection.outputSent > options_.maxOutputBytes) {
            return disconnect(connection, "it does not read its responses (over " +
                                              std::to_string(options_.maxOutputBytes) +
                                              " bytes waiting)");
        }
        IClock::TimePoint const now = clock_->now();
        if (connection.closeAt) {
            if ((revents & (POLLHUP | POLLERR | POLLRDHUP)) != 0) {
                return disconnect(connection, "authentication failed; it hung up");
            }
        } else if ((revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !connection.inputEnded) {
            if (!read(connection, now)) {
                return false;
            }
            idle = collect(connection, refused);
        } else if ((revents & (POLLHUP | POLLERR)) != 0) {
            // Input ended before and now the connection is gone both ways: nothing can be sent.
            return disconnect(connection, "it closed the connection");
        }
        if (!write(connection, now)) {
            return false;
        }
        if (connection.closeAt && now >= *connection.closeAt) {
            return disconnect(connection, "authentication failed");
        }
        if (connection.inputEnded && idle && connection.output.empty()) {
            return disconnect(connection, connection.endedInsideLine
                                              ? "it closed the connection inside a line"
                                              : "it closed the connection");
        }
        if (!connection.closeAt && !connection.inputEnded) {
            ConnectionExpiry const expiry = connection.deadline.expired(now);
            if (expiry != ConnectionExpiry::None && (expiry != ConnectionExpiry::Idle || idle)) {
                return disconnect(connection, describeExpiry(expiry, options_.policy));
            }
        }
        return true;
    }

    bool read(Connection& connection, IClock::TimePoint now) {
        char buffer[kReadChunk];
        ssize_t const count = ::recv(connection.fd.get(), buffer, sizeof(buffer), 0);
        if (count == 0) {
            // The client shut its sending side: its last line counts even without a line end,
            // and every answer is still sent before the connection closes.
            connection.inputEnded = true;
            connection.endedInsideLine = !connection.input.empty() || connection.discarding;
            if (!connection.discarding && !connection.input.empty()) {
                std::string line = std::move(connection.input);
                connection.input.clear();
                return handleLine(connection, line);
            }
            return true;
        }
        if (count < 0) {
            if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) {
                return true;
            }
            return disconnect(
                connection, std::string("read failed: ") + std::generic_category().message(errno));
        }
        connection.deadline.activity(now);
        std::string_view data(buffer, static_cast<std::size_t>(count));
        while (!data.empty() && !connection.closeAt) {
            // CR, LF and CR LF each end a line (the LF of a CR LF ends an empty one).
            std::size_t const end = data.find_first_of("\r\n");
            std::string_view const piece = data.substr(0, end);
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
            if (end == std::string_view::npos) {
                break;
            }
            data.remove_prefix(end + 1);
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

    /** Parses one line here, so the panel's thread only runs it; false when the client was
     *  disconnected (over its quota). */
    bool handleLine(Connection& connection, std::string const& line) {
        if (line.empty()) {
            return true;
        }
        scpi::ParsedLine parsed = scpi::parseLine(line, options_.parseLimits);
        if (!authenticate(connection, parsed)) {
            return true;
        }
        if (parsed.commands.empty() && !parsed.error) {
            return true;
        }
        if (answerHere(connection, parsed)) {
            return true;
        }
        std::size_t const cost = lineCost(parsed, line.size());
        bool post = false;
        std::size_t pending = 0;
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            connection.work->pending.push_back(PendingLine{std::move(parsed), cost});
            connection.work->pendingCost += cost;
            pending = connection.work->pendingCost;
            post = !connection.work->scheduled;
            connection.work->scheduled = true;
        }
        if (pending > peakPendingBytes_.load()) {
            peakPendingBytes_.store(pending);
        }
        if (pending > options_.maxPendingBytes) {
            return disconnect(connection, "its commands waiting for the panel passed " +
                                              std::to_string(options_.maxPendingBytes) + " bytes");
        }
        if (post && !schedule(context_, connection.work)) {
            return disconnect(connection, "the panel stopped taking commands");
        }
        return true;
    }

    /** Answers a line of readers only (identity, screen, mode) here on the I/O thread, from
     *  what the panel's thread published, when nothing of the client's waits for or runs on
     *  the panel: a read never waits for a busy panel, and a read after a change on the same
     *  connection still waits for that change. False when the line must go to the panel. */
    bool answerHere(Connection& connection, scpi::ParsedLine const& parsed) {
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            if (!connection.work->idle()) {
                return false;
            }
            // Earlier answers go out first.
            connection.output += connection.work->output;
            connection.work->output.clear();
        }
        // Idle: no task of this client is posted or running, so its session is ours for now.
        std::optional<std::vector<std::string>> const responses =
            context_->table->runReaders(parsed, connection.work->session);
        if (!responses) {
            return false;
        }
        for (auto const& response : *responses) {
            connection.output += response;
            connection.output += '\n';
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
                failure = "access token required before " + scpi::escapeDetail(command->header());
                break;
            }
            if (!isAuth) {
                ++command;
                continue;
            }
            if (!options_.accessToken.empty()) {
                bool const right = command->parameters.size() == 1 &&
                                   tokenMatches(command->parameters[0].text, options_.accessToken,
                                                options_.policy.maxTokenBytes);
                if (!right) {
                    failure = "wrong access token";
                    break;
                }
                connection.authenticated = true;
                connection.deadline.loggedIn();
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
        log::write(log::Level::Warning, kLogCategory, "command server: ", connection.peer, ": ",
                   failure, "; closing the connection");
        return false;
    }

    bool write(Connection& connection, IClock::TimePoint now) {
        bool progressed = false;
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
            progressed = true;
        }
        if (progressed) {
            connection.deadline.activity(now);
        }
        if (connection.outputSent == connection.output.size()) {
            connection.output.clear();
            connection.outputSent = 0;
        }
        return true;
    }

    /** Logs and closes; always false, for `return disconnect(...)`. */
    bool disconnect(Connection& connection, std::string const& why) {
        {
            std::lock_guard<std::mutex> const lock(connection.work->mutex);
            connection.work->closed = true;
            connection.work->pending.clear();
            connection.work->pendingCost = 0;
        }
        // Logged before the close, so that whoever sees the close finds the reason logged.
        log::write(log::Level::Info, kLogCategory, "command server: ", connection.peer,
                   " disconnected: ", why);
        if (connection.fd.get() >= 0) {
            quota_.release(listeners_[connection.listener].quota);
        }
        connection.fd.reset();
        return false;
    }

    RemoteServerOptions options_;
    std::shared_ptr<IClock> clock_;
    std::shared_ptr<TaskContext> context_;
    ConnectionQuota quota_;
    std::vector<Listener> listeners_;
    std::list<Connection> connections_;
    std::atomic<std::size_t> clientCount_{0};
    std::atomic<std::size_t> pendingBytes_{0};
    std::atomic<std::size_t> peakPendingBytes_{0};
    std::atomic<bool> stopping_{false};
    std::mutex startMutex_;
    std::thread thread_;
    std::size_t advanceListener_ = 0;
    mutable std::mutex failureMutex_;
    std::optional<std::string> failure_;
};

RemoteServer::RemoteServer(std::shared_ptr<scpi::CommandTable const> table, Executor executor,
                           RemoteServerOptions options)
    : impl_(std::make_shared<Impl>(std::move(table), std::move(executor), std::move(options))) {}

RemoteServer::~RemoteServer() = default;

void RemoteServer::start() { impl_->start(); }

void RemoteServer::stop() { impl_->stop(); }

std::vector<std::string> RemoteServer::addresses() const { return impl_->addresses(); }

std::size_t RemoteServer::clientCount() const { return impl_->clientCount(); }

std::optional<std::string> RemoteServer::failure() const { return impl_->failure(); }

std::size_t RemoteServer::pendingBytes() const { return impl_->pendingBytes(); }

std::size_t RemoteServer::peakPendingBytes() const { return impl_->peakPendingBytes(); }

}  // namespace yxfrontpanel::runtime
