#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "graphic_capture.h"
#include "menu_test_items.h"
#include "queued_key_source.h"

// A panel left alone darkens its OLED or ST7920 module against burn-in: the controller models
// see the panel switched off after the dark time and on again with the next key.
namespace {

using namespace std::chrono_literals;
using frontpanelhw::PanelKey;

TEST(PanelDarkDisplayTest, TheModuleGoesDarkWhenIdleAndLightsWithTheNextKey) {
    for (yxfp_test::GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        yxfp_test::GraphicCaptureRig rig(setup);
        auto clock = std::make_shared<yxfrontpanel::testing::ManualClock>();
        yxfrontpanel::runtime::PanelOptions options;
        options.darkTimeout = 5min;
        yxfrontpanel::runtime::Panel panel(rig.display(), options, clock);
        auto tree = yxfrontpanel::MenuTreeFactory().create(panel.provider());
        tree->addItem(std::make_shared<yxfp_test::TestItem>(u"Alpha"));
        tree->addItem(std::make_shared<yxfp_test::TestItem>(u"Beta"));
        panel.setRoot(*tree);
        auto keys = std::make_shared<yxfp_test::QueuedKeySource>();
        panel.addKeySource(keys);
        auto& display = rig.display();
        panel.setDarkListener([&display](bool dark) { display.setPowerSave(dark); });
        ASSERT_TRUE(panel.runOnce(0ms));
        rig.decode();
        ASSERT_TRUE(rig.lit()) << setup.name();
        clock->advance(5min);
        ASSERT_TRUE(panel.runOnce(0ms));
        rig.decode();
        EXPECT_FALSE(rig.lit()) << setup.name();
        keys->press(PanelKey::Down);
        ASSERT_TRUE(panel.runOnce(0ms));
        rig.decode();
        EXPECT_TRUE(rig.lit()) << setup.name();
        EXPECT_EQ(rig.picture(), display.bitmap()) << setup.name() << ": the picture as it was";
    }
}

}  // namespace
