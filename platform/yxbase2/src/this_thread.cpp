#include <yxbase2/this_thread.h>

#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace yxbase2::system::this_thread {

namespace {
// Swapped as a whole and called outside the lock, like the log sink.
std::mutex hookMutex;
std::shared_ptr<SleepHook const> currentHook;
}  // namespace

void sleep_for(std::chrono::nanoseconds const& duration) {
    std::shared_ptr<SleepHook const> hook;
    {
        std::lock_guard<std::mutex> lock(hookMutex);
        hook = currentHook;
    }
    if (hook) {
        (*hook)(duration);
    } else {
        std::this_thread::sleep_for(duration);
    }
}

SleepHook setSleepHook(SleepHook hook) {
    auto replacement = hook ? std::make_shared<SleepHook const>(std::move(hook)) : nullptr;
    std::shared_ptr<SleepHook const> previous;
    {
        std::lock_guard<std::mutex> lock(hookMutex);
        previous = std::exchange(currentHook, std::move(replacement));
    }
    if (!previous) {
        return {};
    }
    // Forwards to the very object replaced, so that a hook with state is not duplicated.
    return [previous](std::chrono::nanoseconds duration) { (*previous)(duration); };
}

}  // namespace yxbase2::system::this_thread
