#include <yxfrontpanel/runtime/panel.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <signal.h>

namespace yxfrontpanel::runtime {

namespace {

std::atomic<Panel*> signalPanel{nullptr};

// The disposition each signal had before this handler was installed on it; the handler passes
// a signal on to it while no panel is attached. Written before the handler is installed.
struct sigaction passedOn[NSIG];

// Serialises installing and restoring handlers (not the handler itself).
std::mutex installMutex;

extern "C" void stopPanelOnSignal(int number) {
    int const savedErrno = errno;
    if (Panel* panel = signalPanel.load()) {
        panel->stopFromSignal();
    } else if (number > 0 && number < NSIG) {
        // No panel: the signal does what it did before (both calls are async-signal-safe;
        // the raised signal arrives when this handler returns).
        ::sigaction(number, &passedOn[number], nullptr);
        ::raise(number);
    }
    errno = savedErrno;
}

bool isOurs(struct sigaction const& action) {
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == stopPanelOnSignal;
}

}  // namespace

/** What a guard restores: each signal's handler before it, and the panel before it. */
class SignalStopGuard::Saved {
public:
    explicit Saved(Panel* previousPanel) : previousPanel_(previousPanel) {}

    /** Installs the handler on `number`, remembering what was there. */
    void install(int number) {
        struct sigaction action {};
        action.sa_handler = stopPanelOnSignal;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        struct sigaction previous {};
        if (::sigaction(number, nullptr, &previous) != 0) {
            throw std::system_error(errno, std::generic_category(),
                                    "stopOnSignals: signal " + std::to_string(number));
        }
        if (!isOurs(previous)) {
            passedOn[number] = previous;
        }
        if (::sigaction(number, &action, nullptr) != 0) {
            throw std::system_error(errno, std::generic_category(),
                                    "stopOnSignals: signal " + std::to_string(number));
        }
        previous_.emplace_back(number, previous);
    }

    /** Puts back the handlers, the last installed first, and the previous panel. Under
     *  installMutex. */
    void restore() noexcept {
        for (auto entry = previous_.rbegin(); entry != previous_.rend(); ++entry) {
            ::sigaction(entry->first, &entry->second, nullptr);
        }
        previous_.clear();
        signalPanel.store(previousPanel_);
    }

private:
    Panel* previousPanel_;
    std::vector<std::pair<int, struct sigaction>> previous_;
};

SignalStopGuard::SignalStopGuard(std::unique_ptr<Saved> saved) noexcept
    : saved_(std::move(saved)) {}

SignalStopGuard::SignalStopGuard(SignalStopGuard&& other) noexcept = default;

SignalStopGuard::~SignalStopGuard() {
    if (saved_) {
        std::lock_guard<std::mutex> const lock(installMutex);
        saved_->restore();
    }
}

SignalStopGuard stopOnSignals(Panel& panel, std::initializer_list<int> signals) {
    auto saved = std::make_unique<SignalStopGuard::Saved>(signalPanel.load());
    {
        std::lock_guard<std::mutex> const lock(installMutex);
        signalPanel.store(&panel);
        try {
            for (int const number : signals) {
                if (number <= 0 || number >= NSIG) {
                    throw std::system_error(EINVAL, std::generic_category(),
                                            "stopOnSignals: signal " + std::to_string(number));
                }
                saved->install(number);
            }
        } catch (...) {
            saved->restore();
            throw;
        }
    }
    return SignalStopGuard(std::move(saved));
}

void clearSignalStop() noexcept { signalPanel.store(nullptr); }

namespace detail {

/** Forgets `panel` when it is the one the handlers stop (its destructor calls this). */
void forgetSignalPanel(Panel* panel) noexcept {
    Panel* expected = panel;
    signalPanel.compare_exchange_strong(expected, nullptr);
}

}  // namespace detail

}  // namespace yxfrontpanel::runtime
