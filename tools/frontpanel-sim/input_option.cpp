#include "input_option.h"

#include <frontpanelhw/input_errors.h>
#include <yxfrontpanel/components.h>
#if YXFP_HAS_GPIO
#include <frontpanelhw/gpio_key_source.h>
#endif
#if YXFP_HAS_EVDEV
#include <frontpanelhw/input_key_map.h>
#endif

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

#if YXFP_HAS_EVDEV
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

void parseEvdev(InputOption& option, std::vector<std::string> const& pieces) {
#if YXFP_HAS_EVDEV
    option.device = pieces.at(1);
    if (option.device.empty()) {
        throw UsageError("--input " + option.text +
                         ": the path is missing, e.g. evdev:/dev/input/event0");
    }
    for (std::size_t index = 2; index < pieces.size(); ++index) {
        std::string const& setting = pieces[index];
        if (setting == "grab") {
            option.grab = true;
        } else if (setting == "reopen") {
            option.reopen = true;
        } else if (setting == "reverse") {
            option.encoder.reverse = true;
        } else if (setting == "accel") {
            option.encoder.acceleration = true;
        } else if (setting.rfind("detents=", 0) == 0) {
            option.encoder.detentsPerStep = detents(setting.substr(8), option.text);
        } else if (setting.rfind("keys=", 0) == 0) {
            option.keyMap = setting.substr(5);
            try {
                frontpanelhw::parseInputKeyMap(option.keyMap);
            } catch (frontpanelhw::KeyMapError const& error) {
                throw UsageError("--input " + option.text + ": " + error.what());
            }
        } else {
            throw UsageError("--input " + option.text + ": unknown setting '" + setting +
                             "' (known: grab, reopen, keys=MAP, reverse, detents=N, accel)");
        }
    }
#else
    static_cast<void>(pieces);
    throw UsageError("--input " + option.text +
                     ": this frontpanel-sim was built without libevdev; install libevdev-dev "
                     "and configure with -DYXFP_WITH_EVDEV=ON");
#endif
}

void parseGpio(InputOption& option, std::vector<std::string> const& pieces) {
#if YXFP_HAS_GPIO
    if (pieces.size() != 3 || pieces[1].empty()) {
        throw UsageError("--input " + option.text +
                         ": write gpio:CHIP:LINES, e.g. gpio:gpiochip0:up=5,down=6,enter=13");
    }
    option.device = pieces[1];
    option.gpioLines = pieces[2];
    try {
        frontpanelhw::parseGpioKeyLines(option.gpioLines);
    } catch (frontpanelhw::KeyMapError const& error) {
        throw UsageError("--input " + option.text + ": " + error.what());
    }
#else
    static_cast<void>(pieces);
    throw UsageError("--input " + option.text +
                     ": this frontpanel-sim was built without libgpiod; install libgpiod-dev and "
                     "configure with -DYXFP_WITH_GPIOD=ON");
#endif
}

}  // namespace

InputOption parseInputOption(std::string const& text) {
    InputOption option;
    option.text = text;
    std::vector<std::string> const pieces = split(text, ':');
    if (pieces.size() >= 2 && pieces[0] == "evdev") {
        option.kind = InputOption::Kind::Evdev;
        parseEvdev(option, pieces);
    } else if (pieces.size() >= 2 && pieces[0] == "gpio") {
        option.kind = InputOption::Kind::Gpio;
        parseGpio(option, pieces);
    } else {
        throw UsageError("--input wants evdev:PATH[:SETTINGS] or gpio:CHIP:LINES; got '" + text +
                         "'");
    }
    return option;
}

std::string inputOptionHelp() {
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
