#include <yxfrontpanel/runtime/scpi_parser.h>
#include <yxfrontpanel/runtime/vxi11_instrument.h>

#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace yxfrontpanel::runtime {

Vxi11Instrument::~Vxi11Instrument() = default;

namespace {

/** The state a message's tasks share with the session; outlives the session while they run. */
struct SessionState {
    explicit SessionState(std::shared_ptr<scpi::DeviceStatus> device)
        : session(std::move(device)) {}

    std::mutex mutex;
    scpi::Session session;
    unsigned generation = 0;
    /** Messages posted to the executor and not finished. */
    unsigned running = 0;
};

/** The responses of one message as the client reads them. */
std::string joined(std::vector<std::string> const& responses) {
    std::string text;
    for (std::string const& response : responses) {
        text += text.empty() ? "" : ";";
        text += response;
    }
    if (!text.empty()) {
        text += '\n';
    }
    return text;
}

class ScpiInstrument : public Vxi11Instrument {
public:
    ScpiInstrument(std::shared_ptr<scpi::CommandTable const> table, Vxi11Executor executor)
        : table_(std::move(table)),
          executor_(std::move(executor)),
          state_(std::make_shared<SessionState>(table_->deviceStatus())) {}

    void execute(std::string message, std::function<void(std::string)> done) override {
        auto line = std::make_shared<scpi::ParsedLine>();
        // A message may end with its newline; inner newlines separate lines.
        while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
            message.pop_back();
        }
        *line = scpi::parseLine(message, scpi::ParseLimits{});
        auto responses = std::make_shared<std::vector<std::string>>();
        unsigned generation = 0;
        {
            std::unique_lock<std::mutex> lock(state_->mutex);
            // A message of readers only, with nothing of this link's running, is answered here
            // from what the panel published, as the command server does: no wait for the panel.
            if (state_->running == 0) {
                std::optional<std::vector<std::string>> const answers =
                    table_->runReaders(*line, state_->session);
                if (answers) {
                    lock.unlock();
                    done(joined(*answers));
                    return;
                }
            }
            generation = state_->generation;
            ++state_->running;
        }
        runFrom(table_, executor_, state_, line, 0, responses, generation, std::move(done));
    }

    std::uint8_t statusByte(bool messageAvailable) override {
        // The status model has a lock of its own: no wait for a message that runs.
        return state_->session.status.statusByte(messageAvailable);
    }

    void clear() override {
        std::lock_guard<std::mutex> const lock(state_->mutex);
        ++state_->generation;
        state_->session.deviceClear();
    }

private:
    // Runs the line from `first` on the executor's thread, again after each deferral.
    static void runFrom(std::shared_ptr<scpi::CommandTable const> const& table,
                        Vxi11Executor const& executor, std::shared_ptr<SessionState> const& state,
                        std::shared_ptr<scpi::ParsedLine> const& line, std::size_t first,
                        std::shared_ptr<std::vector<std::string>> const& responses,
                        unsigned generation, std::function<void(std::string)> done) {
        auto task = [table, executor, state, line, first, responses, generation, done]() mutable {
            scpi::RunResult result;
            bool finished = true;
            {
                std::lock_guard<std::mutex> const lock(state->mutex);
                if (state->generation == generation) {
                    result = table->run(*line, first, state->session, *responses);
                    finished = !result.deferred || result.next >= line->commands.size();
                } else {
                    responses->clear();
                }
                if (finished) {
                    --state->running;
                }
            }
            if (!finished) {
                runFrom(table, executor, state, line, result.next, responses, generation,
                        std::move(done));
                return;
            }
            done(joined(*responses));
        };
        if (!executor(std::move(task))) {
            {
                std::lock_guard<std::mutex> const lock(state->mutex);
                --state->running;
            }
            done({});
        }
    }

    std::shared_ptr<scpi::CommandTable const> table_;
    Vxi11Executor executor_;
    std::shared_ptr<SessionState> state_;
};

}  // namespace

Vxi11InstrumentFactory scpiInstruments(std::shared_ptr<scpi::CommandTable const> const& table,
                                       Vxi11Executor const& executor) {
    if (!table || !executor) {
        throw std::invalid_argument("VXI-11 SCPI sessions need a command table and an executor");
    }
    return [table, executor] { return std::make_unique<ScpiInstrument>(table, executor); };
}

}  // namespace yxfrontpanel::runtime
