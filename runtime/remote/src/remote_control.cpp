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
    if (server_) {
        return;
    }
    Panel* const panel = &panel_;
    server_ = std::make_unique<RemoteServer>(
        table_, [panel](std::function<void()> task) { return panel->post(std::move(task)); },
        options_.server);
    server_->start();
}

void RemoteControl::stop() {
    if (server_) {
        server_->stop();
    }
}

std::vector<std::string> RemoteControl::addresses() const {
    return server_ ? server_->addresses() : std::vector<std::string>{};
}

std::size_t RemoteControl::clientCount() const { return server_ ? server_->clientCount() : 0; }

std::optional<std::string> RemoteControl::failure() const {
    return server_ ? server_->failure() : std::nullopt;
}

}  // namespace yxfrontpanel::runtime
