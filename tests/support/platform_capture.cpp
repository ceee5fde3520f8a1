#include "platform_capture.h"

#include <yxbase2/log.h>
#include <yxbase2/this_thread.h>

namespace yxfp_test {

namespace log = yxbase2::system::log;
namespace this_thread = yxbase2::system::this_thread;

LogCapture::LogCapture() : previousMaxLevel_(log::getMaxLevel()) {
    log::setMaxLevel(7);
    previousSink_ =
        log::setSink([this](int level, std::string const& category, std::string const& message) {
            std::lock_guard<std::mutex> lock(mutex_);
            records_.push_back(LogRecord{level, category, message});
        });
}

LogCapture::~LogCapture() {
    log::setSink(previousSink_);
    log::setMaxLevel(previousMaxLevel_);
}

std::vector<LogRecord> LogCapture::records() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return records_;
}

SleepCapture::SleepCapture(Action action) : action_(std::move(action)) {
    previousHook_ = this_thread::setSleepHook([this](std::chrono::nanoseconds duration) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            sleeps_.push_back(duration);
        }
        if (action_) {
            action_(duration);
        }
    });
}

SleepCapture::~SleepCapture() { this_thread::setSleepHook(previousHook_); }

std::vector<std::chrono::nanoseconds> SleepCapture::sleeps() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return sleeps_;
}

}  // namespace yxfp_test
