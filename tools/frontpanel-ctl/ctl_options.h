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
    /** Sent with SYSTem:AUTH before anything else when not empty: from --token, from the file
     *  of --token-file or from YXFP_TOKEN (see `resolveToken`). */
    std::string token;
    /** --token-file: a file whose first line is the token. */
    std::string tokenFile;
    /** Notes for standard error (e.g. that --token shows the token in the process list). */
    std::vector<std::string> warnings;
    /** How long to wait for each response line. */
    std::chrono::milliseconds timeout{5000};
    bool help = false;
};

/** A command line that cannot be used; the message says what is wrong. */
using UsageError = frontpaneltools::UsageError;

/** Parses the arguments after the program name.
 *  @throws UsageError for unknown options, missing or bad values and a missing address. */
CtlOptions parseCtlOptions(std::vector<std::string> const& arguments);

/** Fills `options.token` when neither --token nor --token-file gave one: from the first line
 *  of --token-file, else from `environmentToken` (YXFP_TOKEN; null when unset).
 *  @throws UsageError when the token file cannot be read or holds more than a token. */
void resolveToken(CtlOptions& options, char const* environmentToken);

/** The text of --help. */
std::string ctlUsage();

}  // namespace frontpanelctl
