#include "ctl_options.h"

#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <charconv>
#include <cmath>
#include <fstream>
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

// Longer than any token a server accepts; a file beyond it is not a token file.
constexpr std::size_t kMaxTokenFileBytes = 4096;

}  // namespace

void resolveToken(CtlOptions& options, char const* environmentToken) {
    if (!options.tokenFile.empty()) {
        std::ifstream file(options.tokenFile, std::ios::binary);
        if (!file) {
            throw UsageError("cannot read the token file '" + options.tokenFile + "'");
        }
        std::string text(kMaxTokenFileBytes + 1, '\0');
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<std::size_t>(file.gcount()));
        if (text.size() > kMaxTokenFileBytes) {
            throw UsageError("the token file '" + options.tokenFile + "' is longer than " +
                             std::to_string(kMaxTokenFileBytes) + " bytes");
        }
        std::size_t const end = text.find_first_of("\r\n");
        options.token = text.substr(0, end);
        if (options.token.empty()) {
            throw UsageError("the token file '" + options.tokenFile + "' holds no token");
        }
        return;
    }
    if (options.token.empty() && environmentToken != nullptr) {
        options.token = environmentToken;
    }
}

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
            options.warnings.emplace_back(
                "--token shows the token in the process list; --token-file FILE or the "
                "environment variable YXFP_TOKEN keep it private");
        } else if (name == "--token-file") {
            options.tokenFile = reader.takeValue();
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
    if (!options.token.empty() && !options.tokenFile.empty()) {
        throw UsageError("give --token or --token-file, not both");
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
           "  --token-file FILE authenticate with SYSTem:AUTH first, with the first line\n"
           "                    of FILE as the token (or set YXFP_TOKEN)\n"
           "  --token TOKEN     the same with TOKEN; other users can see it in the\n"
           "                    process list\n"
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
