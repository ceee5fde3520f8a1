#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/testing/key_script.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <sstream>
#include <utility>

namespace yxfrontpanel::testing {

namespace {

using frontpanelhw::PanelKey;

struct KeyWord {
    char const* name;
    PanelKey key;
    char const* meaning;
};

constexpr KeyWord kKeyWords[] = {
    {"up", PanelKey::Up, "the up key"},
    {"down", PanelKey::Down, "the down key"},
    {"left", PanelKey::Left, "the left key"},
    {"right", PanelKey::Right, "the right key"},
    {"enter", PanelKey::Enter, "the enter (action) key"},
    {"back", PanelKey::Back, "the back key"},
};

constexpr std::size_t kHelpIndent = 4;
constexpr std::size_t kHelpMeaningColumn = 12;
constexpr std::size_t kHelpWidth = 80;

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

// A word from a binary file must not put control bytes on the user's terminal.
std::string printable(std::string const& word) {
    std::string shown;
    for (char const character : word) {
        auto const byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            shown += escaped;
        } else {
            shown.push_back(character);
        }
    }
    return shown;
}

KeyScript::ArgumentAction ignoringArgument(KeyScript::Action action) {
    return [action = std::move(action)](std::string const&) { return action; };
}

}  // namespace

KeyScriptError::~KeyScriptError() = default;

KeyScript::KeyScript(KeyPress const& pressKey) {
    for (KeyWord const& keyWord : kKeyWords) {
        add(Word{keyWord.name, "", keyWord.meaning,
                 ignoringArgument([pressKey, key = keyWord.key] { pressKey(key); })});
    }
}

KeyScript::KeyScript(IMenuTree& tree) : KeyScript([&tree](PanelKey key) { applyKey(tree, key); }) {}

KeyScript::~KeyScript() = default;
KeyScript::KeyScript(KeyScript const& other) = default;
KeyScript& KeyScript::operator=(KeyScript const& other) = default;
KeyScript::KeyScript(KeyScript&& other) noexcept = default;
KeyScript& KeyScript::operator=(KeyScript&& other) noexcept = default;

KeyScript& KeyScript::addWord(std::string word, std::string meaning, Action action) {
    add(Word{std::move(word), "", std::move(meaning), ignoringArgument(std::move(action))});
    return *this;
}

KeyScript& KeyScript::addWordWithArgument(std::string name, std::string argumentName,
                                          std::string meaning, ArgumentAction bind) {
    if (argumentName.empty()) {
        throw std::invalid_argument("the key word '" + name + "' needs an argument name");
    }
    add(Word{std::move(name), std::move(argumentName), std::move(meaning), std::move(bind)});
    return *this;
}

void KeyScript::add(Word word) {
    if (word.name.empty() || word.name.find_first_of(" \t\n\r\v\f#:") != std::string::npos) {
        throw std::invalid_argument("'" + printable(word.name) +
                                    "' cannot be a key word: it must be non-empty without "
                                    "blanks, '#' or ':'");
    }
    bool const known = std::any_of(words_.begin(), words_.end(),
                                   [&word](Word const& entry) { return entry.name == word.name; });
    if (known) {
        throw std::invalid_argument("the key word '" + word.name + "' is known already");
    }
    words_.push_back(std::move(word));
}

KeyScript::Word const* KeyScript::find(std::string const& word, std::string& argument) const {
    for (Word const& entry : words_) {
        if (entry.argumentName.empty()) {
            if (word == entry.name) {
                argument.clear();
                return &entry;
            }
        } else if (word.size() > entry.name.size() && word[entry.name.size()] == ':' &&
                   word.compare(0, entry.name.size(), entry.name) == 0) {
            argument = word.substr(entry.name.size() + 1);
            return &entry;
        }
    }
    return nullptr;
}

std::vector<KeyScriptStep> KeyScript::parse(std::string const& text) const {
    std::istringstream words(withoutComments(text));
    std::vector<KeyScriptStep> steps;
    std::string word;
    std::string argument;
    while (words >> word) {
        std::size_t const position = steps.size() + 1;
        std::string const where = "'" + printable(word) + "' at position " +
                                  std::to_string(position) + " of the key script";
        Word const* const entry = find(word, argument);
        if (entry == nullptr) {
            throw KeyScriptError("unknown key " + where + " (known: " + knownWords() + ")");
        }
        Action action;
        try {
            action = entry->bind(argument);
        } catch (std::exception const& error) {
            throw KeyScriptError("bad " + entry->name + " " + where + ": " + error.what());
        }
        steps.push_back(KeyScriptStep{word, entry->name, argument, position, std::move(action)});
    }
    return steps;
}

void KeyScript::run(std::string const& text) const {
    for (KeyScriptStep const& step : parse(text)) {
        step.perform();
    }
}

std::string KeyScript::knownWords() const {
    std::string known;
    for (Word const& entry : words_) {
        known += (known.empty() ? "" : " ") + entry.name;
        if (!entry.argumentName.empty()) {
            known += ":" + entry.argumentName;
        }
    }
    return known;
}

std::string KeyScript::help() const {
    std::string const indent(kHelpMeaningColumn, ' ');
    std::string help;
    for (Word const& entry : words_) {
        std::string const label =
            entry.argumentName.empty() ? entry.name : entry.name + ":" + entry.argumentName;
        std::string line = std::string(kHelpIndent, ' ') + label;
        if (line.size() + 2 > kHelpMeaningColumn) {
            help += line + '\n';
            line = indent;
        } else {
            line.resize(kHelpMeaningColumn, ' ');
        }
        // The meaning, word by word, wrapped before the right edge.
        std::istringstream meaning(entry.meaning);
        std::string word;
        bool lineHasWords = false;
        while (meaning >> word) {
            if (lineHasWords && line.size() + 1 + word.size() >= kHelpWidth) {
                help += line + '\n';
                line = indent;
                lineHasWords = false;
            }
            line += (lineHasWords ? " " : "") + word;
            lineHasWords = true;
        }
        help += line + '\n';
    }
    return help;
}

void pressKeys(IMenuTree& tree, std::string const& keys) { KeyScript(tree).run(keys); }

}  // namespace yxfrontpanel::testing
