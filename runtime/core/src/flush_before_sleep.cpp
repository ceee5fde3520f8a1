#include "flush_before_sleep.h"

#include <mutex>
#include <thread>
#include <utility>

namespace yxfrontpanel::runtime::detail {

namespace {

using yxbase2::system::this_thread::SleepHook;

thread_local std::function<void()>* beforeSleepOnThisThread = nullptr;

// Serialises this module's own hook swaps; the read-and-replace below is two calls.
std::mutex installMutex;

/** The installed hook: this thread's callback first, then the hook it wrapped (or a real
 *  sleep). */
struct FlushingHook {
    SleepHook wrapped;

    void operator()(std::chrono::nanoseconds duration) const {
        if (std::function<void()>* const callback = beforeSleepOnThisThread) {
            beforeSleepOnThisThread = nullptr;  // sleeps inside the callback pass through
            (*callback)();
            beforeSleepOnThisThread = callback;
        }
        if (wrapped) {
            wrapped(duration);
        } else {
            std::this_thread::sleep_for(duration);
        }
    }
};

}  // namespace

FlushBeforeSleep::FlushBeforeSleep(std::function<void()> beforeSleep)
    : beforeSleep_(std::move(beforeSleep)), enclosing_(beforeSleepOnThisThread) {
    {
        std::lock_guard<std::mutex> const lock(installMutex);
        SleepHook current = yxbase2::system::this_thread::setSleepHook({});
        if (current.target<FlushingHook>() != nullptr) {
            yxbase2::system::this_thread::setSleepHook(std::move(current));  // one is enough
        } else {
            replaced_ = current;
            yxbase2::system::this_thread::setSleepHook(FlushingHook{std::move(current)});
            installed_ = true;
        }
    }
    beforeSleepOnThisThread = &beforeSleep_;
}

FlushBeforeSleep::~FlushBeforeSleep() {
    beforeSleepOnThisThread = enclosing_;
    if (installed_) {
        // Someone who installed a hook of their own meanwhile keeps it.
        std::lock_guard<std::mutex> const lock(installMutex);
        SleepHook current = yxbase2::system::this_thread::setSleepHook({});
        bool const stillOurs = current.target<FlushingHook>() != nullptr;
        yxbase2::system::this_thread::setSleepHook(stillOurs ? std::move(replaced_)
                                                             : std::move(current));
    }
}

}  // namespace yxfrontpanel::runtime::detail
