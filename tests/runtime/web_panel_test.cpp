#include <frontpanelhw/display.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/web.h>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "loopback_http.h"
#include "menu_test_items.h"
#include "platform_capture.h"

namespace {

using yxfp_test::LoopbackConnection;
using yxfrontpanel::runtime::WebPanelOptions;
using yxfrontpanel::runtime::WebPanelServer;

std::string const kFirstFrame =
    R"({"type":"frame","chars":20,"lines":4,"local":true,"text":["Alpha               ",)"
    R"("Beta                ","Gamma               ","Delta              ▼"],)"
    R"("inverted":[[[0,18]],[],[],[]]})";
std::string const kCursorOnBeta =
    R"({"type":"frame","chars":20,"lines":4,"local":true,"text":["Alpha               ",)"
    R"("Beta                ","Gamma               ","Delta              ▼"],)"
    R"("inverted":[[],[[0,18]],[],[]]})";

/** A running 20x4 panel (five entries) on its own thread with a web server on a free port. */
class WebPanelTest : public ::testing::Test {
protected:
    void start(WebPanelOptions options = {}) {
        options.port = 0;
        yxfrontpanel::runtime::PanelOptions panelOptions;
        panelOptions.framesPerSecond = 1000;
        panel = std::make_unique<yxfrontpanel::runtime::Panel>(display, panelOptions);
        tree = yxfrontpanel::MenuTreeFactory().create(panel->provider());
        for (char16_t const* name : {u"Alpha", u"Beta", u"Gamma", u"Delta", u"Epsilon"}) {
            tree->addItem(std::make_shared<yxfp_test::TestItem>(name));
        }
        tree->setLocal(true);
        panel->setRoot(*tree);
        server = std::make_unique<WebPanelServer>(*panel, options);
        runner = std::thread([this] { panel->run(); });
    }

    void TearDown() override {
        if (panel) {
            panel->stop();
            runner.join();
        }
        server.reset();
    }

    /** A page's WebSocket, handshake done and hello read. */
    std::unique_ptr<LoopbackConnection> openPage(std::string const& path = "/panel",
                                                 std::string* hello = nullptr) {
        auto page = std::make_unique<LoopbackConnection>(server->port());
        std::string const head = page->upgrade(path, "http://127.0.0.1");
        EXPECT_NE(head.find(" 101 "), std::string::npos) << head;
        auto const greeting = page->receiveText();
        if (hello != nullptr && greeting) {
            *hello = *greeting;
        }
        return page;
    }

    /** Reads frames until one equals `expected`; false when none did in time. */
    static bool waitForFrame(LoopbackConnection& page, std::string const& expected) {
        for (int frames = 0; frames < 1000; ++frames) {
            auto const frame = page.receiveText();
            if (!frame) {
                return false;
            }
            if (*frame == expected) {
                return true;
            }
        }
        return false;
    }

    yxfp_test::LogCapture logs;  // keeps the server's log lines out of the output
    frontpanelhw::MemoryDisplay display{20, 4};
    std::unique_ptr<yxfrontpanel::runtime::Panel> panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
    std::unique_ptr<WebPanelServer> server;
    std::thread runner;
};

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

// An oversized request is refused and the server goes on serving.
TEST_F(WebPanelTest, OversizedRequestIsRefused) {
    start();
    {
        LoopbackConnection client(server->port());
        std::string const response =
            client.get("/", "X-Filler: " + std::string(std::size_t{64} * 1024, 'x') + "\r\n");
        EXPECT_EQ(response.find("200 OK"), std::string::npos) << response.substr(0, 200);
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
        std::string const head = third.upgrade("/panel", "http://127.0.0.1");
        EXPECT_EQ(head.find(" 101 "), std::string::npos) << head;
    }
    first.reset();
    // The server notices the close on its own thread: wait for the count, bounded.
    for (int turns = 0; turns < 500 && server->viewerCount() != 1; ++turns) {
        std::promise<void> served;
        panel->post([&served] { served.set_value(); });
        served.get_future().wait();
    }
    EXPECT_EQ(server->viewerCount(), 1U);
    auto again = openPage();
    EXPECT_TRUE(waitForFrame(*again, kFirstFrame));
}

// A WebSocket from a page of another site is refused.
TEST_F(WebPanelTest, ForeignOriginIsRefused) {
    start();
    LoopbackConnection page(server->port());
    std::string const head = page.upgrade("/panel", "http://evil.example");
    EXPECT_EQ(head.find(" 101 "), std::string::npos) << head;
    bool logged = false;
    for (auto const& record : logs.records()) {
        logged |= record.message.find("origin http://evil.example is not the served host") !=
                  std::string::npos;
    }
    EXPECT_TRUE(logged);
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
