#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>

namespace yxfrontpanel::runtime::scpi {

/** The standard SCPI error numbers the command server reports. */
enum class ErrorCode : int {
    /** 0: no error; what an empty queue reports. */
    NoError = 0,
    /** -101: a character that cannot start a header or parameter, or a quote inside an
     *  unquoted parameter. */
    InvalidCharacter = -101,
    /** -102: a malformed header. */
    SyntaxError = -102,
    /** -103: a header not followed by a blank or the end, or parameters not separated by ','. */
    InvalidSeparator = -103,
    /** -104: a parameter that is not a number (or whole number) where one is needed. */
    DataTypeError = -104,
    /** -108: more parameters than the command takes. */
    ParameterNotAllowed = -108,
    /** -109: fewer parameters than the command needs, or an empty parameter. */
    MissingParameter = -109,
    /** -113: no command has this header. */
    UndefinedHeader = -113,
    /** -131: a suffix that is not the parameter's unit (with an SI prefix). */
    InvalidSuffix = -131,
    /** -138: a suffix on a parameter that takes none. */
    SuffixNotAllowed = -138,
    /** -151: an unterminated quoted string. */
    InvalidStringData = -151,
    /** -161: a malformed arbitrary block (wrong length digits, fewer bytes than announced,
     *  or the indefinite form `#0`, which the server does not take). */
    InvalidBlockData = -161,
    /** -200: the command could not be carried out (e.g. a read-only item, a handler's
     *  exception). */
    ExecutionError = -200,
    /** -203: a wrong or missing access token; the server then closes the connection. */
    CommandProtected = -203,
    /** -222: a number outside the allowed range. */
    DataOutOfRange = -222,
    /** -223: a line with more commands, mnemonics or parameters than the server accepts. */
    TooMuchData = -223,
    /** -224: a value the target does not accept (unknown key, item or choice; bad address). */
    IllegalParameterValue = -224,
    /** -315: the instrument could not keep its configuration (settings could not be saved). */
    ConfigurationMemoryLost = -315,
    /** -350: errors were lost because the queue was full. */
    QueueOverflow = -350,
    /** -363: a line longer than the server's limit; the rest of the line is discarded. */
    InputBufferOverrun = -363,
};

/** The standard text of `code` ("Undefined header"; "No error" for 0). Never throws except
 *  std::bad_alloc. */
YXFP_RUNTIME_EXPORT std::string errorText(ErrorCode code);

/** `text` safe to echo to a client or a log: printable ASCII and valid UTF-8 as they are, a
 *  backslash doubled, control bytes and bytes of invalid UTF-8 as `\xNN`. Error details, which
 *  may quote what a client sent, are written this way. */
YXFP_RUNTIME_EXPORT std::string escapeDetail(std::string_view text);

/** One entry of an error queue: the code and, optionally, a detail that names the offending
 *  header, parameter or path. */
struct YXFP_RUNTIME_EXPORT ErrorEntry {
    /** The error number; `NoError` by default. */
    ErrorCode code = ErrorCode::NoError;
    /** What the error concerns (header, parameter, path); empty when there is nothing to add. */
    std::string detail;

    /** The SCPI form `-113,"Undefined header;FOO:BAR"`: the number, a comma and the standard
     *  text (plus ";" and the detail when there is one) as a quoted string with embedded
     *  quotes doubled. */
    std::string format() const;
};

/** A failed command: thrown by command handlers and parameter accessors, caught by the
 *  dispatcher, which puts it into the client's error queue. */
class YXFP_RUNTIME_EXPORT Error : public std::runtime_error {
public:
    /** An error with `code` and an optional `detail` (what() reads like `format()`). */
    explicit Error(ErrorCode code, std::string detail = {});
    ~Error() override;
    /** Copies code, detail and message. */
    Error(Error const&) = default;
    /** Copies code, detail and message. */
    Error& operator=(Error const&) = default;
    /** Moves code, detail and message. */
    Error(Error&&) = default;
    /** Moves code, detail and message. */
    Error& operator=(Error&&) = default;

    /** The error number. */
    ErrorCode code() const noexcept;
    /** The detail given to the constructor; may be empty. */
    std::string const& detail() const noexcept;
    /** The error as an entry of an error queue (code and detail). */
    ErrorEntry entry() const;

private:
    ErrorCode code_;
    std::string detail_;
};

/** One client's error queue (first in, first out). When it is full, the newest entry is replaced
 *  by "Queue overflow", as SCPI instruments do, so the client learns that errors were lost. All
 *  operations may be called from any thread. */
class YXFP_RUNTIME_EXPORT ErrorQueue {
public:
    /** Default number of entries. */
    static constexpr std::size_t kDefaultCapacity = 16;

    /** A queue of `capacity` entries (at least 2; smaller values count as 2). */
    explicit ErrorQueue(std::size_t capacity = kDefaultCapacity);

    /** Appends `entry`; on a full queue the last entry becomes "Queue overflow" instead. */
    void push(ErrorEntry entry);
    /** Removes and returns the oldest entry; "No error" (code 0) when the queue is empty. */
    ErrorEntry pop();
    /** Empties the queue (`*CLS`). */
    void clear();
    /** The number of entries. */
    std::size_t size() const;
    /** Calls `observer` with the code of every error pushed (and with "Queue overflow" when
     *  one is lost), outside the queue's lock: the status model sets its event bits so. */
    void setObserver(std::function<void(ErrorCode)> observer);

private:
    mutable std::mutex mutex_;
    std::function<void(ErrorCode)> observer_;
    std::size_t capacity_;
    std::deque<ErrorEntry> entries_;
};

}  // namespace yxfrontpanel::runtime::scpi
