#include "module_display.h"

#include <frontpanelhw/display.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "display_option.h"

namespace {

using frontpanelhw::MemoryDisplay;
using frontpanelhw::drawing::DisplayBuffer;
using frontpanelsim::DisplayOption;
using frontpanelsim::makeDisplay;

DisplayBuffer menuFrame() {
    DisplayBuffer frame(16, 2);
    frame.setLineContent(0, 0, u"Output");
    frame.setLineContent(1, 0, u"Network        \x1F");
    auto line = frame.getLine(1);
    line.setInverted(0, 14, true);
    frame.setDisplayLine(1, line);
    return frame;
}

// The screen shows the module's characters, and the cursor marker as the one inverted cell.
TEST(ModuleDisplayTest, ModelViewShowsWhatTheModuleShows) {
    for (auto const rom : {frontpanelhw::Hd44780Rom::A00, frontpanelhw::Hd44780Rom::A02}) {
        MemoryDisplay screen(16, 2);
        DisplayOption option;
        option.kind = DisplayOption::Kind::Hd44780Model;
        option.rom = rom;
        auto const display = makeDisplay(option, screen);
        ASSERT_TRUE(display->draw(menuFrame()));
        auto const& shown = screen.getLastFrame();
        EXPECT_EQ(shown.getLineString(0), u"Output          ");
        EXPECT_EQ(shown.getLineString(1), u"Network        \x1F") << "the arrow meant";
        for (unsigned column = 0; column < 16; ++column) {
            EXPECT_EQ(shown.getCell(column, 1).inverted, column == 0) << column;
            EXPECT_FALSE(shown.getCell(column, 0).inverted) << column;
        }
    }
}

TEST(ModuleDisplayTest, TerminalPassesFramesThrough) {
    MemoryDisplay screen(16, 2);
    auto const display = makeDisplay(DisplayOption{}, screen);
    ASSERT_TRUE(display->draw(menuFrame()));
    EXPECT_EQ(screen.getLastFrame().getCell(5, 1).inverted, true);
}

TEST(ModuleDisplayTest, DeviceDisplayWritesTheExpanderBytesToACaptureFile) {
    auto const path = std::filesystem::path(::testing::TempDir()) / "module_display_capture.bin";
    std::ofstream(path).close();
    MemoryDisplay screen(16, 2);
    DisplayOption option;
    option.kind = DisplayOption::Kind::Hd44780Device;
    option.path = path.string();
    {
        auto const display = makeDisplay(option, screen);
        ASSERT_TRUE(display->draw(menuFrame()));
    }
    EXPECT_EQ(screen.getDrawCount(), 1U) << "the run's own display still shows the frame";
    EXPECT_GT(std::filesystem::file_size(path), 60U);
    std::filesystem::remove(path);
}

TEST(ModuleDisplayTest, AMissingDeviceIsOneErrorNamingIt) {
    MemoryDisplay screen(16, 2);
    DisplayOption option;
    option.kind = DisplayOption::Kind::Hd44780Device;
    option.path = "/dev/i2c-96";
    try {
        (void)makeDisplay(option, screen);
        FAIL() << "no exception";
    } catch (std::exception const& error) {
        EXPECT_NE(std::string(error.what()).find("/dev/i2c-96"), std::string::npos);
    }
}

}  // namespace
