#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace yxfp_test {

/** Runs `step` over and over on a second thread until the object is destroyed or `stop()` is
 *  called, counting the finished rounds; the key thread meanwhile works on the menu. Stopping
 *  joins the thread, so everything the loop wrote is visible afterwards. */
class BackgroundLoop {
public:
    explicit BackgroundLoop(std::function<void()> step)
        : step_(std::move(step)), thread_([this] { run(); }) {}
    BackgroundLoop(BackgroundLoop const&) = delete;
    BackgroundLoop& operator=(BackgroundLoop const&) = delete;
    BackgroundLoop(BackgroundLoop&&) = delete;
    BackgroundLoop& operator=(BackgroundLoop&&) = delete;
    ~BackgroundLoop() { stop(); }

    /** Ends the loop after the current round and waits for the thread. */
    void stop() {
        stopping_.store(true);
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    /** Number of finished rounds. */
    unsigned long rounds() const { return rounds_.load(); }

    /** Waits (yielding, never sleeping) until two more rounds have finished, so that at least
     *  one whole round saw the state the calling thread has set up. */
    void awaitFullRound() const {
        unsigned long const target = rounds_.load() + 2;
        while (rounds_.load() < target) {
            std::this_thread::yield();
        }
    }

private:
    void run() {
        while (!stopping_.load()) {
            step_();
            rounds_.fetch_add(1);
        }
    }

    std::function<void()> step_;
    std::atomic<bool> stopping_{false};
    std::atomic<unsigned long> rounds_{0};
    std::thread thread_;
};

}  // namespace yxfp_test
