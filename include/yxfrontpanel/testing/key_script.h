#pragma once

#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/testing/export.h>

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace yxfrontpanel {
class IMenuTree;
}

namespace yxfrontpanel::testing {

/** A key script that cannot be run: an unknown word, or an argument its word refuses. The
 *  message names the word (control characters escaped as a backslash, 'x' and two hex digits)
 *  and its 1-based position. */
class YXFP_TESTING_EXPORT KeyScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~KeyScriptError() override;
};

/** One word of a parsed key script, ready to run. */
struct KeyScriptStep {
    /** The word as written in the script. */
    std::string word;
    /** The known word it is: `word` itself, or for "wait:2.5" the name "wait". */
    std::string name;
    /** The text after the colon of a word with an argument ("2.5"); empty for other words. */
    std::string argument;
    /** Its place in the script, counting words from 1. */
    std::size_t position = 0;
    /** What the word does; call it to run the step. */
    std::function<void()> perform;
};

/** Runs key scripts, the words `frontpanel-sim --keys` understands: "down down enter up".
 *
 *  A script is words separated by blanks, tabs or line ends; '#' starts a comment that runs to
 *  the end of its line. Words are case-sensitive. Every script knows the six panel keys `up`,
 *  `down`, `left`, `right`, `enter` and `back`; a program adds words of its own with `addWord`
 *  (e.g. `local`, `tick`) and words that carry an argument after a colon with
 *  `addWordWithArgument` (e.g. `wait:SECONDS`).
 *
 *  A script is parsed whole before anything runs, so an unknown word stops it before the first
 *  key. Not thread-safe; the actions run on the caller's thread. */
class YXFP_TESTING_EXPORT KeyScript {
public:
    /** What a word does. */
    using Action = std::function<void()>;
    /** Turns the argument of a word with an argument into what the word does; throws (any
     *  `std::exception`) to refuse the argument. */
    using ArgumentAction = std::function<Action(std::string const& argument)>;
    /** Receives the six panel keys. */
    using KeyPress = std::function<void(frontpanelhw::PanelKey)>;

    /** A script whose six key words call `pressKey`. */
    explicit KeyScript(KeyPress const& pressKey);
    /** A script whose six key words go to `tree` through `applyKey` (the tree must outlive the
     *  script and the steps it parses). */
    explicit KeyScript(IMenuTree& tree);
    ~KeyScript();
    /** A script with the same words (their actions are shared). */
    KeyScript(KeyScript const& other);
    /** Takes the words of `other` (their actions are shared). */
    KeyScript& operator=(KeyScript const& other);
    /** Takes over the words of `other`, which is left without words. */
    KeyScript(KeyScript&& other) noexcept;
    /** Takes over the words of `other`, which is left without words. */
    KeyScript& operator=(KeyScript&& other) noexcept;

    /** Adds the word `word` that runs `action`; `meaning` is its line in `help()`. Returns this
     *  script for chaining. @throws std::invalid_argument for an empty word, one with a blank,
     *  '#' or ':' in it, or one the script knows already. */
    KeyScript& addWord(std::string word, std::string meaning, Action action);
    /** Adds the words "name:ARGUMENT": for each such word of a script, `bind` receives the text
     *  after the colon (possibly empty) while the script is parsed and returns what the word
     *  does. `argumentName` names the argument in `help()` and messages (`wait:SECONDS`).
     *  Returns this script. @throws std::invalid_argument for a name as `addWord` refuses it,
     *  or an empty `argumentName`. */
    KeyScript& addWordWithArgument(std::string name, std::string argumentName, std::string meaning,
                                   ArgumentAction bind);

    /** The steps of `text`, in order. @throws KeyScriptError for an unknown word ("unknown key
     *  'jump' at position 3 of the key script (known: up down ...)") or a refused argument
     *  ("bad wait 'wait:x' at position 2 of the key script: REASON", where REASON is what the
     *  word's `bind` threw). */
    std::vector<KeyScriptStep> parse(std::string const& text) const;
    /** Parses `text`, then performs its steps in order. @throws KeyScriptError as `parse`;
     *  whatever an action throws passes through, and the later steps do not run. */
    void run(std::string const& text) const;

    /** The known words, in the order they were added (the six keys first), separated by
     *  single blanks; a word with an argument shows as "name:ARGUMENT". */
    std::string knownWords() const;
    /** The known words with their meanings for a program's --help: each word indented by four
     *  blanks, its meaning from column 12 (on the next line when the word is longer than six
     *  characters), wrapped before column 80 with the same indentation; every line ends with
     *  '\n'. */
    std::string help() const;

private:
    struct Word {
        std::string name;
        std::string argumentName;  // empty for a word without argument
        std::string meaning;
        ArgumentAction bind;
    };

    void add(Word word);
    Word const* find(std::string const& word, std::string& argument) const;

    std::vector<Word> words_;
};

/** Presses the keys of `keys` (six key words only) on `tree`: `KeyScript(tree).run(keys)`.
 *  @throws KeyScriptError for any other word, before a key is pressed. */
YXFP_TESTING_EXPORT void pressKeys(IMenuTree& tree, std::string const& keys);

}  // namespace yxfrontpanel::testing
