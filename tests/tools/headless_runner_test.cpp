#include <yxfrontpanel/runtime/panel.h>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <sstream>

#include "echo_app.h"
#include "queued_key_source.h"
#include "runners.h"

namespace {

using frontpanelhw::KeyEvent;
using frontpanelhw::PanelKey;

// What an attachment saw of its run; outlives the attachment, which the runner destroys.
struct Outcome {
    bool attached = false;
    bool detached = false;
    bool signalled = false;
};

// Adds a key source that gives one key and closes. Once it closed, work posted a turn later
// sends SIGTERM the way a service manager would: it runs only when the run goes on after the
// close.
class KeysThenSignal : public frontpanelsim::Attachment {
public:
    KeysThenSignal(bool server, std::shared_ptr<Outcome> outcome)
        : server_(server), outcome_(std::move(outcome)) {}

    void attach(frontpanelsim::SimContext const& context) override {
        auto keys = std::make_shared<yxfp_test::QueuedKeySource>();
        keys->press(PanelKey::Down);
        keys->closeInput();
        context.panel.addKeySource(keys);
        auto& panel = context.panel;
        auto outcome = outcome_;
        panel.setEventHandler([&panel, outcome](KeyEvent const& event) {
            if (event.kind == KeyEvent::Kind::Closed) {
                panel.post([&panel, outcome] {
                    panel.post([outcome] {
                        outcome->signalled = true;
                        std::raise(SIGTERM);
                    });
                });
            }
            return false;
        });
        outcome_->attached = true;
    }
    void detach() noexcept override { outcome_->detached = true; }
    bool keepsRunning() const override { return server_; }

private:
    bool server_;
    std::shared_ptr<Outcome> outcome_;
};

int runHeadless(bool server, std::shared_ptr<Outcome> const& outcome, std::ostream& err) {
    frontpanelsim::SimOptions options;
    options.chars = 6;
    options.lines = 2;
    options.headless = true;
    frontpanelsim::Attachments attachments;
    attachments.push_back(std::make_unique<KeysThenSignal>(server, outcome));
    auto const journal = std::make_shared<yxfp_test::Journal>();
    return frontpanelsim::runHeadless(
        options,
        [journal](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<yxfp_test::EchoApp>(provider, journal);
        },
        std::move(attachments), err);
}

TEST(HeadlessRunnerTest, EndsWhenItsKeySourcesCloseAndNoServerIsAttached) {
    auto const outcome = std::make_shared<Outcome>();
    std::ostringstream err;
    EXPECT_EQ(runHeadless(false, outcome, err), 0) << err.str();
    EXPECT_EQ(err.str(), "");
    EXPECT_TRUE(outcome->attached);
    EXPECT_TRUE(outcome->detached);
    EXPECT_FALSE(outcome->signalled) << "the run went on after its inputs closed";
}

TEST(HeadlessRunnerTest, ServerKeepsItRunningUntilSigterm) {
    auto const outcome = std::make_shared<Outcome>();
    std::ostringstream err;
    EXPECT_EQ(runHeadless(true, outcome, err), 0) << err.str();
    EXPECT_TRUE(outcome->attached);
    EXPECT_TRUE(outcome->detached);
    EXPECT_TRUE(outcome->signalled) << "the run ended before the signal";
}

// An attachment that cannot plug in fails the run with its message; nothing runs.
TEST(HeadlessRunnerTest, FailingAttachmentFailsTheRun) {
    class Refusing : public frontpanelsim::Attachment {
    public:
        void attach(frontpanelsim::SimContext const& /*context*/) override {
            throw std::runtime_error("port 5025 is in use");
        }
        void detach() noexcept override {}
    };
    frontpanelsim::SimOptions options;
    options.chars = 6;
    options.lines = 2;
    frontpanelsim::Attachments attachments;
    attachments.push_back(std::make_unique<Refusing>());
    auto const journal = std::make_shared<yxfp_test::Journal>();
    std::ostringstream err;
    int const status = frontpanelsim::runHeadless(
        options,
        [journal](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<yxfp_test::EchoApp>(provider, journal);
        },
        std::move(attachments), err);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(err.str(), "frontpanel-sim: port 5025 is in use\n");
}

}  // namespace
