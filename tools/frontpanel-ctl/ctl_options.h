#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "option_reader.h"

namespace frontpanelctl {

/** The command line of frontpanel-ctl. */
struct CtlOptions {
    /** Where the panel's command server listens: HOST:PORT, [IPV6]:PORT or unix:PATH. */
    std::string address;
    /** Command lines to send, in order (each may hold several commands joined by ';'). */
    std::vector<std::string> commands;
    /** After the commands, print the panel's screen as the simulator's --print does. */
    bool screen = false;
    /** Sent with SYSTem:AUTH before anything else when not empty. */
    std::string token;
    /** How long to wait for each response line. */
    std::chrono::milliseconds timeout{5000};
    bool help = false;
};

/** A command line that cannot be used; the message says what is wrong. */
using UsageError = frontpaneltools::UsageError;

/** Parses the arguments after the program name.
 *  @throws UsageError for unknown options, missing or bad values and a missing address. */
CtlOptions parseCtlOptions(std::vector<std::string> const& arguments);

/** The text of --help. */
std::string ctlUsage();

}  // namespace frontpanelctl
