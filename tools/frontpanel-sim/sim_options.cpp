#include "sim_options.h"

#include <frontpanelhw/graphic/font.h>
#include <yxfrontpanel/components.h>
#if YXFP_HAS_REMOTE
#include <yxfrontpanel/runtime/remote_endpoint.h>
#endif

#include <cmath>
#include <fstream>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "demo_limits.h"
#include "graphic_display_option.h"
#include "graphic_module_option.h"
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

// Stops the command line when `option` needs a part that this build left out; `how` says how
// to get it.
void requirePart(bool built, std::string const& option, std::string const& part,
                 std::string const& how) {
    if (!built) {
        throw UsageError(option + ": this build has no " + part + " (" + how + ")");
    }
}

std::string parseListenAddress(std::string const& text) {
    requirePart(YXFP_HAS_REMOTE, "--listen", "remote control",
                "rebuild with -DYXFP_WITH_REMOTE=ON");
#if YXFP_HAS_REMOTE
    try {
        yxfrontpanel::runtime::parseEndpoint(text);
    } catch (std::invalid_argument const& error) {
        throw UsageError(std::string("--listen: ") + error.what());
    }
#endif
    return text;
}

#if YXFP_HAS_VXI11
// HOST or HOST:PORT after "vxi11:"; the core channel's port is picked by the system when absent.
Endpoint parseVxi11Address(std::string const& text) {
    if (text.empty()) {
        throw UsageError("--listen vxi11: needs a host (e.g. vxi11:127.0.0.1)");
    }
    if (text.find(':') == std::string::npos) {
        return Endpoint{text, 0};
    }
    return parseEndpoint("--listen vxi11:", text);
}
#endif

std::string sizeText(unsigned width, unsigned height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

/** The panel's size on a pixel display: as many cells of the font as fit, or --size's when it
 *  fits. */
void fitGraphicPanel(SimOptions& options, bool sizeGiven) {
    DisplayOption& display = options.display;
    unsigned cellWidth = 0;
    unsigned cellHeight = 0;
    try {
        auto const font = frontpanelhw::graphic::Font::fromName(display.font);
        cellWidth = font.cellWidth();
        cellHeight = font.cellHeight();
    } catch (frontpanelhw::graphic::FontError const& error) {
        throw UsageError(std::string("--font: ") + error.what());
    }
    std::pair<unsigned, unsigned> pixels;
    try {
        pixels = graphicPixelSize(display);
    } catch (std::exception const& error) {
        throw UsageError(std::string("--display: ") + error.what());
    }
    unsigned const fitChars = pixels.first / cellWidth;
    unsigned const fitLines = pixels.second / cellHeight;
    std::string const module = "the " + sizeText(pixels.first, pixels.second) +
                               " module with the " + sizeText(cellWidth, cellHeight) + " font";
    if (sizeGiven && (options.chars > fitChars || options.lines > fitLines)) {
        throw UsageError("--size " + sizeText(options.chars, options.lines) + " does not fit " +
                         module + " (at most " + sizeText(fitChars, fitLines) + ")");
    }
    if (!sizeGiven) {
        options.chars = fitChars;
        options.lines = fitLines;
        std::string const problem = demoSizeProblem(fitChars, fitLines);
        if (!problem.empty()) {
            throw UsageError(module + " holds " + sizeText(fitChars, fitLines) +
                             " cells: " + problem);
        }
    }
    display.graphic.chars = options.chars;
    display.graphic.lines = options.lines;
}

}  // namespace

SimOptions parseOptions(std::vector<std::string> const& arguments) {
    SimOptions options;
    bool sizeGiven = false;
    std::optional<std::string> font;
    frontpaneltools::OptionReader reader(arguments);
    while (reader.next()) {
        std::string const& argument = reader.argument();
        std::string const& name = reader.name();
        if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--size") {
            std::tie(options.chars, options.lines) = parseSize(reader.takeValue());
            sizeGiven = true;
        } else if (name == "--font") {
            font = reader.takeValue();
            if (font->empty()) {
                throw UsageError("--font needs 6x8, 8x16 or the path of a PSF font");
            }
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
            requirePart(YXFP_HAS_SETTINGS, "--settings", "settings store",
                        "install nlohmann-json3-dev and rebuild");
        } else if (name == "--headless") {
            options.headless = true;
        } else if (name == "--display") {
            options.display = parseDisplayOption(reader.takeValue());
        } else if (name == "--listen") {
            std::string const value = reader.takeValue();
            if (value.rfind("vxi11:", 0) == 0) {
                requirePart(YXFP_HAS_VXI11, "--listen vxi11:", "VXI-11 server",
                            "install libtirpc-dev and rpcsvc-proto and rebuild");
#if YXFP_HAS_VXI11
                options.vxi11 = parseVxi11Address(value.substr(6));
#endif
            } else {
                options.listen.push_back(parseListenAddress(value));
            }
        } else if (name == "--web") {
            requirePart(YXFP_HAS_WEB && YXFP_HAS_REMOTE, "--web", "web panel",
                        "install libwebsockets-dev and rebuild, with remote control on");
#if YXFP_HAS_WEB && YXFP_HAS_REMOTE
            options.web = parseEndpoint("--web", reader.takeValue());
#endif
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
    if (font) {
        if (!isGraphicDisplay(options.display)) {
            throw UsageError(
                "--font needs a pixel display (--display pixels, png:FILE, fbdev:PATH or a "
                "graphic module)");
        }
        options.display.font = *font;
    }
    if (isGraphicDisplay(options.display)) {
        fitGraphicPanel(options, sizeGiven);
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
           "                      [--headless] [--display DISPLAY] [--font FONT]\n"
           "                      [--input evdev:PATH[:...] | gpio:CHIP:LINES]...\n"
           "                      [--listen HOST:PORT|unix:PATH|vxi11:HOST[:PORT]]...\n"
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
           "    --headless          run without a terminal until SIGINT, SIGTERM or SIGHUP\n"
           "    --display DISPLAY   where the panel draws (default terminal):\n"
           "                        hd44780[:a00|a02]  what an HD44780 character module\n"
           "                          with that character ROM (default a00) would show,\n"
           "                          from a model of its controller; the inverted cells\n"
           "                          show as the module's cursor on the first of them\n"
           "                        hd44780-i2c:PATH[@ADDRESS][:a00|a02]  also drive a real\n"
           "                          module behind a PCF8574 I2C backpack at PATH\n"
           "                          (/dev/i2c-1; address default 0x27); a regular file\n"
           "                          or a FIFO at PATH receives the raw expander bytes\n" +
           graphicDisplayHelp() + graphicModuleHelp() + inputOptionHelp() +
           "    --listen ADDRESS    serve SCPI commands (keys, screen, menu values) on\n"
           "                        ADDRESS: HOST:PORT (e.g. 127.0.0.1:5025; port 0 picks\n"
           "                        one, logged at start) or unix:PATH; repeatable. Only\n"
           "                        the addresses named are used; see frontpanel-ctl.\n"
           "                        vxi11:HOST[:PORT] serves VXI-11 (VISA's\n"
           "                        TCPIP::HOST::INSTR) on HOST, the core channel on\n"
           "                        PORT (default: one the system picks)\n"
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
