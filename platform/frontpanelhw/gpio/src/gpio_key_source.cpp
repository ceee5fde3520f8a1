#include <frontpanelhw/gpio_key_source.h>
#include <yxbase2/log.h>

#include <algorithm>
#include <set>
#include <utility>

#include "gpiod_edge_source.h"
#include <poll.h>

namespace frontpanelhw {

namespace {

namespace log = yxbase2::system::log;

constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24);

std::chrono::milliseconds ceilMilliseconds(std::chrono::steady_clock::duration duration) {
    return std::max(std::chrono::milliseconds(0),
                    std::chrono::ceil<std::chrono::milliseconds>(duration));
}

void checkLines(GpioKeyOptions const& options) {
    if (options.lines.empty()) {
        throw KeyMapError("no GPIO line for any key: give at least one, e.g. enter=13");
    }
    std::set<unsigned> seen;
    for (auto const& [key, offset] : options.lines) {
        if (!seen.insert(offset).second) {
            throw KeyMapError("GPIO line " + std::to_string(offset) + " is given to two keys (" +
                              panelKeyName(key) + " and another): each key needs its own line");
        }
    }
}

std::vector<unsigned> offsetsOf(GpioKeyOptions const& options) {
    checkLines(options);
    std::vector<unsigned> offsets;
    for (auto const& entry : options.lines) {
        offsets.push_back(entry.second);
    }
    return offsets;
}

}  // namespace

IGpioEdgeSource::~IGpioEdgeSource() = default;

GpioKeySource::GpioKeySource(std::string const& chip, GpioKeyOptions const& options)
    : GpioKeySource(
          detail::openGpioEdgeSource(chip, offsetsOf(options), options.bias, options.consumer),
          options) {}  // a copy: the arguments' order of evaluation is unspecified

GpioKeySource::GpioKeySource(std::unique_ptr<IGpioEdgeSource> edges, GpioKeyOptions options)
    : edges_(std::move(edges)), options_(std::move(options)) {
    checkLines(options_);
    if (!options_.clock) {
        options_.clock = [] { return std::chrono::steady_clock::now(); };
    }
    for (auto const& [key, offset] : options_.lines) {
        bool const pressed = edges_->level(offset) != options_.activeLow;
        if (pressed) {
            log::write(log::Level::Warning, "gpio", "GPIO line ", offset, " (", panelKeyName(key),
                       ") reads as pressed at start; if no one holds that key, the line's ",
                       options_.activeLow ? "active-low" : "active-high",
                       " setting is probably wrong");
        }
        lines_[offset] = Line{key, pressed, false, {}, options_.clock()};
    }
}

GpioKeySource::~GpioKeySource() = default;

int GpioKeySource::waitDescriptor() const { return lost_ ? -1 : edges_->descriptor(); }

KeySourceCapabilities GpioKeySource::capabilities() const { return {true, false}; }

std::optional<std::chrono::milliseconds> GpioKeySource::wakeWithin() const {
    if (!pending_.empty()) {
        return std::chrono::milliseconds(0);
    }
    if (lost_) {
        return std::nullopt;
    }
    std::optional<std::chrono::steady_clock::time_point> earliest;
    for (auto const& entry : lines_) {
        Line const& line = entry.second;
        if (auto const check = nextCheck(line); check && (!earliest || *check < *earliest)) {
            earliest = check;
        }
    }
    if (!earliest) {
        return std::nullopt;
    }
    return ceilMilliseconds(*earliest - options_.clock());
}

std::optional<std::chrono::steady_clock::time_point> GpioKeySource::nextCheck(
    Line const& line) const {
    if (line.settling) {
        return line.lastEdge + options_.debounce;
    }
    if (line.pressed) {
        return line.lastCheck + options_.debounce;  // its release may have been dropped
    }
    return std::nullopt;
}

std::optional<KeyEvent> GpioKeySource::poll(std::chrono::milliseconds timeout) {
    auto const deadline = std::chrono::steady_clock::now() + std::min(timeout, kLongestWait);
    while (true) {
        if (pending_.empty() && !lost_) {
            readEdges();
            settle();
        }
        if (!pending_.empty()) {
            KeyEvent const event = pending_.front();
            pending_.pop_front();
            return event;
        }
        auto const left = ceilMilliseconds(deadline - std::chrono::steady_clock::now());
        if (lost_ || left.count() <= 0) {
            return std::nullopt;
        }
        auto const wait = std::min(left, wakeWithin().value_or(left));
        pollfd ready{edges_->descriptor(), POLLIN, 0};
        ::poll(&ready, 1, static_cast<int>(wait.count()));
    }
}

void GpioKeySource::readEdges() {
    try {
        while (auto const edge = edges_->readEdge()) {
            auto const line = lines_.find(edge->offset);
            if (line == lines_.end()) {
                continue;
            }
            line->second.settling = true;
            line->second.lastEdge = edge->time;
        }
    } catch (InputDeviceError const& error) {
        linesLost(error.what());
    }
}

void GpioKeySource::settle() {
    if (lost_) {
        return;
    }
    auto const now = options_.clock();
    try {
        for (auto& [offset, line] : lines_) {
            auto const check = nextCheck(line);
            if (!check || now < *check) {
                continue;
            }
            // The kernel keeps only the first events of a line while no one reads them, so
            // the newest edge read may be stale: the line's level now is what counts.
            line.settling = false;
            line.lastCheck = now;
            bool const pressed = edges_->level(offset) != options_.activeLow;
            if (pressed != line.pressed) {
                line.pressed = pressed;
                pending_.push_back(pressed ? KeyEvent::panel(line.key)
                                           : KeyEvent::release(line.key));
            }
        }
    } catch (InputDeviceError const& error) {
        linesLost(error.what());
    }
}

void GpioKeySource::linesLost(char const* why) {
    log::write(log::Level::Warning, "gpio", why, "; the GPIO keys have stopped");
    for (auto& entry : lines_) {
        if (entry.second.pressed) {
            entry.second.pressed = false;
            pending_.push_back(KeyEvent::release(entry.second.key));
        }
        entry.second.settling = false;
    }
    pending_.push_back(KeyEvent::closed());
    lost_ = true;
}

}  // namespace frontpanelhw
