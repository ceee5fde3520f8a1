#include <yxfrontpanel/runtime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "panel_fixture.h"

namespace {

using frontpanelhw::PanelKey;
using yxfp_test::PanelFixture;
using namespace std::chrono_literals;

using PanelFrameTest = PanelFixture;

// Many screens inside one frame period give one draw of the newest one when the period ends.
TEST_F(PanelFrameTest, ChangesInsideOneFramePeriodGiveOneDraw) {
    turn();
    ASSERT_EQ(display.getDrawCount(), 1U);
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Down);
    turn();  // same instant as the first frame: composed, not drawn
    EXPECT_EQ(display.getDrawCount(), 1U);
    EXPECT_TRUE(panel.currentScreen().getCell(0, 3).inverted);  // composed
    EXPECT_EQ(invertedLine(), 0);                               // not yet shown
    advance(20ms);                                              // still inside the 33.3 ms period
    EXPECT_EQ(display.getDrawCount(), 1U);
    advance(14ms);
    EXPECT_EQ(display.getDrawCount(), 2U);
    EXPECT_EQ(invertedLine(), 3);
    advance(1s);
    EXPECT_EQ(display.getDrawCount(), 2U);  // nothing new, nothing drawn
}

// Frame listeners see each frame that reaches the display.
TEST_F(PanelFrameTest, FrameListenersSeeEveryDrawnFrame) {
    std::vector<std::u16string> firstLines;
    auto const id = panel.addFrameListener(
        [&firstLines](auto const& frame) { firstLines.push_back(frame.getLineString(0)); });
    turn();
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(firstLines,
              (std::vector<std::u16string>{u"Alpha               ", u"Alpha               "}));
    panel.removeFrameListener(id);
    keys->press(PanelKey::Down);
    advance(1s);
    EXPECT_EQ(firstLines.size(), 2U);
    EXPECT_EQ(panel.shownFrame().getLineString(1), display.getLastFrame().getLineString(1));
}

// A screen composed on another thread (a toolkit item publishing from an acquisition thread)
// is drawn by the panel's thread.
TEST_F(PanelFrameTest, ScreensComposedElsewhereAreDrawnByThePanel) {
    turn();
    frontpanelhw::drawing::DisplayBuffer screen(20, 4);
    screen.setLineContent(0, 0, u"elsewhere");
    std::thread([this, &screen] { panel.provider().draw(screen); }).join();
    EXPECT_EQ(display.getDrawCount(), 1U);
    advance(1s);
    EXPECT_EQ(display.getDrawCount(), 2U);
    EXPECT_EQ(shown()[0], u"elsewhere           ");
}

}  // namespace
