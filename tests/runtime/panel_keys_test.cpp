#include <frontpanelhw/display.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/testing/manual_clock.h>
#include <yxfrontpanel/trigger_menu_item.h>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

#include "panel_fixture.h"
#include "platform_capture.h"

namespace {

using frontpanelhw::KeyEvent;
using frontpanelhw::PanelKey;
using yxfp_test::PanelFixture;
using namespace std::chrono_literals;

using PanelKeysTest = PanelFixture;

std::vector<std::u16string> const kMenu = {u"Alpha               ", u"Beta                ",
                                           u"Gamma               ", u"Delta              \x1f"};

// The first turn gives the root the focus and draws the menu once.
TEST_F(PanelKeysTest, FirstTurnDrawsTheMenu) {
    turn();
    EXPECT_EQ(display.getDrawCount(), 1U);
    EXPECT_EQ(shown(), kMenu);
    EXPECT_EQ(invertedLine(), 0);
}

// Keys of a source reach the tree in order; a lone key press is drawn at once.
TEST_F(PanelKeysTest, KeysMoveTheCursorAndDrawAtOnce) {
    turn();
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(invertedLine(), 1);
    keys->press(PanelKey::Enter);
    advance(1s);
    EXPECT_EQ(shown()[0], u"Form Beta           ");
    keys->press(PanelKey::Back);
    advance(1s);
    EXPECT_EQ(shown(), kMenu);
    EXPECT_EQ(invertedLine(), 1);
}

// pressKey goes the same way as a key of a source.
TEST_F(PanelKeysTest, PressKeyActsLikeASourceKey) {
    turn();
    ASSERT_TRUE(panel.pressKey(PanelKey::Down));
    ASSERT_TRUE(panel.pressKey(PanelKey::Down));
    settle();
    EXPECT_EQ(invertedLine(), 2);
}

// The event handler sees every event first and can take it.
TEST_F(PanelKeysTest, EventHandlerSeesEventsFirst) {
    std::vector<KeyEvent> seen;
    panel.setEventHandler([&seen](KeyEvent const& event) {
        seen.push_back(event);
        return event.kind == KeyEvent::Kind::Character ||
               (event.kind == KeyEvent::Kind::Panel && event.panelKey == PanelKey::Up);
    });
    turn();
    keys->push(KeyEvent::typed(U'q'));
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Up);
    settle();
    EXPECT_EQ(seen, (std::vector<KeyEvent>{KeyEvent::typed(U'q'), KeyEvent::panel(PanelKey::Down),
                                           KeyEvent::panel(PanelKey::Down),
                                           KeyEvent::panel(PanelKey::Up)}));
    EXPECT_EQ(invertedLine(), 2);  // up was taken by the handler
}

// Keys from a source that blocked the loop (a hint sleeping) are served afterwards, in order.
TEST_F(PanelKeysTest, KeysQueuedDuringABlockingStepAreServedAfterwards) {
    turn();
    for (int press = 0; press < 3; ++press) {
        keys->press(PanelKey::Down);
    }
    keys->press(PanelKey::Up);
    settle();
    EXPECT_EQ(invertedLine(), 2);
}

// A confirmation tick blocks the panel's thread: keys pressed and work posted meanwhile wait
// and are served right after it, the keys in order, publications only with their newest value.
TEST(PanelHintTest, KeysAndPostsDuringAHintAreServedAfterIt) {
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::runtime::PanelOptions options;
    options.framesPerSecond = 0;
    yxfrontpanel::runtime::Panel panel(display, options,
                                       std::make_shared<yxfrontpanel::testing::ManualClock>());
    auto tree = yxfrontpanel::MenuTreeFactory().create(panel.provider());
    auto save = std::make_shared<yxfrontpanel::TriggerMenuItem>(u"Save", 1000ms);
    int saves = 0;
    save->action = [&saves] {
        ++saves;
        return true;
    };
    tree->addItem(save);
    for (char16_t const* name : {u"Alpha", u"Beta", u"Gamma"}) {
        tree->addItem(std::make_shared<yxfp_test::TestItem>(name));
    }
    tree->setLocal(true);
    panel.setRoot(*tree);
    auto keys = std::make_shared<yxfp_test::QueuedKeySource>();
    panel.addKeySource(keys);
    std::vector<std::string> events;
    bool inHint = false;
    yxfp_test::SleepCapture const hint([&](std::chrono::nanoseconds /*duration*/) {
        inHint = true;
        events.push_back("hint");
        keys->press(PanelKey::Down);
        keys->press(PanelKey::Down);
        panel.post([&] { events.push_back(inHint ? "post inside the hint" : "post"); });
        for (int reading = 1; reading <= 3; ++reading) {
            panel.publish("reading", [&events, &inHint, reading] {
                events.push_back((inHint ? "inside the hint: reading " : "reading ") +
                                 std::to_string(reading));
            });
        }
        inHint = false;
    });
    panel.runOnce(0ms);
    keys->press(PanelKey::Enter);
    panel.runOnce(0ms);  // the tick; the keys and the post behind it in the same turn
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(events, (std::vector<std::string>{"hint", "post", "reading 3"}))
        << "the publications only with the newest";
    EXPECT_EQ(display.getLastFrame().getLineString(2), u"Beta                ");
    EXPECT_TRUE(display.getLastFrame().getCell(0, 2).inverted) << "both downs served, in order";
    tree->clearItems();
}

// A hint inside the frame period is drawn before it blocks the panel's thread: the frame limit
// would otherwise hold its screen back until after the block, when the next screen replaces it.
TEST(PanelHintTest, AHintInsideTheFramePeriodIsShownWhileItBlocks) {
    frontpanelhw::MemoryDisplay display(20, 4);
    auto const clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
    yxfrontpanel::runtime::Panel panel(display, {}, clock);  // 30 frames a second
    auto tree = yxfrontpanel::MenuTreeFactory().create(panel.provider());
    auto save = std::make_shared<yxfrontpanel::TriggerMenuItem>(u"Save", 1000ms);
    save->action = [] { return true; };
    tree->addItem(save);
    tree->addItem(std::make_shared<yxfp_test::TestItem>(u"Alpha"));
    tree->setLocal(true);
    panel.setRoot(*tree);
    auto keys = std::make_shared<yxfp_test::QueuedKeySource>();
    panel.addKeySource(keys);
    std::vector<std::u16string> shownWhileBlocked;
    std::vector<std::u16string> composedWhileBlocked;
    yxfp_test::SleepCapture const hint([&](std::chrono::nanoseconds /*duration*/) {
        shownWhileBlocked.push_back(display.getLastFrame().getLineString(0));
        composedWhileBlocked.push_back(panel.currentScreen().getLineString(0));
    });
    panel.runOnce(0ms);
    std::u16string const before = display.getLastFrame().getLineString(0);
    std::size_t const drawsBefore = display.getDrawCount();
    keys->press(PanelKey::Enter);  // the same instant as the first frame
    panel.runOnce(0ms);
    ASSERT_EQ(hint.sleeps().size(), 1U);
    ASSERT_EQ(composedWhileBlocked.size(), 1U);
    EXPECT_NE(composedWhileBlocked[0], before) << "the tick changes the line";
    EXPECT_EQ(shownWhileBlocked, composedWhileBlocked);
    EXPECT_EQ(display.getDrawCount(), drawsBefore + 1) << "the screen after the tick waits";
    clock->advance(1s);
    panel.runOnce(0ms);
    EXPECT_EQ(display.getLastFrame().getLineString(0), before);
    tree->clearItems();
}

// With stopWhenInputsClose, the loop ends once every source has closed.
TEST(PanelInputsTest, StopsWhenEveryInputClosed) {
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::runtime::PanelOptions options;
    options.stopWhenInputsClose = true;
    yxfrontpanel::runtime::Panel panel(display, options,
                                       std::make_shared<yxfrontpanel::testing::ManualClock>());
    auto tree = yxfrontpanel::MenuTreeFactory().create(panel.provider());
    tree->addItem(std::make_shared<yxfp_test::TestItem>(u"Only"));
    panel.setRoot(*tree);
    auto first = std::make_shared<yxfp_test::QueuedKeySource>();
    auto second = std::make_shared<yxfp_test::QueuedKeySource>();
    panel.addKeySource(first);
    panel.addKeySource(second);
    first->closeInput();
    EXPECT_TRUE(panel.runOnce(0ms));
    second->closeInput();
    EXPECT_FALSE(panel.runOnce(0ms));
    EXPECT_TRUE(panel.isStopped());
    panel.run();  // returns at once
}

// Without stopWhenInputsClose the panel goes on serving posts after its inputs closed, and a
// closed source does not wake the loop again.
TEST_F(PanelKeysTest, ClosedSourceIsLeftAlone) {
    std::vector<KeyEvent::Kind> kinds;
    panel.setEventHandler([&kinds](KeyEvent const& event) {
        kinds.push_back(event.kind);
        return false;
    });
    keys->closeInput();
    turn();
    turn();
    EXPECT_EQ(kinds, std::vector<KeyEvent::Kind>{KeyEvent::Kind::Closed});
    bool ran = false;
    panel.post([&ran] { ran = true; });
    turn();
    EXPECT_TRUE(ran);
}

// A source whose descriptor was closed under it counts as closed; the loop does not spin.
TEST(PanelInputsTest, SourceWithAFailedDescriptorCountsAsClosed) {
    class BrokenSource : public frontpanelhw::IKeySource {
    public:
        std::optional<KeyEvent> poll(std::chrono::milliseconds /*timeout*/) override {
            ++polls;
            return std::nullopt;
        }
        int waitDescriptor() const override { return 1000; }  // not open: poll(2) says POLLNVAL
        int polls = 0;
    };
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::runtime::PanelOptions options;
    options.stopWhenInputsClose = true;
    yxfrontpanel::runtime::Panel panel(display, options,
                                       std::make_shared<yxfrontpanel::testing::ManualClock>());
    auto tree = yxfrontpanel::MenuTreeFactory().create(panel.provider());
    panel.setRoot(*tree);
    auto broken = std::make_shared<BrokenSource>();
    panel.addKeySource(broken);
    panel.run();  // ends: the only source counts as closed
    EXPECT_TRUE(panel.isStopped());
    EXPECT_EQ(broken->polls, 1);
}

}  // namespace
