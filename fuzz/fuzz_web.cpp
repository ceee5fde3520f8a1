// The web panel's request handling without a network: the input is split at its first byte into
// a request head (checked against a fixed allow-list and token) and WebSocket bytes (read in
// pieces whose sizes come from the input). Invariants: a verdict is consistent with the request
// (refused requests carry an error status, upgrades only on the socket path with an allowed
// Host), the reader's buffered bytes stay bounded, and every text message it yields fits the
// limit and parses to a client message without throwing.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "frame_message.h"
#include "fuzz_support.h"
#include "http_request.h"
#include "websocket_stream.h"

namespace {

using namespace yxfrontpanel::runtime::detail;

constexpr std::size_t kHeadLimit = 4096;
constexpr std::size_t kMessageLimit = 512;

void checkRequest(std::string_view bytes, WebAccess const& access) {
    HttpRequest request;
    std::size_t headLength = 0;
    HeadParse const parsed = parseRequestHead(bytes, kHeadLimit, request, headLength);
    if (parsed == HeadParse::TooLarge) {
        yxfp_fuzz::check(bytes.size() >= kHeadLimit, "431 only past the limit");
        return;
    }
    if (parsed != HeadParse::Complete) {
        return;
    }
    yxfp_fuzz::check(headLength <= kHeadLimit && headLength <= bytes.size(), "head length");
    RequestVerdict const verdict = checkRequest(request, access);
    switch (verdict.kind) {
        case RequestKind::Refused:
            yxfp_fuzz::check(verdict.status >= 400 && !verdict.reason.empty(), "refusal status");
            break;
        case RequestKind::Resource:
            yxfp_fuzz::check(request.method == "GET" || request.method == "HEAD", "method");
            yxfp_fuzz::check(access.hosts.allowsHost(request.header("host")),
                             "resource for an allowed host only");
            break;
        case RequestKind::Upgrade:
            yxfp_fuzz::check(request.path == kSocketPath, "upgrade only on the socket path");
            yxfp_fuzz::check(access.hosts.allowsHost(request.header("host")),
                             "upgrade for an allowed host only");
            yxfp_fuzz::check(!verdict.control ||
                                 yxfrontpanel::runtime::tokenMatches(
                                     presentedToken(request), access.token, access.maxTokenLength),
                             "control only with the token");
            break;
    }
    std::string const response =
        httpResponse(verdict.status, "text/plain", verdict.reason, request.method == "HEAD");
    yxfp_fuzz::check(response.find("\r\n\r\n") != std::string::npos, "complete response");
}

void checkFrames(std::string_view bytes) {
    WebSocketReader reader(kMessageLimit);
    std::size_t position = 0;
    bool ended = false;
    while (position < bytes.size() && !ended) {
        std::size_t const piece = std::min<std::size_t>(
            1 + static_cast<unsigned char>(bytes[position]) % 64, bytes.size() - position);
        reader.feed(bytes.substr(position, piece));
        position += piece;
        for (int events = 0; events < 1000; ++events) {
            WebSocketEvent const event = reader.next();
            if (event.kind == WebSocketEvent::Kind::None) {
                break;
            }
            if (event.kind == WebSocketEvent::Kind::Text) {
                yxfp_fuzz::check(event.payload.size() <= kMessageLimit, "message limit");
                (void)parseClientMessage(event.payload);
            }
            if (event.kind == WebSocketEvent::Kind::Ping) {
                yxfp_fuzz::check(event.payload.size() <= 125, "control payload");
            }
            if (event.kind == WebSocketEvent::Kind::Close ||
                event.kind == WebSocketEvent::Kind::Fail) {
                ended = true;
                break;
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string_view const input(reinterpret_cast<char const*>(data) + 1, size - 1);
    std::size_t const split = std::min<std::size_t>(std::size_t{data[0]} * 16U, input.size());
    WebAccess const access{yxfrontpanel::runtime::HostAllowList("127.0.0.1", 8080, {"panel.lab"}),
                           "s3cret"};
    checkRequest(input.substr(0, split), access);
    checkFrames(input.substr(split));
    (void)parseClientMessage(std::string(input));
    return 0;
}
