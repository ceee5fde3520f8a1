#pragma once

#include <frontpanelhw/key_source.h>

#include <deque>
#include <mutex>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace yxfp_test {

/** A key source fed by the test: each pushed event makes its pipe readable, as a device's
 *  descriptor would be. `closeInput` ends it like an unplugged device. Push from any thread. */
class QueuedKeySource : public frontpanelhw::IKeySource {
public:
    explicit QueuedKeySource(frontpanelhw::KeySourceCapabilities capabilities = {})
        : capabilities_(capabilities) {
        if (::pipe2(pipe_, O_NONBLOCK | O_CLOEXEC) != 0) {
            throw std::runtime_error("pipe2 failed");
        }
    }
    ~QueuedKeySource() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }

    /** Queues `event` and wakes a waiting loop. */
    void push(frontpanelhw::KeyEvent event) {
        std::lock_guard<std::mutex> const lock(mutex_);
        events_.push_back(event);
        char const byte = 1;
        [[maybe_unused]] auto const written = ::write(pipe_[1], &byte, 1);
    }
    /** Queues a press of `key`. */
    void press(frontpanelhw::PanelKey key) { push(frontpanelhw::KeyEvent::panel(key)); }
    /** After the queued events, the source reports closed. */
    void closeInput() { push(frontpanelhw::KeyEvent::closed()); }

    std::optional<frontpanelhw::KeyEvent> poll(std::chrono::milliseconds /*timeout*/) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (closed_) {
            return frontpanelhw::KeyEvent::closed();
        }
        if (events_.empty()) {
            return std::nullopt;
        }
        char byte = 0;
        [[maybe_unused]] auto const read = ::read(pipe_[0], &byte, 1);
        auto const event = events_.front();
        events_.pop_front();
        closed_ = event.kind == frontpanelhw::KeyEvent::Kind::Closed;
        return event;
    }
    int waitDescriptor() const override { return pipe_[0]; }
    frontpanelhw::KeySourceCapabilities capabilities() const override { return capabilities_; }

private:
    frontpanelhw::KeySourceCapabilities capabilities_;
    int pipe_[2] = {-1, -1};
    std::mutex mutex_;
    std::deque<frontpanelhw::KeyEvent> events_;
    bool closed_ = false;
};

}  // namespace yxfp_test
