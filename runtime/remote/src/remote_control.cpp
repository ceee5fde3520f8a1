#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/remote_control.h>
#include <yxfrontpanel/runtime/remote_panel.h>

#include <utility>

namespace yxfrontpanel::runtime {

RemoteControl::RemoteControl(Panel& panel, RemoteControlOptions options)
    : panel_(panel),
      options_(std::move(options)),
      control_(std::make_shared<PanelControl>(panel, options_.localMode)),
      table_(std::make_shared<scpi::CommandTable>()) {
    scpi::addCommonCommands(*table_, options_.identity);
    addPanelCommands(*table_, control_, options_.panel);
}

RemoteControl::~RemoteControl() { stop(); }

scpi::CommandTable& RemoteControl::commands() { return *table_; }

PanelControl& RemoteControl::control() { return *control_; }

void RemoteControl::start() {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (server_) {
        return;
    }
    Panel* const panel = &panel_;
    auto server = std::make_unique<RemoteServer>(
        table_, [panel](std::function<void()> task) { return panel->post(std::move(task)); },
        options_.server);
    server->start();
    server_ = std::move(server);  // kept only once it serves, so that a failed start can retry
}

void RemoteControl::stop() {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (server_) {
        server_->stop();
        server_.reset();  // a later start binds afresh
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

}  // namespace yxfrontpanel::runtime
