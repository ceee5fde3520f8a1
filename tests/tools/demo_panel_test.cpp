#include "demo_panel.h"

#include <gtest/gtest.h>

#include <random>

#include "platform_capture.h"
#include "recording_provider.h"

namespace {

using frontpanelhw::PanelKey;
using frontpanelsim::DemoPanel;
using yxfp_test::RecordingProvider;

TEST(DemoPanelTest, StartsOnTheRootMenuInLocalMode) {
    RecordingProvider provider(20, 4);
    DemoPanel demo(provider);
    EXPECT_TRUE(demo.isLocal());
    demo.start();
    EXPECT_EQ(provider.screen(),
              (std::vector<std::u16string>{u"Output              ", u"Network             ",
                                           u"Display             ", u"System              "}));
    EXPECT_EQ(provider.inversion(0), std::string(19, '#') + ".");
}

TEST(DemoPanelTest, MeasurementUpdatesShowInTheOpenReadOnlyItem) {
    RecordingProvider provider(20, 4);
    DemoPanel demo(provider);
    demo.start();
    for (PanelKey key : {PanelKey::Enter, PanelKey::Down, PanelKey::Down, PanelKey::Enter,
                         PanelKey::Down, PanelKey::Enter}) {
        demo.press(key);
    }
    EXPECT_EQ(provider.line(1), u"       0.000        ") << "output on, no measurement yet";
    demo.tick();
    demo.tick();
    EXPECT_EQ(provider.line(1), u"       5.000        ");
}

// Thousands of random keys, mode switches and measurements on every supported size: nothing
// throws, and every frame has exactly the panel's size.
TEST(DemoPanelTest, SurvivesRandomKeysOnEverySize) {
    yxfp_test::SleepCapture const noWaiting;
    for (auto const& [chars, lines] :
         {std::pair{16U, 2U}, std::pair{20U, 4U}, std::pair{40U, 4U}}) {
        RecordingProvider provider(chars, lines);
        DemoPanel demo(provider);
        demo.start();
        std::mt19937 random(20261121U + chars);
        std::uniform_int_distribution<int> pick(0, 8);
        for (int step = 0; step < 3000; ++step) {
            int const choice = pick(random);
            if (choice < 6) {
                ASSERT_NO_THROW(demo.press(static_cast<PanelKey>(choice))) << "step " << step;
            } else if (choice == 6) {
                demo.setLocal(!demo.isLocal());
            } else {
                demo.tick();
            }
        }
        for (auto const& frame : provider.frames()) {
            ASSERT_EQ(frame.getChars(), chars);
            ASSERT_EQ(frame.getLineCount(), lines);
        }
        EXPECT_GT(provider.drawCount(), 100U);
    }
}

}  // namespace
