#include "session.h"

#include <frontpanelhw/display.h>
#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "echo_app.h"

namespace {

using frontpanelsim::Attachments;
using frontpanelsim::RunKind;
using frontpanelsim::Session;
using frontpanelsim::SimContext;

// Writes what happens to it into a shared log, named.
class LoggingAttachment : public frontpanelsim::Attachment {
public:
    LoggingAttachment(std::string name, std::shared_ptr<std::vector<std::string>> log,
                      bool refuse = false)
        : name_(std::move(name)), log_(std::move(log)), refuse_(refuse) {}
    void attach(SimContext const& context) override {
        if (refuse_) {
            throw std::runtime_error(name_ + " refused");
        }
        log_->push_back("attach " + name_ + (context.kind == RunKind::KeyScript ? " script" : ""));
    }
    void detach() noexcept override { log_->push_back("detach " + name_); }

private:
    std::string name_;
    std::shared_ptr<std::vector<std::string>> log_;
    bool refuse_;
};

class SessionTest : public ::testing::Test {
protected:
    std::unique_ptr<Session> makeSession() {
        auto journal = journal_;
        return std::make_unique<Session>(
            display_, yxfrontpanel::runtime::PanelOptions{},
            std::make_shared<yxfrontpanel::testing::ManualClock>(),
            [journal](yxfrontpanel::IDrawingProvider const& provider) {
                return std::make_unique<yxfp_test::EchoApp>(provider, journal);
            },
            options_, RunKind::KeyScript);
    }
    Attachments two(bool secondRefuses = false) {
        Attachments attachments;
        attachments.push_back(std::make_unique<LoggingAttachment>("first", log));
        attachments.push_back(std::make_unique<LoggingAttachment>("second", log, secondRefuses));
        return attachments;
    }

    std::shared_ptr<std::vector<std::string>> log = std::make_shared<std::vector<std::string>>();

private:
    frontpanelhw::MemoryDisplay display_{6, 2};
    frontpanelsim::SimOptions options_;
    std::shared_ptr<yxfp_test::Journal> journal_ = std::make_shared<yxfp_test::Journal>();
};

// Attached in order, detached in reverse when the session goes.
TEST_F(SessionTest, AttachesInOrderAndDetachesInReverse) {
    {
        auto session = makeSession();
        session->attach(two());
        EXPECT_EQ(session->panel().root(), &session->app().root());
    }
    EXPECT_EQ(*log, (std::vector<std::string>{"attach first script", "attach second script",
                                              "detach second", "detach first"}));
}

// A restart: the attachments of one session are detached, handed back and attached again to
// the next one.
TEST_F(SessionTest, AttachmentsMoveToANewSession) {
    auto session = makeSession();
    session->attach(two());
    Attachments attachments = session->detach();
    ASSERT_EQ(attachments.size(), 2U);
    session = makeSession();
    session->attach(std::move(attachments));
    session.reset();
    EXPECT_EQ(*log,
              (std::vector<std::string>{"attach first script", "attach second script",
                                        "detach second", "detach first", "attach first script",
                                        "attach second script", "detach second", "detach first"}));
}

// One that cannot attach undoes those before it and passes its exception on.
TEST_F(SessionTest, FailingAttachmentDetachesTheOnesBefore) {
    auto session = makeSession();
    EXPECT_THROW(session->attach(two(true)), std::runtime_error);
    session.reset();
    EXPECT_EQ(*log, (std::vector<std::string>{"attach first script", "detach first"}));
}

}  // namespace
