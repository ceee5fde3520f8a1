#include <yxfrontpanel/runtime/scpi_commands.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "ascii_case.h"

namespace yxfrontpanel::runtime::scpi {

namespace {

/** A pattern taken apart: its nodes with short and long form, or a common command. */
struct Pattern {
    struct Node {
        std::string shortForm;
        std::string longForm;
        bool optional = false;
    };
    std::vector<Node> nodes;
    std::string common;  // "*IDN" for a common command, else empty
    bool query = false;
};

std::optional<Pattern> parsePattern(std::string_view text) {
    Pattern pattern;
    if (!text.empty() && text.back() == '?') {
        pattern.query = true;
        text.remove_suffix(1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    if (text.front() == '*') {
        bool const letters =
            text.size() > 1 && std::all_of(text.begin() + 1, text.end(), [](char c) {
                return std::isalpha(static_cast<unsigned char>(c)) != 0;
            });
        if (!letters) {
            return std::nullopt;
        }
        pattern.common = upper(text);
        return pattern;
    }
    if (text.front() == ':') {
        text.remove_prefix(1);
    }
    while (!text.empty()) {
        std::string_view node;
        Pattern::Node parsed;
        if (text.front() == '[') {
            // An optional node: "[SOURce]" or, after another node, "[:NEXT]".
            std::size_t const close = text.find(']');
            if (close == std::string_view::npos) {
                return std::nullopt;
            }
            node = text.substr(1, close - 1);
            if (!node.empty() && node.front() == ':') {
                node.remove_prefix(1);
            }
            parsed.optional = true;
            text.remove_prefix(close + 1);
        } else {
            std::size_t const end = std::min(text.find_first_of(":["), text.size());
            node = text.substr(0, end);
            text.remove_prefix(end);
        }
        if (node.empty() || std::isalpha(static_cast<unsigned char>(node.front())) == 0 ||
            !std::all_of(node.begin(), node.end(),
                         [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; })) {
            return std::nullopt;
        }
        std::size_t shortLength = 0;
        while (shortLength < node.size() &&
               std::islower(static_cast<unsigned char>(node[shortLength])) == 0) {
            ++shortLength;
        }
        if (shortLength == 0) {
            return std::nullopt;
        }
        parsed.shortForm = upper(node.substr(0, shortLength));
        parsed.longForm = upper(node);
        pattern.nodes.push_back(std::move(parsed));
        if (!text.empty() && text.front() == ':') {
            text.remove_prefix(1);
            if (text.empty()) {
                return std::nullopt;
            }
        } else if (!text.empty() && text.front() != '[') {
            return std::nullopt;
        }
    }
    return pattern;
}

bool nodeMatches(Pattern::Node const& node, std::string const& mnemonic) {
    std::string const written = upper(mnemonic);
    return written == node.shortForm || written == node.longForm;
}

bool nodesMatch(std::vector<Pattern::Node> const& nodes, std::size_t node,
                std::vector<std::string> const& mnemonics, std::size_t mnemonic) {
    if (node == nodes.size()) {
        return mnemonic == mnemonics.size();
    }
    if (mnemonic < mnemonics.size() && nodeMatches(nodes[node], mnemonics[mnemonic]) &&
        nodesMatch(nodes, node + 1, mnemonics, mnemonic + 1)) {
        return true;
    }
    return nodes[node].optional && nodesMatch(nodes, node + 1, mnemonics, mnemonic);
}

/** `full` is `command.fullPath()`, computed once by the caller. */
bool patternMatches(Pattern const& pattern, Command const& command,
                    std::vector<std::string> const& full) {
    if (pattern.query != command.query) {
        return false;
    }
    if (command.common || !pattern.common.empty()) {
        return command.common && !command.mnemonics.empty() &&
               upper(command.mnemonics.front()) == pattern.common;
    }
    return nodesMatch(pattern.nodes, 0, full, 0);
}

Command fromRoot(Command const& command) {
    Command rooted = command;
    rooted.path.reset();
    rooted.inherited = 0;
    return rooted;
}

}  // namespace

struct CommandTable::Entry {
    std::string text;
    Pattern pattern;
    Handler handler;
    unsigned minParameters;
    unsigned maxParameters;
    bool reader = false;
};

Session::Session() : Session(nullptr) {}

Session::Session(std::shared_ptr<DeviceStatus> device) : device_(std::move(device)) {
    errors.setObserver([this](ErrorCode code) { status.recordError(static_cast<int>(code)); });
    if (device_) {
        device_->attach(*this);
    }
}

Session::~Session() {
    if (device_) {
        device_->detach(*this);
    }
}

Request::Request(Command const& command, Session& session) : command_(command), session_(session) {}

Command const& Request::command() const { return command_; }

Session& Request::session() const { return session_; }

std::size_t Request::parameterCount() const { return command_.parameters.size(); }

Parameter const& Request::parameter(std::size_t index) const {
    if (index >= command_.parameters.size()) {
        throw Error(ErrorCode::MissingParameter, command_.header());
    }
    return command_.parameters[index];
}

double Request::number(std::size_t index) const {
    Parameter const& value = parameter(index);
    if (value.quoted) {
        throw Error(ErrorCode::DataTypeError, "not a number: " + value.text);
    }
    return parseNumber(value.text);
}

double Request::number(std::size_t index, NumericBounds const& bounds,
                       std::string_view unit) const {
    Parameter const& value = parameter(index);
    if (value.quoted) {
        throw Error(ErrorCode::DataTypeError, "not a number: " + value.text);
    }
    return parseNumber(value.text, unit, bounds);
}

long Request::integer(std::size_t index) const {
    double const value = number(index);
    // The range as powers of two, which doubles hold exactly: the long's maximum rounds up to
    // 2^63 as a double, which would pass a `value > max` check and overflow the cast.
    double const limit = std::ldexp(1.0, std::numeric_limits<long>::digits);
    if (std::floor(value) != value || value < -limit || value >= limit) {
        throw Error(ErrorCode::DataTypeError, "not a whole number: " + parameter(index).text);
    }
    return static_cast<long>(value);
}

void Request::respond(std::string line) {
    std::replace(line.begin(), line.end(), '\n', ' ');
    responses_.push_back(std::move(line));
}

void Request::respondBlock(std::string_view bytes) { responses_.push_back(definiteBlock(bytes)); }

void Request::deferRest() { deferred_ = true; }

std::vector<std::string> const& Request::responses() const { return responses_; }

bool Request::restDeferred() const { return deferred_; }

bool matches(std::string_view pattern, Command const& command) {
    std::optional<Pattern> const parsed = parsePattern(pattern);
    return parsed && patternMatches(*parsed, command, command.fullPath());
}

CommandTable::CommandTable() = default;

CommandTable::~CommandTable() = default;

void CommandTable::add(std::string_view pattern, Handler handler, unsigned minParameters,
                       unsigned maxParameters) {
    std::optional<Pattern> parsed = parsePattern(pattern);
    if (!parsed) {
        throw std::invalid_argument("not a SCPI header pattern: \"" + std::string(pattern) + '"');
    }
    if (!handler) {
        throw std::invalid_argument("empty handler for " + std::string(pattern));
    }
    if (minParameters > maxParameters) {
        throw std::invalid_argument("more parameters required than allowed for " +
                                    std::string(pattern));
    }
    Entry entry{std::string(pattern), std::move(*parsed), std::move(handler), minParameters,
                maxParameters};
    auto const same = std::find_if(entries_.begin(), entries_.end(),
                                   [&](Entry const& e) { return upper(e.text) == upper(pattern); });
    if (same != entries_.end()) {
        *same = std::move(entry);
        return;
    }
    entries_.push_back(std::move(entry));
}

void CommandTable::addReader(std::string_view pattern, Handler handler, unsigned minParameters,
                             unsigned maxParameters) {
    add(pattern, std::move(handler), minParameters, maxParameters);
    auto const same = std::find_if(entries_.begin(), entries_.end(),
                                   [&](Entry const& e) { return upper(e.text) == upper(pattern); });
    same->reader = true;
}

std::optional<std::vector<std::string>> CommandTable::runReaders(ParsedLine const& line,
                                                                 Session& session) const {
    // Every command must name a reader, or nothing at all (it only adds an error), before
    // anything runs: nothing is half done here.
    for (auto const& command : line.commands) {
        auto const entry = find(command);
        if (entry != entries_.end() && !entry->reader) {
            return std::nullopt;
        }
    }
    std::vector<std::string> responses;
    std::vector<ErrorEntry> errors;
    for (auto const& command : line.commands) {
        Request request(command, session);
        request.setOffPanelThread();
        try {
            execute(request);
        } catch (Error const& e) {
            errors.push_back(e.entry());
            continue;
        }
        if (request.declined()) {
            return std::nullopt;
        }
        responses.insert(responses.end(), request.responses().begin(), request.responses().end());
    }
    for (auto& error : errors) {
        session.errors.push(std::move(error));
    }
    if (line.error) {
        session.errors.push(*line.error);
    }
    return responses;
}

std::vector<CommandTable::Entry>::const_iterator CommandTable::find(Command const& command) const {
    auto const lookUp = [this](Command const& wanted) {
        std::vector<std::string> const full = wanted.fullPath();
        return std::find_if(entries_.begin(), entries_.end(), [&](Entry const& e) {
            return patternMatches(e.pattern, wanted, full);
        });
    };
    auto entry = lookUp(command);
    if (entry == entries_.end() && command.inherited > 0) {
        entry = lookUp(fromRoot(command));
    }
    return entry;
}

void CommandTable::execute(Request& request) const {
    Command const& command = request.command();
    auto const entry = find(command);
    if (entry == entries_.end()) {
        throw Error(ErrorCode::UndefinedHeader, command.header());
    }
    std::size_t const count = command.parameters.size();
    if (count < entry->minParameters) {
        throw Error(ErrorCode::MissingParameter, command.header());
    }
    if (count > entry->maxParameters) {
        throw Error(ErrorCode::ParameterNotAllowed, command.header());
    }
    try {
        entry->handler(request);
    } catch (Error const&) {
        throw;
    } catch (std::exception const& e) {
        throw Error(ErrorCode::ExecutionError, e.what());
    } catch (...) {
        // Anything else a handler throws is an execution error too, so the client's line
        // finishes and its session stays usable.
        throw Error(ErrorCode::ExecutionError, "the command failed");
    }
}

RunResult CommandTable::run(ParsedLine const& line, std::size_t first, Session& session,
                            std::vector<std::string>& responses) const {
    for (std::size_t index = first; index < line.commands.size(); ++index) {
        Request request(line.commands[index], session);
        request.setOutputWaiting(!responses.empty());
        try {
            execute(request);
        } catch (Error const& e) {
            session.errors.push(e.entry());
            continue;
        }
        responses.insert(responses.end(), request.responses().begin(), request.responses().end());
        if (request.restDeferred()) {
            if (index + 1 == line.commands.size() && line.error) {
                session.errors.push(*line.error);
            }
            return RunResult{index + 1, true};
        }
    }
    if (line.error) {
        session.errors.push(*line.error);
    }
    return RunResult{line.commands.size(), false};
}

std::vector<std::string> CommandTable::patterns() const {
    std::vector<std::string> result;
    result.reserve(entries_.size());
    for (auto const& entry : entries_) {
        result.push_back(entry.text);
    }
    return result;
}

namespace {

/** The parameter as a register mask of `bits` bits. @throws Error (data out of range). */
unsigned mask(Request const& request, unsigned bits) {
    long const value = request.integer(0);
    if (value < 0 || value >= (1L << bits)) {
        throw Error(ErrorCode::DataOutOfRange, request.parameter(0).text);
    }
    return static_cast<unsigned>(value);
}

void addStatusRegister(CommandTable& table, std::string const& root, StatusModel::Set set) {
    table.add(root + "[:EVENt]?", [set](Request& request) {
        request.respond(std::to_string(request.session().status.with(set, [](StatusRegister& r) {
            std::uint16_t const event = r.event;
            r.event = 0;
            return event;
        })));
    });
    table.add(root + ":CONDition?", [set](Request& request) {
        request.respond(std::to_string(
            request.session().status.with(set, [](StatusRegister& r) { return r.condition; })));
    });
    using Field = std::uint16_t StatusRegister::*;
    for (auto const& [name, field] :
         {std::pair<char const*, Field>{":ENABle", &StatusRegister::enable},
          std::pair<char const*, Field>{":PTRansition", &StatusRegister::positiveTransition},
          std::pair<char const*, Field>{":NTRansition", &StatusRegister::negativeTransition}}) {
        Field const member = field;
        table.add(
            root + name,
            [set, member](Request& request) {
                auto const value = static_cast<std::uint16_t>(mask(request, 16) & 0x7fffU);
                request.session().status.with(set, [&](StatusRegister& r) { r.*member = value; });
            },
            1, 1);
        table.add(root + name + "?", [set, member](Request& request) {
            request.respond(std::to_string(
                request.session().status.with(set, [&](StatusRegister& r) { return r.*member; })));
        });
    }
}

}  // namespace

void addCommonCommands(CommandTable& table, Identity const& identity,
                       InstrumentHooks const& hooks) {
    InstrumentIdentity const shown = shownIdentity(identity);
    std::string const idn = shown.manufacturer + ',' + shown.model + ',' + shown.serialNumber +
                            ',' + shown.firmwareVersion;
    table.addReader("*IDN?", [idn](Request& request) { request.respond(idn); });
    table.add("*CLS", [](Request& request) {
        request.session().errors.clear();
        request.session().status.clearEvents();
    });
    table.add(
        "*ESE",
        [](Request& request) {
            request.session().status.setEventEnable(static_cast<std::uint8_t>(mask(request, 8)));
        },
        1, 1);
    table.add("*ESE?", [](Request& request) {
        request.respond(std::to_string(request.session().status.eventEnable()));
    });
    table.add("*ESR?", [](Request& request) {
        request.respond(std::to_string(request.session().status.takeEvents()));
    });
    table.add(
        "*SRE",
        [](Request& request) {
            request.session().status.setServiceRequestEnable(
                static_cast<std::uint8_t>(mask(request, 8)));
        },
        1, 1);
    table.add("*SRE?", [](Request& request) {
        request.respond(std::to_string(request.session().status.serviceRequestEnable()));
    });
    table.add("*STB?", [](Request& request) {
        request.respond(
            std::to_string(request.session().status.statusByte(request.outputWaiting())));
    });
    // The table runs a client's commands in order on the panel's thread, after the panel work
    // the commands before posted (a key press defers the rest of its line): by the time these
    // run, all earlier operations are complete.
    table.add("*OPC", [](Request& request) {
        request.session().status.setEvent(StatusModel::OperationComplete);
    });
    table.addReader("*OPC?", [](Request& request) { request.respond("1"); });
    table.add("*WAI", [](Request&) {});
    table.add("*RST", [reset = hooks.reset](Request&) {
        if (reset) {
            reset();
        }
    });
    table.add("*TST?", [selfTest = hooks.selfTest](Request& request) {
        request.respond(std::to_string(selfTest ? selfTest() : 0));
    });
    table.add("SYSTem:ERRor[:NEXT]?",
              [](Request& request) { request.respond(request.session().errors.pop().format()); });
    table.add("SYSTem:ERRor:COUNt?", [](Request& request) {
        request.respond(std::to_string(request.session().errors.size()));
    });
    table.addReader("SYSTem:VERSion?", [](Request& request) { request.respond("1999.0"); });
    addStatusRegister(table, "STATus:OPERation", StatusModel::Set::Operation);
    addStatusRegister(table, "STATus:QUEStionable", StatusModel::Set::Questionable);
    table.add("STATus:PRESet", [](Request& request) { request.session().status.preset(); });
}

void addScreenshotCommands(CommandTable& table, std::function<std::string()> screenshotPng) {
    if (!screenshotPng) {
        throw std::invalid_argument("no screenshot provider");
    }
    table.add("HCOPy:SDUMp:DATA?",
              [png = std::move(screenshotPng)](Request& request) { request.respondBlock(png()); });
    table.addReader("HCOPy:SDUMp:DATA:FORMat?", [](Request& request) { request.respond("PNG"); });
}

}  // namespace yxfrontpanel::runtime::scpi
