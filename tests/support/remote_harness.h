#pragma once

#include <frontpanelhw/display.h>
#include <yxfrontpanel/remote.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform_capture.h"
#include "queued_key_source.h"
#include "remote_test_menu.h"
#include <unistd.h>

namespace yxfp_test {

/** Polls `done` (yielding, never sleeping) until it is true or 30 s have passed; returns it. */
inline bool eventually(std::function<bool()> const& done) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds{30};
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

/** A 20x4 panel with the remote test menu running on its own thread, and its command server
 *  on an ephemeral loopback port and a Unix socket in a fresh directory. Hints pass at once. */
class RemoteHarness {
public:
    explicit RemoteHarness(yxfrontpanel::runtime::RemoteControlOptions options = {})
        : clock(std::make_shared<yxfrontpanel::testing::ManualClock>()),
          panel(display, {}, clock),
          menu(panel.provider()),
          keys(std::make_shared<QueuedKeySource>()) {
        char pattern[] = "/tmp/yxfp-remote-XXXXXX";
        directory_ = ::mkdtemp(pattern);
        options.server.listen = {"127.0.0.1:0", "unix:" + directory_ + "/panel.sock"};
        options.identity = {"Yx", "Test Panel", "T-1", "0.1"};
        panel.setRoot(*menu.root);
        panel.addKeySource(keys);
        remote = std::make_unique<yxfrontpanel::runtime::RemoteControl>(panel, options);
    }
    ~RemoteHarness() {
        stop();
        remote.reset();
        ::rmdir(directory_.c_str());
    }
    RemoteHarness(RemoteHarness const&) = delete;
    RemoteHarness& operator=(RemoteHarness const&) = delete;

    /** Starts the server and the panel's thread. */
    void start() {
        remote->start();
        thread_ = std::thread([this] { panel.run(); });
    }
    /** Stops the server, then the panel, and joins its thread. */
    void stop() {
        remote->stop();
        panel.stop();
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    std::string tcpAddress() const { return remote->addresses().at(0); }
    std::string unixAddress() const { return remote->addresses().at(1); }

    SleepCapture noWaiting;
    frontpanelhw::MemoryDisplay display{20, 4};
    std::shared_ptr<yxfrontpanel::testing::ManualClock> clock;
    yxfrontpanel::runtime::Panel panel;
    RemoteTestMenu menu;
    std::shared_ptr<QueuedKeySource> keys;
    std::unique_ptr<yxfrontpanel::runtime::RemoteControl> remote;

private:
    std::string directory_;
    std::thread thread_;
};

}  // namespace yxfp_test
