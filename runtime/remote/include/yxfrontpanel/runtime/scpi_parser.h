#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/scpi_error.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime::scpi {

/** One parameter of a command as the client wrote it. */
struct YXFP_RUNTIME_EXPORT Parameter {
    /** The text: a quoted string without its quotes and with doubled quotes made single, or
     *  any other parameter (number, key name) as written, without surrounding blanks. */
    std::string text;
    /** Whether it was a quoted string ("..." or '...'). */
    bool quoted = false;
    /** Whether it was a definite-length arbitrary block (`#<n><length><bytes>`); `text` holds
     *  the bytes. */
    bool block = false;

    /** Whether both have the same text, `quoted` and `block`. */
    bool operator==(Parameter const& other) const;
};

/** `bytes` as a definite-length arbitrary block: '#', the number of length digits, the length,
 *  the bytes (`#15hello`). */
YXFP_RUNTIME_EXPORT std::string definiteBlock(std::string_view bytes);

/** A path of mnemonics that relative headers continue; shared by every command that continues
 *  it, so that a line of many relative headers holds the path once. */
using SharedPath = std::shared_ptr<std::vector<std::string> const>;

/** One command of a command line; its full header is the inherited path, then its own
 *  mnemonics. */
struct YXFP_RUNTIME_EXPORT Command {
    /** The mnemonics as written in this command's header (case kept): from the root for a
     *  header that starts there, after `path` for one that continues the previous command's
     *  path; for a common command the single mnemonic with its star ("*IDN"). */
    std::vector<std::string> mnemonics;
    /** The mnemonics this header continues (null for a header from the root); shared with
     *  the other commands of the line that continue the same path. */
    SharedPath path;
    /** A common command (`*IDN?`, `*CLS`). */
    bool common = false;
    /** How many leading mnemonics of the full header came from the previous command's path
     *  (0 for a header from the root): the size of `path`. */
    std::size_t inherited = 0;
    /** The header ended in '?'. */
    bool query = false;
    /** The parameters in the order written; empty when there are none. */
    std::vector<Parameter> parameters;

    /** The header as written after resolution, e.g. "SYST:KEY" or "*IDN?" (for messages). */
    std::string header() const;
    /** The full header's mnemonics from the root: `path`, then `mnemonics`. */
    std::vector<std::string> fullPath() const;
};

/** What one command line may hold. A line beyond a limit keeps the commands before the
 *  offending one and ends with a "Too much data" error (-223); the rest is dropped. Together
 *  with the line length they bound the work and memory of one line: at most `maxCommands`
 *  commands, each matched against the table with at most `maxMnemonics` mnemonics. */
struct YXFP_RUNTIME_EXPORT ParseLimits {
    /** Most mnemonics in one header after resolution ("SOUR:VOLT:LEV" has 3). */
    std::size_t maxMnemonics = 12;
    /** Most commands on one line (empty ones between ';;' count too). */
    std::size_t maxCommands = 64;
    /** Most parameters of one command. */
    std::size_t maxParameters = 32;
};

/** A parsed command line: the commands up to the first error, and that error (if any). The
 *  commands before an error still run; everything after it on the line is discarded. */
struct YXFP_RUNTIME_EXPORT ParsedLine {
    /** The commands before the first error, in line order; empty commands left out. */
    std::vector<Command> commands;
    /** The first error on the line; empty when the whole line parsed. */
    std::optional<ErrorEntry> error;
};

/** Parses one command line (without its newline; a trailing carriage return is ignored).
 *
 *  Commands are separated by ';' outside quoted strings; empty commands are skipped. A header
 *  is a common command ('*' and letters) or mnemonics (a letter, then letters, digits and
 *  '_') joined by ':', optionally starting with ':', optionally ending in '?'. As in SCPI, a
 *  header without a leading ':' after a command with a path continues that path: in
 *  `SOUR:VOLT 1;CURR 2` the second command is `SOUR:CURR`; a leading ':' starts again from the
 *  root, and common commands (also written ":*OPC?") leave the path alone. (`CommandTable` also
 * accepts such a header from the root when the continued path names no command.) Blanks separate
 * header and parameters; parameters are separated by ','. Errors: a character that cannot start a
 * header or parameter (-101), a malformed header (-102), a header not followed by a blank or the
 * end
 *  (-103), an empty parameter (-109), an unterminated string (-151) and a line beyond `limits`
 *  (-223).
 *
 *  Pure function: no state, any thread, never throws except std::bad_alloc. */
YXFP_RUNTIME_EXPORT ParsedLine parseLine(std::string_view line,
                                         ParseLimits const& limits = ParseLimits{});

/** Parameters and how reading them ended. */
struct YXFP_RUNTIME_EXPORT ParsedParameters {
    /** The parameters read before the end, a ';' or the first error. */
    std::vector<Parameter> parameters;
    /** The error that stopped the reading; empty when the list was well formed. */
    std::optional<ErrorEntry> error;
};

/** Reads `text` as a comma-separated list of parameters, the form of a command's parameters and
 *  of a response such as `"line 1","line 2"`. A ';' ends the list. Errors as for `parseLine`.
 *  Pure function, any thread. */
YXFP_RUNTIME_EXPORT ParsedParameters parseParameters(std::string_view text);

/** `text` as a SCPI string: in double quotes, embedded double quotes doubled. */
YXFP_RUNTIME_EXPORT std::string quoted(std::string_view text);

}  // namespace yxfrontpanel::runtime::scpi
