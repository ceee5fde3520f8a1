#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "remote_harness.h"
#include "scpi_client.h"

namespace {

using frontpanelhw::PanelKey;
using yxfp_test::eventually;
using yxfp_test::RemoteHarness;
using yxfp_test::ScpiClient;
using yxfrontpanel::runtime::scpi::Request;

constexpr unsigned kClients = 8;
constexpr unsigned kLinesPerBatch = 50;
constexpr unsigned kPanelKeys = 2000;

/** Commands per client: 10,000, or YXFP_REMOTE_LOAD_COMMANDS (the valgrind run sets a smaller
 *  number, since memcheck slows every command down many times; the sanitizer builds send all). */
unsigned commandsPerClient() {
    // Read before any client thread starts.
    char const* const text =
        std::getenv("YXFP_REMOTE_LOAD_COMMANDS");  // NOLINT(concurrency-mt-unsafe)
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : 10000U;
}

char const* keyName(unsigned index) {
    static char const* const kNames[] = {"UP", "DOWN", "LEFT", "RIGHT", "ENTER", "BACK"};
    return kNames[index % 6];
}

/** What one client checks of each answer it expects. */
struct Expected {
    enum class Kind { Echo, Text, Mode, Done } kind;
    unsigned number;
};

/** One client: sends its commands in batches of lines, each line a few mixed commands, and
 *  checks that every query is answered in order. Returns the number of answers checked. */
unsigned runClient(std::string const& address, unsigned client, unsigned commands,
                   std::string& failure) {
    ScpiClient connection(address);
    std::minstd_rand random(client + 1);
    unsigned sent = 0;
    unsigned answered = 0;
    unsigned echo = 0;
    while (sent < commands && failure.empty()) {
        std::string batch;
        std::vector<Expected> expected;
        for (unsigned line = 0; line < kLinesPerBatch && sent < commands; ++line) {
            std::string text;
            for (unsigned command = 0; command < 4 && sent < commands; ++command, ++sent) {
                text += text.empty() ? "" : ";:";
                switch (random() % 5) {
                    case 0:
                    case 1:
                        text += std::string("SYST:KEY ") + keyName(random());
                        break;
                    case 2:
                        text += "TEST:ECHO? " + std::to_string(++echo);
                        expected.push_back({Expected::Kind::Echo, echo});
                        break;
                    case 3:
                        text += "DISP:TEXT? " + std::to_string(random() % 4 + 1);
                        expected.push_back({Expected::Kind::Text, 0});
                        break;
                    default: {
                        bool const mode = random() % 2 == 0;
                        text += mode ? "SYST:MODE?" : "*OPC?";
                        expected.push_back({mode ? Expected::Kind::Mode : Expected::Kind::Done, 0});
                        break;
                    }
                }
            }
            batch += text + '\n';
        }
        if (!connection.send(batch)) {
            failure = "client " + std::to_string(client) + ": send failed";
            break;
        }
        for (auto const& answer : expected) {
            std::string const line = connection.readLine();
            bool const right =
                (answer.kind == Expected::Kind::Echo && line == std::to_string(answer.number)) ||
                (answer.kind == Expected::Kind::Text && line.size() >= 22 && line[0] == '"') ||
                (answer.kind == Expected::Kind::Mode && line == "LOC") ||
                (answer.kind == Expected::Kind::Done && line == "1");
            if (!right) {
                failure = "client " + std::to_string(client) + " answer " +
                          std::to_string(answered) + ": " + line;
                break;
            }
            ++answered;
        }
    }
    if (failure.empty() && connection.query("SYST:ERR?") != R"(0,"No error")") {
        failure = "client " + std::to_string(client) + " has errors";
    }
    return answered;
}

// Eight clients at once with the panel's own keys: every answer in order, and the panel ends in
// the state that the logged keys give when applied one after the other to a fresh menu.
TEST(RemoteLoadTest, EightClientsAndThePanelsKeysLoseNothing) {
    RemoteHarness harness;
    std::mutex logMutex;
    std::vector<PanelKey> applied;
    harness.panel.setEventHandler([&](frontpanelhw::KeyEvent const& event) {
        std::lock_guard<std::mutex> const lock(logMutex);
        applied.push_back(event.panelKey);
        return false;
    });
    harness.remote->commands().add(
        "TEST:ECHO?", [](Request& request) { request.respond(request.parameter(0).text); }, 1, 1);
    harness.start();

    unsigned const commands = commandsPerClient();
    std::vector<std::string> failures(kClients);
    std::vector<unsigned> answers(kClients);
    std::vector<std::thread> clients;
    for (unsigned client = 0; client < kClients; ++client) {
        clients.emplace_back([&, client] {
            answers[client] =
                runClient(client % 2 == 0 ? harness.tcpAddress() : harness.unixAddress(), client,
                          commands, failures[client]);
        });
    }
    std::minstd_rand random(99);
    for (unsigned key = 0; key < kPanelKeys; ++key) {
        harness.keys->press(static_cast<PanelKey>(random() % 6));
        std::this_thread::yield();
    }
    for (auto& client : clients) {
        client.join();
    }
    for (unsigned client = 0; client < kClients; ++client) {
        EXPECT_EQ(failures[client], "");
        EXPECT_GT(answers[client], commands / 3);
    }
    // The panel's own keys are served as their descriptor becomes readable: wait for the last.
    ScpiClient last(harness.tcpAddress());
    ASSERT_TRUE(eventually([&] {
        std::lock_guard<std::mutex> const lock(logMutex);
        return last.query("*OPC?") == "1" && applied.size() >= kPanelKeys;
    }));
    harness.stop();

    frontpanelhw::MemoryDisplay replayDisplay{20, 4};
    yxfrontpanel::DrawingProvider provider{replayDisplay};
    yxfp_test::RemoteTestMenu replay(provider);
    replay.root->setFocus(true);
    for (PanelKey const key : applied) {
        yxfrontpanel::applyKey(*replay.root, key);
    }
    auto const& panelScreen = harness.panel.currentScreen();
    auto const& replayScreen = replayDisplay.getLastFrame();
    for (unsigned line = 0; line < 4; ++line) {
        EXPECT_EQ(frontpanelhw::lineText(panelScreen, line),
                  frontpanelhw::lineText(replayScreen, line));
        EXPECT_EQ(frontpanelhw::invertedRanges(panelScreen, line),
                  frontpanelhw::invertedRanges(replayScreen, line));
    }
    EXPECT_EQ(harness.menu.heard, replay.heard);
}

}  // namespace
