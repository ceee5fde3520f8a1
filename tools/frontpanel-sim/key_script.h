#pragma once

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace frontpanelsim {

/** What one word of a key script does: one of the six panel keys, a switch of the operating
 *  mode, half a second of simulated time (the measurement update), or `wait:SECONDS` of it. */
enum class ScriptAction { Up, Down, Left, Right, Enter, Back, Local, Remote, Tick, Wait };

/** One word of a key script with its 1-based position, for messages. */
struct ScriptStep {
    ScriptAction action;
    std::string word;
    std::size_t position;
    /** The time a Wait lets pass (to the millisecond); zero for the other words. */
    std::chrono::milliseconds duration{0};
};

/** A key script that cannot be run; the message names the word and its position. */
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Parses a key script: words separated by blanks, tabs or line ends; '#' starts a comment that
 *  runs to the end of the line. @throws ScriptError for an unknown word and for a wait whose
 *  seconds are not a number from 0 to 86400. */
std::vector<ScriptStep> parseKeyScript(std::string const& text);

/** The words a key script understands, with what each does, one per line (for --help). */
std::string keyScriptHelp();

}  // namespace frontpanelsim
