#include "input_devices.h"

#include <frontpanelhw/display.h>
#include <yxfrontpanel/runtime/panel.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "echo_app.h"
#include "input_event_pipe.h"
#include "printed_frames.h"
#include "runners.h"
#include <linux/input.h>
#include <unistd.h>

namespace {

using frontpanelsim::InputDevices;
using frontpanelsim::parseInputOption;
using yxfp_test::inputRecord;

/** A file of input event records that is removed again at the end. */
class RecordFile {
public:
    explicit RecordFile(std::vector<input_event> const& records) {
        char pattern[] = "/tmp/yxfp-input-XXXXXX";
        int const descriptor = ::mkstemp(pattern);
        EXPECT_GE(descriptor, 0);
        path_ = pattern;
        for (input_event const& record : records) {
            EXPECT_EQ(::write(descriptor, &record, sizeof record),
                      static_cast<ssize_t>(sizeof record));
        }
        ::close(descriptor);
    }
    ~RecordFile() { ::unlink(path_.c_str()); }
    RecordFile(RecordFile const&) = delete;
    RecordFile& operator=(RecordFile const&) = delete;

    std::string const& path() const { return path_; }

private:
    std::string path_;
};

std::vector<input_event> keyStroke(std::uint16_t code) {
    return {inputRecord(EV_KEY, code, 1), inputRecord(EV_SYN, SYN_REPORT, 0),
            inputRecord(EV_KEY, code, 0), inputRecord(EV_SYN, SYN_REPORT, 0)};
}

frontpanelsim::AppFactory echoApp() {
    auto const journal = std::make_shared<yxfp_test::Journal>();
    return [journal](yxfrontpanel::IDrawingProvider const& provider) {
        return std::make_unique<yxfp_test::EchoApp>(provider, journal);
    };
}

frontpanelsim::SimOptions headlessOptions(std::vector<std::string> const& inputs) {
    frontpanelsim::SimOptions options;
    options.chars = 6;
    options.lines = 2;
    options.headless = true;
    options.print = frontpanelsim::PrintMode::Last;
    for (auto const& input : inputs) {
        options.inputs.push_back(parseInputOption(input));
    }
    return options;
}

// Two replayed inputs: the run ends once both have closed and prints the last frame, in which
// the second of the two entries has the focus.
TEST(InputDevicesTest, HeadlessRunEndsWhenEveryInputClosedAndPrintsTheLastFrame) {
    RecordFile const down(keyStroke(KEY_DOWN));
    RecordFile const nothing({});
    auto const options =
        headlessOptions({"evdev:" + down.path(), "evdev:" + nothing.path() + ":grab"});
    std::ostringstream out;
    std::ostringstream err;
    frontpanelsim::Attachments attachments;
    attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    attachments.push_back(std::make_unique<frontpanelsim::PrintedFrames>(options.print, out));
    EXPECT_EQ(frontpanelsim::runHeadless(options, echoApp(), std::move(attachments), err), 0)
        << err.str();
    EXPECT_EQ(err.str(), "");
    EXPECT_EQ(out.str(),
              "frame 2\n"
              "+------+\n"
              "|Alpha |\n"
              "|Beta  | < inverted 0-4\n"
              "+------+\n");
}

TEST(InputDevicesTest, DeviceThatCannotBeOpenedFailsTheRunWithOneLine) {
    auto const options = headlessOptions({"evdev:/dev/input/event-none"});
    std::ostringstream err;
    frontpanelsim::Attachments attachments;
    attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    EXPECT_EQ(frontpanelsim::runHeadless(options, echoApp(), std::move(attachments), err), 1);
    EXPECT_EQ(err.str(),
              "frontpanel-sim: /dev/input/event-none does not exist: the input devices are "
              "/dev/input/event* (stable names in /dev/input/by-id/ and /dev/input/by-path/; "
              "evtest lists them)\n");
}

TEST(InputDevicesTest, ReopeningInputKeepsTheRunGoing) {
    EXPECT_FALSE(InputDevices({parseInputOption("evdev:/tmp/a")}).keepsRunning());
    EXPECT_TRUE(
        InputDevices({parseInputOption("evdev:/tmp/a"), parseInputOption("evdev:/tmp/b:reopen")})
            .keepsRunning());
}

/** Attaches the inputs of `option` to a panel as a run of `kind` would, serves them and tells
 *  whether the panel stopped. */
bool stopsWhenTheInputCloses(std::string const& option, frontpanelsim::RunKind kind) {
    frontpanelhw::MemoryDisplay display(6, 2);
    yxfrontpanel::runtime::PanelOptions panelOptions;
    panelOptions.stopWhenInputsClose = true;
    yxfrontpanel::runtime::Panel panel(display, panelOptions);
    auto const app = echoApp()(panel.provider());
    panel.setRoot(app->root());
    frontpanelsim::SimOptions options;
    InputDevices devices({parseInputOption(option)});
    devices.attach(frontpanelsim::SimContext{panel, *app, options, kind});
    for (int turn = 0; turn < 5 && !panel.isStopped(); ++turn) {
        panel.runOnce(std::chrono::milliseconds(0));
    }
    devices.detach();
    return panel.isStopped();
}

TEST(InputDevicesTest, ClosedInputEndsAHeadlessRunButNotAnInteractiveOne) {
    RecordFile const down(keyStroke(KEY_DOWN));
    EXPECT_TRUE(stopsWhenTheInputCloses("evdev:" + down.path(), frontpanelsim::RunKind::Headless));
    EXPECT_FALSE(
        stopsWhenTheInputCloses("evdev:" + down.path(), frontpanelsim::RunKind::Interactive));
}

}  // namespace
