#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace yxfrontpanel::runtime {

namespace {

using frontpanelhw::PanelKey;
using scpi::Error;
using scpi::ErrorCode;
using scpi::Request;

PanelKey keyOf(Request const& request) {
    scpi::Parameter const& parameter = request.parameter(0);
    std::string name = parameter.text;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    constexpr std::array<std::pair<char const*, PanelKey>, 6> kKeys{{{"UP", PanelKey::Up},
                                                                     {"DOWN", PanelKey::Down},
                                                                     {"LEFT", PanelKey::Left},
                                                                     {"RIGHT", PanelKey::Right},
                                                                     {"ENTER", PanelKey::Enter},
                                                                     {"BACK", PanelKey::Back}}};
    for (auto const& [text, key] : kKeys) {
        if (!parameter.quoted && name == text) {
            return key;
        }
    }
    throw Error(ErrorCode::IllegalParameterValue, "no key " + parameter.text);
}

/** The 0-based screen line of the 1-based line number in parameter 0. */
unsigned lineOf(Request const& request, std::size_t lineCount) {
    long const line = request.integer(0);
    if (line < 1 || static_cast<std::size_t>(line) > lineCount) {
        throw Error(ErrorCode::DataOutOfRange,
                    "line " + std::to_string(line) + " of 1 to " + std::to_string(lineCount));
    }
    return static_cast<unsigned>(line - 1);
}

IMenuTree& rootOf(IRemotePanel const& panel) {
    IMenuTree* const root = panel.root();
    if (root == nullptr) {
        throw Error(ErrorCode::ExecutionError, "the panel has no menu");
    }
    return *root;
}

/** The state a reader answers from: the published one off the panel's thread (null, and the
 *  request declined, when there is none yet), the current one on it. */
std::shared_ptr<PanelSnapshot const> stateFor(Request& request, IRemotePanel const& panel) {
    if (!request.offPanelThread()) {
        return std::make_shared<PanelSnapshot const>(panel.snapshot());
    }
    std::shared_ptr<PanelSnapshot const> state = panel.published();
    if (!state) {
        request.decline();
    }
    return state;
}

}  // namespace

void addPanelCommands(scpi::CommandTable& table, std::shared_ptr<IRemotePanel> const& panel,
                      PanelCommandOptions options) {
    if (!panel) {
        throw std::invalid_argument("panel commands need a panel");
    }
    table.add(
        "SYSTem:KEY",
        [panel](Request& request) {
            if (panel->pressKey(keyOf(request))) {
                request.deferRest();
            }
        },
        1, 1);
    // The screen and mode queries also run off the panel's thread, from what it published.
    table.addReader(
        "DISPlay:TEXT?",
        [panel](Request& request) {
            std::shared_ptr<PanelSnapshot const> const state = stateFor(request, *panel);
            if (!state) {
                return;
            }
            std::vector<std::string> const& lines = state->lines;
            if (request.parameterCount() == 1) {
                request.respond(scpi::quoted(lines[lineOf(request, lines.size())]));
                return;
            }
            std::string response;
            for (auto const& line : lines) {
                response += (response.empty() ? "" : ",") + scpi::quoted(line);
            }
            request.respond(response);
        },
        0, 1);
    table.addReader(
        "DISPlay:INVerted?",
        [panel](Request& request) {
            std::shared_ptr<PanelSnapshot const> const state = stateFor(request, *panel);
            if (!state) {
                return;
            }
            unsigned const line = lineOf(request, state->inverted.size());
            request.respond(scpi::quoted(state->inverted[line]));
        },
        1, 1);
    table.add("SYSTem:REMote", [panel](Request& /*request*/) { panel->setLocal(false); });
    table.add("SYSTem:LOCal", [panel](Request& /*request*/) { panel->setLocal(true); });
    table.addReader("SYSTem:MODE?", [panel](Request& request) {
        std::shared_ptr<PanelSnapshot const> const state = stateFor(request, *panel);
        if (state) {
            request.respond(state->local ? "LOC" : "REM");
        }
    });
    // DEFault: the value an item held when these commands first named it (panel's thread).
    auto const defaults = std::make_shared<MenuDefaults>();
    table.add(
        "MENU:VALue?",
        [panel, defaults](Request& request) {
            IMenuTree& root = rootOf(*panel);
            std::string const& path = request.parameter(0).text;
            std::optional<double> const defaultValue = defaults->note(root, path);
            MenuValue const value =
                request.parameterCount() > 1
                    ? readMenuBound(root, path, request.parameter(1).text, defaultValue)
                    : readMenuValue(root, path);
            request.respond(value.numeric ? value.text : scpi::quoted(value.text));
        },
        1, 2);
    table.add(
        "MENU:VALue",
        [panel, options, defaults](Request& request) {
            IMenuTree& root = rootOf(*panel);
            std::string const& path = request.parameter(0).text;
            // An unknown path changes nothing, not even the mode.
            std::optional<double> const defaultValue = defaults->note(root, path);
            if (options.remoteOnMenuWrite && panel->isLocal()) {
                panel->setLocal(false);
            }
            writeMenuValue(root, path, request.parameter(1).text, defaultValue);
        },
        2, 2);
}

}  // namespace yxfrontpanel::runtime
