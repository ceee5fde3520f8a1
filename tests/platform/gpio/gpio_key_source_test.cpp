#include <frontpanelhw/gpio_key_source.h>

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "key_event_text.h"
#include "platform_capture.h"
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

using frontpanelhw::GpioEdge;
using frontpanelhw::GpioKeyOptions;
using frontpanelhw::GpioKeySource;
using frontpanelhw::IGpioEdgeSource;
using frontpanelhw::InputDeviceError;
using frontpanelhw::KeyMapError;
using frontpanelhw::PanelKey;
using yxfp_test::drainKeySource;
using Events = std::vector<std::string>;
using TimePoint = std::chrono::steady_clock::time_point;
using namespace std::chrono_literals;

/** GPIO lines as the test sets them: edges wait in a queue, an eventfd is the descriptor, the
 *  lines' levels are plain values, and `lose()` makes the next read fail as an unbound chip
 *  does. */
class LineModel {
public:
    explicit LineModel(TimePoint const& now) : now_(now) {}

    /** An edge happens: the line's level follows it from its time on, and it waits to be read
     *  unless the kernel dropped it (its queue was full). */
    void edge(GpioEdge const& edge, bool dropped) {
        history_.push_back(edge);
        if (!dropped) {
            edges.push_back(edge);
        }
    }
    /** The level of the line now: its resting level, then every edge that has happened. */
    bool level(unsigned offset) const {
        bool high = levels.count(offset) != 0 && levels.at(offset);
        for (GpioEdge const& edge : history_) {
            if (edge.offset == offset && edge.time <= now_) {
                high = edge.rising;
            }
        }
        return high;
    }

    std::deque<GpioEdge> edges;
    std::map<unsigned, bool> levels;
    bool lost = false;

private:
    TimePoint const& now_;
    std::vector<GpioEdge> history_;
};

class ModelEdgeSource : public IGpioEdgeSource {
public:
    explicit ModelEdgeSource(LineModel& model)
        : model_(model), descriptor_(::eventfd(0, EFD_CLOEXEC)) {}
    ~ModelEdgeSource() override { ::close(descriptor_); }

    int descriptor() const override { return descriptor_; }
    std::optional<GpioEdge> readEdge() override {
        if (model_.lost) {
            throw InputDeviceError("GPIO line 5 of gpiochip9 has gone");
        }
        if (model_.edges.empty()) {
            return std::nullopt;
        }
        GpioEdge const edge = model_.edges.front();
        model_.edges.pop_front();
        return edge;
    }
    bool level(unsigned offset) override { return model_.level(offset); }

private:
    LineModel& model_;
    int descriptor_;
};

class GpioKeySourceTest : public ::testing::Test {
protected:
    void start(GpioKeyOptions options = {}) {
        if (options.lines.empty()) {
            options.lines = {{PanelKey::Up, 5}, {PanelKey::Enter, 6}};
        }
        options.clock = [this] { return now_; };
        source_ =
            std::make_unique<GpioKeySource>(std::make_unique<ModelEdgeSource>(model_), options);
    }
    /** An edge on `offset` at `after` from the start. */
    void edge(unsigned offset, bool rising, std::chrono::milliseconds after) {
        model_.edge(GpioEdge{offset, rising, kStart + after}, false);
    }
    /** An edge the kernel dropped: the line changes, but no event says so. */
    void droppedEdge(unsigned offset, bool rising, std::chrono::milliseconds after) {
        model_.edge(GpioEdge{offset, rising, kStart + after}, true);
    }
    /** Moves the clock to `after` from the start and returns the events ready then. */
    Events at(std::chrono::milliseconds after) {
        now_ = kStart + after;
        return drainKeySource(*source_);
    }

    static constexpr TimePoint kStart{1h};
    TimePoint now_ = kStart;
    LineModel model_{now_};
    std::unique_ptr<GpioKeySource> source_;
};

TEST_F(GpioKeySourceTest, ReportsPressesAndReleasesButNoRepeats) {
    start();
    EXPECT_TRUE(source_->capabilities().releases);
    EXPECT_FALSE(source_->capabilities().repeats);
}

TEST_F(GpioKeySourceTest, PressCountsAfterTheDefaultDebounceTime) {
    start();
    edge(5, true, 0ms);
    EXPECT_EQ(at(0ms), Events{});
    EXPECT_EQ(source_->wakeWithin(), 20ms);
    EXPECT_EQ(at(19ms), Events{});
    EXPECT_EQ(source_->wakeWithin(), 1ms);
    EXPECT_EQ(at(20ms), Events{"press up"});
    EXPECT_EQ(source_->wakeWithin(), 20ms);  // a held key's line is read every debounce time
    edge(5, false, 100ms);
    EXPECT_EQ(at(120ms), Events{"release up"});
    EXPECT_EQ(source_->wakeWithin(), std::nullopt);
}

TEST_F(GpioKeySourceTest, BounceBurstShorterThanTheDebounceTimeGivesOnePress) {
    start();
    edge(6, true, 0ms);
    edge(6, false, 2ms);
    edge(6, true, 3ms);
    edge(6, false, 7ms);
    edge(6, true, 9ms);
    EXPECT_EQ(at(10ms), Events{});
    EXPECT_EQ(at(28ms), Events{});  // 19 ms after the last edge
    EXPECT_EQ(at(29ms), Events{"press enter"});
    edge(6, false, 200ms);
    edge(6, true, 201ms);
    edge(6, false, 204ms);
    EXPECT_EQ(at(230ms), Events{"release enter"});
}

// The kernel keeps 16 events per line and drops the rest while the panel thread is busy: a
// release whose edges were all dropped is found by reading the line.
TEST_F(GpioKeySourceTest, KeyWhoseReleaseWasDroppedIsReleased) {
    start();
    edge(5, true, 0ms);
    EXPECT_EQ(at(20ms), Events{"press up"});
    droppedEdge(5, false, 100ms);
    EXPECT_EQ(at(99ms), Events{});
    EXPECT_EQ(at(120ms), Events{"release up"});
    EXPECT_EQ(at(500ms), Events{});
}

// Only the first edges of a burst came through, the last one (the release) was dropped: after
// the debounce time the line's level decides, not the newest edge read.
TEST_F(GpioKeySourceTest, BurstWhoseLastEdgesWereDroppedEndsAtTheLinesLevel) {
    start();
    edge(6, true, 0ms);
    edge(6, false, 2ms);
    edge(6, true, 4ms);
    droppedEdge(6, false, 6ms);
    EXPECT_EQ(at(30ms), Events{});
    EXPECT_EQ(at(200ms), Events{});
}

TEST_F(GpioKeySourceTest, BurstThatEndsAtRestGivesNothing) {
    start();
    edge(5, true, 0ms);
    edge(5, false, 3ms);
    EXPECT_EQ(at(100ms), Events{});
}

TEST_F(GpioKeySourceTest, ActiveLowLinesArePressedWhenLow) {
    model_.levels = {{5, true}, {6, true}};
    GpioKeyOptions options;
    options.activeLow = true;
    start(options);
    edge(5, false, 0ms);
    EXPECT_EQ(at(20ms), Events{"press up"});
    edge(5, true, 50ms);
    EXPECT_EQ(at(70ms), Events{"release up"});
}

TEST_F(GpioKeySourceTest, DebounceTimeIsConfigurable) {
    GpioKeyOptions options;
    options.debounce = 5ms;
    start(options);
    edge(5, true, 0ms);
    EXPECT_EQ(at(4ms), Events{});
    EXPECT_EQ(at(5ms), Events{"press up"});
}

TEST_F(GpioKeySourceTest, KeysSettleEachOnItsOwn) {
    start();
    edge(5, true, 0ms);
    edge(6, true, 10ms);
    EXPECT_EQ(at(20ms), Events{"press up"});
    EXPECT_EQ(source_->wakeWithin(), 10ms);
    EXPECT_EQ(at(30ms), Events{"press enter"});
}

TEST_F(GpioKeySourceTest, EdgesOfOtherLinesAreIgnored) {
    start();
    edge(17, true, 0ms);
    EXPECT_EQ(at(50ms), Events{});
    EXPECT_EQ(source_->wakeWithin(), std::nullopt);
}

TEST_F(GpioKeySourceTest, LostLinesReleaseHeldKeysAndCloseOnce) {
    yxfp_test::LogCapture log;
    start();
    edge(5, true, 0ms);
    EXPECT_EQ(at(20ms), Events{"press up"});
    model_.lost = true;
    EXPECT_EQ(at(30ms), (Events{"release up", "closed"}));
    EXPECT_EQ(source_->waitDescriptor(), -1);
    EXPECT_EQ(at(40ms), Events{});
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].message,
              "GPIO line 5 of gpiochip9 has gone; the GPIO keys have stopped");
}

TEST_F(GpioKeySourceTest, KeyReadingPressedAtStartIsLoggedAsAHint) {
    yxfp_test::LogCapture log;
    model_.levels = {{5, false}, {6, true}};
    start();
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].message,
              "GPIO line 6 (enter) reads as pressed at start; if no one holds that key, the "
              "line's active-high setting is probably wrong");
    edge(6, false, 0ms);
    EXPECT_EQ(at(20ms), Events{"release enter"});
}

TEST_F(GpioKeySourceTest, SameLineForTwoKeysIsAnError) {
    GpioKeyOptions options;
    options.lines = {{PanelKey::Up, 5}, {PanelKey::Down, 5}};
    EXPECT_THROW(start(options), KeyMapError);
}

TEST(GpioKeyLinesTest, ParsesKeysAndOptions) {
    GpioKeyOptions const options = frontpanelhw::parseGpioKeyLines(
        "up=5, down=6,left=13,right=19,enter=26,back=21,"
        "active-low,pull-up,debounce=30");
    std::map<PanelKey, unsigned> const lines{{PanelKey::Up, 5},     {PanelKey::Down, 6},
                                             {PanelKey::Left, 13},  {PanelKey::Right, 19},
                                             {PanelKey::Enter, 26}, {PanelKey::Back, 21}};
    EXPECT_EQ(options.lines, lines);
    EXPECT_TRUE(options.activeLow);
    EXPECT_EQ(options.bias, frontpanelhw::GpioBias::PullUp);
    EXPECT_EQ(options.debounce, 30ms);
}

TEST(GpioKeyLinesTest, DefaultsAreActiveHighWithTwentyMillisecondDebounce) {
    GpioKeyOptions const options = frontpanelhw::parseGpioKeyLines("enter=3");
    EXPECT_FALSE(options.activeLow);
    EXPECT_EQ(options.bias, frontpanelhw::GpioBias::AsIs);
    EXPECT_EQ(options.debounce, 20ms);
}

std::string lineError(std::string const& text) {
    try {
        frontpanelhw::parseGpioKeyLines(text);
    } catch (KeyMapError const& error) {
        return error.what();
    }
    return {};
}

TEST(GpioKeyLinesTest, ErrorsNameTheEntry) {
    EXPECT_EQ(lineError("up=5,sideways=6"),
              "unknown GPIO entry 'sideways=6': use KEY=OFFSET (KEY one of up, down, left, right, "
              "enter, back), active-low, active-high, pull-up, pull-down, bias-disable or "
              "debounce=MS");
    EXPECT_EQ(lineError("up=five"),
              "'five' in GPIO entry 'up=five' is not a number from 0 to 65535");
    EXPECT_EQ(lineError("up=5,down=5"),
              "GPIO entry 'down=5' gives a key or line a second time: each key needs its own "
              "line");
    EXPECT_EQ(lineError("active-low"),
              "no GPIO line for any key: give at least one, e.g. enter=13");
    EXPECT_EQ(lineError("up=5,debounce=99999"),
              "'99999' in GPIO entry 'debounce=99999' is not a number from 0 to 10000");
}

TEST(GpioKeySourceChipTest, MissingChipIsAnErrorSayingHowToListThem) {
    try {
        GpioKeySource source("gpiochip-none", frontpanelhw::parseGpioKeyLines("up=1"));
        ADD_FAILURE() << "no error";
    } catch (InputDeviceError const& error) {
        EXPECT_STREQ(error.what(),
                     "GPIO chip 'gpiochip-none' does not exist: gpiodetect lists the chips (e.g. "
                     "gpiochip0)");
    }
}

}  // namespace
