#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <chrono>
#include <memory>
#include <string>

#include "long_run.h"
#include "web_panel_fixture.h"

namespace {

using yxfp_test::kCursorOnBeta;
using yxfp_test::kFirstFrame;
using yxfp_test::LoopbackConnection;
using yxfrontpanel::runtime::WebPanelOptions;
using yxfrontpanel::runtime::WebPanelServer;
using yxfrontpanel::testing::ManualClock;

/** The web panel's life beside a running panel: servers come and go, pages stall. */
class WebPanelLifecycleTest : public yxfp_test::WebPanelTest {};

// Servers are created and destroyed while the panel runs, draws and has pages connected; every
// server serves its page, and nothing of a gone server is used afterwards (run it under the
// thread and address sanitizers).
TEST_F(WebPanelLifecycleTest, ThousandServersComeAndGoWhileThePanelRuns) {
    start();
    server.reset();
    for (int cycle = 0; cycle < yxfp_test::lifecycleCycles(); ++cycle) {
        WebPanelOptions options;
        options.port = 0;
        server = std::make_unique<WebPanelServer>(*panel, options);
        auto page = std::make_unique<LoopbackConnection>(server->port());
        std::string const head = page->upgrade("/panel", origin());
        ASSERT_EQ(head.rfind("HTTP/1.1 101", 0), 0U) << "cycle " << cycle << ": " << head;
        ASSERT_TRUE(page->receiveText()) << "cycle " << cycle;  // the hello
        panel->pressKey(cycle % 2 == 0 ? frontpanelhw::PanelKey::Down : frontpanelhw::PanelKey::Up);
        if (cycle % 2 == 1) {
            server.reset();  // the page still connected
        } else {
            page.reset();
            server.reset();
        }
    }
    WebPanelOptions options;
    server = std::make_unique<WebPanelServer>(*panel, options);
    auto page = openPage();
    EXPECT_TRUE(waitForFrame(*page, kFirstFrame));
}

// The idle home screen, drawn again after every turn with posted work, reaches a page once.
TEST_F(WebPanelLifecycleTest, IdenticalFramesAreSentOnce) {
    auto clock = std::make_shared<ManualClock>();
    idleTimeout = std::chrono::seconds{1};
    homeScreen = [](yxfrontpanel::IDrawingProvider const& provider) {
        frontpanelhw::drawing::DisplayLine line;
        line.appendText(u"Home", 4, false);
        frontpanelhw::drawing::DisplayBuffer screen(20, 4);
        screen.setDisplayLine(0, line);
        provider.draw(screen);
    };
    start({}, clock);
    auto page = openPage();
    ASSERT_TRUE(waitForFrame(*page, kFirstFrame));
    clock->advance(std::chrono::seconds{2});
    std::string const home = R"({"type":"frame","chars":20,"lines":4,"local":true,"text":[)"
                             R"("Home                ",")" +
                             std::string(20, ' ') + R"(",")" + std::string(20, ' ') + R"(",")" +
                             std::string(20, ' ') + R"("],"inverted":[[],[],[],[]]})";
    ASSERT_TRUE(waitForFrame(*page, home));
    for (int turn = 0; turn < 20; ++turn) {
        std::promise<void> served;
        panel->post([&served] { served.set_value(); });
        served.get_future().wait();
    }
    panel->pressKey(frontpanelhw::PanelKey::Down);  // leaves the home screen
    auto const next = page->receiveText();
    ASSERT_TRUE(next);
    EXPECT_NE(*next, home);
}

// A page that stops reading is dropped once it has taken no frame for the bound while newer
// ones waited; a page that reads gets every frame meanwhile.
TEST_F(WebPanelLifecycleTest, StalledPageIsDroppedWithoutDelayingTheOthers) {
    auto clock = std::make_shared<ManualClock>();
    WebPanelOptions options;
    options.stalledViewerTimeout = std::chrono::seconds{10};
    start(options, clock);
    auto stalled = std::make_unique<LoopbackConnection>(server->port(), 2048);
    ASSERT_EQ(stalled->upgrade("/panel", origin()).rfind("HTTP/1.1 101", 0), 0U);
    auto reader = openPage();
    ASSERT_TRUE(waitForFrame(*reader, kFirstFrame));
    // Enough frames to fill what the kernel buffers for the stalled page (its own small receive
    // buffer and the server's send buffer, some 70 KiB on loopback) several times over.
    for (int round = 0; round < 2000; ++round) {
        bool const down = round % 2 == 0;
        panel->pressKey(down ? frontpanelhw::PanelKey::Down : frontpanelhw::PanelKey::Up);
        ASSERT_TRUE(waitForFrame(*reader, down ? kCursorOnBeta : kFirstFrame)) << round;
    }
    EXPECT_EQ(server->viewerCount(), 2U);
    // Twice past the timeout, each with a new frame: whichever frame the server first found the
    // stalled page behind on, the second one comes more than the timeout after it.
    for (auto key : {frontpanelhw::PanelKey::Down, frontpanelhw::PanelKey::Up}) {
        clock->advance(std::chrono::seconds{11});
        panel->pressKey(key);
        ASSERT_TRUE(waitForFrame(
            *reader, key == frontpanelhw::PanelKey::Down ? kCursorOnBeta : kFirstFrame));
    }
    EXPECT_TRUE(waitForViewers(1));
    EXPECT_TRUE(logged(4, "took no frame for 10000 ms; dropped"));
    panel->pressKey(frontpanelhw::PanelKey::Down);
    EXPECT_TRUE(waitForFrame(*reader, kCursorOnBeta));
}

}  // namespace
