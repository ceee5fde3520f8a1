#include <yxbase2/this_thread.h>

#include <memory>
#include <mutex>
#include <thread>

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

void setSleepHook(SleepHook hook) {
    auto replacement = hook ? std::make_shared<SleepHook const>(std::move(hook)) : nullptr;
    std::lock_guard<std::mutex> lock(hookMutex);
    currentHook = std::move(replacement);
}

}  // namespace yxbase2::system::this_thread
