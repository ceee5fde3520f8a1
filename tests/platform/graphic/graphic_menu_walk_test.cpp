// Random walks through a menu on every graphic module: after each key the capture, decoded by
// the controller model, shows exactly the display's bitmap.
#include <gtest/gtest.h>

#include <random>

#include "graphic_capture.h"
#include "graphic_menu.h"
#include "menu_keys.h"
#include "random_menu_walk.h"

namespace {

using yxfp_test::GraphicCaptureRig;
using yxfp_test::GraphicSetup;

constexpr int kKeysPerWalk = 150;

TEST(GraphicMenuWalkTest, ModelPictureEqualsTheBitmapAfterEveryKeyOfRandomWalks) {
    unsigned seed = 25;
    for (GraphicSetup const& setup : yxfp_test::allGraphicSetups()) {
        GraphicCaptureRig rig(setup);
        yxfp_test::GraphicMenu menu(rig.display());
        menu.root().setFocus(true);
        rig.decode();
        ASSERT_EQ(rig.picture(), rig.display().bitmap()) << setup.name() << ", first screen";
        std::mt19937 random(++seed);
        for (int step = 0; step < kKeysPerWalk; ++step) {
            yxfp_test::Key const key = yxfp_test::randomKey(random);
            yxfp_test::press(menu.root(), key);
            if (yxfp_test::oneIn(random, 10)) {
                menu.measured().setValue(4.9 + static_cast<double>(step) / 1000.0, 3);
            }
            rig.decode();
            ASSERT_EQ(rig.picture(), rig.display().bitmap())
                << setup.name() << ", key " << step << " (" << key << ")\nmodel:\n"
                << yxfp_test::pictureText(rig.picture()) << "display:\n"
                << yxfp_test::pictureText(rig.display().bitmap());
        }
    }
}

}  // namespace
