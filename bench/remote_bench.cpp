// Command server benchmarks on loopback: the round trip of a key press with a screen read, the
// commands per second of eight clients at once, and the panel's own key latency with and without
// eight clients running flat out. A panel with a 50-item menu runs on its own thread.
#include <frontpanelhw/display.h>
#include <yxbase2/log.h>
#include <yxfrontpanel/remote.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench_support.h"
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using frontpanelhw::PanelKey;

/** Keys pushed by the benchmark through a pipe, as a device's descriptor would signal them. */
class PipeKeySource : public frontpanelhw::IKeySource {
public:
    PipeKeySource() {
        if (::pipe2(pipe_, O_NONBLOCK | O_CLOEXEC) != 0) {
            throw std::runtime_error("pipe2 failed");
        }
    }
    ~PipeKeySource() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }
    void press(PanelKey key) {
        std::lock_guard<std::mutex> const lock(mutex_);
        keys_.push_back(key);
        char const byte = 1;
        [[maybe_unused]] auto const written = ::write(pipe_[1], &byte, 1);
    }
    std::optional<frontpanelhw::KeyEvent> poll(std::chrono::milliseconds /*timeout*/) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (keys_.empty()) {
            return std::nullopt;
        }
        char byte = 0;
        [[maybe_unused]] auto const read = ::read(pipe_[0], &byte, 1);
        PanelKey const key = keys_.front();
        keys_.pop_front();
        return frontpanelhw::KeyEvent::panel(key);
    }
    int waitDescriptor() const override { return pipe_[0]; }

private:
    int pipe_[2] = {-1, -1};
    std::mutex mutex_;
    std::deque<PanelKey> keys_;
};

/** A blocking line client. */
class Client {
public:
    explicit Client(std::string const& address)
        : fd_(yxfrontpanel::runtime::connectTo(yxfrontpanel::runtime::parseEndpoint(address))) {}
    ~Client() { ::close(fd_); }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    void send(std::string const& text) const {
        std::size_t sent = 0;
        while (sent < text.size()) {
            ssize_t const count = ::send(fd_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) {
                throw std::runtime_error("send failed");
            }
            sent += static_cast<std::size_t>(count);
        }
    }
    /** Reads until `lines` more newlines have arrived. */
    void readLines(std::size_t lines) const {
        while (lines > 0) {
            char chunk[16384];
            ssize_t const count = ::recv(fd_, chunk, sizeof(chunk), 0);
            if (count <= 0) {
                throw std::runtime_error("the server closed the connection");
            }
            lines -= static_cast<std::size_t>(std::count(chunk, chunk + count, '\n'));
        }
    }

private:
    int fd_;
};

/** A panel with a plain 50-item menu and its command server on an ephemeral loopback port. */
class RunningPanel {
public:
    RunningPanel()
        : panel_(display_),
          menu_(yxfp_bench::plainMenu(panel_.provider(), 50)),
          keys_(std::make_shared<PipeKeySource>()) {
        // Connects and disconnects would be logged on stderr between the results.
        yxbase2::system::log::setMaxLevel(4);
        panel_.setRoot(*menu_);
        panel_.addKeySource(keys_);
        panel_.setEventHandler([this](frontpanelhw::KeyEvent const& /*event*/) {
            handled_.fetch_add(1);
            return false;
        });
        yxfrontpanel::runtime::RemoteControlOptions options;
        options.server.listen = {"127.0.0.1:0"};
        remote_ = std::make_unique<yxfrontpanel::runtime::RemoteControl>(panel_, options);
        remote_->start();
        thread_ = std::thread([this] { panel_.run(); });
    }
    ~RunningPanel() {
        remote_->stop();
        panel_.stop();
        thread_.join();
    }
    RunningPanel(RunningPanel const&) = delete;
    RunningPanel& operator=(RunningPanel const&) = delete;

    std::string address() const { return remote_->addresses().front(); }

    /** Presses a key on the panel's own source and waits (spinning) until the panel handled
     *  it; returns the time that took. */
    Clock::duration pressOwnKey(PanelKey key) {
        unsigned long const before = handled_.load();
        auto const start = Clock::now();
        keys_->press(key);
        while (handled_.load() == before) {
        }
        return Clock::now() - start;
    }

private:
    frontpanelhw::MemoryDisplay display_{20, 4};
    yxfrontpanel::runtime::Panel panel_;
    std::unique_ptr<yxfrontpanel::IMenuTree> menu_;
    std::shared_ptr<PipeKeySource> keys_;
    std::atomic<unsigned long> handled_{0};
    std::unique_ptr<yxfrontpanel::runtime::RemoteControl> remote_;
    std::thread thread_;
};

double microseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::micro>(duration).count();
}

/** Reports the median and 99th percentile of `samples` in microseconds. */
void reportPercentiles(benchmark::State& state, std::vector<Clock::duration>& samples) {
    if (samples.empty()) {
        return;
    }
    std::sort(samples.begin(), samples.end());
    state.counters["median_us"] = microseconds(samples[samples.size() / 2]);
    state.counters["p99_us"] = microseconds(samples[samples.size() * 99 / 100]);
}

void BM_RemoteRoundTripKeyAndScreenLine(benchmark::State& state) {
    RunningPanel panel;
    Client client(panel.address());
    std::vector<Clock::duration> samples;
    bool down = true;
    for (auto _ : state) {
        auto const start = Clock::now();
        client.send(down ? "SYST:KEY DOWN;:DISP:TEXT? 1\n" : "SYST:KEY UP;:DISP:TEXT? 1\n");
        client.readLines(1);
        samples.push_back(Clock::now() - start);
        down = samples.size() % 40 < 20;
    }
    reportPercentiles(state, samples);
}
BENCHMARK(BM_RemoteRoundTripKeyAndScreenLine)->Unit(benchmark::kMicrosecond)->Iterations(20000);

constexpr unsigned kClients = 8;
constexpr unsigned kLinesPerBatch = 100;
// Four commands, three of them queries, one key press.
constexpr char const* kMixedLine = "SYST:KEY DOWN;:DISP:TEXT? 1;:SYST:MODE?;:*OPC?\n";
constexpr unsigned kCommandsPerLine = 4;
constexpr unsigned kAnswersPerLine = 3;

/** Eight clients, each sending batches of mixed lines and reading their answers, until `stop`. */
class ClientLoad {
public:
    explicit ClientLoad(std::string const& address) {
        std::string batch;
        for (unsigned line = 0; line < kLinesPerBatch; ++line) {
            batch += kMixedLine;
        }
        for (unsigned client = 0; client < kClients; ++client) {
            threads_.emplace_back([this, address, batch] {
                Client connection(address);
                while (!stop_.load()) {
                    connection.send(batch);
                    connection.readLines(static_cast<std::size_t>(kLinesPerBatch) *
                                         kAnswersPerLine);
                    lines_.fetch_add(kLinesPerBatch);
                }
            });
        }
    }
    ~ClientLoad() {
        stop_.store(true);
        for (auto& thread : threads_) {
            thread.join();
        }
    }
    ClientLoad(ClientLoad const&) = delete;
    ClientLoad& operator=(ClientLoad const&) = delete;

    unsigned long lines() const { return lines_.load(); }

private:
    std::atomic<bool> stop_{false};
    std::atomic<unsigned long> lines_{0};
    std::vector<std::thread> threads_;
};

void BM_RemoteEightClientsCommandsPerSecond(benchmark::State& state) {
    RunningPanel panel;
    auto const start = Clock::now();
    unsigned long lines = 0;
    {
        ClientLoad load(panel.address());
        for (auto _ : state) {
            // Each iteration lets the clients run for a tenth of a second.
            auto const until = Clock::now() + std::chrono::milliseconds{100};
            while (Clock::now() < until) {
                std::this_thread::yield();
            }
        }
        lines = load.lines();
    }
    double const seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.counters["commands_per_s"] = static_cast<double>(lines * kCommandsPerLine) / seconds;
}
BENCHMARK(BM_RemoteEightClientsCommandsPerSecond)->Unit(benchmark::kMillisecond)->Iterations(20);

void measureOwnKeys(benchmark::State& state, bool withClients) {
    RunningPanel panel;
    std::optional<ClientLoad> load;
    if (withClients) {
        load.emplace(panel.address());
    }
    std::vector<Clock::duration> samples;
    bool down = true;
    for (auto _ : state) {
        samples.push_back(panel.pressOwnKey(down ? PanelKey::Down : PanelKey::Up));
        down = samples.size() % 40 < 20;
    }
    reportPercentiles(state, samples);
}

void BM_PanelOwnKeyLatencyIdle(benchmark::State& state) { measureOwnKeys(state, false); }
BENCHMARK(BM_PanelOwnKeyLatencyIdle)->Unit(benchmark::kMicrosecond)->Iterations(5000);

void BM_PanelOwnKeyLatencyWithEightClients(benchmark::State& state) { measureOwnKeys(state, true); }
BENCHMARK(BM_PanelOwnKeyLatencyWithEightClients)->Unit(benchmark::kMicrosecond)->Iterations(5000);

}  // namespace
