#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>
#include <frontpanelhw/hd44780_bus.h>
#include <frontpanelhw/hd44780_charset.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace frontpanelhw {

/** How the cells of a module lie in the controller's display RAM (DDRAM). */
struct FRONTPANELHW_EXPORT Hd44780Geometry {
    /** Cells per line; at least one. */
    unsigned chars = 16;
    /** Lines of cells: 1 to 4. */
    unsigned lines = 2;
    /** The DDRAM address of the first cell of each line (the first `lines` entries count). */
    std::array<std::uint8_t, 4> lineAddresses{0x00, 0x40, 0x10, 0x50};
    /** The controller's two-line mode (function set N=1): DDRAM 0x00-0x27 and 0x40-0x67. In
     *  one-line mode DDRAM is 0x00-0x4F. */
    bool twoLineMode = true;

    /** The usual geometry of a one-controller module: one line at 0x00 (8x1 to 40x1, one-line
     *  mode; for 16x1 modules wired as 8x2 use 8x2's addresses); two lines at 0x00/0x40 (up to
     *  40 cells); four lines at 0x00/0x40/0x00+chars/0x40+chars (16x4: 0x10/0x50, 20x4:
     *  0x14/0x54).
     *  @throws std::invalid_argument for sizes no single controller drives, with a message that
     *  names the size: 40x4 modules have two enable lines (two controllers), which this driver
     *  does not support; more than 80 cells, three lines, zero cells. */
    static Hd44780Geometry standard(unsigned chars, unsigned lines);

    /** The DDRAM address of the cell at (column, line); both must lie inside the geometry. */
    std::uint8_t address(unsigned column, unsigned line) const;
    /** Where the controller's address counter goes after writing at `address` (increment
     *  mode): the next address, wrapping from 0x27 to 0x40 and 0x67 to 0x00 in two-line mode
     *  and from 0x4F to 0x00 in one-line mode. */
    std::uint8_t nextAddress(std::uint8_t address) const;
};

/** How inverted cells show on a module that has no inverse video. Every character stays as it
 *  is; the controller's cursor marks the first inverted cell of the frame (reading order), which
 *  for a menu is the start of the selected line and for an editor the digit under the caret. */
enum class InvertedCellMarker {
    UnderlineCursor,  // the underline cursor sits under the first inverted cell
    BlinkingCursor,   // the whole first inverted cell blinks
    None              // inversion is not shown at all
};

/** The waits of the controller. The execution times default to the HD44780U datasheet's figures
 *  scaled to the slowest oscillator of its range (190 kHz: 37 µs and 1.52 ms at 270 kHz become
 *  about 53 µs and 2.2 ms), so that every module within the datasheet is safe; a module known to
 *  run faster may use the datasheet's 250 kHz figures (40 µs, 1.64 ms). */
struct Hd44780Timings {
    /** The wait before each initialisation starts, for the supply to settle after power-on
     *  (datasheet: > 40 ms). */
    std::chrono::nanoseconds powerOn = std::chrono::milliseconds(50);
    /** The wait after the first "eight-bit interface" nibble (datasheet: > 4.1 ms). */
    std::chrono::nanoseconds firstInit = std::chrono::microseconds(4500);
    /** The wait after the second "eight-bit interface" nibble (datasheet: > 100 µs). */
    std::chrono::nanoseconds secondInit = std::chrono::microseconds(150);
    /** The execution time of the remaining instructions and of each data write (datasheet:
     *  37 µs at 270 kHz, 52.6 µs at 190 kHz). */
    std::chrono::nanoseconds instruction = std::chrono::microseconds(53);
    /** The execution time of clear display and return home (datasheet: 1.52 ms at 270 kHz,
     *  2.16 ms at 190 kHz). */
    std::chrono::nanoseconds clearOrHome = std::chrono::microseconds(2200);
};

/** How the driver gets a module back after a transport error or a disturbance. */
struct Hd44780Recovery {
    /** After a failed draw, draws fail at once (without touching the transport) for this long;
     *  then one draw initialises again. Each further failure doubles the time, up to
     *  `longestRetry`; a successful draw starts over from `firstRetry`. */
    std::chrono::milliseconds firstRetry{250};
    /** The longest time between two tries. */
    std::chrono::milliseconds longestRetry{8000};
    /** When above zero: every this long, the next draw initialises the controller again and
     *  draws everything, for modules that show garbage after noise or ESD. Off by default: the
     *  module goes blank for a moment each time (it may blink). */
    std::chrono::milliseconds resyncInterval{0};
};

/** What the driver does where the module cannot show a frame as it is. */
struct Hd44780Options {
    /** The character ROM of the module (A00 by default), which decides what it shows itself. */
    Hd44780Rom rom = Hd44780Rom::A00;
    /** How inverted cells show (the underline cursor by default). */
    InvertedCellMarker invertedMarker = InvertedCellMarker::UnderlineCursor;
    /** Shown for a cell code that neither the ROM nor a custom glyph can draw; an ASCII
     *  character the ROM has ('?' when it has not). */
    char replacement = '?';
    /** The waits of the controller; the defaults suit most modules. */
    Hd44780Timings timings;
    /** Waits on the calling thread; empty means yxbase2::system::this_thread::sleep_for. Tests
     *  inject their own so that they never sleep. */
    std::function<void(std::chrono::nanoseconds)> wait;
    /** Retries after transport errors and the optional periodic resync. */
    Hd44780Recovery recovery;
    /** The time for retries and resyncs; empty: std::chrono::steady_clock. */
    std::function<std::chrono::steady_clock::time_point()> clock;
};

/** An HD44780-compatible character module (LCD, or VFD in HD44780 mode) driven in four-bit mode
 *  over a transport. The first draw initialises the controller by instruction and draws the
 *  whole frame; later draws send only the cells whose module character changed, jumping the
 *  DDRAM address only where a run of changed cells starts. After a transport error, and after
 *  requestRedraw(), the next draw initialises again and draws everything.
 *
 *  Characters: see mapHd44780Character. Custom glyphs go into the eight CGRAM slots, assigned
 *  per frame: glyphs already loaded keep their slot, new ones take the least recently used free
 *  slot, and a frame that needs more than eight shows the fallback character of each glyph that
 *  got no slot (logged at debug level). Inverted cells: see InvertedCellMarker.
 *
 *  Thread safety: every operation may be called from any thread; one lock serialises them. */
class FRONTPANELHW_EXPORT Hd44780Display : public IDisplay {
public:
    /** Takes the transport; sends nothing yet.
     *  @throws std::invalid_argument when `bus` is null or `geometry` is not drivable (no
     *  cells, more than four lines, a cell outside the DDRAM). */
    Hd44780Display(std::unique_ptr<IHd44780Bus> bus, Hd44780Geometry const& geometry,
                   Hd44780Options options = {});
    ~Hd44780Display() override;

    unsigned getLines() const override;
    unsigned getChars() const override;

    /** Shows `buffer` (cut or padded with blanks to the module's size). Returns false when the
     *  transport failed; the error is logged (at error level once, then at debug level until a
     *  draw succeeds again) and a later draw starts over with a full redraw: the first one after
     *  Hd44780Recovery's retry time (draws before it return false at once). Only the first
     *  initialisation waits the power-on time; retries do not. */
    bool draw(drawing::DisplayBuffer const& buffer) override;

    /** Makes the next draw initialise the controller and draw everything. */
    void requestRedraw();

    /** Switches the backlight. False when the transport has no backlight control or failed. */
    bool setBacklight(bool on);

    /** The geometry the module is driven with. */
    Hd44780Geometry const& geometry() const;

private:
    struct Slot {
        Hd44780CustomGlyph const* glyph = nullptr;
        unsigned long lastUsed = 0;
    };
    struct Plan;

    Plan plan(drawing::DisplayBuffer const& buffer);
    void send(Plan const& next);
    void initialise();
    void instruction(std::uint8_t code, std::chrono::nanoseconds executionTime);
    void data(std::uint8_t code);
    void writeByte(bool isData, std::uint8_t code, std::chrono::nanoseconds executionTime);
    void awaitController();
    void setDdramAddress(std::uint8_t address);
    std::uint8_t romCodeOf(char character) const;

    std::unique_ptr<IHd44780Bus> bus_;
    Hd44780Geometry geometry_;
    Hd44780Options options_;
    mutable std::mutex mutex_;
    bool fullRedraw_ = true;
    bool failing_ = false;
    bool poweredOn_ = false;  // the power-on wait has been waited once
    std::chrono::milliseconds retryAfter_{0};
    std::chrono::steady_clock::time_point nextTry_{};
    std::chrono::steady_clock::time_point lastInitialise_{};
    std::vector<std::uint8_t> shown_;  // module code of each cell, line by line
    std::array<Slot, 8> slots_{};      // what each CGRAM slot holds
    unsigned long frameNumber_ = 0;
    std::optional<std::uint8_t> addressCounter_;  // the DDRAM address counter, when known
    std::uint8_t displayControl_ = 0x08;          // the last display on/off control sent
    std::chrono::nanoseconds pendingWait_{0};     // the controller is busy this long yet
};

}  // namespace frontpanelhw
