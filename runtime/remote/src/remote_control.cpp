#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/remote_control.h>
#include <yxfrontpanel/runtime/remote_panel.h>

#include <memory>
#include <utility>

namespace yxfrontpanel::runtime {

RemoteControl::RemoteControl(Panel& panel, RemoteControlOptions options)
    : panel_(panel),
      options_(std::move(options)),
      control_(std::make_shared<PanelControl>(panel, options_.localMode)),
      table_(std::make_shared<scpi::CommandTable>()) {
    scpi::addCommonCommands(*table_, options_.identity, options_.hooks);
    addPanelCommands(*table_, control_, options_.panel);
    if (options_.screenshotPng) {
        scpi::addScreenshotCommands(*table_, options_.screenshotPng);
    }
}

RemoteControl::~RemoteControl() { stop(); }

scpi::CommandTable& RemoteControl::commands() { return *table_; }

PanelControl& RemoteControl::control() { return *control_; }

void RemoteControl::setCondition(scpi::StatusModel::Set set, std::uint16_t mask,
                                 std::uint16_t bits) {
    table_->deviceStatus()->setCondition(set, mask, bits);
}

void RemoteControl::reportError(int code, std::string text) {
    if (code == 0) {
        return;
    }
    table_->deviceStatus()->reportError(
        scpi::ErrorEntry{static_cast<scpi::ErrorCode>(code), std::move(text)});
}

void RemoteControl::start() {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (server_) {
        return;
    }
    Panel* const panel = &panel_;
    std::shared_ptr<PanelControl> const control = control_;
    // After each batch of remote work the panel's thread publishes the screen and mode, so that
    // the next read that needs no change is answered from them without waiting for the panel.
    auto server = std::make_unique<RemoteServer>(
        table_,
        [panel, control](std::function<void()> task) {
            return panel->post([task = std::move(task), control] {
                task();
                control->publish();
            });
        },
        options_.server);
    server->start();
    server_ = std::move(server);  // kept only once it serves, so that a failed start can retry
    // Frames (the panel's own keys, timers, the application) publish too; the listener is added
    // on the panel's thread, which iterates the listeners.
    if (!frameListener_) {
        frameListener_ = std::make_shared<std::size_t>(0);  // stop gave the previous one up
    }
    std::weak_ptr<std::size_t> const frameListener = frameListener_;
    panel->post([panel, control, frameListener] {
        control->publish();
        if (auto const id = frameListener.lock()) {
            *id = panel->addFrameListener(
                [control](frontpanelhw::drawing::DisplayBuffer const& /*frame*/) {
                    control->publish();
                });
        }
    });
}

void RemoteControl::stop() {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (server_) {
        server_->stop();
        server_.reset();  // a later start binds afresh
    }
    // Remove the frame listener on the panel's thread; a stopped panel no longer calls it.
    if (frameListener_) {
        Panel* const panel = &panel_;
        std::shared_ptr<std::size_t> const id = std::exchange(frameListener_, nullptr);
        panel->post([panel, id] {
            if (*id != 0) {
                panel->removeFrameListener(*id);
            }
        });
    }
}

std::vector<std::string> RemoteControl::addresses() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return server_ ? server_->addresses() : std::vector<std::string>{};
}

std::size_t RemoteControl::clientCount() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return server_ ? server_->clientCount() : 0;
}

std::optional<std::string> RemoteControl::failure() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return server_ ? server_->failure() : std::nullopt;
}

}  // namespace yxfrontpanel::runtime
