#pragma once

#include <yxbase2/this_thread.h>

#include <functional>

namespace yxfrontpanel::runtime::detail {

/** While it lives, a sleep of the thread that made it, through yxbase2's `sleep_for`, first
 *  calls `beforeSleep`. A hint or a confirmation tick draws its screen and then blocks the
 *  panel's thread; the panel uses this to show that screen before the block, whatever its frame
 *  limit says, or the screen would be replaced before it was ever drawn.
 *
 *  The sleep hook it installs holds no reference to anything but the hook it wraps and this
 *  thread's callback, so it stays safe when panels on several threads come and go in any
 *  order; sleeps of other threads, and sleeps made from inside `beforeSleep` (a display that
 *  waits while it draws), pass straight through. */
class FlushBeforeSleep {
public:
    explicit FlushBeforeSleep(std::function<void()> beforeSleep);
    ~FlushBeforeSleep();
    FlushBeforeSleep(FlushBeforeSleep const&) = delete;
    FlushBeforeSleep& operator=(FlushBeforeSleep const&) = delete;

private:
    std::function<void()> beforeSleep_;
    std::function<void()>* enclosing_;  // this thread's callback before this one (nesting)
    yxbase2::system::this_thread::SleepHook replaced_;
    bool installed_ = false;
};

}  // namespace yxfrontpanel::runtime::detail
