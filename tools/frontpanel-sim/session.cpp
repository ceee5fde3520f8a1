#include "session.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace frontpanelsim {

namespace {

constexpr std::chrono::milliseconds kInteractiveIdle{60'000};

}  // namespace

yxfrontpanel::runtime::PanelOptions panelOptionsFor(SimOptions const& options, RunKind kind,
                                                    Attachments const& attachments) {
    yxfrontpanel::runtime::PanelOptions panelOptions;
    bool const scripted = kind == RunKind::KeyScript;
    if (scripted || (kind == RunKind::Headless && options.print != PrintMode::None)) {
        panelOptions.framesPerSecond = 0;  // the printed frames are the output: keep each one
    }
    panelOptions.idleTimeout =
        options.idle.value_or(scripted ? std::chrono::milliseconds{0} : kInteractiveIdle);
    panelOptions.stopWhenInputsClose =
        std::none_of(attachments.begin(), attachments.end(),
                     [](auto const& attachment) { return attachment->keepsRunning(); });
    return panelOptions;
}

Session::Session(frontpanelhw::IDisplay& display,
                 yxfrontpanel::runtime::PanelOptions const& panelOptions,
                 std::shared_ptr<yxfrontpanel::runtime::IClock> clock, AppFactory const& makeApp,
                 SimOptions const& options, RunKind kind)
    : options_(options),
      kind_(kind),
      panel_(display, panelOptions, std::move(clock)),
      app_(makeApp(panel_.provider())) {
    panel_.setRoot(app_->root());
    panel_.setHomeScreen([app = app_.get()](yxfrontpanel::IDrawingProvider const& provider) {
        app->drawHomeScreen(provider);
    });
}

Session::~Session() { detachAll(); }

void Session::attach(Attachments attachments) {
    for (auto& attachment : attachments) {
        try {
            attachment->attach(SimContext{panel_, *app_, options_, kind_});
        } catch (...) {
            detachAll();
            throw;
        }
        attached_.push_back(std::move(attachment));
    }
}

Attachments Session::detach() noexcept {
    Attachments detached;
    for (auto attachment = attached_.rbegin(); attachment != attached_.rend(); ++attachment) {
        (*attachment)->detach();
    }
    detached.swap(attached_);
    return detached;
}

void Session::detachAll() noexcept {
    while (!attached_.empty()) {
        attached_.back()->detach();
        attached_.pop_back();
    }
}

yxfrontpanel::runtime::Panel& Session::panel() { return panel_; }

PanelApp& Session::app() { return *app_; }

yxfrontpanel::runtime::SignalStopGuard stopOnEndSignals(yxfrontpanel::runtime::Panel& panel) {
    return yxfrontpanel::runtime::stopOnSignals(panel, {SIGINT, SIGTERM, SIGHUP});
}

}  // namespace frontpanelsim
