// The demo instrument's menus, every item type, driven onto an HD44780 module: after every key
// the controller model shows what the toolkit drew.
#include <frontpanelhw/display.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "demo_panel.h"
#include "hd44780_rig.h"
#include "platform_capture.h"

namespace {

using frontpanelhw::Hd44780Rom;
using frontpanelhw::PanelKey;
using yxfp_test::Hd44780Rig;
using yxfp_test::TeeDisplay;

struct ModuleCase {
    unsigned chars;
    unsigned lines;
    Hd44780Rom rom;
};

std::string describe(ModuleCase const& module) {
    return std::to_string(module.chars) + "x" + std::to_string(module.lines) + " " +
           frontpanelhw::hd44780RomName(module.rom);
}

class DemoPanelHd44780Test : public ::testing::TestWithParam<ModuleCase> {};

// Thousands of random keys, mode switches and measurements: after each step the module shows
// every character of the frame, the cursor marks the first inverted cell, and the controller
// was never driven against the datasheet's timing.
TEST_P(DemoPanelHd44780Test, ModuleShowsEveryFrameOfARandomWalk) {
    yxfp_test::SleepCapture const noWaiting;
    ModuleCase const module = GetParam();
    Hd44780Rig rig(module.chars, module.lines, module.rom);
    TeeDisplay tee(rig.display());
    yxfrontpanel::DrawingProvider provider(tee);
    frontpanelsim::DemoPanel demo(provider);
    demo.root().setFocus(true);
    std::mt19937 random(20261124U + module.chars * 10 + static_cast<unsigned>(module.rom));
    std::uniform_int_distribution<int> pick(0, 10);
    std::set<char32_t> seen;
    unsigned sample = 0;
    for (int step = 0; step < 1200; ++step) {
        int const choice = pick(random);
        if (choice < 7) {
            yxfrontpanel::applyKey(demo.root(), static_cast<PanelKey>(choice % 6));
        } else if (choice == 7) {
            demo.setLocal(!demo.isLocal());
        } else if (choice == 8) {
            demo.drawHomeScreen(provider);  // the status screen after the idle time
            demo.root().setFocus(true);     // a key brings the menu back
        } else {
            demo.acquire(++sample)();
        }
        auto const screen = rig.screen();
        ASSERT_EQ(screen, Hd44780Rig::meant(tee.last())) << describe(module) << " step " << step;
        ASSERT_EQ(rig.model().cursorCell(), Hd44780Rig::firstInverted(tee.last()))
            << describe(module) << " step " << step;
        ASSERT_EQ(rig.model().violations(), std::vector<std::string>{}) << describe(module);
        for (auto const& line : screen) {
            seen.insert(line.begin(), line.end());
        }
    }
    // The walk reached the screens with the characters that need custom glyphs or ROM codes
    // beyond ASCII: scroll arrows, bar cells and the slider's cursor.
    for (char32_t const glyph : {U'▲', U'▼', U'█', U'░'}) {
        EXPECT_EQ(seen.count(glyph), 1U)
            << describe(module) << " never showed " << yxfp_test::utf8(std::u32string(1, glyph));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Modules, DemoPanelHd44780Test,
    ::testing::Values(ModuleCase{16, 2, Hd44780Rom::A00}, ModuleCase{16, 2, Hd44780Rom::A02},
                      ModuleCase{20, 4, Hd44780Rom::A00}, ModuleCase{20, 4, Hd44780Rom::A02},
                      ModuleCase{40, 2, Hd44780Rom::A00}, ModuleCase{40, 2, Hd44780Rom::A02}),
    [](auto const& info) {
        auto const& module = info.param;
        return "M" + std::to_string(module.chars) + "x" + std::to_string(module.lines) +
               frontpanelhw::hd44780RomName(module.rom);
    });

// Each item type of the demo on a 20x4 module, walked by hand: Output's editors and read-only
// value, Network's IP editor, Display's slider, System's trigger with its tick.
TEST(DemoPanelHd44780WalkTest, EveryItemTypeShowsOnTheModule) {
    yxfp_test::SleepCapture const noWaiting;
    for (Hd44780Rom const rom : {Hd44780Rom::A00, Hd44780Rom::A02}) {
        Hd44780Rig rig(20, 4, rom);
        TeeDisplay tee(rig.display());
        yxfrontpanel::DrawingProvider provider(tee);
        frontpanelsim::DemoPanel demo(provider);
        demo.root().setFocus(true);
        auto const check = [&](char const* where) {
            ASSERT_EQ(rig.screen(), Hd44780Rig::meant(tee.last())) << where;
            ASSERT_EQ(rig.model().cursorCell(), Hd44780Rig::firstInverted(tee.last())) << where;
        };
        auto const keys = [&](std::initializer_list<PanelKey> sequence, char const* where) {
            for (PanelKey const key : sequence) {
                yxfrontpanel::applyKey(demo.root(), key);
                check(where);
            }
        };
        using K = PanelKey;
        keys({K::Enter, K::Enter, K::Up, K::Right, K::Up, K::Enter}, "value editor");
        keys({K::Down, K::Down, K::Down, K::Enter, K::Back}, "output menu items");
        demo.acquire(1)();
        check("measurement");
        keys({K::Back, K::Down, K::Enter, K::Down, K::Enter, K::Up, K::Left, K::Back, K::Back},
             "ip editor");
        keys({K::Back, K::Down, K::Enter, K::Enter, K::Right, K::Right, K::Enter, K::Back},
             "slider");
        keys({K::Back, K::Down, K::Enter, K::Down, K::Down, K::Down, K::Enter, K::Enter},
             "trigger");
        EXPECT_EQ(rig.model().violations(), std::vector<std::string>{});
    }
}

}  // namespace
