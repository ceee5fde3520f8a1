#include <frontpanelhw/evdev_key_source.h>
#include <yxbase2/log.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <sstream>
#include <system_error>
#include <utility>

#include "input_device.h"
#include "input_event_decoder.h"
#include "replay_layout.h"
#include <poll.h>
#include <unistd.h>

namespace frontpanelhw {

namespace {

namespace log = yxbase2::system::log;
using TimePoint = std::chrono::steady_clock::time_point;

constexpr int kWarning = 4;
constexpr int kInfo = 6;
constexpr int kDebug = 7;
// Longer waits are cut to this, so that the deadline can never overflow the clock.
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24);
// Records read at once: enough for every key of a keypad changing in one report.
constexpr std::size_t kRecordsPerRead = 64;

void logLine(int level, std::string const& text) {
    std::ostringstream message;
    message << text;
    log::log(level, "evdev", message);
}

std::chrono::milliseconds ceilMilliseconds(std::chrono::steady_clock::duration duration) {
    return std::max(std::chrono::milliseconds(0),
                    std::chrono::ceil<std::chrono::milliseconds>(duration));
}

/** An opener that gives `descriptor` once and then fails as a device that is gone. */
EvdevKeySource::Opener givenOnce(int descriptor) {
    return [descriptor, first = true]() mutable {
        if (!first || descriptor < 0) {
            errno = first ? EBADF : ENOENT;
            return -1;
        }
        first = false;
        return descriptor;
    };
}

}  // namespace

class EvdevKeySource::Impl {
public:
    Impl(Opener opener, std::string name, EvdevOptions options, bool canReopen)
        : opener_(std::move(opener)),
          name_(options.name.empty() ? std::move(name) : options.name),
          options_(std::move(options)),
          canReopen_(canReopen && options_.reopen),
          decoder_(options_.keys, options_.encoder, name_) {
        if (!options_.clock) {
            options_.clock = [] { return std::chrono::steady_clock::now(); };
        }
        int const descriptor = opener_();
        if (descriptor < 0) {
            throw InputDeviceError(detail::openErrorMessage(name_, errno));
        }
        adopt(descriptor);
    }

    ~Impl() { closeDescriptor(); }
    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) {
        auto const deadline = std::chrono::steady_clock::now() + std::min(timeout, kLongestWait);
        while (true) {
            if (!pending_.empty()) {
                KeyEvent const event = pending_.front();
                pending_.pop_front();
                return event;
            }
            auto const left = ceilMilliseconds(deadline - std::chrono::steady_clock::now());
            if (descriptor_ >= 0) {
                if (!readReady(left) && left.count() <= 0) {
                    return std::nullopt;
                }
                continue;
            }
            if (!canReopen_) {
                return std::nullopt;
            }
            if (options_.clock() >= nextReopen_) {
                tryReopen();
                continue;
            }
            if (left.count() <= 0) {
                return std::nullopt;
            }
            // Nothing to wait on while the device is away: wait for the next try or the
            // caller's deadline, whichever comes first.
            auto const wait = std::min(left, ceilMilliseconds(nextReopen_ - options_.clock()));
            ::poll(nullptr, 0, static_cast<int>(wait.count()));
        }
    }

    int waitDescriptor() const { return descriptor_; }

    std::optional<std::chrono::milliseconds> wakeWithin() const {
        if (!pending_.empty()) {
            return std::chrono::milliseconds(0);
        }
        if (descriptor_ < 0 && canReopen_) {
            return ceilMilliseconds(nextReopen_ - options_.clock());
        }
        return std::nullopt;
    }

    KeySourceCapabilities capabilities() const { return {true, repeats_}; }

private:
    /** Sets up a freshly opened descriptor. @throws InputDeviceError when it is unusable. */
    void adopt(int descriptor) {
        bool isDevice = false;
        try {
            isDevice = detail::checkInputDescriptor(descriptor, name_);
            detail::checkReplayLayout(descriptor, name_);
            if (isDevice && options_.grab) {
                detail::grabInputDevice(descriptor, name_);
            }
            repeats_ =
                options_.deviceRepeats.value_or(isDevice && detail::inputDeviceRepeats(descriptor));
            if (isDevice) {
                for (int const axis : options_.encoder.absoluteAxes) {
                    int minimum = 0;
                    int maximum = 0;
                    if (detail::readAbsoluteRange(descriptor, axis, minimum, maximum)) {
                        decoder_.encoder().setAbsoluteRange(axis, minimum, maximum);
                    }
                }
            }
            decoder_.setForwardRepeats(repeats_);
            decoder_.setKeyStateQuery(
                isDevice ? detail::InputEventDecoder::KeyStateQuery(
                               [descriptor](std::vector<unsigned char>& bits) {
                                   return detail::readInputKeyState(descriptor, bits);
                               })
                         : detail::InputEventDecoder::KeyStateQuery());
        } catch (...) {
            ::close(descriptor);
            throw;
        }
        descriptor_ = descriptor;
        isDevice_ = isDevice;
    }

    /** Waits up to `wait` for the descriptor and reads what it has; false when nothing came.
     */
    bool readReady(std::chrono::milliseconds wait) {
        pollfd ready{descriptor_, POLLIN, 0};
        int const count = ::poll(&ready, 1, static_cast<int>(wait.count()));
        if (count <= 0 || ready.revents == 0) {
            return false;  // a signal counts as nothing arrived; the caller's loop goes on
        }
        char buffer[kRecordsPerRead * sizeof(input_event)];
        ssize_t const size = ::read(descriptor_, buffer, sizeof buffer);
        if (size > 0) {
            decoder_.feed(buffer, static_cast<std::size_t>(size), pending_);
            return true;
        }
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
            return false;
        }
        if (size < 0) {
            int const error = errno;
            logLine(kWarning, name_ + ": " + std::system_category().message(error));
        }
        inputEnded();
        return true;
    }

    void inputEnded() {
        decoder_.finish(pending_);
        pending_.push_back(KeyEvent::closed());
        closeDescriptor();
        if (canReopen_) {
            nextReopen_ = options_.clock() + options_.reopenInterval;
            logLine(kInfo, name_ + " has closed; opening it again when it is back");
        } else {
            // The end of a pipe or file is the expected end of a replay, not news.
            logLine(isDevice_ ? kInfo : kDebug, name_ + " has closed");
        }
    }

    void tryReopen() {
        nextReopen_ = options_.clock() + options_.reopenInterval;
        int const descriptor = opener_();
        if (descriptor < 0) {
            return;  // still away; the next try is due after the interval
        }
        try {
            adopt(descriptor);
            logLine(kInfo, name_ + " is back");
        } catch (InputDeviceError const& error) {
            logLine(kWarning, error.what());
        }
    }

    void closeDescriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
            descriptor_ = -1;
        }
    }

    Opener opener_;
    std::string name_;
    EvdevOptions options_;
    bool canReopen_;
    detail::InputEventDecoder decoder_;
    int descriptor_ = -1;
    bool isDevice_ = false;
    bool repeats_ = false;
    TimePoint nextReopen_{};
    std::deque<KeyEvent> pending_;
};

EvdevKeySource::EvdevKeySource(std::string const& path, EvdevOptions options)
    : impl_(std::make_unique<Impl>([path] { return detail::openInputPath(path); }, path,
                                   std::move(options), true)) {}

EvdevKeySource::EvdevKeySource(int descriptor, EvdevOptions options)
    : impl_(std::make_unique<Impl>(givenOnce(descriptor),
                                   "descriptor " + std::to_string(descriptor), std::move(options),
                                   false)) {}

EvdevKeySource::EvdevKeySource(Opener opener, EvdevOptions options)
    : impl_(std::make_unique<Impl>(std::move(opener), "input device", std::move(options), true)) {}

EvdevKeySource::~EvdevKeySource() = default;

std::optional<KeyEvent> EvdevKeySource::poll(std::chrono::milliseconds timeout) {
    return impl_->poll(timeout);
}

int EvdevKeySource::waitDescriptor() const { return impl_->waitDescriptor(); }

std::optional<std::chrono::milliseconds> EvdevKeySource::wakeWithin() const {
    return impl_->wakeWithin();
}

KeySourceCapabilities EvdevKeySource::capabilities() const { return impl_->capabilities(); }

}  // namespace frontpanelhw
