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
    // Odd while the key thread puts the slider back to 0; the reader compares only values read
    // within one even epoch.
    std::atomic<unsigned> epoch{0};
    unsigned lastEpoch = 1;
    int last = 0;
    std::atomic<bool> wentBack{false};
    BackgroundLoop reader([&] {
        unsigned const before = epoch.load();
        int const value = driven.slider.getValue();
        if (before % 2 != 0 || epoch.load() != before) {
            return;
        }
        if (before == lastEpoch && value < last) {
            wentBack = true;
        }
        lastEpoch = before;
        last = value;
    });

    for (int round = 0; round < 50; ++round) {
        epoch.fetch_add(1);
        driven.slider.setValue(0);
        epoch.fetch_add(1);
        driven.stepAndCommit(11);
        reader.awaitFullRound();
    }
    reader.stop();

    EXPECT_FALSE(wentBack.load());
    EXPECT_EQ(last, 11);
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
