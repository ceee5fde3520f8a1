// Rotary encoders through EvdevKeySource: relative and absolute axes, direction, detents and
// acceleration.
#include <frontpanelhw/evdev_key_source.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "input_event_pipe.h"
#include "key_event_text.h"
#include <linux/input.h>

namespace {

using frontpanelhw::EncoderOptions;
using frontpanelhw::EvdevKeySource;
using frontpanelhw::EvdevOptions;
using yxfp_test::drainKeySource;
using yxfp_test::InputEventPipe;
using yxfp_test::inputRecord;
using Events = std::vector<std::string>;
using namespace std::chrono_literals;

Events steps(char const* key, int count) {
    Events events;
    for (int i = 0; i < count; ++i) {
        events.push_back(std::string("press ") + key);
        events.push_back(std::string("release ") + key);
    }
    return events;
}

// The events of `parts`, one part after the other.
Events joined(std::initializer_list<Events> parts) {
    Events events;
    for (Events const& part : parts) {
        events.insert(events.end(), part.begin(), part.end());
    }
    return events;
}

class EncoderTest : public ::testing::Test {
protected:
    void start(EncoderOptions encoder = {}) {
        EvdevOptions options;
        options.encoder = std::move(encoder);
        source_ = std::make_unique<EvdevKeySource>(pipe_.releaseReadEnd(), options);
    }
    void turn(int counts, long milliseconds = 0, std::uint16_t axis = REL_DIAL) {
        pipe_.write(inputRecord(EV_REL, axis, counts, milliseconds));
        pipe_.report(milliseconds);
    }
    void position(int value, long milliseconds = 0) {
        pipe_.write(inputRecord(EV_ABS, ABS_X, value, milliseconds));
        pipe_.report(milliseconds);
    }
    Events events() { return drainKeySource(*source_); }

    InputEventPipe pipe_;
    std::unique_ptr<EvdevKeySource> source_;
};

TEST_F(EncoderTest, DefaultAxesAreTheLinuxDialWheelAndX) {
    EncoderOptions const options;
    EXPECT_EQ(options.relativeAxes, (std::vector<int>{REL_DIAL, REL_WHEEL, REL_X}));
    EXPECT_EQ(options.absoluteAxes, (std::vector<int>{ABS_X}));
}

TEST_F(EncoderTest, PositiveCountsStepUpAndNegativeCountsDown) {
    start();
    turn(1);
    EXPECT_EQ(events(), steps("up", 1));
    turn(-1);
    EXPECT_EQ(events(), steps("down", 1));
    turn(3);
    EXPECT_EQ(events(), steps("up", 3));
}

TEST_F(EncoderTest, WheelAndXAxesStepToo) {
    start();
    turn(1, 0, REL_WHEEL);
    turn(-1, 0, REL_X);
    EXPECT_EQ(events(), joined({steps("up", 1), steps("down", 1)}));
}

TEST_F(EncoderTest, OtherAxesAreIgnored) {
    start();
    turn(1, 0, REL_Y);
    turn(1, 0, REL_HWHEEL);
    EXPECT_EQ(events(), Events{});
}

TEST_F(EncoderTest, ReverseTurnsTheDirectionAround) {
    EncoderOptions options;
    options.reverse = true;
    start(options);
    turn(1);
    EXPECT_EQ(events(), steps("down", 1));
    turn(-2);
    EXPECT_EQ(events(), steps("up", 2));
}

TEST_F(EncoderTest, DetentsPerStepGatherCountsBeforeAStep) {
    EncoderOptions options;
    options.detentsPerStep = 4;
    start(options);
    turn(1);
    turn(1);
    turn(1);
    EXPECT_EQ(events(), Events{});
    turn(1);
    EXPECT_EQ(events(), steps("up", 1));
    turn(-3);
    EXPECT_EQ(events(), Events{});
    turn(-5);
    EXPECT_EQ(events(), steps("down", 2));
}

TEST_F(EncoderTest, TurningBackCancelsAPartialStep) {
    EncoderOptions options;
    options.detentsPerStep = 2;
    start(options);
    turn(1);
    turn(-1);
    turn(-1);
    EXPECT_EQ(events(), Events{});
    turn(-1);
    EXPECT_EQ(events(), steps("down", 1));
}

TEST_F(EncoderTest, AbsolutePositionChangesAreSteps) {
    start();
    position(10);  // the first position only sets the start
    EXPECT_EQ(events(), Events{});
    position(11);
    EXPECT_EQ(events(), steps("up", 1));
    position(9);
    EXPECT_EQ(events(), steps("down", 2));
}

TEST_F(EncoderTest, AccelerationIsOffByDefault) {
    start();
    turn(1, 1000);
    turn(1, 1001);
    turn(1, 1002);
    EXPECT_EQ(events(), steps("up", 3));
}

TEST_F(EncoderTest, FastTurningGivesRepeatedSteps) {
    EncoderOptions options;
    options.acceleration = true;
    options.accelerationInterval = 60ms;
    options.maxAcceleratedSteps = 5;
    start(options);
    turn(1, 1000);  // the first step of a turn is one step
    EXPECT_EQ(events(), steps("up", 1));
    turn(1, 1100);  // slower than the interval
    EXPECT_EQ(events(), steps("up", 1));
    turn(1, 1130);  // 30 ms: twice as fast as the interval
    EXPECT_EQ(events(), steps("up", 2));
    turn(1, 1150);  // 20 ms
    EXPECT_EQ(events(), steps("up", 3));
    turn(1, 1151);  // 1 ms: capped
    EXPECT_EQ(events(), steps("up", 5));
}

TEST_F(EncoderTest, ChangeOfDirectionStartsWithoutAcceleration) {
    EncoderOptions options;
    options.acceleration = true;
    start(options);
    turn(1, 1000);
    turn(1, 1010);
    EXPECT_EQ(events(), steps("up", 6));  // 1, then capped 5
    turn(-1, 1020);
    EXPECT_EQ(events(), steps("down", 1));
}

TEST_F(EncoderTest, DroppedEventsForgetAPartialStep) {
    EncoderOptions options;
    options.detentsPerStep = 2;
    start(options);
    turn(1);
    pipe_.write(inputRecord(EV_SYN, SYN_DROPPED, 0));
    pipe_.write(inputRecord(EV_REL, REL_DIAL, 1));
    pipe_.report();
    turn(1);
    EXPECT_EQ(events(), Events{});
    turn(1);
    EXPECT_EQ(events(), steps("up", 1));
}

TEST_F(EncoderTest, StepOfAHeldKeyIsLeftOut) {
    start();
    pipe_.key(KEY_UP, 1);
    turn(1);
    turn(-1);
    pipe_.key(KEY_UP, 0);
    EXPECT_EQ(events(), joined({{"press up"}, steps("down", 1), {"release up"}}));
}

TEST_F(EncoderTest, PushSwitchIsEnter) {
    start();
    pipe_.key(KEY_ENTER, 1);
    pipe_.key(KEY_ENTER, 0);
    EXPECT_EQ(events(), (Events{"press enter", "release enter"}));
}

}  // namespace
