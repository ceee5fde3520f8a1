#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "panel_fixture.h"

namespace {

using frontpanelhw::PanelKey;
using namespace std::chrono_literals;

yxfrontpanel::runtime::PanelOptions idleAfterTenSeconds() {
    yxfrontpanel::runtime::PanelOptions options;
    options.idleTimeout = 10s;
    return options;
}

/** A panel whose home screen shows a counter that posted work updates. */
class PanelIdleTest : public yxfp_test::PanelFixture {
protected:
    PanelIdleTest() : PanelFixture(idleAfterTenSeconds()) {
        panel.setHomeScreen([this](yxfrontpanel::IDrawingProvider const& provider) {
            frontpanelhw::drawing::DisplayBuffer screen(provider.getChars(), provider.getLines());
            screen.setLineContent(0, 0, u"HOME " + std::u16string(1, u'0' + reading));
            provider.draw(screen);
        });
    }
    int reading = 0;
};

// After the idle time without a key the home screen shows; not a moment before.
TEST_F(PanelIdleTest, HomeScreenAfterIdleTimeout) {
    turn();
    keys->press(PanelKey::Down);
    turn();
    advance(9s);
    advance(999ms);
    EXPECT_FALSE(panel.homeScreenShown());
    advance(1ms);
    EXPECT_TRUE(panel.homeScreenShown());
    EXPECT_EQ(shown()[0], u"HOME 0              ");
}

// Work that runs in the turn the home screen comes gives one draw of it, not two.
TEST_F(PanelIdleTest, HomeScreenIsDrawnOnceWhenItComesWithWork) {
    turn();
    auto const before = display.getDrawCount();
    panel.every(10s, [this] { ++reading; });
    advance(10s);
    EXPECT_TRUE(panel.homeScreenShown());
    EXPECT_EQ(display.getDrawCount(), before + 1);
    EXPECT_EQ(shown()[0], u"HOME 1              ");
}

// Open forms close without applying and the menu returns to its top; the key that wakes the
// panel only brings the menu back.
TEST_F(PanelIdleTest, IdleClosesFormsAndTheWakingKeyIsNotPassedOn) {
    turn();
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Enter);
    advance(1s);
    ASSERT_TRUE(tree->itemHasFocus());
    advance(10s);
    ASSERT_TRUE(panel.homeScreenShown());
    EXPECT_FALSE(tree->itemHasFocus());
    EXPECT_TRUE(tree->getFocus());
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_FALSE(panel.homeScreenShown());
    EXPECT_EQ(shown()[0], u"Alpha               ");
    EXPECT_EQ(invertedLine(), 0);  // back at the top; the down key was not passed on
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(invertedLine(), 1);
}

// Posted work refreshes the home screen; the menu's own redraws stay off the display meanwhile.
TEST_F(PanelIdleTest, PostedWorkRefreshesTheHomeScreen) {
    turn();
    advance(10s);
    ASSERT_TRUE(panel.homeScreenShown());
    panel.post([this] {
        reading = 7;
        tree->setFocus(true);  // a menu redraw while the home screen is up
    });
    advance(1s);
    EXPECT_EQ(shown()[0], u"HOME 7              ");
}

// Without a home screen, or with the default options, the panel never goes idle.
TEST_F(PanelIdleTest, NoHomeScreenMeansNoIdle) {
    panel.setHomeScreen({});
    turn();
    advance(1h);
    EXPECT_FALSE(panel.homeScreenShown());
    EXPECT_EQ(shown()[0], u"Alpha               ");
}

/** A source that reports releases but not repeats: the panel repeats held arrows. */
class PanelRepeatTest : public yxfp_test::PanelFixture {
protected:
    PanelRepeatTest() : PanelFixture({}, frontpanelhw::KeySourceCapabilities{true, false}) {}
};

// A held arrow repeats after 500 ms every 100 ms until released.
TEST_F(PanelRepeatTest, HeldArrowRepeats) {
    turn();
    clock->advance(1s);
    keys->press(PanelKey::Down);
    turn();
    EXPECT_EQ(invertedLine(), 1);
    advance(499ms);
    EXPECT_EQ(invertedLine(), 1);
    advance(1ms);
    EXPECT_EQ(invertedLine(), 2);
    advance(100ms);
    EXPECT_EQ(invertedLine(), 3);
    keys->push(frontpanelhw::KeyEvent::release(PanelKey::Down));
    advance(1s);
    EXPECT_EQ(invertedLine(), 3);
}

// Enter never repeats; the device's own repeats are passed on.
TEST_F(PanelRepeatTest, EnterDoesNotRepeatDeviceRepeatsPassOn) {
    turn();
    keys->press(PanelKey::Down);
    keys->push(frontpanelhw::KeyEvent::release(PanelKey::Down));
    keys->press(PanelKey::Enter);
    advance(1s);
    advance(1s);
    EXPECT_TRUE(tree->itemHasFocus());
    keys->press(PanelKey::Back);
    keys->push(frontpanelhw::KeyEvent::repeat(PanelKey::Down));
    settle();
    EXPECT_EQ(invertedLine(), 2);
}

yxfrontpanel::runtime::PanelOptions darkAfterAMinute() {
    yxfrontpanel::runtime::PanelOptions options;
    options.darkTimeout = 60s;
    return options;
}

/** A panel that darkens its display after a minute without a key (no home screen). */
class PanelDarkTest : public yxfp_test::PanelFixture {
protected:
    explicit PanelDarkTest(yxfrontpanel::runtime::PanelOptions options = darkAfterAMinute())
        : PanelFixture(options) {
        panel.setDarkListener([this](bool dark) { heard.push_back(dark); });
    }
    std::vector<bool> heard;
};

// A minute without a key darkens the display once; not a moment before.
TEST_F(PanelDarkTest, DarkAfterTheTimeoutWithoutAKey) {
    turn();
    keys->press(PanelKey::Down);
    turn();
    advance(59s);
    advance(999ms);
    EXPECT_TRUE(heard.empty());
    EXPECT_FALSE(panel.dark());
    advance(1ms);
    EXPECT_EQ(heard, std::vector<bool>{true});
    EXPECT_TRUE(panel.dark());
    advance(10min);
    EXPECT_EQ(heard, std::vector<bool>{true}) << "told once";
}

// The key that lights the display again is not passed on: a user pressing a key in the dark
// only sees the panel as it was.
TEST_F(PanelDarkTest, TheWakingKeyLightsTheDisplayAndIsNotPassedOn) {
    turn();
    advance(60s);
    ASSERT_TRUE(panel.dark());
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(heard, (std::vector<bool>{true, false}));
    EXPECT_FALSE(panel.dark());
    EXPECT_EQ(invertedLine(), 0);
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(invertedLine(), 1);
    advance(59s);
    EXPECT_EQ(heard, (std::vector<bool>{true, false})) << "the minute counts from the key";
    advance(1s);
    EXPECT_EQ(heard, (std::vector<bool>{true, false, true}));
}

// With a home screen too, the home screen comes first and the display darkens later; one key
// wakes both.
// Removing the listener turns darkening off: nothing goes dark, and no key is swallowed.
TEST_F(PanelDarkTest, WithoutAListenerNothingDarkensAndNoKeyIsSwallowed) {
    panel.setDarkListener({});
    turn();
    advance(61s);
    EXPECT_FALSE(panel.dark());
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(invertedLine(), 1);
    EXPECT_TRUE(heard.empty());
}

yxfrontpanel::runtime::PanelOptions homeAfterTenSecondsDarkAfterAMinute() {
    yxfrontpanel::runtime::PanelOptions options = darkAfterAMinute();
    options.idleTimeout = 10s;
    return options;
}

/** A panel with a home screen after ten seconds and a dark display after a minute. */
class PanelDarkHomeTest : public PanelDarkTest {
protected:
    PanelDarkHomeTest() : PanelDarkTest(homeAfterTenSecondsDarkAfterAMinute()) {
        panel.setHomeScreen([](yxfrontpanel::IDrawingProvider const& provider) {
            frontpanelhw::drawing::DisplayBuffer screen(provider.getChars(), provider.getLines());
            screen.setLineContent(0, 0, u"HOME");
            provider.draw(screen);
        });
    }
};

// The home screen comes first and the display darkens later; one key wakes both.
TEST_F(PanelDarkHomeTest, HomeScreenFirstThenDarkAndOneKeyWakesBoth) {
    turn();
    advance(10s);
    EXPECT_TRUE(panel.homeScreenShown());
    EXPECT_TRUE(heard.empty());
    advance(50s);
    EXPECT_EQ(heard, std::vector<bool>{true});
    keys->press(PanelKey::Up);
    advance(1s);
    EXPECT_EQ(heard, (std::vector<bool>{true, false}));
    EXPECT_FALSE(panel.homeScreenShown());
    EXPECT_EQ(invertedLine(), 0);
}

}  // namespace
