// What a 128x64 SSD1306 on a 400 kHz I2C bus costs, measured from its capture: the bytes of a
// selection move and of a digit step against a full screen, and the time to the glass.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <functional>

#include "graphic_capture.h"
#include "graphic_menu.h"

namespace {

using yxfp_test::GraphicCaptureRig;
using yxfp_test::GraphicSetup;

constexpr unsigned kBusHz = 400000;
constexpr unsigned kBitsPerByte = 9;  // eight bits and the acknowledge

/** What one step put on the I2C bus. */
struct BusCost {
    unsigned long transfers = 0;
    unsigned long payload = 0;  // control bytes and what follows them
    std::chrono::nanoseconds waited{0};

    /** Bytes on the wire: one address byte per transfer and the payload. */
    unsigned long bytes() const { return transfers + payload; }
    /** Bytes x 9 bits at 400 kHz, plus the driver's waits. */
    std::chrono::nanoseconds toGlass() const {
        return std::chrono::nanoseconds(bytes() * kBitsPerByte * 1000000000ULL / kBusHz) + waited;
    }
};

class OledBusCostTest : public ::testing::Test {
protected:
    OledBusCostTest()
        : rig_(GraphicSetup{GraphicSetup::Chip::Ssd1306, false, 64, false}),
          menu_(rig_.display()) {}

    BusCost cost(std::function<void()> const& step) {
        rig_.decode();
        BusCost const before{rig_.transfers(), rig_.payload(), rig_.waited()};
        step();
        rig_.decode();
        EXPECT_EQ(rig_.picture(), rig_.display().bitmap());
        return {rig_.transfers() - before.transfers, rig_.payload() - before.payload,
                rig_.waited() - before.waited};
    }

    BusCost fullScreen() {
        return cost([this] { menu_.root().setFocus(true); });
    }

    static double share(BusCost const& part, BusCost const& whole) {
        return static_cast<double>(part.bytes()) / static_cast<double>(whole.bytes());
    }

    GraphicCaptureRig rig_;
    yxfp_test::GraphicMenu menu_;
};

TEST_F(OledBusCostTest, FullScreenSendsEveryByteOfTheRamOnce) {
    BusCost const full = fullScreen();
    EXPECT_GE(full.payload, 1024U);
    EXPECT_LT(full.bytes(), 1024U + 150U) << "initialisation and addressing stay small";
    RecordProperty("full_screen_bytes", static_cast<int>(full.bytes()));
}

TEST_F(OledBusCostTest, SelectionMoveSendsAtMostThirtyPercentOfAFullScreen) {
    BusCost const full = fullScreen();
    BusCost const move = cost([this] { menu_.root().moveDown(); });
    EXPECT_GT(move.payload, 0U);
    EXPECT_LE(share(move, full), 0.30) << move.bytes() << " of " << full.bytes();
    RecordProperty("selection_move_bytes", static_cast<int>(move.bytes()));
}

TEST_F(OledBusCostTest, DigitStepSendsAtMostTenPercentOfAFullScreen) {
    BusCost const full = fullScreen();
    menu_.root().action();
    BusCost const step = cost([this] { menu_.root().moveUp(); });
    EXPECT_GT(step.payload, 0U);
    EXPECT_LE(share(step, full), 0.10) << step.bytes() << " of " << full.bytes();
    RecordProperty("digit_step_bytes", static_cast<int>(step.bytes()));
}

TEST_F(OledBusCostTest, SelectionMoveReachesTheGlassWithinTenMillisecondsAt400kHz) {
    fullScreen();
    BusCost const move = cost([this] { menu_.root().moveDown(); });
    EXPECT_LE(move.toGlass(), std::chrono::milliseconds(10))
        << move.bytes() << " bytes, " << move.waited.count() << " ns of waits";
    RecordProperty(
        "selection_move_us",
        static_cast<int>(
            std::chrono::duration_cast<std::chrono::microseconds>(move.toGlass()).count()));
}

}  // namespace
