#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/instrument_identity.h>
#include <yxfrontpanel/runtime/scpi_device_status.h>
#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_number.h>
#include <yxfrontpanel/runtime/scpi_parser.h>
#include <yxfrontpanel/runtime/scpi_status.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime::scpi {

/** What the server keeps for one client (one connection, one VXI-11 link) across its command
 *  lines: its error queue and its status registers. Per client, so that one program's errors
 *  and enables never disturb another's polling. Not copyable: the queue reports to the status
 *  model of the same session. */
struct YXFP_RUNTIME_EXPORT Session {
    /** An empty queue whose errors set the bits of `status`, everything clear; no instrument
     *  state reaches it. */
    Session();
    /** Like `Session()`, and attached to `device` (when not null) until destroyed: it starts
     *  with the instrument's conditions and sees its later changes and reported errors. */
    explicit Session(std::shared_ptr<DeviceStatus> device);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /** The client's errors, read with `SYSTem:ERRor?`; each pushed error sets its ESR bit. */
    ErrorQueue errors;
    /** The client's status registers (`*STB?`, `*ESR?`, `STATus:...`). */
    StatusModel status;
    /** Whether the transport holds a response the client has not read yet: MAV in `*STB?`
     *  and in a transport's own status byte read. The transport keeps it current. */
    bool messageAvailable = false;

    /** A transport's device clear (VXI-11 device_clear): forgets pending output state
     *  (`messageAvailable`); the status registers and error queue stay, as IEEE 488.2 says. */
    void deviceClear() { messageAvailable = false; }

private:
    std::shared_ptr<DeviceStatus> device_;
};

/** What the application supplies to the common commands: `*RST` and `*TST?`. */
struct YXFP_RUNTIME_EXPORT InstrumentHooks {
    /** Called by `*RST` on the panel's thread: the instrument to its defaults. May be empty. */
    std::function<void()> reset;
    /** Called by `*TST?`: 0 when the self-test passed, else a failure code. Empty answers 0. */
    std::function<int()> selfTest;
};

/** One command as a handler sees it: its parameters, its client, and where its response goes.
 *  The parameter accessors throw `Error` with the SCPI code a client expects, which the
 *  dispatcher puts into the client's error queue. */
class YXFP_RUNTIME_EXPORT Request {
public:
    /** A request for `command` from the client of `session`, with no response yet. Keeps
     *  references: both must outlive the request. */
    Request(Command const& command, Session& session);

    /** The command being run. */
    Command const& command() const;
    /** The state of the client that sent the command (its error queue). */
    Session& session() const;
    /** How many parameters the command has. */
    std::size_t parameterCount() const;
    /** The parameter at `index` (from 0). @throws Error (missing parameter) when there are not
     *  that many. */
    Parameter const& parameter(std::size_t index) const;
    /** The parameter as a decimal number ("12.5", "-3", "1e3"), classic notation whatever the
     *  locale. @throws Error (missing parameter, data type error for text or a quoted string). */
    double number(std::size_t index) const;
    /** The parameter as a number with an optional suffix in `unit` ("500 mV" is 0.5 for "V")
     *  and the words MINimum, MAXimum and DEFault for `bounds`; see `parseNumber`.
     *  @throws Error as `parseNumber`, and missing parameter. */
    double number(std::size_t index, NumericBounds const& bounds, std::string_view unit = {}) const;
    /** The parameter as a whole number. @throws Error as `number`, and data type error for a
     *  fraction or a number outside the range of long. */
    long integer(std::size_t index) const;
    /** Sends `line` (without newline) to the client as one response line; a query gives one.
     *  Newlines inside `line` are replaced by blanks so that one line stays one line. */
    void respond(std::string line);
    /** Sends `bytes` as one definite-length arbitrary block response (`#<n><length><bytes>`),
     *  the bytes unchanged, newlines included. */
    void respondBlock(std::string_view bytes);
    /** Lets the rest of the command line wait for the next turn of the panel's loop: for a
     *  command whose effect the panel applies later (a key press), so that the commands after
     *  it see that effect. */
    void deferRest();

    /** The response lines so far. */
    std::vector<std::string> const& responses() const;
    /** Whether `deferRest` was called. */
    bool restDeferred() const;
    /** Whether responses wait for the client while the command runs: the session's
     *  `messageAvailable` or a response of an earlier command of the same line (MAV). */
    bool outputWaiting() const { return outputWaiting_ || session_.messageAvailable; }
    /** Marks that earlier commands of the line answered; by `CommandTable::run`. */
    void setOutputWaiting(bool waiting) { outputWaiting_ = waiting; }
    /** Whether the handler runs off the panel's thread (see `CommandTable::runReaders`): a
     *  reader then answers from published state, never from the panel's own objects. */
    bool offPanelThread() const { return offPanel_; }
    /** Marks the request as run off the panel's thread; by `CommandTable::runReaders`. */
    void setOffPanelThread() { offPanel_ = true; }
    /** A reader that cannot answer off the panel's thread (nothing published yet) calls this
     *  instead of answering: the whole line then runs on the panel's thread. */
    void decline() { declined_ = true; }
    /** Whether the handler called `decline`. */
    bool declined() const { return declined_; }

private:
    Command const& command_;
    Session& session_;
    std::vector<std::string> responses_;
    bool deferred_ = false;
    bool offPanel_ = false;
    bool declined_ = false;
    bool outputWaiting_ = false;
};

/** Runs one command on the panel's thread (or whatever thread the table is used on). It may
 *  throw `Error`; anything else it throws counts as an execution error. */
using Handler = std::function<void(Request& request)>;

/** Whether `command` is named by `pattern`, a header in SCPI notation: mnemonics joined by ':'
 *  whose upper-case part is the short form and whole text the long form ("SYSTem:KEY" matches
 *  "SYST:KEY", "system:key", but not "SYSTE:KEY"), an optional node in brackets
 *  ("[SOURce]:VOLTage"), a trailing '?' for a query; or a common command ("*IDN?").
 *  Case-insensitive. A malformed pattern matches nothing. */
YXFP_RUNTIME_EXPORT bool matches(std::string_view pattern, Command const& command);

/** How far `CommandTable::run` got. */
struct YXFP_RUNTIME_EXPORT RunResult {
    /** The index of the first command not run; the line's command count when all ran. */
    std::size_t next = 0;
    /** Whether the last command run deferred the rest (`Request::deferRest`). */
    bool deferred = false;
};

/** The commands a server knows: headers with their handlers. Fill it before the server starts;
 *  after that it is only read (from the panel's thread). */
class YXFP_RUNTIME_EXPORT CommandTable {
public:
    CommandTable();
    ~CommandTable();
    CommandTable(CommandTable const&) = delete;
    CommandTable& operator=(CommandTable const&) = delete;

    /** Registers `handler` for `pattern` (see `matches`), which accepts between
     *  `minParameters` and `maxParameters` parameters (others are refused with "Missing
     *  parameter" or "Parameter not allowed" before the handler runs). A later registration
     *  of the same pattern replaces the earlier one.
     *  @throws std::invalid_argument for a malformed pattern, an empty handler or
     *  minParameters > maxParameters. */
    void add(std::string_view pattern, Handler handler, unsigned minParameters = 0,
             unsigned maxParameters = 0);
    /** Like `add`, for a query that changes nothing and may also run off the panel's thread,
     *  from state the panel's thread published (`Request::offPanelThread` tells which). Such a
     *  handler must be thread-safe and must not touch the error queue except to report its own
     *  errors. */
    void addReader(std::string_view pattern, Handler handler, unsigned minParameters = 0,
                   unsigned maxParameters = 0);
    /** Runs `line` off the panel's thread when every command on it is a reader or names no
     *  command at all (it only queues "Undefined header") and no reader declines: returns the
     * response lines (errors go to the session's queue). Empty, with nothing run and nothing
     * queued, when the line must run on the panel's thread. Any thread, as long as the session is
     * not used elsewhere at the same time. */
    std::optional<std::vector<std::string>> runReaders(ParsedLine const& line,
                                                       Session& session) const;
    /** Runs `command`: the handler of the first matching pattern with the parameter count
     *  checked. @throws Error (undefined header, parameter count, or whatever the handler
     *  throws; other exceptions become "Execution error" with their text). */
    void execute(Request& request) const;
    /** Runs the commands of `line` from index `first` on: each failed command puts its error
     *  into the session's queue (a failed query answers nothing, as in SCPI) and the next one
     *  runs. Stops after a command that deferred the rest; otherwise, at the end of the line,
     *  queues the line's parse error, if any. Response lines are appended to `responses`.
     *  Returns the index of the first command not run (`line.commands.size()` when done) and
     *  whether the last command run deferred what follows it (also the next line). */
    RunResult run(ParsedLine const& line, std::size_t first, Session& session,
                  std::vector<std::string>& responses) const;
    /** The registered patterns, in the order of registration. */
    std::vector<std::string> patterns() const;
    /** The state of the instrument these commands control, shared by every session a transport
     *  opens for this table (`Session(table.deviceStatus())`): the application's condition
     *  bits and the errors it reports. */
    std::shared_ptr<DeviceStatus> deviceStatus() const { return device_; }

private:
    struct Entry;
    /** The entry `command` names, also by its full path from the root for a command that
     *  inherited its path; `entries_.end()` when none. */
    std::vector<Entry>::const_iterator find(Command const& command) const;

    std::vector<Entry> entries_;
    std::shared_ptr<DeviceStatus> device_ = std::make_shared<DeviceStatus>();
};

/** What `*IDN?` answers: the instrument's identity (see `shownIdentity` for commas). */
using Identity = InstrumentIdentity;

/** Registers the IEEE 488.2 common commands and the SCPI required commands: `*IDN?` (from
 *  `identity`), `*CLS`, `*ESE`, `*ESE?`, `*ESR?`, `*SRE`, `*SRE?`, `*STB?`, `*OPC`, `*OPC?`,
 *  `*WAI`, `*RST`, `*TST?` (the last two through `hooks`), `SYSTem:ERRor[:NEXT]?`,
 *  `SYSTem:ERRor:COUNt?`, `SYSTem:VERSion?`, `STATus:OPERation|QUEStionable[:EVENt]?`,
 *  `:CONDition?`, `:ENABle[?]`, `:PTRansition[?]`, `:NTRansition[?]` and `STATus:PRESet`.
 *  Commands run in order on the panel's thread, so `*OPC`, `*OPC?` and `*WAI` complete once
 *  every command before them (and the panel work they posted) ran. */
YXFP_RUNTIME_EXPORT void addCommonCommands(CommandTable& table, Identity const& identity,
                                           InstrumentHooks const& hooks = {});

/** Registers `HCOPy:SDUMp:DATA?` (the PNG bytes from `screenshotPng` as a definite-length
 *  block) and `HCOPy:SDUMp:DATA:FORMat?` (answers PNG). */
YXFP_RUNTIME_EXPORT void addScreenshotCommands(CommandTable& table,
                                               std::function<std::string()> screenshotPng);

}  // namespace yxfrontpanel::runtime::scpi
