// Hd44780Display serialises its operations: draws from one thread and backlight switches and
// redraw requests from another never interleave on the bus.
#include <frontpanelhw/display_types.h>

#include <gtest/gtest.h>

#include <thread>

#include "hd44780_rig.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using yxfp_test::Hd44780Rig;

TEST(Hd44780DisplayThreadsTest, DrawsAndBacklightSwitchesFromTwoThreadsStayInStep) {
    Hd44780Rig rig(20, 4, frontpanelhw::Hd44780Rom::A00);
    DisplayBuffer first(20, 4);
    first.setLineContent(0, 0, u"Voltage  12.00 V \x1E");
    DisplayBuffer second(20, 4);
    second.setLineContent(1, 0, u"Current   0.50 A \xDB\xB0");
    constexpr int kRounds = 300;
    std::thread switcher([&rig] {
        for (int round = 0; round < kRounds; ++round) {
            rig.display().setBacklight(round % 2 == 0);
            if (round % 50 == 0) {
                rig.display().requestRedraw();
            }
        }
        rig.display().setBacklight(true);
    });
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_TRUE(rig.display().draw(round % 2 == 0 ? first : second));
    }
    switcher.join();
    ASSERT_TRUE(rig.display().draw(second));
    EXPECT_EQ(rig.screen(), Hd44780Rig::meant(second));
    EXPECT_TRUE(rig.model().backlight());
    EXPECT_EQ(rig.model().violations(), std::vector<std::string>{});
}

}  // namespace
