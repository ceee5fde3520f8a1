#include "input_spec.h"

#include <frontpanelhw/gpio_key_source.h>
#include <frontpanelhw/input_errors.h>
#include <frontpanelhw/input_key_map.h>

#include <vector>

#include "sim_options.h"

namespace frontpanelsim {

namespace {

std::vector<std::string> split(std::string const& text, char separator) {
    std::vector<std::string> pieces;
    std::string::size_type start = 0;
    while (true) {
        auto const end = text.find(separator, start);
        pieces.push_back(text.substr(start, end - start));
        if (end == std::string::npos) {
            return pieces;
        }
        start = end + 1;
    }
}

#if defined(YXFP_HAVE_EVDEV)
unsigned detents(std::string const& value, std::string const& text) {
    unsigned number = 0;
    bool valid = !value.empty() && value.size() <= 3;
    for (char const c : value) {
        valid = valid && c >= '0' && c <= '9';
        number = number * 10 + static_cast<unsigned>(c - '0');
    }
    if (!valid || number == 0) {
        throw UsageError("--input " + text + ": detents wants a number from 1 to 999; got '" +
                         value + "'");
    }
    return number;
}
#endif

void parseEvdev(InputSpec& spec, std::vector<std::string> const& pieces) {
#if defined(YXFP_HAVE_EVDEV)
    spec.device = pieces.at(1);
    if (spec.device.empty()) {
        throw UsageError("--input " + spec.text +
                         ": the path is missing, e.g. evdev:/dev/input/event0");
    }
    for (std::size_t index = 2; index < pieces.size(); ++index) {
        std::string const& setting = pieces[index];
        if (setting == "grab") {
            spec.grab = true;
        } else if (setting == "reopen") {
            spec.reopen = true;
        } else if (setting == "reverse") {
            spec.encoder.reverse = true;
        } else if (setting == "accel") {
            spec.encoder.acceleration = true;
        } else if (setting.rfind("detents=", 0) == 0) {
            spec.encoder.detentsPerStep = detents(setting.substr(8), spec.text);
        } else if (setting.rfind("keys=", 0) == 0) {
            spec.keyMap = setting.substr(5);
            try {
                frontpanelhw::parseInputKeyMap(spec.keyMap);
            } catch (frontpanelhw::KeyMapError const& error) {
                throw UsageError("--input " + spec.text + ": " + error.what());
            }
        } else {
            throw UsageError("--input " + spec.text + ": unknown setting '" + setting +
                             "' (known: grab, reopen, keys=MAP, reverse, detents=N, accel)");
        }
    }
#else
    static_cast<void>(pieces);
    throw UsageError("--input " + spec.text +
                     ": this frontpanel-sim was built without libevdev; install libevdev-dev "
                     "and configure with -DYXFP_WITH_EVDEV=ON");
#endif
}

void parseGpio(InputSpec& spec, std::vector<std::string> const& pieces) {
#if defined(YXFP_HAVE_GPIOD)
    if (pieces.size() != 3 || pieces[1].empty()) {
        throw UsageError("--input " + spec.text +
                         ": write gpio:CHIP:LINES, e.g. gpio:gpiochip0:up=5,down=6,enter=13");
    }
    spec.device = pieces[1];
    spec.gpioLines = pieces[2];
    try {
        frontpanelhw::parseGpioKeyLines(spec.gpioLines);
    } catch (frontpanelhw::KeyMapError const& error) {
        throw UsageError("--input " + spec.text + ": " + error.what());
    }
#else
    static_cast<void>(pieces);
    throw UsageError("--input " + spec.text +
                     ": this frontpanel-sim was built without libgpiod; install libgpiod-dev and "
                     "configure with -DYXFP_WITH_GPIOD=ON");
#endif
}

}  // namespace

InputSpec parseInputSpec(std::string const& text) {
    InputSpec spec;
    spec.text = text;
    std::vector<std::string> const pieces = split(text, ':');
    if (pieces.size() >= 2 && pieces[0] == "evdev") {
        spec.kind = InputSpec::Kind::Evdev;
        parseEvdev(spec, pieces);
    } else if (pieces.size() >= 2 && pieces[0] == "gpio") {
        spec.kind = InputSpec::Kind::Gpio;
        parseGpio(spec, pieces);
    } else {
        throw UsageError("--input wants evdev:PATH[:SETTINGS] or gpio:CHIP:LINES; got '" + text +
                         "'");
    }
    return spec;
}

std::string inputSpecHelp() {
    return "    --input evdev:PATH[:grab][:reopen][:keys=MAP][:reverse][:detents=N][:accel]\n"
           "                        keys from a Linux input device (/dev/input/eventN), or\n"
           "                        from a FIFO or file of input_event records (replay).\n"
           "                        grab: this program alone gets the keys; reopen: open\n"
           "                        the path again when the device comes back; keys=MAP:\n"
           "                        more keys, e.g. keys=KEY_F1=back,KEY_SELECT=enter;\n"
           "                        reverse, detents=N, accel: rotary encoder direction,\n"
           "                        counts per step, faster steps when turned fast\n"
           "    --input gpio:CHIP:LINES\n"
           "                        buttons on GPIO lines, e.g. gpio:gpiochip0:up=5,down=6,\n"
           "                        left=13,right=19,enter=26,back=21[,active-low]\n"
           "                        [,pull-up|pull-down][,debounce=MS]\n"
           "                        --input is repeatable and works beside the terminal's\n"
           "                        keys; with --headless the run ends when every input has\n"
           "                        closed (then --print writes its frames)\n";
}

}  // namespace frontpanelsim
