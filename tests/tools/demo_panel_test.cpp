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
    demo.root().setFocus(true);
    EXPECT_EQ(provider.screen(),
              (std::vector<std::u16string>{u"Output              ", u"Network             ",
                                           u"Display             ", u"System              "}));
    EXPECT_EQ(provider.inversion(0), std::string(19, '#') + ".");
}

TEST(DemoPanelTest, MeasurementUpdatesShowInTheOpenReadOnlyItem) {
    RecordingProvider provider(20, 4);
    DemoPanel demo(provider);
    demo.root().setFocus(true);
    for (PanelKey key : {PanelKey::Enter, PanelKey::Down, PanelKey::Down, PanelKey::Enter,
                         PanelKey::Down, PanelKey::Enter}) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    EXPECT_EQ(provider.line(1), u"       0.000        ") << "output on, no measurement yet";
    demo.acquire(1)();
    EXPECT_EQ(provider.line(1), u"       4.999        ");
    demo.acquire(2)();
    EXPECT_EQ(provider.line(1), u"       5.000        ");
}

TEST(DemoPanelTest, MeasurementFollowsTheOutputSwitchAndTheLoad) {
    RecordingProvider provider(20, 4);
    DemoPanel demo(provider);
    EXPECT_EQ(demo.measure(2).volts, 0.0) << "the output starts off";
    demo.root().setFocus(true);
    for (PanelKey key : {PanelKey::Enter, PanelKey::Down, PanelKey::Down, PanelKey::Enter}) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    DemoPanel::Reading const reading = demo.measure(2);
    EXPECT_DOUBLE_EQ(reading.volts, 5.0);
    EXPECT_DOUBLE_EQ(reading.amps, 0.5) << "5 V on the 10 ohm load";
}

TEST(DemoPanelTest, ResetDefaultsTurnsTheOutputOffWithoutAQuestion) {
    RecordingProvider provider(20, 4);
    DemoPanel demo(provider);
    demo.root().setFocus(true);
    for (PanelKey key : {PanelKey::Enter, PanelKey::Down, PanelKey::Down, PanelKey::Enter}) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    ASSERT_EQ(demo.measure(2).volts, 5.0);
    EXPECT_TRUE(demo.resetDefaults());
    EXPECT_EQ(demo.measure(2).volts, 0.0) << "the output is off again";
}

TEST(DemoPanelTest, HomeScreenIsTheOutputStatusWithTheNewestReading) {
    RecordingProvider menus(20, 4);
    RecordingProvider home(20, 4);
    DemoPanel demo(menus);
    demo.drawHomeScreen(home);
    EXPECT_EQ(home.drawCount(), 1U);
    EXPECT_EQ(home.screen(),
              (std::vector<std::u16string>{u"    >> Status <<    ", u"P              0.0 W",
                                           u"  0.000 V 0.000 A   ", u"                    "}));
    demo.show(DemoPanel::Reading{12.0, 1.0});
    demo.drawHomeScreen(home);
    EXPECT_EQ(home.drawCount(), 2U);
    EXPECT_EQ(home.line(2), u"  12.000 V 1.000 A  ");
}

// Thousands of random keys, mode switches and measurements on every supported size: nothing
// throws, and every frame has exactly the panel's size.
TEST(DemoPanelTest, SurvivesRandomKeysOnEverySize) {
    yxfp_test::SleepCapture const noWaiting;
    for (auto const& [chars, lines] :
         {std::pair{16U, 2U}, std::pair{20U, 4U}, std::pair{40U, 4U}}) {
        RecordingProvider provider(chars, lines);
        DemoPanel demo(provider);
        demo.root().setFocus(true);
        unsigned sample = 0;
        std::mt19937 random(20261121U + chars);
        std::uniform_int_distribution<int> pick(0, 8);
        for (int step = 0; step < 3000; ++step) {
            int const choice = pick(random);
            if (choice < 6) {
                ASSERT_NO_THROW(yxfrontpanel::applyKey(demo.root(), static_cast<PanelKey>(choice)))
                    << "step " << step;
            } else if (choice == 6) {
                demo.setLocal(!demo.isLocal());
            } else {
                demo.acquire(++sample)();
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
