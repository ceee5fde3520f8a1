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

yxfrontpanel::runtime::PanelOptions withoutFrameLimit() {
    yxfrontpanel::runtime::PanelOptions options;
    options.framesPerSecond = 0;
    return options;
}

class PanelUnlimitedFrameTest : public PanelFixture {
protected:
    PanelUnlimitedFrameTest() : PanelFixture(withoutFrameLimit()) {}
};

// Without a frame limit every composed screen is drawn at once, also inside one instant.
TEST_F(PanelUnlimitedFrameTest, EveryScreenIsDrawn) {
    std::vector<int> invertedLines;
    panel.addFrameListener([&invertedLines](auto const& frame) {
        for (unsigned line = 0; line < frame.getLineCount(); ++line) {
            if (frame.getCell(0, line).inverted) {
                invertedLines.push_back(static_cast<int>(line));
            }
        }
    });
    turn();
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Down);
    keys->press(PanelKey::Down);
    turn();
    EXPECT_EQ(invertedLines, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(display.getDrawCount(), 4U);
}

}  // namespace
