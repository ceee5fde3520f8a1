#pragma once

#include <yxbase2/export.h>

#include <functional>
#include <sstream>
#include <string>
#include <string_view>

/** Logging with syslog's levels: 0 emergency, 1 alert, 2 critical, 3 error, 4 warning,
 *  5 notice, 6 info, 7 debug. Records at or below the maximum level reach the sink. All
 *  functions are safe to call from any thread, also while another thread logs.
 *
 *  Code that logs writes one call, which costs one comparison when the level is off:
 *  @code
 *  namespace log = yxbase2::system::log;
 *  log::write(log::Level::Warning, "gpio", "line ", offset, " reads as pressed");
 *  @endcode */
namespace yxbase2::system::log {

/** The levels of a record, with syslog's numbers; the sink receives these numbers. This is the
 *  one definition of the levels: code that logs names them here and nowhere else. */
enum class Level : int {
    Emergency = 0, /**< The system is unusable. */
    Alert = 1,     /**< Action must be taken at once. */
    Critical = 2,  /**< Critical conditions. */
    Error = 3,     /**< An operation failed. */
    Warning = 4,   /**< Something is wrong but work goes on. */
    Notice = 5,    /**< Normal but significant. */
    Info = 6,      /**< Informational; the default maximum level. */
    Debug = 7,     /**< Detail for debugging. */
};

/** The number of `level` as the sink and the int-level functions see it. */
constexpr int toInt(Level level) { return static_cast<int>(level); }

namespace detail {
/** True when records of `level` are logged: level <= the current maximum level. */
YXBASE2_EXPORT bool isEnabled(int level);
}  // namespace detail

/** True when records of `level` are logged: level <= the current maximum level. */
inline bool isEnabled(Level level) { return detail::isEnabled(toInt(level)); }

/** Sets the maximum level that is logged (default 6, info). */
YXBASE2_EXPORT void setMaxLevel(int level);

/** Sets the maximum level that is logged (default Level::Info). */
inline void setMaxLevel(Level level) { setMaxLevel(toInt(level)); }

/** The current maximum level. */
YXBASE2_EXPORT int getMaxLevel();

/** Hands one record to the sink when `level` is enabled; otherwise does nothing. */
YXBASE2_EXPORT void log(int level, std::string const& category, std::ostringstream const& message);

/** Hands one record to the sink when `level` is enabled; otherwise does nothing. */
inline void log(Level level, std::string const& category, std::ostringstream const& message) {
    log(toInt(level), category, message);
}

/** Logs one record whose message is every argument streamed in turn with `operator<<`. When
 *  `level` is off nothing is formatted, nothing is allocated and no argument's `operator<<`
 *  runs; the message is built only for a record that reaches the sink. */
template <typename... Args>
void write(Level level, std::string_view category, Args const&... args) {
    if (!isEnabled(level)) {
        return;
    }
    std::ostringstream message;
    ((message << args), ...);
    log(level, std::string(category), message);
}

/** Receives every enabled record. */
using Sink =
    std::function<void(int level, std::string const& category, std::string const& message)>;

/** Replaces the sink; an empty sink restores the default one, which writes one line per record
 *  on stderr: ISO-8601 UTC time, level name, category and message. Returns the sink it
 *  replaced, the very function that was installed (empty when that was the default one), so
 *  that a helper that installs its own puts the outer one back exactly, with no wrapper left
 *  behind. The returned sink is a copy of the installed function object: a sink with state
 *  keeps it behind a pointer or reference. */
YXBASE2_EXPORT Sink setSink(Sink sink);

/** The name of a level ("emergency" .. "debug"); "level N" for numbers outside 0..7. */
YXBASE2_EXPORT std::string levelName(int level);

/** The name of a level ("emergency" .. "debug"). */
inline std::string levelName(Level level) { return levelName(toInt(level)); }

}  // namespace yxbase2::system::log
