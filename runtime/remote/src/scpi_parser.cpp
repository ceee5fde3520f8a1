#include <yxfrontpanel/runtime/scpi_parser.h>

#include <cctype>
#include <string>
#include <utility>

namespace yxfrontpanel::runtime::scpi {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

bool isLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }

bool isMnemonicChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/** Reads one command from `line` at `pos` (up to an unquoted ';' or the end). */
class CommandReader {
public:
    CommandReader(std::string_view line, std::size_t pos) : line_(line), pos_(pos) {}

    /** The position after the command (at its ';' or the end). */
    std::size_t position() const { return pos_; }

    bool atCommandEnd() const { return pos_ >= line_.size() || line_[pos_] == ';'; }

    void skipBlanks() {
        while (pos_ < line_.size() && isBlank(line_[pos_])) {
            ++pos_;
        }
    }

    /** Reads the header into `command`; `rooted` tells whether it started with ':'. */
    std::optional<ErrorEntry> readHeader(Command& command, bool& rooted, std::size_t maxMnemonics) {
        rooted = false;
        // A colon before a common command is tolerated: clients join commands with ";:".
        if (line_[pos_] == ':' && pos_ + 1 < line_.size() && line_[pos_ + 1] == '*') {
            ++pos_;
        }
        if (line_[pos_] == '*') {
            std::size_t const start = pos_++;
            while (pos_ < line_.size() && isLetter(line_[pos_])) {
                ++pos_;
            }
            if (pos_ - start < 2) {
                return ErrorEntry{ErrorCode::SyntaxError, std::string(line_.substr(start, 1))};
            }
            command.common = true;
            command.mnemonics.emplace_back(line_.substr(start, pos_ - start));
            return readQueryMark(command);
        }
        if (line_[pos_] == ':') {
            rooted = true;
            ++pos_;
        }
        while (true) {
            if (pos_ >= line_.size() || !isLetter(line_[pos_])) {
                return pos_ < line_.size() && !isBlank(line_[pos_]) && line_[pos_] != ':' &&
                               line_[pos_] != '?' && line_[pos_] != ';'
                           ? ErrorEntry{ErrorCode::InvalidCharacter, std::string(1, line_[pos_])}
                           : ErrorEntry{ErrorCode::SyntaxError, "incomplete header"};
            }
            std::size_t const start = pos_;
            while (pos_ < line_.size() && isMnemonicChar(line_[pos_])) {
                ++pos_;
            }
            if (command.mnemonics.size() >= maxMnemonics) {
                return ErrorEntry{
                    ErrorCode::TooMuchData,
                    "more than " + std::to_string(maxMnemonics) + " mnemonics in a header"};
            }
            command.mnemonics.emplace_back(line_.substr(start, pos_ - start));
            if (pos_ < line_.size() && line_[pos_] == ':') {
                ++pos_;
                continue;
            }
            return readQueryMark(command);
        }
    }

    /** A definite-length block at '#'; the indefinite form `#0` is refused. */
    std::optional<ErrorEntry> readBlock(Parameter& parameter) {
        ++pos_;
        if (pos_ >= line_.size() || line_[pos_] < '1' || line_[pos_] > '9') {
            bool const indefinite = pos_ < line_.size() && line_[pos_] == '0';
            return ErrorEntry{ErrorCode::InvalidBlockData,
                              indefinite ? "indefinite-length blocks (#0) are not accepted; "
                                           "send #<digits><length><bytes>"
                                         : "no length digit after #"};
        }
        std::size_t const digits = static_cast<std::size_t>(line_[pos_] - '0');
        ++pos_;
        if (line_.size() - pos_ < digits) {
            return ErrorEntry{ErrorCode::InvalidBlockData, "block length cut short"};
        }
        std::size_t length = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            char const c = line_[pos_ + i];
            if (c < '0' || c > '9') {
                return ErrorEntry{ErrorCode::InvalidBlockData, "block length is not digits"};
            }
            length = length * 10 + static_cast<std::size_t>(c - '0');
        }
        pos_ += digits;
        if (line_.size() - pos_ < length) {
            return ErrorEntry{ErrorCode::InvalidBlockData,
                              "block announces " + std::to_string(length) + " bytes, " +
                                  std::to_string(line_.size() - pos_) + " follow"};
        }
        parameter.text = std::string(line_.substr(pos_, length));
        parameter.block = true;
        pos_ += length;
        return std::nullopt;
    }

    std::optional<ErrorEntry> readParameters(Command& command, std::size_t maxParameters) {
        skipBlanks();
        if (atCommandEnd()) {
            return std::nullopt;
        }
        while (true) {
            skipBlanks();
            Parameter parameter;
            if (pos_ < line_.size() && line_[pos_] == '#') {
                if (auto error = readBlock(parameter)) {
                    return error;
                }
                skipBlanks();
            } else if (pos_ < line_.size() && (line_[pos_] == '"' || line_[pos_] == '\'')) {
                if (auto error = readString(parameter)) {
                    return error;
                }
                skipBlanks();
            } else {
                std::size_t const start = pos_;
                while (pos_ < line_.size() && line_[pos_] != ',' && line_[pos_] != ';') {
                    if (line_[pos_] == '"' || line_[pos_] == '\'') {
                        return ErrorEntry{
                            ErrorCode::InvalidCharacter,
                            "quote inside " + std::string(line_.substr(start, pos_ - start))};
                    }
                    ++pos_;
                }
                std::size_t end = pos_;
                while (end > start && isBlank(line_[end - 1])) {
                    --end;
                }
                parameter.text = std::string(line_.substr(start, end - start));
                if (parameter.text.empty()) {
                    return ErrorEntry{
                        ErrorCode::MissingParameter,
                        "empty parameter " + std::to_string(command.parameters.size() + 1)};
                }
            }
            if (command.parameters.size() >= maxParameters) {
                return ErrorEntry{ErrorCode::TooMuchData,
                                  "more than " + std::to_string(maxParameters) + " parameters"};
            }
            command.parameters.push_back(std::move(parameter));
            if (atCommandEnd()) {
                return std::nullopt;
            }
            if (line_[pos_] != ',') {
                return ErrorEntry{ErrorCode::InvalidSeparator, std::string(1, line_[pos_])};
            }
            ++pos_;
        }
    }

private:
    std::optional<ErrorEntry> readQueryMark(Command& command) {
        if (pos_ < line_.size() && line_[pos_] == '?') {
            command.query = true;
            ++pos_;
        }
        if (pos_ < line_.size() && !isBlank(line_[pos_]) && line_[pos_] != ';') {
            return ErrorEntry{ErrorCode::InvalidSeparator,
                              std::string(1, line_[pos_]) + " after " + command.header()};
        }
        return std::nullopt;
    }

    std::optional<ErrorEntry> readString(Parameter& parameter) {
        char const quote = line_[pos_++];
        parameter.quoted = true;
        while (pos_ < line_.size()) {
            char const c = line_[pos_++];
            if (c != quote) {
                parameter.text += c;
                continue;
            }
            if (pos_ < line_.size() && line_[pos_] == quote) {
                parameter.text += quote;
                ++pos_;
                continue;
            }
            return std::nullopt;
        }
        return ErrorEntry{ErrorCode::InvalidStringData, "unterminated string"};
    }

    std::string_view line_;
    std::size_t pos_;
};

}  // namespace

bool Parameter::operator==(Parameter const& other) const {
    return text == other.text && quoted == other.quoted && block == other.block;
}

std::string Command::header() const {
    std::string text;
    for (auto const& mnemonic : fullPath()) {
        text += (text.empty() ? "" : ":") + mnemonic;
    }
    return query ? text + '?' : text;
}

std::vector<std::string> Command::fullPath() const {
    std::vector<std::string> result;
    if (path) {
        result.reserve(path->size() + mnemonics.size());
        result.insert(result.end(), path->begin(), path->end());
    }
    result.insert(result.end(), mnemonics.begin(), mnemonics.end());
    return result;
}

ParsedLine parseLine(std::string_view line, ParseLimits const& limits) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    ParsedLine parsed;
    SharedPath path;  // the path that a relative header continues; shared, never copied per command
    std::size_t pos = 0;
    std::size_t seen = 0;  // commands on the line so far, empty ones included
    auto tooMuch = [&parsed](std::string detail) {
        parsed.error = ErrorEntry{ErrorCode::TooMuchData, std::move(detail)};
        return parsed;
    };
    while (pos <= line.size()) {
        if (++seen > limits.maxCommands) {
            return tooMuch("more than " + std::to_string(limits.maxCommands) +
                           " commands on one line");
        }
        CommandReader reader(line, pos);
        reader.skipBlanks();
        if (reader.atCommandEnd()) {
            pos = reader.position() + 1;
            continue;
        }
        Command command;
        bool rooted = false;
        std::optional<ErrorEntry> error = reader.readHeader(command, rooted, limits.maxMnemonics);
        if (!error) {
            error = reader.readParameters(command, limits.maxParameters);
        }
        if (error) {
            parsed.error = std::move(error);
            return parsed;
        }
        if (!command.common) {
            if (!rooted && path && !path->empty()) {
                command.path = path;
                command.inherited = path->size();
            }
            if (command.inherited + command.mnemonics.size() > limits.maxMnemonics) {
                return tooMuch("more than " + std::to_string(limits.maxMnemonics) +
                               " mnemonics in a header");
            }
            if (command.mnemonics.size() > 1) {
                // The next relative header continues this one's path without its last mnemonic.
                auto next = std::make_shared<std::vector<std::string>>();
                next->reserve(command.inherited + command.mnemonics.size() - 1);
                if (command.path) {
                    next->insert(next->end(), command.path->begin(), command.path->end());
                }
                next->insert(next->end(), command.mnemonics.begin(), command.mnemonics.end() - 1);
                path = std::move(next);
            } else if (rooted || !command.path) {
                path.reset();
            }
        }
        parsed.commands.push_back(std::move(command));
        pos = reader.position() + 1;
    }
    return parsed;
}

ParsedParameters parseParameters(std::string_view text) {
    CommandReader reader(text, 0);
    Command command;
    ParsedParameters parsed;
    parsed.error = reader.readParameters(command, ParseLimits{}.maxParameters);
    parsed.parameters = std::move(command.parameters);
    return parsed;
}

std::string definiteBlock(std::string_view bytes) {
    std::string const length = std::to_string(bytes.size());
    std::string block = "#" + std::to_string(length.size()) + length;
    block.append(bytes.data(), bytes.size());
    return block;
}

std::string quoted(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    result += '"';
    for (char const c : text) {
        result += c;
        if (c == '"') {
            result += '"';
        }
    }
    result += '"';
    return result;
}

}  // namespace yxfrontpanel::runtime::scpi
