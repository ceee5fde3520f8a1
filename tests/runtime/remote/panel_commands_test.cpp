#include <frontpanelhw/display.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "remote_test_menu.h"
#include "scpi_run.h"

namespace {

using yxfrontpanel::runtime::PanelCommandOptions;
using yxfrontpanel::runtime::TreeControl;
using namespace yxfrontpanel::runtime::scpi;
using Lines = std::vector<std::string>;

/** The panel commands on the test menu, keys applied at once (no panel loop). */
class PanelCommandsTest : public ::testing::Test {
protected:
    explicit PanelCommandsTest(PanelCommandOptions options = {}) {
        addCommonCommands(table, Identity{});
        addPanelCommands(table, std::make_shared<TreeControl>(*menu.root, display), options);
        menu.root->setFocus(true);
    }

    Lines run(std::string const& line) { return yxfp_test::runLine(table, session, line); }
    std::string error() { return session.errors.pop().format(); }

    yxfp_test::SleepCapture noWaiting;
    frontpanelhw::MemoryDisplay display{20, 4};
    yxfrontpanel::DrawingProvider provider{display};
    yxfp_test::RemoteTestMenu menu{provider};
    CommandTable table;
    Session session;
};

TEST_F(PanelCommandsTest, DisplayTextAnswersEveryLineAsQuotedStrings) {
    EXPECT_EQ(
        run("DISP:TEXT?"),
        Lines{
            R"("Output              ","Network             ","Display             ","Info                ")"});
}

TEST_F(PanelCommandsTest, DisplayTextAnswersOneLine) {
    EXPECT_EQ(run("DISP:TEXT? 2;:DISPLAY:TEXT? 4"),
              (Lines{R"("Network             ")", R"("Info                ")"}));
}

TEST_F(PanelCommandsTest, KeysMoveTheCursorAndTheInversionFollows) {
    EXPECT_EQ(run("DISP:INV? 1;INV? 2"), (Lines{R"("0-18")", R"("")"}));
    EXPECT_EQ(run("SYST:KEY DOWN;:DISP:INV? 2;:SYST:KEY down;:DISP:INV? 3"),
              (Lines{R"("0-18")", R"("0-18")"}));
}

TEST_F(PanelCommandsTest, EnterAndBackOpenAndCloseASubMenu) {
    EXPECT_EQ(run("SYST:KEY ENTER;:DISP:TEXT? 1;:SYST:KEY BACK;:DISP:TEXT? 1"),
              (Lines{R"("Voltage             ")", R"("Output              ")"}));
}

TEST_F(PanelCommandsTest, UnknownKeysAndLinesAreErrors) {
    run("SYST:KEY SIDEWAYS;KEY \"UP\";:DISP:TEXT? 0;TEXT? 5;INV? 9;TEXT? x");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no key SIDEWAYS")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no key UP")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;line 0 of 1 to 4")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;line 5 of 1 to 4")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;line 9 of 1 to 4")");
    EXPECT_EQ(error(), R"(-104,"Data type error;not a number: x")");
    EXPECT_EQ(error(), R"(0,"No error")");
}

TEST_F(PanelCommandsTest, ModeSwitchesBetweenLocalAndRemote) {
    EXPECT_EQ(run("SYST:MODE?;REM;MODE?;LOC;MODE?"), (Lines{"LOC", "REM", "LOC"}));
    run("SYST:REM");
    EXPECT_FALSE(menu.root->getLocal());
}

TEST_F(PanelCommandsTest, KeysDoNotChangeTheMode) {
    run("SYST:REM;KEY DOWN;KEY ENTER");
    EXPECT_EQ(run("SYST:MODE?"), Lines{"REM"});
}

TEST_F(PanelCommandsTest, MenuValuesReadEveryKindOfItem) {
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\";VAL? \"Output/Mode\";VAL? \"Network/IP address\""
                  ";VAL? \"Display/Brightness\";VAL? \"Display/Contrast\""),
              (Lines{"5.00", R"("Off")", R"("192.168.1.100")", "4", R"("Medium")"}));
}

TEST_F(PanelCommandsTest, MenuValueWritesGoThroughTheItemToTheApplication) {
    run("MENU:VAL \"Output/Voltage\",12.5;VAL \"Output/Mode\",On;VAL \"Network/IP address\","
        "\"10.0.0.2\";VAL \"Display/Brightness\",6;VAL \"Display/Contrast\",High");
    EXPECT_EQ(session.errors.size(), 0U) << error();
    EXPECT_EQ(menu.heard,
              (Lines{"Voltage=12.500000", "Mode=1", "IP=10.0.0.2", "Brightness=6", "Contrast=2"}));
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\";VAL? \"Output/Mode\";VAL? \"Network/IP address\""
                  ";VAL? \"Display/Brightness\";VAL? \"Display/Contrast\""),
              (Lines{"12.50", R"("On")", R"("10.0.0.2")", "6", R"("High")"}));
}

TEST_F(PanelCommandsTest, MenuValueTakesTheEditorsUnitWithPrefixes) {
    run("MENU:VAL \"Output/Voltage\",500 mV");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"0.50"});
    run("MENU:VAL \"Output/Voltage\",1.5 A");
    EXPECT_EQ(error(), R"(-131,"Invalid suffix;A for V")");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"0.50"});
}

TEST_F(PanelCommandsTest, MenuValueMinMaxAreTheEditorsBounds) {
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\",MAX;VAL? \"Output/Voltage\",minimum"),
              (Lines{"30.00", "0.00"}));
    run("MENU:VAL \"Output/Voltage\",MAX");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"30.00"});
    run("MENU:VAL \"Output/Voltage\",MIN");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"0.00"});
    run("MENU:VAL? \"Output/Mode\",MAX");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::IllegalParameterValue);
}

TEST_F(PanelCommandsTest, MenuValueDefaultIsTheValueWhenFirstNamed) {
    // The first command naming the path sees 5 V: that is its default from then on.
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\",DEF"), Lines{"5.00"});
    run("MENU:VAL \"Output/Voltage\",12.5");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\";VAL? \"Output/Voltage\",DEFault"),
              (Lines{"12.50", "5.00"}));
    menu.heard.clear();
    run("MENU:VAL \"Output/Voltage\",def");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"5.00"});
    EXPECT_EQ(menu.heard, Lines{"Voltage=5.000000"}) << "the application hears the default";
    EXPECT_EQ(error(), R"(0,"No error")");
}

TEST_F(PanelCommandsTest, MenuValueDefaultIsRecordedByTheFirstWriteToo) {
    menu.voltage->setValue(7.0);  // the application's own change before any command
    run("MENU:VAL \"Output/Voltage\",MAX");
    menu.voltage->setValue(3.0);  // and after: the default stays
    run("MENU:VAL \"Output/Voltage\",DEF");
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\""), Lines{"7.00"});
}

TEST_F(PanelCommandsTest, MenuValueDefaultIsRefusedForItemsWithoutBounds) {
    run("MENU:VAL? \"Output/Mode\",DEF");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::IllegalParameterValue);
    run("MENU:VAL \"Display/Brightness\",DEF");
    EXPECT_EQ(session.errors.pop().code, ErrorCode::DataTypeError);
    run("MENU:VAL? \"No/Such\",DEF");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no menu item No/Such")");
}

TEST_F(PanelCommandsTest, ChoicesMayBeWrittenByKeyOrId) {
    run("MENU:VAL \"Output/Mode\",1;VAL \"Display/Contrast\",0");
    EXPECT_EQ(run("MENU:VAL? \"Output/Mode\";VAL? \"Display/Contrast\""),
              (Lines{R"("On")", R"("Low")"}));
}

TEST_F(PanelCommandsTest, AMenuWriteSwitchesToRemote) {
    run("MENU:VAL \"Output/Voltage\",1");
    EXPECT_EQ(run("SYST:MODE?"), Lines{"REM"});
}

// In REMOTE the front panel cannot change the value: its edit shows the local-mode hint.
TEST_F(PanelCommandsTest, FrontPanelEditsAfterARemoteWriteShowTheLocalModeHint) {
    std::string lineDuringHint;
    yxfp_test::SleepCapture hint([&](std::chrono::nanoseconds) {
        lineDuringHint = frontpanelhw::lineText(display.getLastFrame(), 1);
    });
    run("MENU:VAL \"Output/Mode\",On;:SYST:KEY ENTER;KEY DOWN;KEY ENTER");
    EXPECT_EQ(lineDuringHint, "Only in local mode! ");
    EXPECT_EQ(run("MENU:VAL? \"Output/Mode\""), Lines{R"("On")"});
}

TEST_F(PanelCommandsTest, BadValuesChangeNothing) {
    run("MENU:VAL \"Output/Voltage\",31;VAL \"Output/Voltage\",-1;VAL \"Output/Voltage\",volts"
        ";VAL \"Network/IP address\",\"10.0.0\";VAL \"Network/IP address\",\"10.0.0.256\""
        ";VAL \"Output/Mode\",Maybe;VAL \"Display/Brightness\",9;VAL \"Display/Brightness\",2.5"
        ";VAL \"Display/Contrast\",Dark");
    EXPECT_EQ(error(), R"(-222,"Data out of range;31 outside 0 to 30")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;-1 outside 0 to 30")");
    EXPECT_EQ(error(), R"(-104,"Data type error;not a number: volts")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;not an IPv4 address: 10.0.0")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;address field above 255: 10.0.0.256")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no value Maybe in Output/Mode")");
    EXPECT_EQ(error(), R"(-222,"Data out of range;9 outside the slider's range")");
    EXPECT_EQ(error(), R"(-104,"Data type error;not a whole number: 2.5")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no choice Dark in Display/Contrast")");
    EXPECT_TRUE(menu.heard.empty());
    EXPECT_EQ(run("MENU:VAL? \"Output/Voltage\";VAL? \"Network/IP address\";VAL? "
                  "\"Display/Brightness\""),
              (Lines{"5.00", R"("192.168.1.100")", "4"}));
}

TEST_F(PanelCommandsTest, ItemsTheApplicationMadeReadOnlyRefuseWrites) {
    menu.mode->editable.store(false);
    menu.brightness->setReadOnly(true);
    menu.contrast->setEditor(false);
    run("MENU:VAL \"Output/Mode\",On;VAL \"Display/Brightness\",1;VAL \"Display/Contrast\",Low");
    EXPECT_EQ(error(), R"(-200,"Execution error;item is read-only: Output/Mode")");
    EXPECT_EQ(error(), R"(-200,"Execution error;item is read-only: Display/Brightness")");
    EXPECT_EQ(error(), R"(-200,"Execution error;item is read-only: Display/Contrast")");
    EXPECT_TRUE(menu.heard.empty());
}

TEST_F(PanelCommandsTest, AnUnavailableItemRefusesWrites) {
    menu.voltage->setAvailable(false);
    run("MENU:VAL \"Output/Voltage\",1;VAL? \"Output/Voltage\"");
    EXPECT_EQ(error(), R"(-200,"Execution error;item not available: Output/Voltage")");
    EXPECT_TRUE(menu.heard.empty());
}

TEST_F(PanelCommandsTest, UnknownPathsAndItemsWithoutValueAreErrors) {
    run("MENU:VAL? \"Output/Power\";VAL? \"Info\";VAL? \"Info/Deeper\";VAL \"Nothing\",1");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no menu item Output/Power")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;item has no value: Info")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no menu item Info/Deeper")");
    EXPECT_EQ(error(), R"(-224,"Illegal parameter value;no menu item Nothing")");
    EXPECT_EQ(run("SYST:MODE?"), Lines{"LOC"});
}

class PanelCommandsStayLocalTest : public PanelCommandsTest {
protected:
    PanelCommandsStayLocalTest() : PanelCommandsTest(PanelCommandOptions{false}) {}
};

TEST_F(PanelCommandsStayLocalTest, AMenuWriteKeepsTheModeWhenTheApplicationSaysSo) {
    run("MENU:VAL \"Output/Voltage\",1");
    EXPECT_EQ(run("SYST:MODE?;:MENU:VAL? \"Output/Voltage\""), (Lines{"LOC", "1.00"}));
}

}  // namespace
