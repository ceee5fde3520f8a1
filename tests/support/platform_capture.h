#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace yxfp_test {

/** One record that reached the log sink. */
struct LogRecord {
    int level;
    std::string category;
    std::string message;
};

/** Collects every log record while it lives (and enables every level); restores the sink and
 *  the maximum level it found when it goes. */
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    std::vector<LogRecord> records() const;

private:
    int previousMaxLevel_;
    std::function<void(int, std::string const&, std::string const&)> previousSink_;
    mutable std::mutex mutex_;
    std::vector<LogRecord> records_;
};

/** Replaces real sleeping while it lives: every requested duration is recorded instead, and an
 *  optional action runs in its place (e.g. to look at the screen while a hint is shown).
 *  Restores the hook it found (real sleeping when there was none) when it goes. */
class SleepCapture {
public:
    using Action = std::function<void(std::chrono::nanoseconds)>;

    explicit SleepCapture(Action action = {});
    ~SleepCapture();
    SleepCapture(SleepCapture const&) = delete;
    SleepCapture& operator=(SleepCapture const&) = delete;

    std::vector<std::chrono::nanoseconds> sleeps() const;

private:
    Action action_;
    Action previousHook_;
    mutable std::mutex mutex_;
    std::vector<std::chrono::nanoseconds> sleeps_;
};

}  // namespace yxfp_test
