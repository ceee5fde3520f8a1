// Reads of identity, screen and mode are answered from what the panel's thread published, so they
// never wait for a busy panel; a read after a change on the same connection waits for the change.
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/remote.h>

#include <gtest/gtest.h>

#include <future>
#include <string>

#include "remote_harness.h"
#include "scpi_client.h"

namespace {

using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;

/** Holds the panel's thread (as a hint that shows for a while does) until released. */
class PanelHold {
public:
    explicit PanelHold(yxfrontpanel::runtime::Panel& panel) {
        std::shared_future<void> const released = release_.get_future().share();
        std::promise<void>* const holding = &holding_;
        held_ = panel.post([released, holding] {
            holding->set_value();
            released.wait();
        });
        if (held_) {
            holding_.get_future().wait();
        }
    }
    ~PanelHold() { release(); }
    PanelHold(PanelHold const&) = delete;
    PanelHold& operator=(PanelHold const&) = delete;
    bool held() const { return held_; }
    void release() {
        if (!released_) {
            released_ = true;
            release_.set_value();
        }
    }

private:
    std::promise<void> release_;
    std::promise<void> holding_;
    bool held_ = false;
    bool released_ = false;
};

class RemoteReadersTest : public ::testing::Test {
protected:
    RemoteReadersTest() { harness.start(); }
    RemoteHarness harness;
};

TEST_F(RemoteReadersTest, ReadsAreAnsweredWhileThePanelIsHeld) {
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("SYST:KEY DOWN;:DISP:INV? 2"), R"("0-18")");
    PanelHold hold(harness.panel);
    ASSERT_TRUE(hold.held());
    EXPECT_EQ(client.query("*IDN?"), "Yx,Test Panel,T-1,0.1");
    EXPECT_EQ(client.query("DISP:TEXT? 2;INV? 2;:SYST:MODE?"), R"("Network             ")");
    EXPECT_EQ(client.readLine(), R"("0-18")");
    EXPECT_EQ(client.readLine(), "LOC");
    ScpiClient other(harness.unixAddress());
    EXPECT_EQ(other.query("DISP:INV? 2;*OPC?"), R"("0-18")");
    EXPECT_EQ(other.readLine(), "1");
}

TEST_F(RemoteReadersTest, AReadAfterAChangeOnTheSameConnectionWaitsForTheChange) {
    ScpiClient client(harness.tcpAddress());
    ScpiClient watcher(harness.tcpAddress());
    PanelHold hold(harness.panel);
    ASSERT_TRUE(hold.held());
    ASSERT_TRUE(client.send("SYST:KEY DOWN\nDISP:INV? 2\n"));
    // Another client's read is answered meanwhile, from the screen before the key.
    EXPECT_EQ(watcher.query("DISP:INV? 1"), R"("0-18")");
    hold.release();
    EXPECT_EQ(client.readLine(), R"("0-18")");
    // Another connection is not ordered after this one's change: it sees the key once the panel
    // has published the screen after it.
    EXPECT_TRUE(yxfp_test::eventually([&] { return watcher.query("DISP:INV? 1") == R"("")"; }));
}

// Each line alone: a key press, then a read on a line of its own sees the moved selection.
TEST_F(RemoteReadersTest, AReadOnTheNextLineSeesTheKeyOfTheLineBefore) {
    ScpiClient client(harness.tcpAddress());
    for (int round = 0; round < 50; ++round) {
        std::string const key = round % 2 == 0 ? "DOWN" : "UP";
        std::string const line = round % 2 == 0 ? "2" : "1";
        ASSERT_TRUE(client.sendLine("SYST:KEY " + key));
        ASSERT_EQ(client.query("DISP:INV? " + line), R"("0-18")") << round;
    }
}

TEST_F(RemoteReadersTest, ModeChangesAreSeenByTheNextRead) {
    ScpiClient client(harness.tcpAddress());
    ASSERT_TRUE(client.sendLine("SYST:REM"));
    EXPECT_EQ(client.query("SYST:MODE?"), "REM");
    ASSERT_TRUE(client.sendLine("SYST:LOC"));
    EXPECT_EQ(client.query("SYST:MODE?"), "LOC");
}

// A line that only fails (unknown headers, a header past the parser's limits) changes nothing
// but the client's error queue: it is answered off the panel's thread, so lines of garbage
// never queue up in front of the panel's key presses.
TEST_F(RemoteReadersTest, LinesThatOnlyFailNeverWaitForThePanel) {
    ScpiClient client(harness.tcpAddress());
    PanelHold hold(harness.panel);
    ASSERT_TRUE(hold.held());
    std::string deep;
    for (int i = 0; i < 1000; ++i) {
        deep += "A:";
    }
    ASSERT_TRUE(client.send("NO:SUCH:COMMAND\n" + deep + "A;A;A\nFOO;*IDN?\n"));
    EXPECT_EQ(client.readLine(), "Yx,Test Panel,T-1,0.1");
    hold.release();
    EXPECT_EQ(client.query("SYST:ERR:COUN?"), "3");
}

// A change that posts more work to the panel (an item whose value reaches the screen through
// a posted publication, an application command) is finished only when that work has run: a
// read on the next line waits for it instead of answering from the screen before it.
TEST(RemoteReadersFollowUpTest, AReadAfterAChangeSeesWhatTheChangePostedToThePanel) {
    RemoteHarness harness;
    std::promise<void> started;
    std::promise<void> gate;
    std::shared_future<void> const released = gate.get_future().share();
    yxfrontpanel::runtime::Panel* const panel = &harness.panel;
    yxfrontpanel::IMenuTree* const root = harness.menu.root.get();
    harness.remote->commands().add(
        "TEST:FOLLow", [panel, root, &started, released](yxfrontpanel::runtime::scpi::Request&) {
            panel->post([root, &started, released] {
                started.set_value();
                released.wait();
                yxfrontpanel::applyKey(*root, frontpanelhw::PanelKey::Down);
            });
        });
    harness.start();
    ScpiClient client(harness.tcpAddress());
    EXPECT_EQ(client.query("DISP:INV? 2"), R"("")");
    ASSERT_TRUE(client.sendLine("TEST:FOLL"));
    started.get_future().wait();  // the line has run; what it posted waits
    ASSERT_TRUE(client.sendLine("DISP:INV? 2"));
    gate.set_value();
    EXPECT_EQ(client.readLine(), R"("0-18")");
}

}  // namespace
