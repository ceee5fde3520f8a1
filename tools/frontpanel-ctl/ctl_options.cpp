#include "ctl_options.h"

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace frontpanelctl {

namespace {

std::chrono::milliseconds parseTimeout(std::string const& text) {
    double seconds = 0.0;
    auto const [last, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (text.empty() || error != std::errc{} || last != text.data() + text.size() ||
        !(seconds > 0.0) || seconds > 3600.0) {
        throw UsageError("--timeout wants seconds between 0 and 3600, e.g. 2.5; got '" + text +
                         "'");
    }
    return std::chrono::milliseconds{std::llround(seconds * 1000.0)};
}

}  // namespace

CtlOptions parseCtlOptions(std::vector<std::string> const& arguments) {
    CtlOptions options;
    bool addressSeen = false;
    frontpaneltools::OptionReader reader(arguments);
    while (reader.next()) {
        std::string const& argument = reader.argument();
        if (addressSeen) {
            options.commands.push_back(argument);
            continue;
        }
        std::string const& name = reader.name();
        if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--screen") {
            options.screen = true;
        } else if (name == "--token") {
            options.token = reader.takeValue();
        } else if (name == "--timeout") {
            options.timeout = parseTimeout(reader.takeValue());
        } else if (name.rfind('-', 0) == 0 && name.size() > 1) {
            throw UsageError("unknown option '" + name + "' (see --help)");
        } else {
            try {
                yxfrontpanel::runtime::parseEndpoint(argument);
            } catch (std::invalid_argument const& error) {
                throw UsageError(error.what());
            }
            options.address = argument;
            addressSeen = true;
        }
    }
    if (!options.help && !addressSeen) {
        throw UsageError("no address: give HOST:PORT or unix:PATH (see --help)");
    }
    if (!options.help && options.commands.empty() && !options.screen) {
        throw UsageError("nothing to do: give commands, --screen or both (see --help)");
    }
    return options;
}

std::string ctlUsage() {
    return "Usage: frontpanel-ctl [OPTIONS] HOST:PORT|[IPV6]:PORT|unix:PATH [COMMAND...]\n"
           "\n"
           "Sends each COMMAND line to a front panel's command server (e.g. frontpanel-sim\n"
           "--listen) and prints each response line. A COMMAND may hold several commands\n"
           "joined by ';'. Afterwards the panel's error queue is read; its errors go to\n"
           "standard error and make the exit status 1.\n"
           "\n"
           "Options (before the address):\n"
           "  --screen          after the commands, print the panel's screen as\n"
           "                    frontpanel-sim --print does\n"
           "  --token TOKEN     authenticate with SYSTem:AUTH first\n"
           "  --timeout SECS    wait at most SECS for each response (default 5)\n"
           "  -h, --help        show this text\n"
           "\n"
           "Example:\n"
           "  frontpanel-ctl 127.0.0.1:5025 '*IDN?' 'SYST:KEY DOWN' 'DISP:TEXT? 2'\n"
           "\n"
           "Exit status: 0 success, 1 connection failure, missing response or an error\n"
           "reported by the panel, 2 bad command line.\n";
}

}  // namespace frontpanelctl
