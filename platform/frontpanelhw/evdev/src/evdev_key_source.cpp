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

// Longer waits are cut to this, so that the deadline can never overflow the clock.
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24);
// Records read at once: enough for every key of a keypad changing in one report.
constexpr std::size_t kRecordsPerRead = 64;
// poll(2) failing for a reason other than a signal: the waits before the next tries, doubling,
// and how many failed tries in a row stop the source.
constexpr std::chrono::milliseconds kFirstPollBackoff{10};
constexpr std::chrono::milliseconds kLongestPollBackoff{1000};
constexpr unsigned kPollFailuresToStop = 8;

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
            if (descriptor_ >= 0 && pollFailures_ > 0 && options_.clock() < nextPoll_) {
                if (left.count() <= 0) {
                    return std::nullopt;  // backing off after poll failed
                }
                auto const wait = std::min(left, ceilMilliseconds(nextPoll_ - options_.clock()));
                ::poll(nullptr, 0, static_cast<int>(wait.count()));
                continue;
            }
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

    // A source that has delivered the kernel's repeats repeats by itself from then on.
    std::string const& error() const { return error_; }

    KeySourceCapabilities capabilities() const {
        return {true, repeats_ || (!options_.deviceRepeats && decoder_.sawRepeats())};
    }

private:
    /** Sets up a freshly opened descriptor. @throws InputDeviceError when it is unusable. */
    void adopt(int descriptor) {
        bool isDevice = false;
        try {
            isDevice = detail::checkInputDescriptor(descriptor, name_);
            checkIdentity(descriptor, isDevice);
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
            // Every repeat the kernel sends presses the key once more, also when replayed
            // through a pipe, unless the application switched them off.
            decoder_.setForwardRepeats(options_.deviceRepeats.value_or(true));
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

    /** Remembers the first device's identity; refuses another device at the same path.
     *  @throws InputDeviceError when the descriptor is another device than the first. */
    void checkIdentity(int descriptor, bool isDevice) {
        std::string const identity = options_.identify ? options_.identify(descriptor)
                                     : isDevice        ? detail::readInputIdentity(descriptor)
                                                       : std::string();
        if (!identity_) {
            identity_ = identity;
            return;
        }
        if (identity.empty() || identity_->empty() || identity == *identity_) {
            return;
        }
        throw InputDeviceError(name_ + " is now another device (" + identity + ", was " +
                               *identity_ + "); waiting for the first one to come back");
    }

    /** Waits up to `wait` for the descriptor and reads what it has; false when nothing came.
     */
    bool readReady(std::chrono::milliseconds wait) {
        pollfd ready{descriptor_, POLLIN, 0};
        int const count = ::poll(&ready, 1, static_cast<int>(wait.count()));
        if (count < 0 && errno != EINTR) {
            pollFailed(errno);
            return !pending_.empty();
        }
        pollFailures_ = 0;
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
            log::write(log::Level::Warning, "evdev",
                       name_ + ": " + std::system_category().message(error));
        }
        inputEnded();
        return true;
    }

    /** poll(2) failed for a reason other than a signal: back off, doubling the wait, and stop
     *  with an error after kPollFailuresToStop failures in a row. Logs once each. */
    void pollFailed(int error) {
        std::string const what =
            name_ + ": waiting for input failed: " + std::system_category().message(error);
        if (++pollFailures_ < kPollFailuresToStop) {
            if (pollFailures_ == 1) {
                log::write(log::Level::Warning, "evdev",
                           what + "; trying again with growing pauses");
            }
            auto const backoff =
                std::min(kFirstPollBackoff * (1U << (pollFailures_ - 1)), kLongestPollBackoff);
            nextPoll_ = options_.clock() + backoff;
            return;
        }
        error_ = what + " (" + std::to_string(pollFailures_) + " times in a row)";
        log::write(log::Level::Error, "evdev", error_ + "; the input has stopped");
        decoder_.finish(pending_);
        pending_.push_back(KeyEvent::closed());
        closeDescriptor();
        canReopen_ = false;
    }

    void inputEnded() {
        decoder_.finish(pending_);
        pending_.push_back(KeyEvent::closed());
        closeDescriptor();
        if (canReopen_) {
            nextReopen_ = options_.clock() + options_.reopenInterval;
            log::write(log::Level::Info, "evdev",
                       name_ + " has closed; opening it again when it is back");
        } else {
            // The end of a pipe or file is the expected end of a replay, not news.
            log::write(isDevice_ ? log::Level::Info : log::Level::Debug, "evdev",
                       name_ + " has closed");
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
            log::write(log::Level::Info, "evdev", name_ + " is back");
            lastRefusal_.clear();
        } catch (InputDeviceError const& error) {
            if (error.what() != lastRefusal_) {  // once, not at every try
                log::write(log::Level::Warning, "evdev", error.what());
                lastRefusal_ = error.what();
            }
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
    std::optional<std::string> identity_;  // of the first device opened
    std::string lastRefusal_;
    unsigned pollFailures_ = 0;  // in a row
    TimePoint nextPoll_{};
    std::string error_;
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

std::string EvdevKeySource::error() const { return impl_->error(); }

}  // namespace frontpanelhw
