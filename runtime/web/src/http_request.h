#pragma once

#include <yxfrontpanel/runtime/connection_policy.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace yxfrontpanel::runtime::detail {

/** One HTTP request head as a client sent it: the method, the path and query of its target and
 *  its header fields (names in lower case, values without surrounding blanks). */
struct HttpRequest {
    std::string method;
    std::string path;
    std::string query;
    std::vector<std::pair<std::string, std::string>> headers;

    /** The value of header `name` (lower case); empty when absent. */
    std::string header(std::string_view name) const;
    /** How often header `name` (lower case) occurs. */
    std::size_t headerCount(std::string_view name) const;
};

/** What reading a request head found. */
enum class HeadParse {
    Incomplete,  ///< the blank line that ends the head has not arrived yet
    Complete,    ///< `request` holds the head; `headLength` bytes were its own
    TooLarge,    ///< no end within `limit` bytes: answer 431
    Malformed,   ///< not an HTTP/1.x request head: answer 400
};

/** Reads the request head at the start of `received` (lines ending in CRLF, a blank line at the
 *  end), looking at no more than `limit` bytes. */
HeadParse parseRequestHead(std::string_view received, std::size_t limit, HttpRequest& request,
                           std::size_t& headLength);

/** Who may reach the web panel and how: the Host names it answers to and the access token
 *  (empty: none). */
struct WebAccess {
    HostAllowList hosts;
    std::string token;
    /** Presented tokens longer than this are refused, never cut. */
    std::size_t maxTokenLength = ConnectionPolicyOptions{}.maxTokenBytes;
};

/** What the server does with a request. */
enum class RequestKind {
    Resource,  ///< serve the page or one of its parts (`path`), head only for HEAD
    Upgrade,   ///< open the panel's WebSocket
    Refused,   ///< answer `status` and close
};

/** The answer to one request head. */
struct RequestVerdict {
    RequestKind kind = RequestKind::Refused;
    int status = 400;
    /** Why it was refused, for the log. */
    std::string reason;
    /** For an upgrade: whether the page may press keys. */
    bool control = false;
};

/** The WebSocket path of the page. */
inline constexpr std::string_view kSocketPath = "/panel";

/** Decides what to do with `request` under `access`: Host not allowed 421, methods other than
 *  GET and HEAD 405, unknown paths 404, upgrades only on the socket path with an Origin (when
 *  sent) that names an allowed host (else 403), a presented token that is too long 400 and a
 *  wrong one 403. A page without the token (when one is set) may only watch. */
RequestVerdict checkRequest(HttpRequest const& request, WebAccess const& access);

/** The token a request presents: `Authorization: Bearer TOKEN` first, else the query's
 *  `token=` (percent-decoded); empty when none. */
std::string presentedToken(HttpRequest const& request);

/** The reason phrase of an HTTP status this server sends. */
std::string_view statusText(int status);

/** A complete response that closes the connection: status line, the security headers
 *  (X-Frame-Options DENY, a Content-Security-Policy that allows only the page's own parts,
 *  nosniff, no-store), `Content-Type` and `Content-Length` of `body`, the `extraHeaders`
 *  (each ending in CRLF), and the body unless `headOnly`. */
std::string httpResponse(int status, std::string_view contentType, std::string_view body,
                         bool headOnly, std::string_view extraHeaders = {});

}  // namespace yxfrontpanel::runtime::detail
