#include "key_script.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <locale>
#include <optional>
#include <sstream>
#include <utility>

namespace frontpanelsim {

namespace {

struct Word {
    char const* text;
    ScriptAction action;
    char const* meaning;
};

constexpr std::array<Word, 9> kWords{{
    {"up", ScriptAction::Up, "the up key"},
    {"down", ScriptAction::Down, "the down key"},
    {"left", ScriptAction::Left, "the left key"},
    {"right", ScriptAction::Right, "the right key"},
    {"enter", ScriptAction::Enter, "the enter (action) key"},
    {"back", ScriptAction::Back, "the back key"},
    {"local", ScriptAction::Local, "switch to local mode (front-panel edits allowed)"},
    {"remote", ScriptAction::Remote, "switch to remote mode (front-panel edits refused)"},
    {"tick", ScriptAction::Tick, "let half a second pass (one measurement update)"},
}};

constexpr char const* kWaitPrefix = "wait:";
constexpr double kLongestWaitSeconds = 24 * 3600;

// "wait:2.5" -> 2500 ms; not a wait word: nothing.
std::optional<std::chrono::milliseconds> parseWait(std::string const& word, std::size_t position) {
    if (word.rfind(kWaitPrefix, 0) != 0) {
        return std::nullopt;
    }
    std::istringstream text(word.substr(std::string(kWaitPrefix).size()));
    text.imbue(std::locale::classic());
    double seconds = -1;
    if (!(text >> seconds) || text.peek() != std::char_traits<char>::eof() || seconds < 0 ||
        seconds > kLongestWaitSeconds) {
        throw ScriptError("bad wait '" + word + "' at position " + std::to_string(position) +
                          " of the key script: wants seconds from 0 to 86400, e.g. wait:60 or "
                          "wait:0.25");
    }
    return std::chrono::milliseconds{std::llround(seconds * 1000)};
}

std::string withoutComments(std::string const& text) {
    std::string result;
    bool inComment = false;
    for (char character : text) {
        if (character == '#') {
            inComment = true;
        } else if (character == '\n') {
            inComment = false;
        }
        result.push_back(inComment ? ' ' : character);
    }
    return result;
}

}  // namespace

std::vector<ScriptStep> parseKeyScript(std::string const& text) {
    std::istringstream words(withoutComments(text));
    std::vector<ScriptStep> steps;
    std::string word;
    while (words >> word) {
        std::size_t const position = steps.size() + 1;
        if (auto const wait = parseWait(word, position)) {
            steps.push_back(ScriptStep{ScriptAction::Wait, word, position, *wait});
            continue;
        }
        auto const known = std::find_if(kWords.begin(), kWords.end(),
                                        [&word](Word const& entry) { return word == entry.text; });
        if (known == kWords.end()) {
            throw ScriptError("unknown key '" + word + "' at position " + std::to_string(position) +
                              " of the key script (known: up down left right enter back local "
                              "remote tick wait:SECONDS)");
        }
        steps.push_back(ScriptStep{known->action, word, position});
    }
    return steps;
}

std::string keyScriptHelp() {
    std::ostringstream help;
    for (Word const& entry : kWords) {
        help << "    " << entry.text << std::string(8 - std::string(entry.text).size(), ' ')
             << entry.meaning << '\n';
    }
    help << "    wait:SECONDS\n"
            "            let SECONDS pass (decimals allowed): timers, measurements, the idle\n"
            "            home screen\n";
    return help.str();
}

}  // namespace frontpanelsim
