#include <stdexcept>
#include <string>

#include "web_panel_fixture.h"

namespace {

using yxfp_test::kCursorOnBeta;
using yxfp_test::kFirstFrame;
using yxfp_test::LoopbackConnection;
using yxfrontpanel::runtime::WebPanelOptions;
using yxfrontpanel::runtime::WebPanelServer;

constexpr int kWarningLevel = 4;
constexpr int kInfoLevel = 6;
constexpr int kDebugLevel = 7;

/** The web panel against hostile requests: hosts, origins, tokens, methods and frames. */
class WebPanelSecurityTest : public yxfp_test::WebPanelTest {
protected:
    std::string hostPort(std::string const& name) const {
        return name + ":" + std::to_string(server->port());
    }
};

// DNS rebinding: a page of another site that resolves to the panel gets neither the page nor the
// socket, even when its Origin matches its own Host.
TEST_F(WebPanelSecurityTest, ForeignHostIsRefusedForThePageAndTheSocket) {
    start();
    LoopbackConnection client(server->port());
    client.setHost(hostPort("evil.example"));
    std::string const page = client.get("/");
    EXPECT_EQ(page.rfind("HTTP/1.1 421 Misdirected Request\r\n", 0), 0U) << page.substr(0, 200);
    EXPECT_EQ(page.find("<html"), std::string::npos);

    LoopbackConnection socket(server->port());
    socket.setHost(hostPort("evil.example"));
    std::string const head = socket.upgrade("/panel", "http://" + hostPort("evil.example"));
    EXPECT_EQ(head.rfind("HTTP/1.1 421", 0), 0U) << head;
    EXPECT_EQ(server->viewerCount(), 0U);
}

// The page and its socket work under the loopback names and the configured ones.
TEST_F(WebPanelSecurityTest, PageAndSocketWorkUnderLoopbackAndConfiguredNames) {
    WebPanelOptions options;
    options.hostNames = {"panel.lab"};
    start(options);
    for (std::string const name : {"127.0.0.1", "localhost", "panel.lab"}) {
        LoopbackConnection client(server->port());
        client.setHost(hostPort(name));
        EXPECT_EQ(client.get("/").rfind("HTTP/1.1 200", 0), 0U) << name;
        LoopbackConnection script(server->port());
        script.setHost(hostPort(name));
        std::string const code = script.get("/panel.js");
        EXPECT_EQ(code.rfind("HTTP/1.1 200", 0), 0U) << name;
        EXPECT_NE(code.find("text/javascript"), std::string::npos);

        LoopbackConnection page(server->port());
        page.setHost(hostPort(name));
        std::string const head = page.upgrade("/panel", "http://" + hostPort(name));
        EXPECT_EQ(head.rfind("HTTP/1.1 101", 0), 0U) << name << ": " << head;
        EXPECT_EQ(page.receiveText(), R"({"type":"hello","control":true})");
        EXPECT_TRUE(waitForFrame(page, kFirstFrame)) << name;
    }
}

// The page may not be framed by another site and runs only its own script and style.
TEST_F(WebPanelSecurityTest, PageForbidsFramingAndForeignScripts) {
    start();
    LoopbackConnection client(server->port());
    std::string const response = client.get("/");
    EXPECT_NE(response.find("\r\nX-Frame-Options: DENY\r\n"), std::string::npos);
    EXPECT_NE(response.find("\r\nContent-Security-Policy: default-src 'none'; script-src 'self'; "
                            "style-src 'self'; connect-src 'self';"),
              std::string::npos);
    EXPECT_EQ(response.find("<script>"), std::string::npos);
    EXPECT_EQ(response.find("<style>"), std::string::npos);
}

// Listening beyond loopback without a token is refused before anything listens.
TEST_F(WebPanelSecurityTest, NonLoopbackAddressNeedsAToken) {
    start();
    WebPanelOptions options;
    options.address = "0.0.0.0";
    options.port = 0;
    try {
        WebPanelServer exposed(*panel, options);
        FAIL() << "served on every address without a token";
    } catch (std::invalid_argument const& error) {
        EXPECT_STREQ(error.what(),
                     "web panel: listening on 0.0.0.0 needs an access token; without one any page "
                     "on the network could press keys");
    }
}

// The token may come in a header or as the socket's first message instead of the URL.
TEST_F(WebPanelSecurityTest, TokenByHeaderOrFirstMessage) {
    WebPanelOptions options;
    options.accessToken = "s3cret";
    start(options);
    LoopbackConnection byHeader(server->port());
    std::string const head =
        byHeader.upgrade("/panel", origin(), "Authorization: Bearer s3cret\r\n");
    EXPECT_EQ(head.rfind("HTTP/1.1 101", 0), 0U) << head;
    EXPECT_EQ(byHeader.receiveText(), R"({"type":"hello","control":true})");

    std::string hello;
    auto byMessage = openPage("/panel", &hello);
    EXPECT_EQ(hello, R"({"type":"hello","control":false})");
    ASSERT_TRUE(byMessage->sendText(R"({"token": "s3cret"})"));
    EXPECT_TRUE(waitForFrame(*byMessage, R"({"type":"hello","control":true})"));
    ASSERT_TRUE(byMessage->sendText(R"({"key":"down"})"));
    EXPECT_TRUE(waitForFrame(*byMessage, kCursorOnBeta));
}

// A wrong token in the first message closes the socket.
TEST_F(WebPanelSecurityTest, WrongTokenMessageClosesTheSocket) {
    WebPanelOptions options;
    options.accessToken = "s3cret";
    start(options);
    auto page = openPage();
    ASSERT_TRUE(page->sendText(R"({"token":"guess"})"));
    for (int frames = 0; frames < 100; ++frames) {
        if (!page->receiveText()) {
            break;
        }
    }
    EXPECT_TRUE(waitForViewers(0));
    EXPECT_TRUE(logged(kWarningLevel, "closed: wrong token"));
}

// A token longer than the limit is refused whole, not cut to a prefix that might match.
TEST_F(WebPanelSecurityTest, OverlongTokenIsRefused) {
    std::string const token(255, 't');
    WebPanelOptions options;
    options.accessToken = token;
    start(options);
    LoopbackConnection page(server->port());
    std::string const head =
        page.upgrade("/panel?token=" + token + std::string(300, 'x'), origin());
    EXPECT_EQ(head.rfind("HTTP/1.1 400", 0), 0U) << head;
    EXPECT_TRUE(logged(kWarningLevel, "token longer than 256 bytes"));
}

// A key message in any valid JSON spelling presses the key.
TEST_F(WebPanelSecurityTest, KeyMessageInAnyJsonSpelling) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    ASSERT_TRUE(page->sendText(R"({"key": "down"})"));
    EXPECT_TRUE(waitForFrame(*page, kCursorOnBeta));
    ASSERT_TRUE(page->sendText("{ \"k\\u0065y\" :\n \"up\" }"));
    EXPECT_TRUE(waitForFrame(*page, kFirstFrame));
}

// RFC 6455: a client frame without a mask closes the connection and presses nothing.
TEST_F(WebPanelSecurityTest, UnmaskedFrameClosesTheConnection) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    std::string const message = R"({"key":"down"})";
    ASSERT_TRUE(page->send(std::string("\x81", 1) + static_cast<char>(message.size()) + message));
    std::optional<std::string> text;
    for (int frames = 0; frames < 100; ++frames) {
        text = page->receiveText();
        ASSERT_NE(text, kCursorOnBeta);
        if (!text) {
            break;
        }
    }
    EXPECT_FALSE(text);
    EXPECT_TRUE(waitForViewers(0));
    EXPECT_TRUE(logged(kWarningLevel, "closed: unmasked frame"));
}

// The socket opens only on the page's socket path.
TEST_F(WebPanelSecurityTest, UpgradeOnlyOnTheSocketPath) {
    start();
    for (std::string const path : {"/", "/other", "/panel.js"}) {
        LoopbackConnection page(server->port());
        std::string const head = page.upgrade(path, origin());
        EXPECT_EQ(head.rfind("HTTP/1.1 404", 0), 0U) << path << ": " << head;
    }
    EXPECT_EQ(server->viewerCount(), 0U);
}

// Other methods get a complete 405 at once, also with a body the server does not want.
TEST_F(WebPanelSecurityTest, OtherMethodsGetACompleteMethodNotAllowed) {
    start();
    for (std::string const method : {"POST", "PUT", "DELETE"}) {
        LoopbackConnection client(server->port());
        std::string const body(2000, 'b');
        std::string request = method;
        request.append(" / HTTP/1.1\r\nHost: 127.0.0.1:")
            .append(std::to_string(server->port()))
            .append("\r\nContent-Type: text/plain\r\nContent-Length: ")
            .append(std::to_string(body.size()))
            .append("\r\n\r\n")
            .append(body);
        ASSERT_TRUE(client.send(request));
        std::string const response = client.readAll(std::chrono::seconds{5});
        EXPECT_EQ(response.rfind("HTTP/1.1 405 Method Not Allowed\r\n", 0), 0U) << response;
        EXPECT_NE(response.find("\r\nAllow: GET, HEAD\r\n"), std::string::npos);
        std::string const bodyText = "Method Not Allowed\n";
        EXPECT_NE(response.find("\r\nContent-Length: " + std::to_string(bodyText.size()) + "\r\n"),
                  std::string::npos);
        EXPECT_EQ(response.substr(response.size() - bodyText.size()), bodyText);
    }
}

// HEAD gets the page's head with its length and no body.
TEST_F(WebPanelSecurityTest, HeadGetsTheHeadOnly) {
    start();
    LoopbackConnection client(server->port());
    ASSERT_TRUE(client.send("HEAD / HTTP/1.1\r\nHost: localhost:" + std::to_string(server->port()) +
                            "\r\n\r\n"));
    std::string const response = client.readAll();
    EXPECT_EQ(response.rfind("HTTP/1.1 200 OK\r\n", 0), 0U) << response;
    EXPECT_EQ(response.substr(response.size() - 4), "\r\n\r\n");
    EXPECT_EQ(response.find("<html"), std::string::npos);
}

// Messages that are not keys are logged at debug level, a few per page, never at info.
TEST_F(WebPanelSecurityTest, IgnoredMessagesAreLoggedSparinglyAtDebug) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    for (int message = 0; message < 50; ++message) {
        ASSERT_TRUE(page->sendText("not json " + std::to_string(message)));
    }
    ASSERT_TRUE(page->sendText(R"({"key":"down"})"));
    ASSERT_TRUE(waitForFrame(*page, kCursorOnBeta));
    int debugLines = 0;
    for (auto const& record : logs.records()) {
        if (record.message.find("not a key") != std::string::npos) {
            EXPECT_EQ(record.level, kDebugLevel) << record.message;
            ++debugLines;
        }
    }
    EXPECT_EQ(debugLines, 3);
    EXPECT_FALSE(logged(kInfoLevel, "not a key"));
}

}  // namespace
