#pragma once

#include <yxbase2/export.h>

#include <functional>
#include <sstream>
#include <string>

/** Logging with syslog's levels: 0 emergency, 1 alert, 2 critical, 3 error, 4 warning,
 *  5 notice, 6 info, 7 debug. Records at or below the maximum level reach the sink. All
 *  functions are safe to call from any thread, also while another thread logs. */
namespace yxbase2::system::log {

namespace detail {
/** True when records of `level` are logged: level <= the current maximum level. */
YXBASE2_EXPORT bool isEnabled(int level);
}  // namespace detail

/** Sets the maximum level that is logged (default 6, info). */
YXBASE2_EXPORT void setMaxLevel(int level);

/** The current maximum level. */
YXBASE2_EXPORT int getMaxLevel();

/** Hands one record to the sink when `level` is enabled; otherwise does nothing. */
YXBASE2_EXPORT void log(int level, std::string const& category, std::ostringstream const& message);

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

}  // namespace yxbase2::system::log
