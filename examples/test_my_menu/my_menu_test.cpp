// The application's screen tests: press keys as words, check lines and whole screens.
#include "my_menu.h"

#include <yxfrontpanel/testing.h>
#include <yxfrontpanel/testing/gtest_matchers.h>

#include <gtest/gtest.h>

using namespace yxfrontpanel::testing;

TEST(MyMenuTest, EnterUpEnterSetsTheVoltage) {
    RecordingDisplay display(20, 4);
    MyMenu menu(display);
    KeyScript(menu.root()).run("enter up enter");
    EXPECT_EQ(menu.voltage(), 15.0);
    EXPECT_THAT(display, LineIs(0, "Voltage"));
    EXPECT_THAT(display, InvertedColumnsAre(0, "0-18"));
}

TEST(MyMenuTest, SettingTheCurrentLooksAsRecorded) {
    RecordingDisplay display(20, 4);
    MyMenu menu(display);
    std::string const screens =
        recordKeyScript(KeyScript(menu.root()), "down enter up enter", display);
    EXPECT_THAT(screens, MatchesGoldenFile(MY_MENU_GOLDEN_DIR "/set_current.txt"));
    EXPECT_EQ(menu.current(), 2.0);
}
