#include <yxbase2/log.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/connection_policy.h>
#include <yxfrontpanel/runtime/web_panel.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "frame_message.h"
#include "http_request.h"
#include "lxi_identification.h"
#include "web_page.h"
#include "websocket_stream.h"
#include <libwebsockets.h>
#include <sys/socket.h>

namespace yxfrontpanel::runtime {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelRuntime";
// A page's messages are tiny ({"key":"enter"}, a token); anything longer is not ours.
constexpr std::size_t kLongestMessage = 512;
// Request heads are a few hundred bytes; longer ones get 431.
constexpr std::size_t kLongestHead = 4096;
// Bytes a refused client may still send while its answer goes out before it is closed.
constexpr std::size_t kDrainLimit = std::size_t{1024} * 1024;
// The kernel's send buffer per client: a few frames; a page that stops reading fills it soon.
constexpr int kSendBuffer = 32 * 1024;
// Seconds a client has for its request head (and a refused one to take its answer).
constexpr int kRequestSeconds = 10;
// Ignored messages logged per page; the rest are counted silently.
constexpr unsigned kLoggedIgnoredMessages = 3;
// How often the LOCAL/REMOTE state is compared while pages are open (a mode switch draws no
// frame of its own).
constexpr std::chrono::milliseconds kModeWatchPeriod{200};
constexpr char const* kProtocolName = "yxfp-panel";
constexpr std::string_view kScreenshotPath = "/screenshot.png";
constexpr char const* kNoScreenshots =
    "No screenshots: this build has no PNG support. Install libpng-dev and rebuild the "
    "toolkit (the PNG component), and give the web panel the screenshot provider.\n";
constexpr char const* kNoIdentity =
    "No LXI identification: the instrument's identity (what *IDN? answers) was not given to "
    "the web panel.\n";

extern "C" void logFromLibwebsockets(int /*level*/, char const* line) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    log::write(log::Level::Warning, kLogCategory, "web panel: " + text);
}

std::string peerOf(lws* wsi) {
    char name[128] = {};
    lws_get_peer_simple(wsi, name, sizeof name);
    return name;
}

bool isLoopback(std::string const& address) {
    return address == "localhost" || address == "::1" || address == "[::1]" ||
           address.rfind("127.", 0) == 0;
}

std::string acceptKey(std::string const& key) {
    std::string const joined = key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";
    unsigned char digest[20];
    lws_SHA1(reinterpret_cast<unsigned char const*>(joined.data()), joined.size(), digest);
    char encoded[64] = {};
    lws_b64_encode_string(reinterpret_cast<char const*>(digest), sizeof digest, encoded,
                          sizeof encoded);
    return encoded;
}

/** What the panel's thread and the server's thread share. The panel's listener and timers hold
 *  it, so it lives until the panel lets go of them; `context` is null once the server is going,
 *  and everything that uses the context does so under `mutex`, so a listener or timer running
 *  while the server goes finishes before the context is destroyed. */
struct PanelLink {
    explicit PanelLink(Panel& panel) : panel(panel) {}

    /** Panel's thread: encodes `frame` for the pages, unless none is open or it equals the last
     *  one sent. */
    void publish(frontpanelhw::drawing::DisplayBuffer const& frame) {
        IMenuTree const* root = panel.root();
        bool const local = root != nullptr && root->getLocal();
        std::lock_guard<std::mutex> const lock(mutex);
        if (context == nullptr || viewers.load() == 0) {
            return;
        }
        std::string message = detail::frameMessage(frame, local);
        shownLocal = local;
        if (message == latestFrame) {
            return;
        }
        latestFrame = std::move(message);
        ++frameNumber;
        lws_cancel_service(context);
    }

    /** Panel's thread: a mode switch draws no frame; publish the shown one when it changed. */
    void watchMode() {
        IMenuTree const* root = panel.root();
        bool const local = root != nullptr && root->getLocal();
        bool changed = false;
        {
            std::lock_guard<std::mutex> const lock(mutex);
            changed = !latestFrame.empty() && local != shownLocal;
        }
        if (changed) {
            publish(panel.shownFrame());
        }
    }

    /** A screenshot made on the panel's thread for the request `id`: the PNG, or why none. */
    struct Screenshot {
        std::string png;
        std::string error;
    };

    /** Panel's thread: makes the screenshot for request `id` and wakes the server for it. */
    void takeScreenshot(std::uint64_t id, std::function<std::string()> const& provider) {
        Screenshot shot;
        try {
            shot.png = provider();
        } catch (std::exception const& error) {
            shot.error = error.what();
        }
        std::lock_guard<std::mutex> const lock(mutex);
        if (context == nullptr) {
            return;
        }
        screenshots[id] = std::move(shot);
        lws_cancel_service(context);
    }

    Panel& panel;
    std::atomic<unsigned> viewers{0};
    std::mutex mutex;
    lws_context* context = nullptr;
    std::string latestFrame;
    std::uint64_t frameNumber = 0;
    bool shownLocal = true;
    std::size_t frameListener = 0;
    bool listening = false;
    // Screenshots made and not yet taken by the server's thread, by request.
    std::map<std::uint64_t, Screenshot> screenshots;
};

}  // namespace

class WebPanelServer::Impl {
public:
    Impl(Panel& panel, WebPanelOptions options)
        : panel_(panel), options_(std::move(options)), link_(std::make_shared<PanelLink>(panel)) {
        if (!isLoopback(options_.address) && options_.accessToken.empty()) {
            throw std::invalid_argument(
                "web panel: listening on " + options_.address +
                " needs an access token; without one any page on the network could press keys");
        }
        checkAccessToken(options_.accessToken, policy_);
        lws_set_log_level(LLL_ERR, logFromLibwebsockets);
        protocols_[0] = lws_protocols{kProtocolName, &Impl::callback, 0, 0, 0, nullptr, 0};
        protocols_[1] = lws_protocols{nullptr, nullptr, 0, 0, 0, nullptr, 0};

        lws_context_creation_info info{};
        info.port = options_.port;
        info.iface = options_.address.c_str();
        info.protocols = protocols_;
        info.user = this;
        info.options = LWS_SERVER_OPTION_ADOPT_APPLY_LISTEN_ACCEPT_CONFIG;
        info.listen_accept_role = "raw-skt";
        info.listen_accept_protocol = kProtocolName;
        info.timeout_secs = kRequestSeconds;
        if (options_.address.find(':') == std::string::npos) {
            info.options |= LWS_SERVER_OPTION_DISABLE_IPV6;
        }
        context_ = lws_create_context(&info);
        if (context_ == nullptr) {
            throw std::runtime_error("web panel: cannot listen on " + options_.address + ":" +
                                     std::to_string(options_.port) +
                                     " (address in use or not on this machine)");
        }
        lws_vhost* vhost = lws_get_vhost_by_name(context_, "default");
        int const bound = vhost != nullptr ? lws_get_vhost_listen_port(vhost) : 0;
        port_ = static_cast<std::uint16_t>(bound > 0 ? bound : options_.port);
        access_.hosts = HostAllowList(options_.address, port_, options_.hostNames);
        access_.token = options_.accessToken;
        link_->context = context_;

        // The panel's listeners are only touched on its thread: registered by posted work.
        std::shared_ptr<PanelLink> const link = link_;
        panel_.post([link] {
            link->frameListener = link->panel.addFrameListener(
                [link](frontpanelhw::drawing::DisplayBuffer const& frame) {
                    link->publish(frame);
                });
            link->listening = true;
        });
        thread_ = std::thread([this] {
            while (!stopping_.load()) {
                lws_service(context_, 0);
            }
        });
        log::write(
            log::Level::Info, kLogCategory,
            "web panel: serving on http://" + options_.address + ":" + std::to_string(port_) + "/");
    }

    ~Impl() {
        stopping_.store(true);
        lws_cancel_service(context_);
        thread_.join();
        if (modeWatch_ != 0) {
            panel_.cancel(modeWatch_);
            modeWatch_ = 0;
        }
        {
            // Waits for a listener or timer that is using the context right now.
            std::lock_guard<std::mutex> const lock(link_->mutex);
            link_->context = nullptr;
        }
        lws_context_destroy(context_);
        std::shared_ptr<PanelLink> const link = link_;
        panel_.post([link] {
            if (link->listening) {
                link->panel.removeFrameListener(link->frameListener);
                link->listening = false;
            }
        });
    }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    std::uint16_t port() const { return port_; }
    unsigned viewerCount() const { return link_->viewers.load(); }

private:
    enum class State { Head, Socket, Closing };

    struct Session {
        State state = State::Head;
        std::string received;
        std::string outgoing;
        detail::WebSocketReader reader{kLongestMessage};
        bool viewer = false;
        bool control = false;
        bool closeAfterWrite = false;
        // A WebSocket that sent or got a close frame: the connection ends once it is out.
        bool hangUp = false;
        std::uint64_t sentFrame = 0;
        bool waiting = false;
        IClock::TimePoint waitingSince{};
        std::size_t drained = 0;
        // The screenshot this request waits for (0: none) and whether it asked for the head only.
        std::uint64_t screenshot = 0;
        bool headOnly = false;
        unsigned ignoredMessages = 0;
        std::string peer;
    };

    // --- server's thread ---

    static int callback(lws* wsi, lws_callback_reasons reason, void* /*user*/, void* in,
                        std::size_t length) {
        auto* self = static_cast<Impl*>(lws_context_user(lws_get_context(wsi)));
        if (self == nullptr) {
            return 0;
        }
        switch (reason) {
            case LWS_CALLBACK_RAW_ADOPT:
                self->adopt(wsi);
                return 0;
            case LWS_CALLBACK_RAW_RX:
                return self->receive(wsi, static_cast<char const*>(in), length);
            case LWS_CALLBACK_RAW_WRITEABLE:
                return self->writeable(wsi);
            case LWS_CALLBACK_RAW_CLOSE:
                self->closed(wsi);
                return 0;
            case LWS_CALLBACK_EVENT_WAIT_CANCELLED:
                if (!self->stopping_.load()) {
                    self->newFrame();
                    self->screenshotsTaken();
                }
                return 0;
            default:
                return 0;
        }
    }

    void adopt(lws* wsi) {
        int const sendBuffer = kSendBuffer;
        int const descriptor = lws_get_socket_fd(wsi);
        setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
        applyTcpOptions(descriptor, policy_);  // keepalive: a page whose host vanished is noticed
        Session& session = sessions_[wsi];
        session.peer = peerOf(wsi);
        lws_set_timeout(wsi, PENDING_TIMEOUT_USER_OK, kRequestSeconds);
    }

    int receive(lws* wsi, char const* data, std::size_t length) {
        auto const found = sessions_.find(wsi);
        if (found == sessions_.end()) {
            return -1;
        }
        Session& session = found->second;
        switch (session.state) {
            case State::Head:
                session.received.append(data, std::min(length, kLongestHead + 1));
                readHead(wsi, session);
                break;
            case State::Socket:
                session.reader.feed(std::string_view(data, length));
                readMessages(wsi, session);
                break;
            case State::Closing:
                session.drained += length;
                if (session.drained > kDrainLimit) {
                    return -1;
                }
                return 0;
        }
        if (!session.outgoing.empty()) {
            lws_callback_on_writable(wsi);
        }
        return 0;
    }

    void refuse(lws* wsi, Session& session, int status, std::string const& reason,
                std::string_view extraHeaders = {}) {
        log::write(
            log::Level::Warning, kLogCategory,
            "web panel: refused " + session.peer + " (" + std::to_string(status) + "): " + reason);
        session.outgoing = detail::httpResponse(status, "text/plain; charset=utf-8",
                                                std::string(detail::statusText(status)) + "\n",
                                                false, extraHeaders);
        session.closeAfterWrite = true;
        session.state = State::Closing;
        session.received.clear();
        (void)wsi;
    }

    void readHead(lws* wsi, Session& session) {
        detail::HttpRequest request;
        std::size_t headLength = 0;
        switch (detail::parseRequestHead(session.received, kLongestHead, request, headLength)) {
            case detail::HeadParse::Incomplete:
                return;
            case detail::HeadParse::TooLarge:
                refuse(wsi, session, 431,
                       "request head longer than " + std::to_string(kLongestHead) + " bytes");
                return;
            case detail::HeadParse::Malformed:
                refuse(wsi, session, 400, "malformed request head");
                return;
            case detail::HeadParse::Complete:
                break;
        }
        detail::RequestVerdict const verdict = detail::checkRequest(request, access_);
        switch (verdict.kind) {
            case detail::RequestKind::Refused:
                refuse(wsi, session, verdict.status, verdict.reason,
                       verdict.status == 405   ? "Allow: GET, HEAD\r\n"
                       : verdict.status == 426 ? "Sec-WebSocket-Version: 13\r\n"
                                               : "");
                return;
            case detail::RequestKind::Resource:
                serveResource(wsi, session, request);
                return;
            case detail::RequestKind::Upgrade:
                break;
        }
        if (link_->viewers.load() >= options_.maxViewers) {
            refuse(wsi, session, 503,
                   "already " + std::to_string(options_.maxViewers) + " pages connected");
            return;
        }
        std::string const rest = session.received.substr(headLength);
        session.received.clear();
        session.received.shrink_to_fit();
        session.outgoing =
            "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\n"
            "Connection: Upgrade\r\nSec-WebSocket-Accept: " +
            acceptKey(request.header("sec-websocket-key")) + "\r\n\r\n";
        session.outgoing += detail::serverFrame(1, detail::helloMessage(verdict.control));
        session.state = State::Socket;
        session.control = verdict.control;
        session.viewer = true;
        lws_set_timeout(wsi, NO_PENDING_TIMEOUT, 0);
        log::write(log::Level::Info, kLogCategory,
                   "web panel: " + session.peer + " connected" +
                       (session.control ? "" : " (read-only viewer)"));
        if (++link_->viewers == 1) {
            std::shared_ptr<PanelLink> const link = link_;
            modeWatch_ = panel_.every(kModeWatchPeriod, [link] { link->watchMode(); });
        }
        // The newest frame may not have been encoded while nobody watched.
        std::shared_ptr<PanelLink> const link = link_;
        panel_.post([link] { link->publish(link->panel.shownFrame()); });
        if (!rest.empty()) {
            session.reader.feed(rest);
            readMessages(wsi, session);
        }
    }

    /** Answers `status` with `body` and closes once it is out. */
    static void answer(Session& session, int status, std::string_view contentType,
                       std::string_view body, bool headOnly) {
        session.outgoing = detail::httpResponse(status, contentType, body, headOnly);
        session.closeAfterWrite = true;
        session.state = State::Closing;
        session.received.clear();
    }

    void serveResource(lws* wsi, Session& session, detail::HttpRequest const& request) {
        bool const headOnly = request.method == "HEAD";
        if (request.path == detail::kLxiIdentificationPath) {
            if (!options_.identity) {
                log::write(
                    log::Level::Warning, kLogCategory,
                    "web panel: " + session.peer + " asked for the LXI identification (404)");
                answer(session, 404, "text/plain; charset=utf-8", kNoIdentity, headOnly);
                return;
            }
            detail::LxiReach const reach{request.header("host"), options_.address};
            answer(
                session, 200, "text/xml; charset=utf-8",
                detail::lxiIdentification(*options_.identity, reach, options_.instrumentAddresses),
                headOnly);
            return;
        }
        if (request.path == kScreenshotPath) {
            requestScreenshot(wsi, session, headOnly);
            return;
        }
        detail::WebResource const* resource = detail::findWebResource(request.path);
        if (resource == nullptr) {
            refuse(wsi, session, 404, "no page at " + request.path);
            return;
        }
        answer(session, 200, resource->contentType, resource->body, headOnly);
    }

    /** Has the panel's thread make the screenshot; the answer goes out once it is there
     *  (`screenshotsTaken`). */
    void requestScreenshot(lws* wsi, Session& session, bool headOnly) {
        if (!options_.screenshotPng) {
            log::write(log::Level::Warning, kLogCategory,
                       "web panel: " + session.peer + " asked for a screenshot (501)");
            answer(session, 501, "text/plain; charset=utf-8", kNoScreenshots, headOnly);
            return;
        }
        std::uint64_t const id = ++screenshotNumber_;
        std::shared_ptr<PanelLink> const link = link_;
        std::function<std::string()> const provider = options_.screenshotPng;
        if (!panel_.post([link, provider, id] { link->takeScreenshot(id, provider); })) {
            refuse(wsi, session, 503, "the panel is not running");
            return;
        }
        session.screenshot = id;
        session.headOnly = headOnly;
        session.state = State::Closing;  // what else it sends is drained (bounded)
        session.received.clear();
    }

    /** Server's thread: answers the requests whose screenshot the panel made. */
    void screenshotsTaken() {
        std::map<std::uint64_t, PanelLink::Screenshot> taken;
        {
            std::lock_guard<std::mutex> const lock(link_->mutex);
            taken.swap(link_->screenshots);
        }
        if (taken.empty()) {
            return;
        }
        for (auto& [wsi, session] : sessions_) {
            auto const shot = taken.find(session.screenshot);
            if (session.screenshot == 0 || shot == taken.end()) {
                continue;
            }
            session.screenshot = 0;
            if (shot->second.error.empty()) {
                answer(session, 200, "image/png", shot->second.png, session.headOnly);
            } else {
                log::write(
                    log::Level::Warning, kLogCategory,
                    "web panel: screenshot for " + session.peer + " failed: " + shot->second.error);
                answer(session, 500, "text/plain; charset=utf-8",
                       "The screenshot failed: " + shot->second.error + "\n", session.headOnly);
            }
            lws_callback_on_writable(wsi);
        }
    }

    void ignore(Session& session, std::string const& what) {
        ++session.ignoredMessages;
        if (session.ignoredMessages <= kLoggedIgnoredMessages) {
            log::write(log::Level::Debug, kLogCategory,
                       "web panel: " + session.peer + " sent " + what + "; ignored" +
                           (session.ignoredMessages == kLoggedIgnoredMessages
                                ? " (further ones are not logged)"
                                : ""));
        }
    }

    void fail(Session& session, std::uint16_t code, std::string const& reason) {
        log::write(log::Level::Warning, kLogCategory,
                   "web panel: " + session.peer + " closed: " + reason);
        session.outgoing += detail::serverFrame(8, detail::closePayload(code));
        session.closeAfterWrite = true;
        session.hangUp = true;
        session.state = State::Closing;
    }

    void readMessages(lws* wsi, Session& session) {
        (void)wsi;
        while (session.state == State::Socket) {
            detail::WebSocketEvent event = session.reader.next();
            switch (event.kind) {
                case detail::WebSocketEvent::Kind::None:
                    return;
                case detail::WebSocketEvent::Kind::Ping:
                    session.outgoing += detail::serverFrame(10, event.payload);
                    break;
                case detail::WebSocketEvent::Kind::Close:
                    session.outgoing += detail::serverFrame(8, detail::closePayload(1000));
                    session.closeAfterWrite = true;
                    session.hangUp = true;
                    session.state = State::Closing;
                    return;
                case detail::WebSocketEvent::Kind::Fail:
                    fail(session, event.code, event.reason);
                    return;
                case detail::WebSocketEvent::Kind::Text:
                    handleMessage(session, event.payload);
                    break;
            }
        }
    }

    void handleMessage(Session& session, std::string const& text) {
        detail::ClientMessage const message = detail::parseClientMessage(text);
        switch (message.kind) {
            case detail::ClientMessage::Kind::Key:
                if (session.control) {
                    panel_.pressKey(message.key);
                } else {
                    ignore(session, "a key but may only watch");
                }
                return;
            case detail::ClientMessage::Kind::Token:
                if (access_.token.empty() || session.control) {
                    ignore(session, "a token it does not need");
                } else if (!tokenMatches(message.token, access_.token, access_.maxTokenLength)) {
                    fail(session, 1008, "wrong token");
                } else {
                    session.control = true;
                    session.outgoing += detail::serverFrame(1, detail::helloMessage(true));
                }
                return;
            case detail::ClientMessage::Kind::Other:
                ignore(session, "a message that is not a key");
                return;
        }
    }

    int writeable(lws* wsi) {
        auto const found = sessions_.find(wsi);
        if (found == sessions_.end()) {
            return -1;
        }
        Session& session = found->second;
        if (!session.outgoing.empty()) {
            std::string bytes;
            bytes.swap(session.outgoing);
            if (!write(wsi, bytes)) {
                return -1;
            }
            if (session.closeAfterWrite || session.state == State::Socket) {
                lws_callback_on_writable(wsi);  // to close, or for a frame that is waiting
            }
            return 0;
        }
        if (session.closeAfterWrite) {
            if (lws_partial_buffered(wsi) != 0) {
                lws_callback_on_writable(wsi);
                return 0;
            }
            if (session.hangUp) {
                return -1;
            }
            // Half-close: the client reads the whole answer before it sees the end; what it
            // still sends is drained (bounded) so that no reset cuts the answer short.
            session.closeAfterWrite = false;
            session.state = State::Closing;
            ::shutdown(lws_get_socket_fd(wsi), SHUT_WR);
            lws_set_timeout(wsi, PENDING_TIMEOUT_USER_OK, kRequestSeconds);
            return 0;
        }
        if (session.state != State::Socket) {
            return 0;
        }
        std::string frame;
        {
            std::lock_guard<std::mutex> const lock(link_->mutex);
            if (session.sentFrame == link_->frameNumber || link_->latestFrame.empty()) {
                return 0;
            }
            frame = detail::serverFrame(1, link_->latestFrame);  // only the newest
            session.sentFrame = link_->frameNumber;
        }
        session.waiting = false;
        return write(wsi, frame) ? 0 : -1;
    }

    bool write(lws* wsi, std::string const& bytes) {
        outgoing_.resize(LWS_PRE + bytes.size());
        std::memcpy(outgoing_.data() + LWS_PRE, bytes.data(), bytes.size());
        return lws_write(wsi, outgoing_.data() + LWS_PRE, bytes.size(), LWS_WRITE_RAW) >=
               static_cast<int>(bytes.size());
    }

    /** A frame was published: offer it to every page; drop the pages that have not taken one
     *  for too long while a newer one waited. */
    void newFrame() {
        std::uint64_t number = 0;
        {
            std::lock_guard<std::mutex> const lock(link_->mutex);
            number = link_->frameNumber;
        }
        IClock::TimePoint const now = panel_.clock().now();
        for (auto& [wsi, session] : sessions_) {
            if (session.state != State::Socket || session.sentFrame == number) {
                continue;
            }
            if (!session.waiting) {
                session.waiting = true;
                session.waitingSince = now;
            } else if (now - session.waitingSince > options_.stalledViewerTimeout) {
                log::write(log::Level::Warning, kLogCategory,
                           "web panel: " + session.peer + " took no frame for " +
                               std::to_string(options_.stalledViewerTimeout.count()) +
                               " ms; dropped");
                session.state = State::Closing;
                lws_set_timeout(wsi, PENDING_TIMEOUT_USER_OK, LWS_TO_KILL_ASYNC);
                continue;
            }
            lws_callback_on_writable(wsi);
        }
    }

    void closed(lws* wsi) {
        auto const found = sessions_.find(wsi);
        if (found == sessions_.end()) {
            return;
        }
        bool const viewer = found->second.viewer;
        if (viewer) {
            log::write(log::Level::Info, kLogCategory,
                       "web panel: " + found->second.peer + " disconnected");
        }
        sessions_.erase(found);
        if (viewer && --link_->viewers == 0) {
            if (modeWatch_ != 0) {
                panel_.cancel(modeWatch_);
                modeWatch_ = 0;
            }
            std::lock_guard<std::mutex> const lock(link_->mutex);
            link_->latestFrame.clear();  // stale by the time the next page comes
        }
    }

    Panel& panel_;
    WebPanelOptions options_;
    std::shared_ptr<PanelLink> link_;
    ConnectionPolicyOptions policy_;
    detail::WebAccess access_{HostAllowList("127.0.0.1", 0, {}), {}};
    lws_protocols protocols_[2]{};
    lws_context* context_ = nullptr;
    std::uint16_t port_ = 0;
    std::thread thread_;
    std::atomic<bool> stopping_{false};

    // The server's thread only (and the destructor once it has ended).
    std::map<lws*, Session> sessions_;
    std::vector<unsigned char> outgoing_;
    Panel::TimerId modeWatch_ = 0;
    std::uint64_t screenshotNumber_ = 0;
};

WebPanelServer::WebPanelServer(Panel& panel, WebPanelOptions options)
    : impl_(std::make_unique<Impl>(panel, std::move(options))) {}

WebPanelServer::~WebPanelServer() = default;

std::uint16_t WebPanelServer::port() const { return impl_->port(); }

unsigned WebPanelServer::viewerCount() const { return impl_->viewerCount(); }

}  // namespace yxfrontpanel::runtime
