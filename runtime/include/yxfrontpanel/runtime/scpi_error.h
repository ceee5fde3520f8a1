#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <cstddef>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <string>

namespace yxfrontpanel::runtime::scpi {

/** The standard SCPI error numbers the command server reports. */
enum class ErrorCode : int {
    NoError = 0,
    InvalidCharacter = -101,
    SyntaxError = -102,
    InvalidSeparator = -103,
    DataTypeError = -104,
    ParameterNotAllowed = -108,
    MissingParameter = -109,
    UndefinedHeader = -113,
    InvalidStringData = -151,
    ExecutionError = -200,
    CommandProtected = -203,
    DataOutOfRange = -222,
    IllegalParameterValue = -224,
    QueueOverflow = -350,
    InputBufferOverrun = -363,
};

/** The standard text of `code` ("Undefined header"; "No error" for 0). Never throws except
 *  std::bad_alloc. */
YXFP_RUNTIME_EXPORT std::string errorText(ErrorCode code);

/** One entry of an error queue: the code and, optionally, a detail that names the offending
 *  header, parameter or path. */
struct YXFP_RUNTIME_EXPORT ErrorEntry {
    ErrorCode code = ErrorCode::NoError;
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
    Error(Error const&) = default;
    Error& operator=(Error const&) = default;
    Error(Error&&) = default;
    Error& operator=(Error&&) = default;

    ErrorCode code() const noexcept;
    std::string const& detail() const noexcept;
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

private:
    mutable std::mutex mutex_;
    std::size_t capacity_;
    std::deque<ErrorEntry> entries_;
};

}  // namespace yxfrontpanel::runtime::scpi
