#include "sim_options.h"

#include <yxfrontpanel/components.h>
#include <yxfrontpanel/runtime/remote_endpoint.h>

#include <cmath>
#include <fstream>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "demo_limits.h"
#include "key_script.h"

namespace frontpanelsim {

namespace {

// "20x4" -> {20, 4}; anything else is a usage error.
std::pair<unsigned, unsigned> parseSize(std::string const& text) {
    std::istringstream stream(text);
    unsigned chars = 0;
    unsigned lines = 0;
    char separator = 0;
    if (!(stream >> chars >> separator >> lines) || (separator != 'x' && separator != 'X') ||
        stream.peek() != std::char_traits<char>::eof() || text.find('-') != std::string::npos) {
        throw UsageError("--size wants COLSxLINES, e.g. 20x4; got '" + text + "'");
    }
    std::string const problem = demoSizeProblem(chars, lines);
    if (!problem.empty()) {
        throw UsageError("--size " + text + ": " + problem);
    }
    return {chars, lines};
}

std::string readFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw UsageError("--keys-file: cannot read '" + path + "'");
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

PrintMode parsePrintMode(std::string const& text) {
    if (text == "all") {
        return PrintMode::All;
    }
    if (text == "last") {
        return PrintMode::Last;
    }
    throw UsageError("--print wants 'all' or 'last'; got '" + text + "'");
}

// "60" or "0.5" seconds -> milliseconds; zero turns the home screen off.
std::chrono::milliseconds parseIdle(std::string const& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double seconds = -1;
    if (!(stream >> seconds) || stream.peek() != std::char_traits<char>::eof() || seconds < 0 ||
        seconds > 86400) {
        throw UsageError("--idle wants seconds from 0 (off) to 86400, e.g. 60; got '" + text + "'");
    }
    return std::chrono::milliseconds{std::llround(seconds * 1000)};
}

std::string parseListenAddress(std::string const& text) {
    try {
        yxfrontpanel::runtime::parseEndpoint(text);
    } catch (std::invalid_argument const& error) {
        throw UsageError(std::string("--listen: ") + error.what());
    }
    return text;
}

}  // namespace

SimOptions parseOptions(std::vector<std::string> const& arguments) {
    SimOptions options;
    frontpaneltools::OptionReader reader(arguments);
    while (reader.next()) {
        std::string const& argument = reader.argument();
        std::string const& name = reader.name();
        if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--size") {
            std::tie(options.chars, options.lines) = parseSize(reader.takeValue());
        } else if (name == "--keys") {
            if (options.keyScript) {
                throw UsageError("give either --keys or --keys-file, once");
            }
            options.keyScript = reader.takeValue();
            options.keyScriptSource = "--keys";
        } else if (name == "--keys-file") {
            if (options.keyScript) {
                throw UsageError("give either --keys or --keys-file, once");
            }
            options.keyScriptSource = reader.takeValue();
            options.keyScript = readFile(options.keyScriptSource);
        } else if (name == "--print") {
            options.print = parsePrintMode(reader.takeValue());
        } else if (name == "--idle") {
            options.idle = parseIdle(reader.takeValue());
        } else if (name == "--settings") {
            options.settingsFile = reader.takeValue();
            if (options.settingsFile->empty()) {
                throw UsageError("--settings needs a file name");
            }
#if !YXFP_HAS_SETTINGS
            throw UsageError(
                "--settings: this build has no settings store (configure with nlohmann-json, "
                "Debian package nlohmann-json3-dev)");
#endif
        } else if (name == "--headless") {
            options.headless = true;
        } else if (name == "--display") {
            options.display = parseDisplayOption(reader.takeValue());
        } else if (name == "--listen") {
            options.listen.push_back(parseListenAddress(reader.takeValue()));
        } else if (name == "--web") {
            options.web = parseEndpoint("--web", reader.takeValue());
        } else if (name == "--web-token") {
            options.webToken = reader.takeValue();
            if (options.webToken.empty()) {
                throw UsageError("--web-token needs a token that is not empty");
            }
        } else if (name == "--web-host") {
            options.webHosts.push_back(reader.takeValue());
            if (options.webHosts.back().empty() ||
                options.webHosts.back().find_first_of(" /\t") != std::string::npos) {
                throw UsageError("--web-host needs a host name such as panel.lab");
            }
        } else if (name == "--input") {
            options.inputs.push_back(parseInputOption(reader.takeValue()));
        } else {
            throw UsageError("unknown option '" + argument + "' (see --help)");
        }
    }
    if (options.print != PrintMode::None && !options.keyScript &&
        !(options.headless && !options.inputs.empty())) {
        throw UsageError(
            "--print needs a key script (--keys or --keys-file) or --headless with --input");
    }
    if (options.keyScript && !options.inputs.empty()) {
        throw UsageError("--input cannot drive a key script; use --headless with --input");
    }
    if (!options.webToken.empty() && !options.web) {
        throw UsageError("--web-token needs --web");
    }
    if (!options.webHosts.empty() && !options.web) {
        throw UsageError("--web-host needs --web");
    }
    if (options.headless && options.keyScript) {
        throw UsageError(
            "--headless runs until stopped; a key script runs headless already, "
            "give one or the other");
    }
    return options;
}

std::string usage() {
    return "Usage: frontpanel-sim [--size COLSxLINES] [--keys \"KEYS\" | --keys-file FILE]\n"
           "                      [--print all|last] [--idle SECONDS] [--settings FILE]\n"
           "                      [--headless] [--display DISPLAY]\n"
           "                      [--input evdev:PATH[:...] | gpio:CHIP:LINES]...\n"
           "                      [--listen HOST:PORT|unix:PATH]...\n"
           "                      [--web HOST:PORT [--web-token TOKEN] [--web-host NAME]...]\n"
           "                      [--help]\n"
           "\n"
           "Shows the front panel of a demo bench power supply, built with\n"
           "libYxFrontPanelToolbox, and lets you drive it with the keyboard.\n"
           "\n"
           "Interactive keys:\n"
           "    arrow keys          up, down, left, right\n"
           "    Enter               enter (the action key: open, apply, confirm)\n"
           "    Backspace, Escape   back (close the open screen)\n"
           "    l                   toggle LOCAL / REMOTE mode (edits need LOCAL)\n"
           "    q                   quit\n"
           "\n"
           "Options:\n"
           "    --size COLSxLINES   panel size, default 20x4; e.g. 16x2, 20x4, 40x4\n"
           "                        (" +
           demoSizeRange() +
           ")\n"
           "    --keys \"KEYS\"       run headless: apply the words of KEYS in order\n"
           "    --keys-file FILE    run headless with the key script in FILE\n"
           "    --print all|last    write every frame, or only the last, as text\n"
           "    --idle SECONDS      show the output status as home screen after SECONDS\n"
           "                        without a key (0: never); default 60, off in a key\n"
           "                        script (there wait:SECONDS lets the time pass)\n"
           "    --settings FILE     keep the settings in FILE: edits are saved two seconds\n"
           "                        after the first unsaved one and when the run ends,\n"
           "                        \"Save settings\" saves at once, \"Reset defaults\"\n"
           "                        resets and saves; default: none (every run starts\n"
           "                        from the defaults, so scripted runs repeat exactly)\n"
           "    --headless          run without a terminal until SIGINT or SIGTERM\n"
           "    --display DISPLAY   where the panel draws (default terminal):\n"
           "                        hd44780[:a00|a02]  what an HD44780 character module\n"
           "                          with that character ROM (default a00) would show,\n"
           "                          from a model of its controller; the inverted cells\n"
           "                          show as the module's cursor on the first of them\n"
           "                        hd44780-i2c:PATH[@ADDRESS][:a00|a02]  also drive a real\n"
           "                          module behind a PCF8574 I2C backpack at PATH\n"
           "                          (/dev/i2c-1; address default 0x27); a regular file\n"
           "                          or a FIFO at PATH receives the raw expander bytes\n" +
           inputOptionHelp() +
           "    --listen ADDRESS    serve SCPI commands (keys, screen, menu values) on\n"
           "                        ADDRESS: HOST:PORT (e.g. 127.0.0.1:5025; port 0 picks\n"
           "                        one, logged at start) or unix:PATH; repeatable. Only\n"
           "                        the addresses named are used; see frontpanel-ctl\n"
           "    --web HOST:PORT     serve the panel to browsers at http://HOST:PORT/\n"
           "                        (e.g. 127.0.0.1:8080; port 0 picks a free one)\n"
           "    --web-token TOKEN   only pages opened with ?token=TOKEN may press keys;\n"
           "                        the others only watch; required when HOST is not a\n"
           "                        loopback address\n"
           "    --web-host NAME     a further host name browsers may use for the panel\n"
           "                        (besides HOST, localhost, 127.0.0.1 and [::1]);\n"
           "                        repeatable; requests for other names are refused\n"
           "    --help              show this help\n"
           "\n"
           "Key script words (separated by blanks or line ends; '#' starts a comment):\n" +
           keyScriptHelp() +
           "\n"
           "Printed frames: each panel line between '|' borders in a '+---+' frame, the\n"
           "panel's glyphs as UTF-8 (0x1E ▲, 0x1F ▼, 0xDB █, 0xB0 ░, 0xF8 °, 0xFB √).\n"
           "A line with inverted cells ends in \" < inverted\" and their columns, counted\n"
           "from 0, e.g. \" < inverted 0-18\". Every frame starts with a line\n"
           "\"frame N after step S: WORD\" (step 0 is the start).\n"
           "\n"
           "A key script runs on a clock that only tick and wait:SECONDS move; every\n"
           "frame is kept, and hints pass at once. Interactive and --headless runs take\n"
           "a measurement 100 times a second on a thread of their own; the panel shows\n"
           "the newest once per frame.\n"
           "\n"
           "The run starts in LOCAL mode. Exit status: 0 on success, 1 when the key\n"
           "script or the run fails (e.g. an input device cannot be opened), 2 for a bad\n"
           "command line.\n";
}

}  // namespace frontpanelsim
