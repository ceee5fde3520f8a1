#include <future>
#include <string>

#include "web_panel_fixture.h"

namespace {

using yxfp_test::kCursorOnBeta;
using yxfp_test::kFirstFrame;
using yxfp_test::LoopbackConnection;
using yxfp_test::WebPanelTest;
using yxfrontpanel::runtime::WebPanelOptions;
using yxfrontpanel::runtime::WebPanelServer;

// The page is one self-contained document; nothing is loaded from elsewhere.
TEST_F(WebPanelTest, ServesTheSelfContainedPage) {
    start();
    LoopbackConnection client(server->port());
    std::string const response = client.get("/");
    EXPECT_EQ(response.rfind("HTTP/1.1 200", 0), 0U) << response.substr(0, 200);
    EXPECT_NE(response.find("text/html"), std::string::npos);
    EXPECT_NE(response.find("<title>Front panel</title>"), std::string::npos);
    EXPECT_NE(response.find("</html>"), std::string::npos);
    EXPECT_EQ(response.find("src=\"http"), std::string::npos);
    EXPECT_EQ(response.find("href=\"http"), std::string::npos);
}

// Any other path is not found.
TEST_F(WebPanelTest, UnknownPathIsNotFound) {
    start();
    LoopbackConnection client(server->port());
    std::string const response = client.get("/etc/passwd");
    EXPECT_EQ(response.rfind("HTTP/1.1 404", 0), 0U) << response.substr(0, 200);
}

// An oversized request head is refused with 431 and the server goes on serving.
TEST_F(WebPanelTest, OversizedRequestIsRefused) {
    start();
    {
        LoopbackConnection client(server->port());
        std::string const response =
            client.get("/", "X-Filler: " + std::string(std::size_t{64} * 1024, 'x') + "\r\n");
        EXPECT_EQ(response.rfind("HTTP/1.1 431 Request Header Fields Too Large\r\n", 0), 0U)
            << response.substr(0, 200);
    }
    LoopbackConnection client(server->port());
    EXPECT_EQ(client.get("/").rfind("HTTP/1.1 200", 0), 0U);
}

// A page gets the hello, then the panel's frame; its keys move the panel.
TEST_F(WebPanelTest, PageSeesFramesAndPressesKeys) {
    start();
    std::string hello;
    auto page = openPage("/panel", &hello);
    EXPECT_EQ(hello, R"({"type":"hello","control":true})");
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    ASSERT_TRUE(page->sendText(R"({"key":"down"})"));
    EXPECT_TRUE(waitForFrame(*page, kCursorOnBeta));
    EXPECT_EQ(server->viewerCount(), 1U);
}

// Quotes and backslashes reach the page escaped, glyphs as UTF-8, and a line's inverted runs
// each as a pair.
TEST_F(WebPanelTest, FrameTextIsEscapedAndEveryInvertedRunSent) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    frontpanelhw::drawing::DisplayLine line;
    line.appendText(u"\"a\" \\ b!", 8, false);
    line.appendFill(0xDB, 3, true);
    line.setInverted(0, 1, true);
    frontpanelhw::drawing::DisplayBuffer screen(20, 4);
    screen.setDisplayLine(2, line);
    panel->post([this, screen] { panel->provider().draw(screen); });
    EXPECT_TRUE(
        waitForFrame(*page, R"({"type":"frame","chars":20,"lines":4,"local":true,"text":[")" +
                                std::string(20, ' ') + R"(",")" + std::string(20, ' ') +
                                R"(","\"a\" \\ b!███         ",")" + std::string(20, ' ') +
                                R"("],"inverted":[[],[],[[0,1],[8,10]],[]]})"));
}

// The defaults: loopback, port 8080, no token, eight pages.
TEST(WebPanelOptionsTest, DefaultsAreSafe) {
    WebPanelOptions const options;
    EXPECT_EQ(options.address, "127.0.0.1");
    EXPECT_EQ(options.port, 8080);
    EXPECT_EQ(options.accessToken, "");
    EXPECT_EQ(options.maxViewers, 8U);
}

// Two pages see the same frames.
TEST_F(WebPanelTest, TwoPagesSeeTheSameFrames) {
    start();
    auto first = openPage();
    auto second = openPage();
    ASSERT_TRUE(waitForFrame(*first, kFirstFrame));
    ASSERT_TRUE(waitForFrame(*second, kFirstFrame));
    ASSERT_TRUE(first->sendText(R"({"key":"down"})"));
    EXPECT_TRUE(waitForFrame(*first, kCursorOnBeta));
    EXPECT_TRUE(waitForFrame(*second, kCursorOnBeta));
}

// A mode switch reaches the pages although it draws no frame of its own.
TEST_F(WebPanelTest, ModeSwitchReachesThePage) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    panel->post([this] { tree->setLocal(false); });
    std::string remote = kFirstFrame;
    remote.replace(remote.find("\"local\":true"), 12, "\"local\":false");
    EXPECT_TRUE(waitForFrame(*page, remote));
}

// With a token, a page without it is a read-only viewer; with it, it may press keys.
TEST_F(WebPanelTest, WithoutTheTokenAPageOnlyWatches) {
    WebPanelOptions options;
    options.accessToken = "s3cret";
    start(options);
    std::string hello;
    auto viewer = openPage("/panel", &hello);
    EXPECT_EQ(hello, R"({"type":"hello","control":false})");
    ASSERT_TRUE(waitForFrame(*viewer, kFirstFrame));
    ASSERT_TRUE(viewer->sendText(R"({"key":"down"})"));
    ASSERT_TRUE(viewer->sendText(R"({"key":"down"})"));
    auto controller = openPage("/panel?token=s3cret", &hello);
    EXPECT_EQ(hello, R"({"type":"hello","control":true})");
    ASSERT_TRUE(controller->sendText(R"({"key":"down"})"));
    EXPECT_TRUE(waitForFrame(*controller, kCursorOnBeta));  // only the controller's key moved
    EXPECT_TRUE(waitForFrame(*viewer, kCursorOnBeta));
}

// More pages than allowed are refused; one that leaves frees its place.
TEST_F(WebPanelTest, ViewerLimit) {
    WebPanelOptions options;
    options.maxViewers = 2;
    start(options);
    auto first = openPage();
    auto second = openPage();
    {
        LoopbackConnection third(server->port());
        std::string const head = third.upgrade("/panel", origin());
        EXPECT_EQ(head.find(" 101 "), std::string::npos) << head;
    }
    first.reset();
    // The server notices the close on its own thread: wait for the count, bounded.
    EXPECT_TRUE(waitForViewers(1));
    auto again = openPage();
    EXPECT_TRUE(waitForFrame(*again, kFirstFrame));
}

// A WebSocket from a page of another site is refused.
TEST_F(WebPanelTest, ForeignOriginIsRefused) {
    start();
    LoopbackConnection page(server->port());
    std::string const head = page.upgrade("/panel", "http://evil.example");
    EXPECT_EQ(head.rfind("HTTP/1.1 403", 0), 0U) << head;
    EXPECT_TRUE(logged(4, "origin http://evil.example is not a host of this panel"));
}

// Messages that are not keys are ignored; the page stays connected and its keys work.
TEST_F(WebPanelTest, MalformedMessagesAreIgnored) {
    start();
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    ASSERT_TRUE(page->sendText("not json at all"));
    ASSERT_TRUE(page->sendText(R"({"key":"sideways"})"));
    ASSERT_TRUE(page->sendText(R"({"key":"down"})"));
    EXPECT_TRUE(waitForFrame(*page, kCursorOnBeta));
}

// A page that never reads does not hold up the panel or the other pages; when it reads at last
// it ends on the newest frame.
TEST_F(WebPanelTest, SlowPageDoesNotBlockThePanel) {
    start();
    auto slow = openPage();
    auto fast = openPage();
    ASSERT_TRUE(waitForFrame(*fast, kFirstFrame));
    for (int round = 0; round < 2000; ++round) {
        panel->pressKey(round % 2 == 0 ? frontpanelhw::PanelKey::Down : frontpanelhw::PanelKey::Up);
    }
    panel->pressKey(frontpanelhw::PanelKey::Down);
    std::promise<void> served;
    panel->post([&served] { served.set_value(); });
    served.get_future().wait();  // every key press has been handled
    EXPECT_TRUE(waitForFrame(*fast, kCursorOnBeta));
    EXPECT_TRUE(waitForFrame(*slow, kCursorOnBeta));
}

}  // namespace
