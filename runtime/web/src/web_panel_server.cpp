#include <yxbase2/log.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/web_panel.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "frame_message.h"
#include "web_page.h"
#include <libwebsockets.h>

namespace yxfrontpanel::runtime {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelRuntime";
// A page's messages are tiny ({"key":"enter"}); anything longer is not ours.
constexpr std::size_t kLongestMessage = 256;
// How often the LOCAL/REMOTE state is compared while pages are open (a mode switch draws no
// frame of its own).
constexpr std::chrono::milliseconds kModeWatchPeriod{200};

extern "C" void logFromLibwebsockets(int /*level*/, char const* line) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    log::write(log::Level::Warning, kLogCategory, "web panel: ", text);
}

std::string header(lws* wsi, lws_token_indexes token) {
    int const length = lws_hdr_total_length(wsi, token);
    if (length <= 0) {
        return {};
    }
    std::string value(static_cast<std::size_t>(length) + 1, '\0');
    if (lws_hdr_copy(wsi, value.data(), length + 1, token) < 0) {
        return {};
    }
    value.resize(static_cast<std::size_t>(length));
    return value;
}

std::string peerOf(lws* wsi) {
    char name[128] = {};
    lws_get_peer_simple(wsi, name, sizeof name);
    return name;
}

}  // namespace

class WebPanelServer::Impl {
public:
    Impl(Panel& panel, WebPanelOptions options) : panel_(panel), options_(std::move(options)) {
        lws_set_log_level(LLL_ERR, logFromLibwebsockets);
        protocols_[0] =
            lws_protocols{"yxfp-panel", &Impl::callback, 0, kLongestMessage, 0, nullptr, 0};
        protocols_[1] = lws_protocols{nullptr, nullptr, 0, 0, 0, nullptr, 0};

        lws_context_creation_info info{};
        info.port = options_.port;
        info.iface = options_.address.c_str();
        info.protocols = protocols_;
        info.user = this;
        info.max_http_header_data = 4096;
        info.timeout_secs = 10;
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

        frameListener_ = panel_.addFrameListener(
            [this](frontpanelhw::drawing::DisplayBuffer const& frame) { publishFrame(frame); });
        thread_ = std::thread([this] {
            while (!stopping_.load()) {
                lws_service(context_, 0);
            }
        });
        log::write(log::Level::Info, kLogCategory, "web panel: serving on http://",
                   options_.address, ":", port_, "/");
    }

    ~Impl() {
        panel_.removeFrameListener(frameListener_);
        stopping_.store(true);
        lws_cancel_service(context_);
        thread_.join();
        lws_context_destroy(context_);
        std::lock_guard<std::mutex> const lock(mutex_);
        if (modeWatch_ != 0) {
            panel_.cancel(modeWatch_);
        }
    }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    std::uint16_t port() const { return port_; }
    unsigned viewerCount() const { return viewers_.load(); }

private:
    struct Session {
        bool control = false;
        bool helloSent = false;
        std::uint64_t sentFrame = 0;
        std::string received;
    };

    // --- panel's thread ---

    void publishFrame(frontpanelhw::drawing::DisplayBuffer const& frame) {
        IMenuTree const* root = panel_.root();
        bool const local = root != nullptr && root->getLocal();
        std::string message = detail::frameMessage(frame, local);
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            shownLocal_ = local;
            latestFrame_ = std::move(message);
            ++frameNumber_;
        }
        lws_cancel_service(context_);
    }

    void watchMode() {
        IMenuTree const* root = panel_.root();
        bool const local = root != nullptr && root->getLocal();
        bool changed = false;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            changed = frameNumber_ > 0 && local != shownLocal_;
        }
        if (changed) {
            publishFrame(panel_.shownFrame());
        }
    }

    // --- server's thread ---

    static int callback(lws* wsi, lws_callback_reasons reason, void* /*user*/, void* in,
                        std::size_t length) {
        auto* self = static_cast<Impl*>(lws_context_user(lws_get_context(wsi)));
        if (self == nullptr) {
            return 0;
        }
        switch (reason) {
            case LWS_CALLBACK_HTTP:
                return self->serveHttp(wsi, static_cast<char const*>(in));
            case LWS_CALLBACK_HTTP_WRITEABLE:
                return self->writePage(wsi);
            case LWS_CALLBACK_FILTER_PROTOCOL_CONNECTION:
                return self->admit(wsi) ? 0 : 1;
            case LWS_CALLBACK_ESTABLISHED:
                self->open(wsi);
                return 0;
            case LWS_CALLBACK_SERVER_WRITEABLE:
                return self->writeFrame(wsi);
            case LWS_CALLBACK_RECEIVE:
                return self->receive(wsi, static_cast<char const*>(in), length);
            case LWS_CALLBACK_CLOSED:
                self->close(wsi);
                return 0;
            case LWS_CALLBACK_EVENT_WAIT_CANCELLED:
                if (!self->stopping_.load()) {
                    lws_callback_on_writable_all_protocol(self->context_, &self->protocols_[0]);
                }
                return 0;
            default:
                return lws_callback_http_dummy(wsi, reason, nullptr, in, length);
        }
    }

    int serveHttp(lws* wsi, char const* path) {
        if (path == nullptr || std::strcmp(path, "/") != 0) {
            if (lws_return_http_status(wsi, HTTP_STATUS_NOT_FOUND, nullptr) != 0) {
                return -1;
            }
            return lws_http_transaction_completed(wsi) != 0 ? -1 : 0;
        }
        std::string_view const page = detail::webPage();
        unsigned char buffer[LWS_PRE + 512];
        unsigned char* start = buffer + LWS_PRE;
        unsigned char* position = start;
        unsigned char* end = buffer + sizeof buffer - 1;
        if (lws_add_http_common_headers(wsi, HTTP_STATUS_OK, "text/html; charset=utf-8",
                                        page.size(), &position, end) != 0 ||
            lws_add_http_header_by_name(
                wsi, reinterpret_cast<unsigned char const*>("cache-control:"),
                reinterpret_cast<unsigned char const*>("no-store"), 8, &position, end) != 0 ||
            lws_finalize_write_http_header(wsi, start, &position, end) != 0) {
            return 1;
        }
        lws_callback_on_writable(wsi);
        return 0;
    }

    static int writePage(lws* wsi) {
        std::string_view const page = detail::webPage();
        std::vector<unsigned char> buffer(LWS_PRE + page.size());
        std::memcpy(buffer.data() + LWS_PRE, page.data(), page.size());
        if (lws_write(wsi, buffer.data() + LWS_PRE, page.size(), LWS_WRITE_HTTP_FINAL) !=
            static_cast<int>(page.size())) {
            return 1;
        }
        return lws_http_transaction_completed(wsi) != 0 ? -1 : 0;
    }

    bool admit(lws* wsi) {
        std::string const peer = peerOf(wsi);
        if (viewers_.load() >= options_.maxViewers) {
            log::write(log::Level::Warning, kLogCategory, "web panel: refused ", peer, ": already ",
                       options_.maxViewers, " viewers");
            return false;
        }
        std::string const origin = header(wsi, WSI_TOKEN_ORIGIN);
        std::string const host = header(wsi, WSI_TOKEN_HOST);
        // Browsers always send Origin; a page served by another host must not drive the panel.
        // Programs that send none cannot be led by another site, so they are let in.
        if (!origin.empty() && origin != "http://" + host && origin != "https://" + host) {
            log::write(log::Level::Warning, kLogCategory, "web panel: refused ", peer, ": origin ",
                       origin, " is not the served host ", host);
            return false;
        }
        return true;
    }

    void open(lws* wsi) {
        Session session;
        char buffer[256] = {};
        char const* token = lws_get_urlarg_by_name(wsi, "token=", buffer, sizeof buffer);
        session.control =
            options_.accessToken.empty() || (token != nullptr && options_.accessToken == token);
        sessions_[wsi] = std::move(session);
        unsigned const count = ++viewers_;
        log::write(log::Level::Info, kLogCategory, "web panel: ", peerOf(wsi), " connected",
                   (sessions_[wsi].control ? "" : " (read-only viewer)"));
        if (count == 1) {
            std::lock_guard<std::mutex> const lock(mutex_);
            modeWatch_ = panel_.every(kModeWatchPeriod, [this] { watchMode(); });
        }
        lws_callback_on_writable(wsi);
    }

    void close(lws* wsi) {
        if (sessions_.erase(wsi) == 0) {
            return;
        }
        log::write(log::Level::Info, kLogCategory, "web panel: ", peerOf(wsi), " disconnected");
        if (--viewers_ == 0) {
            std::lock_guard<std::mutex> const lock(mutex_);
            panel_.cancel(modeWatch_);
            modeWatch_ = 0;
        }
    }

    int writeFrame(lws* wsi) {
        auto const found = sessions_.find(wsi);
        if (found == sessions_.end()) {
            return 0;
        }
        Session& session = found->second;
        std::string message;
        if (!session.helloSent) {
            message = detail::helloMessage(session.control);
            session.helloSent = true;
        } else {
            std::lock_guard<std::mutex> const lock(mutex_);
            if (session.sentFrame == frameNumber_ || latestFrame_.empty()) {
                return 0;
            }
            message = latestFrame_;  // only the newest: a slow page skips what it missed
            session.sentFrame = frameNumber_;
        }
        outgoing_.resize(LWS_PRE + message.size());
        std::memcpy(outgoing_.data() + LWS_PRE, message.data(), message.size());
        if (lws_write(wsi, outgoing_.data() + LWS_PRE, message.size(), LWS_WRITE_TEXT) <
            static_cast<int>(message.size())) {
            return -1;
        }
        lws_callback_on_writable(wsi);  // there may be a newer frame already
        return 0;
    }

    int receive(lws* wsi, char const* data, std::size_t length) {
        auto const found = sessions_.find(wsi);
        if (found == sessions_.end()) {
            return 0;
        }
        Session& session = found->second;
        session.received.append(data, std::min(length, kLongestMessage + 1));
        if (session.received.size() > kLongestMessage) {
            log::write(log::Level::Warning, kLogCategory, "web panel: ", peerOf(wsi),
                       " sent an oversized message; closed");
            return -1;
        }
        if (!lws_is_final_fragment(wsi) || lws_remaining_packet_payload(wsi) != 0) {
            return 0;
        }
        std::string const message = std::move(session.received);
        session.received.clear();
        frontpanelhw::PanelKey key{};
        if (!detail::parseKeyMessage(message, key)) {
            log::write(log::Level::Info, kLogCategory, "web panel: ", peerOf(wsi),
                       " sent a message that is not a key; ignored");
            return 0;
        }
        if (session.control) {
            panel_.pressKey(key);
        }
        return 0;
    }

    Panel& panel_;
    WebPanelOptions options_;
    lws_protocols protocols_[2]{};
    lws_context* context_ = nullptr;
    std::uint16_t port_ = 0;
    std::size_t frameListener_ = 0;
    std::thread thread_;
    std::atomic<bool> stopping_{false};
    std::atomic<unsigned> viewers_{0};

    // Shared between the panel's thread and the server's thread.
    std::mutex mutex_;
    std::string latestFrame_;
    std::uint64_t frameNumber_ = 0;
    bool shownLocal_ = true;
    Panel::TimerId modeWatch_ = 0;

    // The server's thread only.
    std::map<lws*, Session> sessions_;
    std::vector<unsigned char> outgoing_;
};

WebPanelServer::WebPanelServer(Panel& panel, WebPanelOptions options)
    : impl_(std::make_unique<Impl>(panel, std::move(options))) {}

WebPanelServer::~WebPanelServer() = default;

std::uint16_t WebPanelServer::port() const { return impl_->port(); }

unsigned WebPanelServer::viewerCount() const { return impl_->viewerCount(); }

}  // namespace yxfrontpanel::runtime
