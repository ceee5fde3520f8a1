#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/input_errors.h>
#include <frontpanelhw/key_source.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace frontpanelhw {

/** One edge on a GPIO line, by its electrical level (rising: the line went high). */
struct GpioEdge {
    /** The offset of the line on its chip. */
    unsigned offset = 0;
    /** True when the line went high, false when it went low. */
    bool rising = false;
    /** When it happened, on the steady clock (or the clock given to GpioKeySource). */
    std::chrono::steady_clock::time_point time{};
};

/** Where a GpioKeySource gets its edges: requested GPIO lines (libgpiod), or a model of them in
 *  tests. Used by one thread at a time. */
class FRONTPANELHW_EXPORT IGpioEdgeSource {
public:
    IGpioEdgeSource() = default;
    IGpioEdgeSource(IGpioEdgeSource const&) = delete;
    IGpioEdgeSource& operator=(IGpioEdgeSource const&) = delete;
    virtual ~IGpioEdgeSource();

    /** A descriptor that becomes readable when edges wait; -1 when there is none. */
    virtual int descriptor() const = 0;
    /** The next waiting edge, without blocking; nothing when none waits.
     *  @throws InputDeviceError when the lines can no longer be read (the chip went away). */
    virtual std::optional<GpioEdge> readEdge() = 0;
    /** The electrical level of line `offset` now (true: high).
     *  @throws InputDeviceError when it cannot be read. */
    virtual bool level(unsigned offset) = 0;
};

/** The pull resistor a GPIO line is requested with (needs a kernel of 5.5 or newer). */
enum class GpioBias { AsIs, PullUp, PullDown, Disabled };

/** Which GPIO lines are which keys, and how they are read. */
struct GpioKeyOptions {
    /** The line offset of each key on its chip; keys left out have no button. */
    std::map<PanelKey, unsigned> lines;
    /** True: a key is pressed while its line is low (a button to ground with a pull-up). */
    bool activeLow = false;
    /** The pull resistor the lines are requested with (AsIs by default: left as it is). Used
     *  only when the source requests the lines itself from a chip. */
    GpioBias bias = GpioBias::AsIs;
    /** A line must keep its level this long before a press or release counts; shorter bounce
     *  bursts are ignored. */
    std::chrono::milliseconds debounce{20};
    /** The consumer name the lines are requested under (shown by gpioinfo). */
    std::string consumer = "yxfrontpanel";
    /** The time for debouncing; empty: std::chrono::steady_clock. */
    std::function<std::chrono::steady_clock::time_point()> clock;
};

/** Parses the text form of GPIO key lines: comma separated `KEY=OFFSET` entries (KEY one of up,
 *  down, left, right, enter, back) and the words `active-low`, `active-high`, `pull-up`,
 *  `pull-down`, `bias-disable` and `debounce=MS`, e.g. "up=5,down=6,enter=13,active-low".
 *  @throws KeyMapError naming the entry for an unknown word or key, a bad number, a line given
 *  to two keys or a text without any key. */
FRONTPANELHW_EXPORT GpioKeyOptions parseGpioKeyLines(std::string_view text);

/** Panel keys from buttons on GPIO lines. It waits for the lines' edges and, once the debounce
 *  time has passed after the last edge of a line, reads the line's level and reports a press
 *  or release when it changed, so a bounce burst gives one press. The level decides, not the
 *  newest edge: the kernel keeps only 16 events per line while the panel thread is busy. While
 *  a key is held its line is read again every debounce time, so a key whose release edges were
 *  all dropped is released. Presses and releases are reported (capabilities().releases),
 *  so the panel runtime repeats held keys. A key held when the source starts is taken as the
 *  line's resting level and logged as a hint to check `activeLow`. When the lines can no longer
 *  be read, held keys are released and KeyEvent::closed() is returned once; after that `poll`
 *  returns nothing.
 *
 *  Thread safety: one thread at a time (the loop's). */
class FRONTPANELHW_EXPORT GpioKeySource : public IKeySource {
public:
    /** Requests the lines of `options` for both edges on `chip` (a name such as "gpiochip0", a
     *  path such as /dev/gpiochip0, a label or a number), through libgpiod.
     *  @throws KeyMapError when `options` name no line or one line twice; InputDeviceError
     *  naming the chip or line and what to do when the chip does not exist, may not be opened,
     *  has no such line or the line is in use. */
    GpioKeySource(std::string const& chip, GpioKeyOptions const& options);
    /** Reads the edges of `edges`, which it owns.
     *  @throws KeyMapError as above; InputDeviceError when a line's level cannot be read. */
    GpioKeySource(std::unique_ptr<IGpioEdgeSource> edges, GpioKeyOptions options);
    ~GpioKeySource() override;

    /** Never throws. Longer timeouts than a day are cut to a day. */
    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) override;
    /** The edge source's descriptor; -1 after the lines were lost. */
    int waitDescriptor() const override;
    /** While a line settles: the time until its debounce time has passed. */
    std::optional<std::chrono::milliseconds> wakeWithin() const override;
    /** Releases, no repeats. */
    KeySourceCapabilities capabilities() const override;

private:
    struct Line {
        PanelKey key;
        bool pressed;   // the debounced state, as reported
        bool settling;  // an edge came and the debounce time has not passed yet
        std::chrono::steady_clock::time_point lastEdge;
        std::chrono::steady_clock::time_point lastCheck;  // when its level was last read
    };

    std::optional<std::chrono::steady_clock::time_point> nextCheck(Line const& line) const;
    void readEdges();
    void settle();
    void linesLost(char const* why);

    std::unique_ptr<IGpioEdgeSource> edges_;
    GpioKeyOptions options_;
    std::map<unsigned, Line> lines_;
    std::deque<KeyEvent> pending_;
    bool lost_ = false;
};

}  // namespace frontpanelhw
