#include "key_script.h"

#include <yxfrontpanel/testing/key_script.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace frontpanelsim {

namespace {

using yxfrontpanel::testing::KeyScript;

struct Word {
    char const* text;
    ScriptAction action;
};

// Which action each word of the simulator's script stands for; the words themselves, their
// meanings and the parsing are the testing kit's (`vocabulary`).
constexpr std::array<Word, 11> kActions{{
    {"up", ScriptAction::Up},
    {"down", ScriptAction::Down},
    {"left", ScriptAction::Left},
    {"right", ScriptAction::Right},
    {"enter", ScriptAction::Enter},
    {"back", ScriptAction::Back},
    {"local", ScriptAction::Local},
    {"remote", ScriptAction::Remote},
    {"tick", ScriptAction::Tick},
    {"wait", ScriptAction::Wait},
    {"restart", ScriptAction::Restart},
}};

constexpr double kLongestWaitSeconds = 24 * 3600;

// "2.5" -> 2500 ms. @throws std::invalid_argument for anything but seconds from 0 to 86400.
std::chrono::milliseconds waitDuration(std::string const& seconds) {
    std::istringstream text(seconds);
    text.imbue(std::locale::classic());
    double value = -1;
    if (!(text >> value) || text.peek() != std::char_traits<char>::eof() || value < 0 ||
        value > kLongestWaitSeconds) {
        throw std::invalid_argument("wants seconds from 0 to 86400, e.g. wait:60 or wait:0.25");
    }
    return std::chrono::milliseconds{std::llround(value * 1000)};
}

// The simulator's words. The script runner performs the steps through their actions
// (`applyStep`), so the words here only check what they carry.
KeyScript vocabulary() {
    KeyScript script([](frontpanelhw::PanelKey) {});
    auto const nothing = [] {};
    script.addWord("local", "switch to local mode (front-panel edits allowed)", nothing);
    script.addWord("remote", "switch to remote mode (front-panel edits refused)", nothing);
    script.addWord("tick", "let half a second pass (one measurement update)", nothing);
    script.addWord("restart",
                   "stop the panel and build it again (from the --settings file, if any)", nothing);
    script.addWordWithArgument(
        "wait", "SECONDS",
        "let SECONDS pass (decimals allowed): timers, measurements, the idle home screen",
        [](std::string const& seconds) -> KeyScript::Action {
            (void)waitDuration(seconds);
            return [] {};
        });
    return script;
}

}  // namespace

std::vector<ScriptStep> parseKeyScript(std::string const& text) {
    std::vector<yxfrontpanel::testing::KeyScriptStep> parsed;
    try {
        parsed = vocabulary().parse(text);
    } catch (yxfrontpanel::testing::KeyScriptError const& error) {
        throw ScriptError(error.what());
    }
    std::vector<ScriptStep> steps;
    steps.reserve(parsed.size());
    for (auto const& step : parsed) {
        auto const known =
            std::find_if(kActions.begin(), kActions.end(),
                         [&step](Word const& entry) { return step.name == entry.text; });
        if (known == kActions.end()) {
            throw std::logic_error("the key word '" + step.name + "' has no action");
        }
        bool const wait = known->action == ScriptAction::Wait;
        steps.push_back(
            ScriptStep{known->action, step.word, step.position,
                       wait ? waitDuration(step.argument) : std::chrono::milliseconds{0}});
    }
    return steps;
}

std::string keyScriptHelp() { return vocabulary().help(); }

}  // namespace frontpanelsim
