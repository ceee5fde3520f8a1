// Fuzz target for the command server's parser and dispatcher with the demo instrument behind
// them: the input is a series of command lines run on the demo's menu (keys applied at once),
// checking after each line that every query answered at most one line, responses are single
// lines, the error queue stays bounded and the set voltage stays within its bounds; and that the
// parser's bounds hold: at most the limits' commands, mnemonics and parameters per line, and the
// parsed line's mnemonics (shared paths counted once) in proportion to the line's length;
// that every arbitrary block parses back to the same bytes when written again, and that a
// number read with a unit agrees with the same text read without one.
#include <frontpanelhw/display.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_number.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "demo_panel.h"
#include "fuzz_support.h"

namespace {

namespace scpi = yxfrontpanel::runtime::scpi;

constexpr std::size_t kMaxLines = 64;

double voltageOf(yxfrontpanel::IMenuTree& root) {
    std::string const text = yxfrontpanel::runtime::readMenuValue(root, "Output/Voltage").text;
    double value = -1.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

/** The parser's work and memory bounds for one line. */
void checkBounds(std::string_view line, scpi::ParsedLine const& parsed) {
    scpi::ParseLimits const limits;
    yxfp_fuzz::check(parsed.commands.size() <= limits.maxCommands, "commands per line bounded");
    std::size_t stored = 0;
    std::unordered_set<void const*> paths;
    for (auto const& command : parsed.commands) {
        yxfp_fuzz::check(command.fullPath().size() <= limits.maxMnemonics,
                         "mnemonics per header bounded");
        yxfp_fuzz::check(command.parameters.size() <= limits.maxParameters,
                         "parameters per command bounded");
        yxfp_fuzz::check(command.inherited == (command.path ? command.path->size() : 0U),
                         "inherited count matches the shared path");
        for (auto const& mnemonic : command.mnemonics) {
            stored += mnemonic.size();
        }
        if (command.path && paths.insert(command.path.get()).second) {
            for (auto const& mnemonic : *command.path) {
                stored += mnemonic.size();
            }
        }
    }
    // Each distinct path copies at most `maxMnemonics` mnemonics of the line, so what the
    // parsed line holds grows with the line, never with the number of relative headers.
    yxfp_fuzz::check(stored <= limits.maxMnemonics * line.size() + 1, "parsed memory bounded");
}

/** Blocks round-trip and unit suffixes only ever scale a number that parses bare. */
void checkParameters(scpi::ParsedLine const& parsed) {
    for (auto const& command : parsed.commands) {
        for (auto const& parameter : command.parameters) {
            if (parameter.block) {
                scpi::ParsedLine const again =
                    scpi::parseLine("X " + scpi::definiteBlock(parameter.text));
                yxfp_fuzz::check(!again.error && again.commands.size() == 1 &&
                                     again.commands[0].parameters.size() == 1 &&
                                     again.commands[0].parameters[0].text == parameter.text,
                                 "blocks round-trip");
                continue;
            }
            double bare = 0.0;
            bool bareOk = true;
            try {
                bare = scpi::parseNumber(parameter.text);
            } catch (scpi::Error const&) {
                bareOk = false;
            }
            try {
                double const withUnit = scpi::parseNumber(parameter.text, "V");
                if (bareOk) {
                    yxfp_fuzz::check(withUnit == bare || (std::isnan(withUnit) && std::isnan(bare)),
                                     "a bare number reads the same with a unit declared");
                }
            } catch (scpi::Error const&) {
                yxfp_fuzz::check(!bareOk, "a bare number also parses with a unit declared");
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    yxbase2::system::this_thread::setSleepHook([](std::chrono::nanoseconds) {});
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::DrawingProvider provider(display);
    frontpanelsim::DemoPanel demo(provider);
    demo.root().setFocus(true);
    scpi::CommandTable table;
    scpi::addCommonCommands(table, scpi::Identity{});
    yxfrontpanel::runtime::addPanelCommands(
        table, std::make_shared<yxfrontpanel::runtime::TreeControl>(demo.root(), display));
    // A command with a unit and bounds, as an application declares one.
    double level = 0.0;
    table.add(
        "SOURce:LEVel",
        [&level](scpi::Request& request) {
            level = request.number(0, scpi::NumericBounds{-5.0, 5.0, 0.0}, "V");
        },
        1, 1);
    scpi::Session session;

    std::string_view input(reinterpret_cast<char const*>(data), size);
    for (std::size_t lines = 0; lines < kMaxLines && !input.empty(); ++lines) {
        std::size_t const newline = input.find('\n');
        std::string_view const line = input.substr(0, newline);
        scpi::ParsedLine const parsed = scpi::parseLine(line);
        input.remove_prefix(newline == std::string_view::npos ? input.size() : newline + 1);
        checkBounds(line, parsed);
        checkParameters(parsed);

        // A line of readers only may be answered without the panel: never more than one
        // answer per query, and only when every command is a reader.
        scpi::Session readerSession;
        if (auto const answered = table.runReaders(parsed, readerSession)) {
            std::size_t queries = 0;
            for (auto const& command : parsed.commands) {
                queries += command.query ? 1 : 0;
            }
            yxfp_fuzz::check(answered->size() <= queries, "readers answer queries only");
        }

        std::vector<std::string> responses;
        std::size_t next = 0;
        do {
            next = table.run(parsed, next, session, responses).next;
        } while (next < parsed.commands.size());

        std::size_t queries = 0;
        for (auto const& command : parsed.commands) {
            queries += command.query ? 1 : 0;
        }
        yxfp_fuzz::check(responses.size() <= queries, "at most one response per query");
        for (auto const& response : responses) {
            yxfp_fuzz::check(response.find('\n') == std::string::npos, "one-line responses");
        }
        yxfp_fuzz::check(session.errors.size() <= scpi::ErrorQueue::kDefaultCapacity,
                         "bounded error queue");
        double const volts = voltageOf(demo.root());
        yxfp_fuzz::check(volts >= 0.0 && volts <= 30.0, "voltage within its bounds");
    }
    yxbase2::system::this_thread::setSleepHook({});
    return 0;
}
