#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "display_option.h"
#include "endpoint.h"
#include "input_option.h"
#include "option_reader.h"

namespace frontpanelsim {

/** Which frames a headless run writes to standard output. */
enum class PrintMode { None, All, Last };

/** The command line of frontpanel-sim. */
struct SimOptions {
    unsigned chars = 20;
    unsigned lines = 4;
    /** The key script (from --keys or --keys-file); set means a headless run. */
    std::optional<std::string> keyScript;
    /** Where the key script came from, for messages ("--keys" or the file name). */
    std::string keyScriptSource;
    PrintMode print = PrintMode::None;
    /** --idle: time without a key before the home screen shows (zero: never); unset means the
     *  default of the run (off in a key script, a minute otherwise). */
    std::optional<std::chrono::milliseconds> idle;
    /** --settings FILE: keep the demo's settings in FILE; unset (the default), every run starts
     *  from the defaults and writes nothing. */
    std::optional<std::string> settingsFile;
    /** --headless: run without a terminal until SIGINT, SIGTERM or SIGHUP. */
    bool headless = false;
    /** --display: where the panel draws (the terminal by default, or an HD44780 module). */
    DisplayOption display;
    /** --input: key devices beside the terminal's keys, in the order given. */
    std::vector<InputOption> inputs;
    /** --listen (repeatable): addresses of the command server (HOST:PORT or unix:PATH). */
    std::vector<std::string> listen;
    /** --listen vxi11:HOST[:PORT]: the VXI-11 server's address and core channel port (0: the
     *  system picks one). */
    std::optional<Endpoint> vxi11;
    /** --web: where to serve the panel to browsers. */
    std::optional<Endpoint> web;
    /** --web-token: pages that do not present it only watch. */
    std::string webToken;
    /** --web-host: further host names the web panel answers to. */
    std::vector<std::string> webHosts;
    bool help = false;
};

/** A command line that cannot be used; the message says what is wrong. */
using UsageError = frontpaneltools::UsageError;

/** Parses the arguments after the program name. Reads the file of --keys-file.
 *  @throws UsageError for unknown options, missing or bad values and unreadable files. */
SimOptions parseOptions(std::vector<std::string> const& arguments);

/** The text of --help. */
std::string usage();

}  // namespace frontpanelsim
