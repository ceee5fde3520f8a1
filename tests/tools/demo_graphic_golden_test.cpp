// Golden pictures of the demo's screens on a 128x64 graphic module, with each built-in font:
// tests/golden/graphic/SCREEN_FONT.pbm (plain PBM, P1: '1' is a lit pixel). To write them
// again after a deliberate change of the fonts or the renderer:
//   YXFP_UPDATE_GOLDEN=1 build/default/tests/yxfrontpanel_tests --gtest_filter='DemoGraphicGolden*'
// then look at the pictures (e.g. convert them to PNG) before committing them.
#include <frontpanelhw/graphic/graphic_display.h>
#include <yxfrontpanel/testing/recording_display.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "demo_panel.h"

namespace {

using frontpanelhw::PanelKey;
using frontpanelhw::drawing::DisplayBuffer;
using namespace frontpanelhw::graphic;
using frontpanelsim::DemoPanel;

/** A 128x64 module that only keeps its picture. */
class Module : public GraphicDisplay {
public:
    explicit Module(Font font) : GraphicDisplay(128, 64, std::move(font)) {}

protected:
    bool flush(MonoBitmap const& /*bitmap*/, PixelRect /*changed*/) override { return true; }
};

std::string toPbm(MonoBitmap const& bitmap) {
    std::ostringstream text;
    text << "P1\n" << bitmap.width() << ' ' << bitmap.height() << '\n';
    for (unsigned y = 0; y < bitmap.height(); ++y) {
        for (unsigned x = 0; x < bitmap.width(); ++x) {
            text << (bitmap.pixel(x, y) ? '1' : '0');
        }
        text << '\n';
    }
    return text.str();
}

/** Reads a plain PBM; an empty 0x0 bitmap when the file is missing or not a P1 picture. */
MonoBitmap fromPbm(std::string const& path) {
    std::ifstream file(path);
    std::string magic;
    unsigned width = 0;
    unsigned height = 0;
    if (!(file >> magic >> width >> height) || magic != "P1") {
        return MonoBitmap(0, 0);
    }
    MonoBitmap bitmap(width, height);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            char bit = 0;
            file >> bit;
            bitmap.setPixel(x, y, bit == '1');
        }
    }
    return file ? bitmap : MonoBitmap(0, 0);
}

/** The demo's screen after `keys` on a panel of the module's cells. */
DisplayBuffer demoScreen(unsigned chars, unsigned lines, std::vector<PanelKey> const& keys,
                         bool homeScreen) {
    yxfrontpanel::testing::RecordingDisplay provider(chars, lines);
    DemoPanel demo(provider);
    if (homeScreen) {
        yxfrontpanel::testing::RecordingDisplay home(chars, lines);
        demo.drawHomeScreen(home);
        return home.lastFrame();
    }
    demo.root().setFocus(true);
    for (PanelKey key : keys) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    return provider.lastFrame();
}

void checkGolden(std::string const& name, std::vector<PanelKey> const& keys,
                 bool homeScreen = false) {
    for (char const* fontName : {"6x8", "8x16"}) {
        Module module(Font::fromName(fontName));
        module.draw(demoScreen(module.getChars(), module.getLines(), keys, homeScreen));
        std::string const path =
            std::string(YXFP_GRAPHIC_GOLDEN_DIR) + "/" + name + "_" + fontName + ".pbm";
        char const* update = std::getenv("YXFP_UPDATE_GOLDEN");  // NOLINT(concurrency-mt-unsafe)
        if (update != nullptr && std::string(update) == "1") {
            std::ofstream(path) << toPbm(module.bitmap());
        }
        MonoBitmap const expected = fromPbm(path);
        EXPECT_EQ(toPbm(module.bitmap()), toPbm(expected)) << path;
    }
}

TEST(DemoGraphicGoldenTest, RootMenuWithTheSelectionInverted) { checkGolden("root_menu", {}); }

TEST(DemoGraphicGoldenTest, OutputMenuWithItsScrollMark) {
    checkGolden("output_menu", {PanelKey::Enter});
}

TEST(DemoGraphicGoldenTest, VoltageEditor) {
    checkGolden("voltage_editor", {PanelKey::Enter, PanelKey::Enter, PanelKey::Up});
}

TEST(DemoGraphicGoldenTest, HomeScreen) { checkGolden("home_screen", {}, true); }

}  // namespace
