#include <yxbase2/log.h>

#include <array>
#include <atomic>
#include <chrono>
#include <ctime>
#include <iostream>
#include <memory>
#include <mutex>
#include <utility>

#include "installed_function.h"

namespace yxbase2::system::log {

namespace {

std::atomic<int> maxLevel{toInt(Level::Info)};

// The sink is swapped as a whole and called outside the lock, so a sink may itself log or be
// replaced while another thread is inside it.
std::mutex sinkMutex;
std::shared_ptr<Sink const> currentSink;

std::string isoTimestamp() {
    auto const now = std::chrono::system_clock::now();
    std::time_t const seconds = std::chrono::system_clock::to_time_t(now);
    auto const millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 32> text{};
    std::size_t const length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    std::ostringstream stamp;
    stamp << std::string(text.data(), length) << '.' << (millis < 100 ? "0" : "")
          << (millis < 10 ? "0" : "") << millis << 'Z';
    return stamp.str();
}

void defaultSink(int level, std::string const& category, std::string const& message) {
    std::ostringstream line;
    line << isoTimestamp() << ' ' << levelName(level) << ' ' << category << ": " << message << '\n';
    std::cerr << line.str() << std::flush;
}

}  // namespace

namespace detail {
bool isEnabled(int level) { return level <= maxLevel.load(); }
}  // namespace detail

void setMaxLevel(int level) { maxLevel.store(level); }

int getMaxLevel() { return maxLevel.load(); }

void log(int level, std::string const& category, std::ostringstream const& message) {
    if (!detail::isEnabled(level)) {
        return;
    }
    std::shared_ptr<Sink const> const sink = system::detail::installed(sinkMutex, currentSink);
    if (sink) {
        (*sink)(level, category, message.str());
    } else {
        defaultSink(level, category, message.str());
    }
}

Sink setSink(Sink sink) {
    return system::detail::exchangeInstalled(sinkMutex, currentSink, std::move(sink));
}

std::string levelName(int level) {
    static constexpr std::array<char const*, 8> kNames{"emergency", "alert",  "critical", "error",
                                                       "warning",   "notice", "info",     "debug"};
    if (level < 0 || level >= static_cast<int>(kNames.size())) {
        return "level " + std::to_string(level);
    }
    return kNames[static_cast<std::size_t>(level)];
}

}  // namespace yxbase2::system::log
