#include <yxfrontpanel/runtime/connection_policy.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace yxfrontpanel::runtime {

namespace {

// Keepalive probes: the first after 60 s of silence, then every 10 s, five unanswered give up.
constexpr int kKeepAliveIdleSeconds = 60;
constexpr int kKeepAliveIntervalSeconds = 10;
constexpr int kKeepAliveProbes = 5;
constexpr std::chrono::milliseconds::rep kLongestPollMs = 60000;
constexpr std::uint16_t kDefaultHttpPort = 80;

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

/** "::1" -> "[::1]"; other names lower case without a trailing dot. */
std::string canonicalName(std::string_view name) {
    std::string result = lower(name);
    if (!result.empty() && result.back() == '.') {
        result.pop_back();
    }
    if (result.find(':') != std::string::npos && result.front() != '[') {
        result = "[" + result + "]";
    }
    return result;
}

bool isWildcard(std::string_view host) {
    return host.empty() || host == "0.0.0.0" || host == "::" || host == "[::]" || host == "*";
}

}  // namespace

ConnectionQuota::ConnectionQuota(ConnectionPolicyOptions const& options)
    : networkLimit_(options.maxClientsPerListener), localLimit_(options.maxLocalClients) {}

std::size_t ConnectionQuota::addListener(ListenerKind kind) {
    std::lock_guard<std::mutex> const lock(mutex_);
    listeners_.push_back(Entry{kind == ListenerKind::Local ? localLimit_ : networkLimit_, 0});
    return listeners_.size() - 1;
}

bool ConnectionQuota::admit(std::size_t listener) {
    std::lock_guard<std::mutex> const lock(mutex_);
    Entry& entry = listeners_.at(listener);
    if (entry.count >= entry.limit) {
        return false;
    }
    ++entry.count;
    return true;
}

void ConnectionQuota::release(std::size_t listener) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (listener < listeners_.size() && listeners_[listener].count > 0) {
        --listeners_[listener].count;
    }
}

std::size_t ConnectionQuota::count(std::size_t listener) const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return listeners_.at(listener).count;
}

std::size_t ConnectionQuota::limit(std::size_t listener) const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return listeners_.at(listener).limit;
}

ConnectionDeadline::ConnectionDeadline(ConnectionPolicyOptions const& options,
                                       IClock::TimePoint now, bool loginRequired)
    : idleTimeout_(options.idleTimeout), lastActivity_(now), loginPending_(loginRequired) {
    if (loginRequired && options.loginDeadline.count() > 0) {
        loginBy_ = now + options.loginDeadline;
    }
}

void ConnectionDeadline::activity(IClock::TimePoint now) { lastActivity_ = now; }

void ConnectionDeadline::loggedIn() {
    loginPending_ = false;
    loginBy_.reset();
}

std::optional<IClock::TimePoint> ConnectionDeadline::next() const {
    std::optional<IClock::TimePoint> idle;
    if (idleTimeout_.count() > 0) {
        idle = lastActivity_ + idleTimeout_;
    }
    return earliest(loginBy_, idle);
}

ConnectionExpiry ConnectionDeadline::expired(IClock::TimePoint now) const {
    if (loginBy_ && now >= *loginBy_) {
        return ConnectionExpiry::LoginDeadline;
    }
    if (idleTimeout_.count() > 0 && now >= lastActivity_ + idleTimeout_) {
        return ConnectionExpiry::Idle;
    }
    return ConnectionExpiry::None;
}

std::string describeExpiry(ConnectionExpiry expiry, ConnectionPolicyOptions const& options) {
    switch (expiry) {
        case ConnectionExpiry::LoginDeadline:
            return "it did not log in within " + std::to_string(options.loginDeadline.count()) +
                   " ms";
        case ConnectionExpiry::Idle:
            return "it sent nothing for " + std::to_string(options.idleTimeout.count()) + " ms";
        case ConnectionExpiry::None:
            break;
    }
    return "its time is not over";
}

int pollTimeout(std::optional<IClock::TimePoint> deadline, IClock const& clock) {
    if (!deadline || !clock.movesByItself()) {
        return -1;
    }
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - clock.now());
    return static_cast<int>(
        std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, kLongestPollMs));
}

std::optional<IClock::TimePoint> earliest(std::optional<IClock::TimePoint> a,
                                          std::optional<IClock::TimePoint> b) {
    if (!a) {
        return b;
    }
    if (!b) {
        return a;
    }
    return std::min(*a, *b);
}

AcceptPause::AcceptPause(ConnectionPolicyOptions const& options) : pause_(options.acceptPause) {}

bool AcceptPause::failed(int error, IClock::TimePoint now) {
    if (error != EMFILE && error != ENFILE && error != ENOBUFS && error != ENOMEM) {
        return false;
    }
    resumeAt_ = now + std::max(pause_, std::chrono::milliseconds{1});
    return true;
}

bool AcceptPause::paused(IClock::TimePoint now) const { return resumeAt_ && now < *resumeAt_; }

bool applyTcpOptions(int fd, ConnectionPolicyOptions const& options) {
    int const on = options.tcpKeepAlive ? 1 : 0;
    bool ok = ::setsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof(on)) == 0;
    if (options.tcpKeepAlive) {
        ok = ::setsockopt(fd, IPPROTO_TCP, TCP_KEEPIDLE, &kKeepAliveIdleSeconds,
                          sizeof(kKeepAliveIdleSeconds)) == 0 &&
             ok;
        ok = ::setsockopt(fd, IPPROTO_TCP, TCP_KEEPINTVL, &kKeepAliveIntervalSeconds,
                          sizeof(kKeepAliveIntervalSeconds)) == 0 &&
             ok;
        ok = ::setsockopt(fd, IPPROTO_TCP, TCP_KEEPCNT, &kKeepAliveProbes,
                          sizeof(kKeepAliveProbes)) == 0 &&
             ok;
    }
    return ok;
}

void checkAccessToken(std::string_view token, ConnectionPolicyOptions const& options) {
    if (token.size() > options.maxTokenBytes) {
        throw std::invalid_argument("the access token has " + std::to_string(token.size()) +
                                    " bytes; at most " + std::to_string(options.maxTokenBytes) +
                                    " are accepted");
    }
}

bool tokenMatches(std::string_view given, std::string_view expected, std::size_t maxTokenBytes) {
    if (expected.empty() || given.size() > maxTokenBytes) {
        return false;
    }
    // Every byte of `expected` is compared, whatever `given` holds.
    unsigned char difference = given.size() == expected.size() ? 0 : 1;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        unsigned char const theirs =
            i < given.size() ? static_cast<unsigned char>(given[i]) : static_cast<unsigned char>(0);
        difference |= static_cast<unsigned char>(theirs ^ static_cast<unsigned char>(expected[i]));
    }
    return difference == 0;
}

HostAllowList::HostAllowList(std::string_view boundHost, std::uint16_t port,
                             std::vector<std::string> const& names)
    : port_(port) {
    std::vector<std::string> all{"localhost", "127.0.0.1", "[::1]"};
    if (!isWildcard(boundHost)) {
        all.push_back(canonicalName(boundHost));
    }
    for (auto const& name : names) {
        if (!name.empty()) {
            all.push_back(canonicalName(name));
        }
    }
    for (auto& name : all) {
        if (std::find(names_.begin(), names_.end(), name) == names_.end()) {
            names_.push_back(std::move(name));
        }
    }
}

bool HostAllowList::allowsHost(std::string_view host) const {
    while (!host.empty() && (host.back() == ' ' || host.back() == '\t')) {
        host.remove_suffix(1);
    }
    while (!host.empty() && (host.front() == ' ' || host.front() == '\t')) {
        host.remove_prefix(1);
    }
    std::string_view name = host;
    std::optional<std::string_view> portText;
    if (!host.empty() && host.front() == '[') {
        std::size_t const close = host.find(']');
        if (close == std::string_view::npos) {
            return false;
        }
        name = host.substr(0, close + 1);
        std::string_view const rest = host.substr(close + 1);
        if (!rest.empty()) {
            if (rest.front() != ':') {
                return false;
            }
            portText = rest.substr(1);
        }
    } else if (std::size_t const colon = host.rfind(':'); colon != std::string_view::npos) {
        name = host.substr(0, colon);
        portText = host.substr(colon + 1);
    }
    if (portText) {
        if (portText->empty() || portText->size() > 5 ||
            !std::all_of(portText->begin(), portText->end(),
                         [](char c) { return c >= '0' && c <= '9'; })) {
            return false;
        }
        if (std::stoul(std::string(*portText)) != port_) {
            return false;
        }
    } else if (port_ != kDefaultHttpPort) {
        return false;
    }
    if (name.empty() || (name.find(':') != std::string_view::npos && name.front() != '[')) {
        return false;
    }
    std::string const wanted = canonicalName(name);
    return std::find(names_.begin(), names_.end(), wanted) != names_.end();
}

bool HostAllowList::allowsOrigin(std::string_view origin) const {
    for (std::string_view const scheme : {"http://", "https://"}) {
        if (origin.size() > scheme.size() && lower(origin.substr(0, scheme.size())) == scheme) {
            std::string_view const authority = origin.substr(scheme.size());
            if (authority.find_first_of("/?#@") != std::string_view::npos) {
                return false;
            }
            return allowsHost(authority);
        }
    }
    return false;
}

}  // namespace yxfrontpanel::runtime
