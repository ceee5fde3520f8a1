#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/input_errors.h>
#include <frontpanelhw/input_key_map.h>
#include <frontpanelhw/key_source.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace frontpanelhw {

/** How the turns of a rotary encoder become up and down steps. An encoder reports counts on a
 *  relative axis (the kernel's rotary-encoder driver with `rotary-encoder,relative-axis`, a
 *  wheel or a dial) or a position on an absolute axis; every `detentsPerStep` counts give one
 *  step, sent as a press and a release of up or down. */
struct EncoderOptions {
    /** The relative axes that count (Linux REL_* codes): REL_DIAL, REL_WHEEL and REL_X. */
    std::vector<int> relativeAxes{0x07, 0x08, 0x00};
    /** The absolute axes whose changes count (Linux ABS_* codes): ABS_X. On an input device
     *  whose axis wraps around (rotary-encoder,rollover), a jump of more than half the range
     *  is taken as a wrap. */
    std::vector<int> absoluteAxes{0x00};
    /** False: positive counts (clockwise, a wheel turned away) give up; true: down. */
    bool reverse = false;
    /** Counts per step (zero is taken as one). */
    unsigned detentsPerStep = 1;
    /** Off by default. When on, a step that follows the previous one in the same direction
     *  within `accelerationInterval` (by the events' time stamps) counts
     *  accelerationInterval / gap times, at most `maxAcceleratedSteps`: fast turning moves
     *  further, e.g. a value editor's digit. */
    bool acceleration = false;
    /** With acceleration: steps closer together than this count more than once (60 ms by
     *  default). */
    std::chrono::milliseconds accelerationInterval{60};
    /** With acceleration: the most times one step counts (5 by default; zero is taken as one). */
    unsigned maxAcceleratedSteps = 5;
};

/** How an EvdevKeySource reads its device. */
struct EvdevOptions {
    /** Which key codes give which panel key. */
    InputKeyMap keys = InputKeyMap::defaults();
    /** How the turns of a rotary encoder give up and down steps. */
    EncoderOptions encoder;
    /** Grab the device (EVIOCGRAB) so that no one else, such as the console, receives its keys.
     *  Only for input devices; ignored for pipes and files. */
    bool grab = false;
    /** After the device went away, open the same path again every `reopenInterval` until it is
     *  back. */
    bool reopen = false;
    /** With `reopen`: the time between two tries to open the path (500 ms by default). */
    std::chrono::milliseconds reopenInterval{500};
    /** Whether the device's own key repeats (EV_KEY value 2) are passed on, each as one
     *  Action::Repeat that presses the key again, and reported in capabilities() so that the
     *  panel runtime does not repeat as well. Unset: passed on; capabilities() says repeats for
     *  an input device that repeats (EV_REP), and for a pipe or file once a repeat came through.
     *  False: dropped (the panel runtime repeats held keys itself). */
    std::optional<bool> deviceRepeats;
    /** How a reopened device is told from another that took its path after a replug: a text
     *  that names the device behind a descriptor, empty when it cannot tell. Empty function:
     *  EVIOCGID (bus, vendor, product, version) and EVIOCGNAME for input devices. A reopen
     *  that finds another device refuses it before grabbing (logged once) and tries again
     *  later. */
    std::function<std::string(int descriptor)> identify;
    /** The name in messages; empty: the path (or "descriptor N"). */
    std::string name;
    /** The time for reopen retries; empty: std::chrono::steady_clock. */
    std::function<std::chrono::steady_clock::time_point()> clock;
};

/** Panel keys from a Linux input device (/dev/input/eventN: gpio-keys, matrix-keypad, a USB
 *  keypad, a rotary encoder), or from any descriptor that delivers `struct input_event`
 *  records, such as a pipe, a FIFO or a file of recorded events (then no ioctl is made).
 *
 *  Key presses and releases are reported (capabilities().releases), so the panel runtime can
 *  repeat held keys. After the kernel dropped events (SYN_DROPPED) the events up to the next
 *  SYN_REPORT are skipped and the held keys are brought up to date: from the device's key state
 *  (EVIOCGKEY), or on a pipe or file by releasing every held key. When the input ends (end of
 *  file, device unplugged or unbound) held keys are released and KeyEvent::closed() is returned
 *  once; with `reopen` the path is tried again later and events resume when it is back, else
 *  `poll` returns nothing from then on. Records that make no sense (unknown types, codes or
 *  values, a short record at the end) are skipped with a log line.
 *
 *  Thread safety: one thread at a time (the loop's). */
class FRONTPANELHW_EXPORT EvdevKeySource : public IKeySource {
public:
    /** Opens a device or file: returns an open descriptor, or -1 with errno set. */
    using Opener = std::function<int()>;

    /** Opens `path` (an input device, a FIFO or a regular file).
     *  @throws InputDeviceError naming the path and what to do when it does not exist, may not
     *  be read (not in the `input` group), is no input event device, or cannot be grabbed. */
    explicit EvdevKeySource(std::string const& path, EvdevOptions options = {});
    /** Reads `descriptor`, which it owns from now on (and closes). Reopening needs a path or an
     *  opener, so `reopen` has no effect here.
     *  @throws InputDeviceError as the path constructor does, for an unusable descriptor. */
    EvdevKeySource(int descriptor, EvdevOptions options);
    /** Gets each descriptor from `opener`, first now and, with `reopen`, again after a close.
     *  @throws InputDeviceError when the first open fails or gives an unusable descriptor. */
    EvdevKeySource(Opener opener, EvdevOptions options);
    ~EvdevKeySource() override;

    /** Never throws; see the class comment for the closed event. Longer timeouts than a day are
     *  cut to a day. */
    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) override;
    /** The open descriptor; -1 while the device is away. */
    int waitDescriptor() const override;
    /** While waiting to reopen: the time until the next try. */
    std::optional<std::chrono::milliseconds> wakeWithin() const override;
    /** Releases always; repeats as EvdevOptions::deviceRepeats says. */
    KeySourceCapabilities capabilities() const override;
    /** Why the source stopped for good, empty while it has not: waiting for input (poll(2))
     *  failed for a reason other than a signal several times in a row, with growing pauses
     *  (10 ms doubling to 1 s) between the tries; the source then released its keys and
     *  reported closed. */
    std::string error() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace frontpanelhw
