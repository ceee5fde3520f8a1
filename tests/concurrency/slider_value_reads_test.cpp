#include <yxfrontpanel/slider.h>

#include <gtest/gtest.h>

#include <atomic>

#include "background_loop.h"
#include "recording_provider.h"

namespace {

using yxfp_test::BackgroundLoop;

// A focused slider in editor mode on a 20x4 panel, driven by the key thread.
struct DrivenSlider {
    DrivenSlider() {
        slider.setEditorMode(true);
        slider.setFocus(true);
    }

    // Steps right and commits, `steps` times.
    void stepAndCommit(int steps) {
        for (int i = 0; i < steps; ++i) {
            slider.moveRight();
            slider.apply();
        }
    }

    yxfp_test::RecordingProvider provider{20, 4};
    yxfrontpanel::Slider slider{provider, u"Level", u"Lo", u"Hi", 4, 12, 0};
};

TEST(SliderValueReadsTest, AnotherThreadSeesTheCommittedValueOnlyGrowWhileTheKeyThreadSteps) {
    DrivenSlider driven;
    std::atomic<int> last{0};
    std::atomic<bool> wentBack{false};
    BackgroundLoop reader([&] {
        int const value = driven.slider.getValue();
        if (value < last.load()) {
            wentBack = true;
        }
        last = value;
    });

    for (int round = 0; round < 50; ++round) {
        driven.slider.setValue(0);
        reader.awaitFullRound();
        last = 0;
        driven.stepAndCommit(10);
    }
    reader.stop();

    EXPECT_FALSE(wentBack.load());
    EXPECT_EQ(driven.slider.getValue(), 10);
}

TEST(SliderValueReadsTest, AnotherThreadReadsOnlyValuesInsideTheRange) {
    DrivenSlider driven;
    std::atomic<bool> outside{false};
    BackgroundLoop reader([&] {
        int const value = driven.slider.getValue();
        if (value < 0 || value > 11) {
            outside = true;
        }
    });

    for (int round = 0; round < 50; ++round) {
        driven.slider.setValue(0);
        driven.stepAndCommit(20);
    }
    reader.stop();

    EXPECT_FALSE(outside.load());
    EXPECT_EQ(driven.slider.getValue(), 11);
}

}  // namespace
