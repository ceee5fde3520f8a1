#pragma once

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

namespace yxfp_test {

using yxfrontpanel::runtime::WebPanelOptions;
using yxfrontpanel::runtime::WebPanelServer;

inline std::string const kFirstFrame =
    R"({"type":"frame","chars":20,"lines":4,"local":true,"text":["Alpha               ",)"
    R"("Beta                ","Gamma               ","Delta              ▼"],)"
    R"("inverted":[[[0,18]],[],[],[]]})";
inline std::string const kCursorOnBeta =
    R"({"type":"frame","chars":20,"lines":4,"local":true,"text":["Alpha               ",)"
    R"("Beta                ","Gamma               ","Delta              ▼"],)"
    R"("inverted":[[],[[0,18]],[],[]]})";

/** A running 20x4 panel (five entries) on its own thread with a web server on a free port. */
class WebPanelTest : public ::testing::Test {
protected:
    void start(WebPanelOptions options = {},
               std::shared_ptr<yxfrontpanel::runtime::IClock> clock = nullptr) {
        options.port = 0;
        yxfrontpanel::runtime::PanelOptions panelOptions;
        // A clock moved by hand has no frame rate to keep: every screen is drawn at once.
        panelOptions.framesPerSecond = clock ? 0 : 1000;
        panelOptions.idleTimeout = idleTimeout;
        panel = std::make_unique<yxfrontpanel::runtime::Panel>(display, panelOptions, clock);
        tree = yxfrontpanel::MenuTreeFactory().create(panel->provider());
        for (char16_t const* name : {u"Alpha", u"Beta", u"Gamma", u"Delta", u"Epsilon"}) {
            tree->addItem(std::make_shared<yxfp_test::TestItem>(name));
        }
        tree->setLocal(true);
        panel->setRoot(*tree);
        if (homeScreen) {
            panel->setHomeScreen(homeScreen);
        }
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
        std::string const head = page->upgrade(path, origin());
        EXPECT_NE(head.find(" 101 "), std::string::npos) << head;
        auto const greeting = page->receiveText();
        if (hello != nullptr && greeting) {
            *hello = *greeting;
        }
        return page;
    }

    /** The Origin of a page served by the test's server. */
    std::string origin() const { return "http://127.0.0.1:" + std::to_string(server->port()); }

    /** Runs a bounded number of panel turns until the server counts `viewers` pages. */
    bool waitForViewers(unsigned viewers) {
        for (int turns = 0; turns < 2000 && server->viewerCount() != viewers; ++turns) {
            std::promise<void> served;
            panel->post([&served] { served.set_value(); });
            served.get_future().wait();
        }
        return server->viewerCount() == viewers;
    }

    /** Whether a log line at `level` contains `text`. */
    bool logged(int level, std::string const& text) {
        for (auto const& record : logs.records()) {
            if (record.level == level && record.message.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
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

    /** Set before `start`: the panel's idle timeout and home screen. */
    std::chrono::milliseconds idleTimeout{0};
    yxfrontpanel::runtime::Panel::HomeScreen homeScreen;

    yxfp_test::LogCapture logs;  // keeps the server's log lines out of the output
    frontpanelhw::MemoryDisplay display{20, 4};
    std::unique_ptr<yxfrontpanel::runtime::Panel> panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
    std::unique_ptr<WebPanelServer> server;
    std::thread runner;
};

}  // namespace yxfp_test
