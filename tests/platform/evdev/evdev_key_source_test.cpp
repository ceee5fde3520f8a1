#include <frontpanelhw/evdev_key_source.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "input_event_pipe.h"
#include "key_event_text.h"
#include "platform_capture.h"
#include <fcntl.h>
#include <linux/input.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::EvdevKeySource;
using frontpanelhw::EvdevOptions;
using frontpanelhw::InputDeviceError;
using frontpanelhw::InputKeyMap;
using frontpanelhw::parseInputKeyMap;
using yxfp_test::drainKeySource;
using yxfp_test::InputEventPipe;
using yxfp_test::inputRecord;
using Events = std::vector<std::string>;
using namespace std::chrono_literals;

/** A source reading the read end of `pipe`. */
std::unique_ptr<EvdevKeySource> sourceOn(InputEventPipe& pipe, EvdevOptions options = {}) {
    return std::make_unique<EvdevKeySource>(pipe.releaseReadEnd(), std::move(options));
}

/** The message of the InputDeviceError that opening `path` throws; empty when it opens. */
std::string openError(std::string const& path) {
    try {
        EvdevKeySource source(path);
    } catch (InputDeviceError const& error) {
        return error.what();
    }
    return {};
}

/** A directory of its own for FIFOs and files, removed with its contents at the end. */
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        char pattern[] = "/tmp/yxfp-evdev-XXXXXX";
        char* const made = ::mkdtemp(pattern);
        EXPECT_NE(made, nullptr);
        path_ = made != nullptr ? made : "/tmp";
    }
    ~TemporaryDirectory() {
        for (auto const& file : files_) {
            ::unlink(file.c_str());
        }
        ::rmdir(path_.c_str());
    }
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;

    std::string file(std::string const& name) {
        files_.push_back(path_ + "/" + name);
        return files_.back();
    }

private:
    std::string path_;
    std::vector<std::string> files_;
};

struct DefaultKey {
    int code;
    char const* name;
};

TEST(EvdevKeySourceTest, EveryDefaultKeyIsPressedAndReleased) {
    for (DefaultKey const key : {DefaultKey{KEY_UP, "up"}, DefaultKey{KEY_DOWN, "down"},
                                 DefaultKey{KEY_LEFT, "left"}, DefaultKey{KEY_RIGHT, "right"},
                                 DefaultKey{KEY_ENTER, "enter"}, DefaultKey{KEY_KPENTER, "enter"},
                                 DefaultKey{KEY_OK, "enter"}, DefaultKey{KEY_ESC, "back"},
                                 DefaultKey{KEY_BACKSPACE, "back"}, DefaultKey{KEY_BACK, "back"}}) {
        InputEventPipe pipe;
        auto const source = sourceOn(pipe);
        pipe.key(key.code, 1);
        EXPECT_EQ(drainKeySource(*source), Events{std::string("press ") + key.name})
            << "code " << key.code;
        pipe.key(key.code, 0);
        EXPECT_EQ(drainKeySource(*source), Events{std::string("release ") + key.name})
            << "code " << key.code;
    }
}

TEST(EvdevKeySourceTest, CustomMapGivesItsKeysAndKeepsTheDefaults) {
    InputEventPipe pipe;
    EvdevOptions options;
    options.keys = parseInputKeyMap("KEY_F1=back,KEY_SELECT=enter");
    auto const source = sourceOn(pipe, options);
    pipe.key(KEY_F1, 1);
    pipe.key(KEY_F1, 0);
    pipe.key(KEY_SELECT, 1);
    pipe.key(KEY_SELECT, 0);
    pipe.key(KEY_UP, 1);
    EXPECT_EQ(drainKeySource(*source),
              (Events{"press back", "release back", "press enter", "release enter", "press up"}));
}

TEST(EvdevKeySourceTest, KeysOutsideTheMapAreIgnored) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_A, 1);
    pipe.key(KEY_A, 0);
    pipe.write(inputRecord(EV_MSC, MSC_SCAN, 0x70004));
    pipe.key(KEY_DOWN, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press down"});
}

/** What a source on a pipe makes of a key held through two kernel repeats and a stray repeat
 *  after its release, with `deviceRepeats` as given. */
struct RepeatRun {
    Events events;
    bool repeatsBefore;  // capabilities().repeats before the key
    bool repeatsAfter;   // and after it
};

RepeatRun holdThroughRepeats(std::optional<bool> deviceRepeats) {
    InputEventPipe pipe;
    EvdevOptions options;
    options.deviceRepeats = deviceRepeats;
    auto const source = sourceOn(pipe, options);
    bool const before = source->capabilities().repeats;
    pipe.key(KEY_UP, 1);
    pipe.key(KEY_UP, 2);
    pipe.key(KEY_UP, 2);
    pipe.key(KEY_UP, 0);
    pipe.key(KEY_UP, 2);  // a repeat of a key not held any more
    Events events = drainKeySource(*source);
    return {events, before, source->capabilities().repeats};
}

// A recorded device replayed through a pipe: each of the kernel's repeats presses the key once
// more, and from then on the source says it repeats, so the runtime does not add its own.
TEST(EvdevKeySourceTest, EachKernelRepeatPressesTheKeyOnAPipe) {
    RepeatRun const run = holdThroughRepeats(std::nullopt);
    EXPECT_EQ(run.events, (Events{"press up", "repeat up", "repeat up", "release up"}));
    EXPECT_FALSE(run.repeatsBefore);
    EXPECT_TRUE(run.repeatsAfter);
}

TEST(EvdevKeySourceTest, DeviceRepeatsAreDroppedWhenSwitchedOff) {
    RepeatRun const run = holdThroughRepeats(false);
    EXPECT_EQ(run.events, (Events{"press up", "release up"}));
    EXPECT_FALSE(run.repeatsAfter);
}

TEST(EvdevKeySourceTest, DeviceRepeatsArePassedOnWhenAskedFor) {
    RepeatRun const run = holdThroughRepeats(true);
    EXPECT_EQ(run.events, (Events{"press up", "repeat up", "repeat up", "release up"}));
    EXPECT_TRUE(run.repeatsBefore);
}

TEST(EvdevKeySourceTest, PanelKeyOfTwoCodesIsHeldWhileEitherIs) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_ENTER, 1);
    pipe.key(KEY_KPENTER, 1);
    pipe.key(KEY_ENTER, 0);
    EXPECT_EQ(drainKeySource(*source), Events{"press enter"});
    pipe.key(KEY_KPENTER, 0);
    EXPECT_EQ(drainKeySource(*source), Events{"release enter"});
}

TEST(EvdevKeySourceTest, DroppedEventsReleaseAHeldKeyOnAPipe) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_UP, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press up"});
    // The kernel's buffer overflowed: the release is lost; what follows up to the next report
    // describes an unknown state.
    pipe.write(inputRecord(EV_SYN, SYN_DROPPED, 0));
    pipe.write(inputRecord(EV_KEY, KEY_DOWN, 1));
    pipe.report();
    EXPECT_EQ(drainKeySource(*source), Events{"release up"});
    pipe.key(KEY_UP, 0);  // the late release of a key already released gives nothing
    pipe.key(KEY_LEFT, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press left"});
}

TEST(EvdevKeySourceTest, RecordSplitAcrossWritesIsJoined) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    input_event const record = inputRecord(EV_KEY, KEY_RIGHT, 1);
    auto const* bytes = reinterpret_cast<char const*>(&record);
    pipe.writeBytes(bytes, 5);
    EXPECT_EQ(drainKeySource(*source), Events{});
    pipe.writeBytes(bytes + 5, sizeof record - 5);
    EXPECT_EQ(drainKeySource(*source), Events{"press right"});
}

TEST(EvdevKeySourceTest, GarbageRecordsAreSkippedWithALogLine) {
    yxfp_test::LogCapture log;
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.write(inputRecord(0x7f, 3, 4));
    pipe.write(inputRecord(EV_KEY, KEY_UP, 7));
    pipe.write(inputRecord(EV_KEY, 0xffff, 1));
    pipe.key(KEY_UP, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press up"});
    auto const records = log.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].message,
              "descriptor " + std::to_string(source->waitDescriptor()) +
                  ": skipped an input event record (unknown type): type 127, code 3, value 4");
    EXPECT_EQ(records[0].category, "evdev");
}

TEST(EvdevKeySourceTest, FloodOfGarbageLogsOnlyTheFirstRecords) {
    yxfp_test::LogCapture log;
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    for (int i = 0; i < 100; ++i) {
        pipe.write(inputRecord(0x40, 0, i));
    }
    pipe.key(KEY_DOWN, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press down"});
    auto const records = log.records();
    ASSERT_EQ(records.size(), 9U);
    EXPECT_NE(records.back().message.find("more records skipped; not logging them"),
              std::string::npos);
}

TEST(EvdevKeySourceTest, ShortRecordAtTheEndIsSkippedWithALogLine) {
    yxfp_test::LogCapture log;
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_UP, 1);
    pipe.writeBytes("0123456789", 10);
    pipe.closeWriteEnd();
    EXPECT_EQ(drainKeySource(*source), (Events{"press up", "release up", "closed"}));
    auto const records = log.records();
    ASSERT_FALSE(records.empty());
    EXPECT_NE(records[0].message.find(": 10 bytes at the end are not a whole input event record"),
              std::string::npos)
        << records[0].message;
}

TEST(EvdevKeySourceTest, EndOfInputReleasesHeldKeysAndClosesOnce) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_UP, 1);
    pipe.key(KEY_ESC, 1);
    pipe.closeWriteEnd();
    EXPECT_EQ(drainKeySource(*source),
              (Events{"press up", "press back", "release back", "release up", "closed"}));
    EXPECT_EQ(source->waitDescriptor(), -1);
    EXPECT_EQ(source->wakeWithin(), std::nullopt);
    EXPECT_EQ(source->poll(0ms), std::nullopt);
}

TEST(EvdevKeySourceTest, WaitsForRecordsWithinTheTimeout) {
    InputEventPipe pipe;
    auto const source = sourceOn(pipe);
    pipe.key(KEY_DOWN, 1);
    auto const event = source->poll(10s);  // the record is there: no real wait
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(yxfp_test::describeKeyEvent(*event), "press down");
}

/** Hands out the read ends of pipes the test makes, or fails with ENOENT while the device is
 *  away; counts the attempts. */
struct ReappearingDevice {
    std::vector<std::unique_ptr<InputEventPipe>> pipes;
    std::size_t next = 0;
    bool present = true;
    int attempts = 0;

    /** What the device of each pipe calls itself (EVIOCGID and name of a real one). */
    std::vector<std::string> identities;
    std::map<int, std::string> identityOf;  // by open descriptor

    InputEventPipe& plugIn(std::string identity = "keypad") {
        pipes.push_back(std::make_unique<InputEventPipe>());
        identities.push_back(std::move(identity));
        present = true;
        return *pipes.back();
    }
    int open() {
        ++attempts;
        if (!present || next >= pipes.size()) {
            errno = ENOENT;
            return -1;
        }
        int const descriptor = pipes[next]->releaseReadEnd();
        identityOf[descriptor] = identities[next++];
        return descriptor;
    }
};

// After a replug another device took the path: it is refused before it is grabbed, with one
// warning however often it is tried, and the first device is taken back when it returns.
TEST(EvdevKeySourceTest, ReopenRefusesAnotherDeviceAtTheSamePath) {
    yxfp_test::LogCapture const log;
    ReappearingDevice device;
    InputEventPipe& keypad = device.plugIn("keypad");
    auto now = std::chrono::steady_clock::time_point(1h);
    EvdevOptions options;
    options.reopen = true;
    options.clock = [&now] { return now; };
    options.identify = [&device](int descriptor) { return device.identityOf[descriptor]; };
    EvdevKeySource source([&device] { return device.open(); }, options);
    keypad.closeWriteEnd();
    EXPECT_EQ(drainKeySource(source), Events{"closed"});

    InputEventPipe& mouse = device.plugIn("mouse");
    mouse.key(KEY_UP, 1);
    now += 500ms;
    EXPECT_EQ(drainKeySource(source), Events{});
    EXPECT_EQ(source.waitDescriptor(), -1);
    for (int i = 0; i < 3; ++i) {
        device.plugIn("mouse");
        now += 500ms;
        EXPECT_EQ(drainKeySource(source), Events{});
    }
    std::size_t refusals = 0;
    for (auto const& record : log.records()) {
        refusals += record.message.find("is now another device") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(refusals, 1U);

    InputEventPipe& back = device.plugIn("keypad");
    back.key(KEY_DOWN, 1);
    now += 500ms;
    EXPECT_EQ(drainKeySource(source), Events{"press down"});
}

TEST(EvdevKeySourceTest, DeviceThatReappearsIsOpenedAgainWithoutBusyLooping) {
    ReappearingDevice device;
    InputEventPipe& first = device.plugIn();
    auto now = std::chrono::steady_clock::time_point(1h);
    EvdevOptions options;
    options.reopen = true;
    options.reopenInterval = 500ms;
    options.clock = [&now] { return now; };
    EvdevKeySource source([&device] { return device.open(); }, options);
    first.key(KEY_UP, 1);
    first.closeWriteEnd();  // unplugged while a key is held
    device.present = false;
    EXPECT_EQ(drainKeySource(source), (Events{"press up", "release up", "closed"}));
    EXPECT_EQ(source.waitDescriptor(), -1);
    EXPECT_EQ(source.wakeWithin(), 500ms);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(source.poll(0ms), std::nullopt);
    }
    EXPECT_EQ(device.attempts, 1);  // only the first open: no try before the interval passed

    now += 500ms;
    EXPECT_EQ(source.poll(0ms), std::nullopt);  // still away
    EXPECT_EQ(device.attempts, 2);
    EXPECT_EQ(source.wakeWithin(), 500ms);

    InputEventPipe& second = device.plugIn();
    second.key(KEY_LEFT, 1);
    now += 499ms;
    EXPECT_EQ(source.poll(0ms), std::nullopt);
    EXPECT_EQ(device.attempts, 2);
    now += 1ms;
    EXPECT_EQ(drainKeySource(source), Events{"press left"});
    EXPECT_EQ(device.attempts, 3);
    EXPECT_GE(source.waitDescriptor(), 0);
    second.closeWriteEnd();
    EXPECT_EQ(drainKeySource(source), (Events{"release left", "closed"}));
}

// Waiting for input fails (here: poll(2) refuses any descriptor while RLIMIT_NOFILE is 0).
// The source backs off instead of retrying at once, warns once, and after several failures in
// a row stops: held keys released, closed, and the reason in error().
TEST(EvdevKeySourceDescriptorLimitTest, PollThatKeepsFailingBacksOffAndStopsWithAnError) {
    yxfp_test::LogCapture const log;
    InputEventPipe pipe;
    auto now = std::chrono::steady_clock::time_point(1h);
    EvdevOptions options;
    options.clock = [&now] { return now; };
    auto const source = sourceOn(pipe, options);
    pipe.key(KEY_UP, 1);
    EXPECT_EQ(drainKeySource(*source), Events{"press up"});

    struct NoDescriptorsAllowed {
        rlimit previous{};
        NoDescriptorsAllowed() {
            ::getrlimit(RLIMIT_NOFILE, &previous);
            rlimit none = previous;
            none.rlim_cur = 0;
            ::setrlimit(RLIMIT_NOFILE, &none);
        }
        ~NoDescriptorsAllowed() { ::setrlimit(RLIMIT_NOFILE, &previous); }
    };
    Events events;
    {
        NoDescriptorsAllowed const limit;
        for (long ms = 0; ms <= 3000 && events.empty(); ++ms) {
            now = std::chrono::steady_clock::time_point(1h) + std::chrono::milliseconds(ms);
            for (int call = 0; call < 3 && events.empty(); ++call) {
                events = drainKeySource(*source);
            }
        }
    }
    EXPECT_EQ(events, (Events{"release up", "closed"}));
    EXPECT_NE(source->error().find("waiting for input failed"), std::string::npos)
        << source->error();
    EXPECT_NE(source->error().find("8 times in a row"), std::string::npos) << source->error();
    EXPECT_EQ(source->waitDescriptor(), -1);
    std::size_t warnings = 0;
    std::size_t errors = 0;
    for (auto const& record : log.records()) {
        warnings += record.level == 4 ? 1 : 0;
        errors += record.level == 3 ? 1 : 0;
    }
    EXPECT_EQ(warnings, 1U);
    EXPECT_EQ(errors, 1U);
    // 10 + 20 + 40 + 80 + 160 + 320 + 640 ms of pauses came before the eighth failure.
    EXPECT_EQ(now - std::chrono::steady_clock::time_point(1h), std::chrono::milliseconds(1270));
}

TEST(EvdevKeySourceTest, WithoutReopenAClosedPathStaysClosed) {
    ReappearingDevice device;
    device.plugIn().closeWriteEnd();
    EvdevKeySource source([&device] { return device.open(); }, EvdevOptions{});
    EXPECT_EQ(drainKeySource(source), Events{"closed"});
    device.plugIn();
    EXPECT_EQ(drainKeySource(source), Events{});
    EXPECT_EQ(device.attempts, 1);
    EXPECT_EQ(source.wakeWithin(), std::nullopt);
}

TEST(EvdevKeySourceTest, RegularFileOfRecordsIsReplayedToItsEnd) {
    TemporaryDirectory directory;
    std::string const path = directory.file("keys.events");
    {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        for (input_event const& record :
             {inputRecord(EV_KEY, KEY_DOWN, 1), inputRecord(EV_SYN, SYN_REPORT, 0),
              inputRecord(EV_KEY, KEY_DOWN, 0), inputRecord(EV_SYN, SYN_REPORT, 0),
              inputRecord(EV_KEY, KEY_ENTER, 1), inputRecord(EV_KEY, KEY_ENTER, 0)}) {
            std::fwrite(&record, sizeof record, 1, file);
        }
        std::fclose(file);
    }
    EvdevKeySource source(path);
    EXPECT_EQ(drainKeySource(source),
              (Events{"press down", "release down", "press enter", "release enter", "closed"}));
}

TEST(EvdevKeySourceTest, FifoWaitsForItsWriterAndClosesWhenItLeaves) {
    TemporaryDirectory directory;
    std::string const path = directory.file("keys.fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EvdevKeySource source(path);
    EXPECT_EQ(drainKeySource(source), Events{});  // no writer yet: not closed
    int const writer = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    for (input_event const& record :
         {inputRecord(EV_KEY, KEY_RIGHT, 1), inputRecord(EV_SYN, SYN_REPORT, 0)}) {
        ASSERT_EQ(::write(writer, &record, sizeof record), static_cast<ssize_t>(sizeof record));
    }
    EXPECT_EQ(drainKeySource(source), Events{"press right"});
    ::close(writer);
    EXPECT_EQ(drainKeySource(source), (Events{"release right", "closed"}));
}

TEST(EvdevKeySourceTest, MissingPathIsAnErrorSayingWhereDevicesAre) {
    EXPECT_EQ(openError("/dev/input/event-none"),
              "/dev/input/event-none does not exist: the input devices are /dev/input/event* "
              "(stable names in /dev/input/by-id/ and /dev/input/by-path/; evtest lists them)");
}

TEST(EvdevKeySourceTest, PermissionProblemSaysToJoinTheInputGroup) {
    EvdevOptions options;
    options.name = "/dev/input/event3";
    try {
        EvdevKeySource source(
            [] {
                errno = EACCES;
                return -1;
            },
            options);
        ADD_FAILURE() << "no error";
    } catch (InputDeviceError const& error) {
        EXPECT_STREQ(error.what(),
                     "no permission to read /dev/input/event3: add your user to the 'input' "
                     "group (sudo usermod -aG input $USER, then log in again) or give the device "
                     "a udev rule");
    }
}

TEST(EvdevKeySourceTest, CharacterDeviceThatIsNoInputDeviceIsAnError) {
    EXPECT_EQ(openError("/dev/null"),
              "/dev/null is not an input event device: use /dev/input/eventN, a FIFO or a file of "
              "input event records");
}

TEST(EvdevKeySourceTest, DirectoryIsAnError) {
    EXPECT_EQ(openError("/tmp"),
              "/tmp is not an input event device: use /dev/input/eventN, a FIFO or a file of "
              "input event records");
}

}  // namespace

/** Writes records of the layout that is not this build's (24 bytes on a 16-byte target, 16 on a
 *  24-byte one) with a time stamp that advances, as a recording from another machine has. */
void writeForeignLayoutRecords(std::string const& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    struct Event {
        std::uint16_t type, code;
        std::int32_t value;
    };
    std::uint64_t micros = 1764028800ULL * 1000000ULL + 250000;
    for (Event const& event : {Event{EV_KEY, KEY_DOWN, 1}, Event{EV_SYN, SYN_REPORT, 0},
                               Event{EV_KEY, KEY_DOWN, 0}, Event{EV_SYN, SYN_REPORT, 0}}) {
        micros += 41234;
        unsigned char record[24] = {};
        std::size_t const timeWord = sizeof(input_event) == 16 ? 8 : 4;
        std::uint64_t const seconds = micros / 1000000;
        std::uint64_t const fraction = micros % 1000000;
        std::memcpy(record, &seconds, timeWord);  // little-endian: the low word first
        std::memcpy(record + timeWord, &fraction, timeWord);
        std::memcpy(record + 2 * timeWord, &event, sizeof event);
        std::fwrite(record, 2 * timeWord + sizeof event, 1, file);
    }
    std::fclose(file);
}

TEST(EvdevKeySourceTest, ReplayFileOfTheOtherRecordLayoutIsRefused) {
    TemporaryDirectory directory;
    std::string const path = directory.file("other-machine.events");
    writeForeignLayoutRecords(path);
    bool const narrow = sizeof(input_event) == 16;
    EXPECT_EQ(openError(path),
              path +
                  (narrow ? " holds 24-byte input event records (the layout of 64-bit systems), "
                            "but this build reads its kernel's 16-byte records"
                          : " holds 16-byte input event records (the layout of 32-bit systems), "
                            "but this build reads its kernel's 24-byte records") +
                  ": record the replay on the target (cat /dev/input/eventN > FILE) or convert "
                  "it (docs/input.md)");
}
