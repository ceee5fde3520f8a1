#pragma once

#include <yxbase2/export.h>

#include <chrono>
#include <functional>

/** Waiting on the calling thread, with a hook so that tests and simulations never really
 *  sleep. Both functions are safe to call from any thread. */
namespace yxbase2::system::this_thread {

/** Blocks the calling thread for `duration`, or hands the duration to the installed hook. */
YXBASE2_EXPORT void sleep_for(  // NOLINT(readability-identifier-naming): mirrors std
    std::chrono::nanoseconds const& duration);

/** Called instead of sleeping while installed. */
using SleepHook = std::function<void(std::chrono::nanoseconds)>;

/** Installs `hook`; an empty hook restores real sleeping. Returns the hook it replaced, the
 *  very function that was installed (empty when the thread really slept), so that a helper
 *  that installs its own puts the outer one back exactly: no wrapper is left behind, however
 *  often this is done. The returned hook is a copy of the installed function object: a hook
 *  with state keeps it behind a pointer or reference. */
YXBASE2_EXPORT SleepHook setSleepHook(SleepHook hook);

}  // namespace yxbase2::system::this_thread
