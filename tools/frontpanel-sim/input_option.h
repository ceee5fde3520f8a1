#pragma once

#include <yxfrontpanel/components.h>
#if YXFP_HAS_EVDEV
#include <frontpanelhw/evdev_key_source.h>
#endif

#include <optional>
#include <string>

namespace frontpanelsim {

/** One --input option: an input device, FIFO or file of input event records (evdev), or
 *  buttons on GPIO lines (gpio), with its settings. Maps are checked when parsed and kept as
 *  text, so the simulator links the name tables only where it was built with them. */
struct InputOption {
    enum class Kind { Evdev, Gpio };

    Kind kind = Kind::Evdev;
    /** The option's value as given, for messages. */
    std::string text;
    /** The path (evdev) or the chip (gpio). */
    std::string device;
    bool grab = false;
    bool reopen = false;
    /** keys=MAP (evdev): entries applied to the default key map. */
    std::string keyMap;
#if YXFP_HAS_EVDEV
    frontpanelhw::EncoderOptions encoder;
#endif
    /** The line map (gpio), e.g. "up=5,down=6,enter=13,active-low". */
    std::string gpioLines;
};

/** Parses the value of --input: `evdev:PATH[:grab][:reopen][:keys=MAP][:reverse][:detents=N]
 *  [:accel]` or `gpio:CHIP:LINES`.
 *  @throws UsageError naming the value and what is wrong: an unknown kind or setting, a bad
 *  key map or line map, or a kind this build has no library for. */
InputOption parseInputOption(std::string const& text);

/** The lines of --help that describe --input. */
std::string inputOptionHelp();

}  // namespace frontpanelsim
