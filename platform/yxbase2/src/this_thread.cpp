#include <yxbase2/this_thread.h>

#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "installed_function.h"

namespace yxbase2::system::this_thread {

namespace {
// Swapped as a whole and called outside the lock, like the log sink.
std::mutex hookMutex;
std::shared_ptr<SleepHook const> currentHook;
}  // namespace

void sleep_for(std::chrono::nanoseconds const& duration) {
    std::shared_ptr<SleepHook const> const hook = system::detail::installed(hookMutex, currentHook);
    if (hook) {
        (*hook)(duration);
    } else {
        std::this_thread::sleep_for(duration);
    }
}

SleepHook setSleepHook(SleepHook hook) {
    return system::detail::exchangeInstalled(hookMutex, currentHook, std::move(hook));
}

}  // namespace yxbase2::system::this_thread
