#include <yxfrontpanel/runtime/panel.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include <signal.h>

namespace yxfrontpanel::runtime {

namespace {

std::atomic<Panel*> signalPanel{nullptr};

extern "C" void stopPanelOnSignal(int /*signal*/) {
    int const savedErrno = errno;
    if (Panel* panel = signalPanel.load()) {
        panel->stopFromSignal();
    }
    errno = savedErrno;
}

}  // namespace

void stopOnSignals(Panel& panel, std::initializer_list<int> signals) {
    signalPanel.store(&panel);
    struct sigaction action {};
    action.sa_handler = stopPanelOnSignal;
    sigemptyset(&action.sa_mask);
    for (int const number : signals) {
        if (::sigaction(number, &action, nullptr) != 0) {
            throw std::system_error(errno, std::generic_category(),
                                    "stopOnSignals: signal " + std::to_string(number));
        }
    }
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
