#include <gtest/gtest.h>

#include <string>

#include "frame_message.h"
#include "http_request.h"

namespace {

using namespace yxfrontpanel::runtime::detail;

using yxfrontpanel::runtime::HostAllowList;

WebAccess access(std::string token = {}) {
    return WebAccess{HostAllowList("127.0.0.1", 8080, {"Panel.Lab"}), std::move(token)};
}

HttpRequest parsed(std::string const& head) {
    HttpRequest request;
    std::size_t length = 0;
    EXPECT_EQ(parseRequestHead(head, 4096, request, length), HeadParse::Complete) << head;
    EXPECT_EQ(length, head.size());
    return request;
}

std::string upgradeHead(std::string const& host, std::string const& extra = {},
                        std::string const& target = "/panel") {
    return "GET " + target + " HTTP/1.1\r\nHost: " + host +
           "\r\nUpgrade: websocket\r\nConnection: keep-alive, Upgrade\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n" +
           extra + "\r\n";
}

TEST(WebRequestTest, HeadIsIncompleteUntilTheBlankLineAndTooLargePastTheLimit) {
    HttpRequest request;
    std::size_t length = 0;
    EXPECT_EQ(parseRequestHead("GET / HTTP/1.1\r\nHost: a\r\n", 4096, request, length),
              HeadParse::Incomplete);
    EXPECT_EQ(parseRequestHead(std::string(4096, 'x'), 4096, request, length), HeadParse::TooLarge);
    EXPECT_EQ(parseRequestHead("GET / HTTP/1.1\r\n folded\r\n\r\n", 4096, request, length),
              HeadParse::Malformed);
    EXPECT_EQ(parseRequestHead("GET nopath HTTP/1.1\r\n\r\n", 4096, request, length),
              HeadParse::Malformed);
    EXPECT_EQ(parseRequestHead("GET / SPDY/3\r\n\r\n", 4096, request, length),
              HeadParse::Malformed);
}

TEST(WebRequestTest, ForeignHostIsMisdirectedForPagesAndUpgrades) {
    EXPECT_EQ(
        checkRequest(parsed("GET / HTTP/1.1\r\nHost: evil.example:8080\r\n\r\n"), access()).status,
        421);
    EXPECT_EQ(checkRequest(
                  parsed(upgradeHead("evil.example:8080", "Origin: http://evil.example:8080\r\n")),
                  access())
                  .status,
              421);
    EXPECT_EQ(checkRequest(parsed("GET / HTTP/1.1\r\n\r\n"), access()).status, 400);
    EXPECT_EQ(checkRequest(parsed("GET / HTTP/1.1\r\nHost: localhost:8080\r\nHost: "
                                  "localhost:8080\r\n\r\n"),
                           access())
                  .status,
              400);
}

TEST(WebRequestTest, AllowedHostsGetThePageInAnyCase) {
    for (char const* host :
         {"127.0.0.1:8080", "localhost:8080", "LOCALHOST:8080", "[::1]:8080", "panel.lab:8080"}) {
        RequestVerdict const verdict = checkRequest(
            parsed(std::string("GET / HTTP/1.1\r\nHost: ") + host + "\r\n\r\n"), access());
        EXPECT_EQ(verdict.kind, RequestKind::Resource) << host;
    }
    EXPECT_EQ(
        checkRequest(parsed("GET / HTTP/1.1\r\nHost: localhost:8081\r\n\r\n"), access()).status,
        421);
}

TEST(WebRequestTest, OriginIsComparedWithTheAllowListNotTheHost) {
    RequestVerdict const same = checkRequest(
        parsed(upgradeHead("127.0.0.1:8080", "Origin: http://localhost:8080\r\n")), access());
    EXPECT_EQ(same.kind, RequestKind::Upgrade);
    EXPECT_TRUE(same.control);
    EXPECT_EQ(
        checkRequest(parsed(upgradeHead("127.0.0.1:8080", "Origin: http://evil.example:8080\r\n")),
                     access())
            .status,
        403);
    EXPECT_EQ(
        checkRequest(parsed(upgradeHead("127.0.0.1:8080", "Origin: null\r\n")), access()).status,
        403);
    EXPECT_EQ(checkRequest(parsed(upgradeHead("127.0.0.1:8080")), access()).kind,
              RequestKind::Upgrade);
}

TEST(WebRequestTest, MethodsOtherThanGetAndHeadAreNotAllowed) {
    for (char const* method : {"POST", "PUT", "DELETE", "OPTIONS"}) {
        EXPECT_EQ(checkRequest(
                      parsed(std::string(method) + " / HTTP/1.1\r\nHost: 127.0.0.1:8080\r\n\r\n"),
                      access())
                      .status,
                  405)
            << method;
    }
}

TEST(WebRequestTest, UpgradesOnlyOnTheSocketPathAndVersion13) {
    EXPECT_EQ(checkRequest(parsed(upgradeHead("127.0.0.1:8080", {}, "/")), access()).status, 404);
    EXPECT_EQ(checkRequest(parsed(upgradeHead("127.0.0.1:8080", {}, "/other")), access()).status,
              404);
    std::string head = upgradeHead("127.0.0.1:8080");
    head.replace(head.find("Version: 13"), 11, "Version: 8");
    EXPECT_EQ(checkRequest(parsed(head), access()).status, 426);
}

TEST(WebRequestTest, TokenByHeaderOrQueryComparedWholeAndLimited) {
    WebAccess const guarded = access("s3cret");
    EXPECT_FALSE(checkRequest(parsed(upgradeHead("127.0.0.1:8080")), guarded).control);
    EXPECT_TRUE(
        checkRequest(parsed(upgradeHead("127.0.0.1:8080", "Authorization: Bearer s3cret\r\n")),
                     guarded)
            .control);
    EXPECT_TRUE(checkRequest(parsed(upgradeHead("127.0.0.1:8080", {}, "/panel?x=1&token=s3%63ret")),
                             guarded)
                    .control);
    EXPECT_EQ(checkRequest(parsed(upgradeHead("127.0.0.1:8080", "Authorization: Bearer s3cre\r\n")),
                           guarded)
                  .status,
              403);
    // A long token that starts with the right one is refused, not cut to fit.
    std::string const longToken = "s3cret" + std::string(300, 'x');
    EXPECT_EQ(checkRequest(parsed(upgradeHead("127.0.0.1:8080",
                                              "Authorization: Bearer " + longToken + "\r\n")),
                           guarded)
                  .status,
              400);
}

TEST(WebRequestTest, ResponsesCarryTheSecurityHeadersAndACompleteBody) {
    std::string const response = httpResponse(405, "text/plain", "no\n", false, "Allow: GET\r\n");
    EXPECT_EQ(response.rfind("HTTP/1.1 405 Method Not Allowed\r\n", 0), 0U);
    EXPECT_NE(response.find("X-Frame-Options: DENY\r\n"), std::string::npos);
    EXPECT_NE(response.find("Content-Security-Policy: default-src 'none'; script-src 'self'"),
              std::string::npos);
    EXPECT_NE(response.find("Content-Length: 3\r\nAllow: GET\r\nConnection: close\r\n\r\nno\n"),
              std::string::npos);
    std::string const head = httpResponse(200, "text/html", "<p>", true);
    EXPECT_NE(head.find("Content-Length: 3\r\n"), std::string::npos);
    EXPECT_EQ(head.substr(head.size() - 4), "\r\n\r\n");
}

TEST(WebClientMessageTest, AnyValidSpellingOfAKeyIsAKey) {
    for (char const* text : {R"({"key":"down"})", R"({"key": "down"})", "{ \"key\" :\n\t\"down\" }",
                             R"({"k\u0065y":"d\u006fwn"})", R"(  {"key":"down"}  )"}) {
        ClientMessage const message = parseClientMessage(text);
        EXPECT_EQ(message.kind, ClientMessage::Kind::Key) << text;
        EXPECT_EQ(message.key, frontpanelhw::PanelKey::Down) << text;
    }
    for (char const* text : {R"({"key":"sideways"})", R"({"key":1})", R"(["key","down"])",
                             R"({"key":"down","x":1})", "not json", R"({"key":"down")", ""}) {
        EXPECT_EQ(parseClientMessage(text).kind, ClientMessage::Kind::Other) << text;
    }
    ClientMessage const token = parseClientMessage(R"({ "token" : "s3\"cret" })");
    EXPECT_EQ(token.kind, ClientMessage::Kind::Token);
    EXPECT_EQ(token.token, "s3\"cret");
}

}  // namespace
