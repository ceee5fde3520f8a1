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

/** Installs `hook`; an empty hook restores real sleeping. */
YXBASE2_EXPORT void setSleepHook(SleepHook hook);

}  // namespace yxbase2::system::this_thread
