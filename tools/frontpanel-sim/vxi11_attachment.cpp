#include "vxi11_attachment.h"

#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/scpi_commands.h>

#include <iostream>
#include <utility>

#include "panel_app.h"
#include "remote_attachment.h"

namespace frontpanelsim {

namespace runtime = yxfrontpanel::runtime;

Vxi11Attachment::Vxi11Attachment(Endpoint address, std::shared_ptr<DeviceErrors> errors)
    : address_(std::move(address)), errors_(std::move(errors)) {}

Vxi11Attachment::~Vxi11Attachment() = default;

void Vxi11Attachment::attach(SimContext const& context) {
    PanelApp& app = context.app;
    runtime::LocalMode mode;
    mode.get = [&app] { return app.isLocal(); };
    mode.set = [&app](bool local) { app.setLocal(local); };
    auto control = std::make_shared<runtime::PanelControl>(context.panel, mode);
    auto table = std::make_shared<runtime::scpi::CommandTable>();
    runtime::scpi::addCommonCommands(*table, demoIdentity());
    runtime::addPanelCommands(*table, control, {});
    runtime::Panel* const panel = &context.panel;
    // Each command runs on the panel's thread, which then publishes the screen and mode for
    // the readers.
    runtime::Vxi11Executor executor = [panel, control](std::function<void()> task) {
        return panel->post([task = std::move(task), control] {
            task();
            control->publish();
        });
    };
    panel->post([control] { control->publish(); });
    runtime::Vxi11ServerOptions options;
    options.host = address_.host;
    options.corePort = address_.port;
    server_ =
        std::make_unique<runtime::Vxi11Server>(runtime::scpiInstruments(table, executor), options);
    server_->start();
    if (errors_) {
        std::shared_ptr<runtime::scpi::DeviceStatus> const device = table->deviceStatus();
        errorSink_ = errors_->add([device](int code, std::string const& text) {
            device->reportError({static_cast<runtime::scpi::ErrorCode>(code), text});
        });
    }
    std::cerr << "frontpanel-sim: VXI-11 on " << address_.host << " (core port "
              << server_->corePort() << ")" << std::endl;
    std::cerr << "frontpanel-sim: VXI-11 " << server_->registration() << std::endl;
}

void Vxi11Attachment::detach() noexcept {
    if (errors_ && errorSink_ != 0) {
        errors_->remove(std::exchange(errorSink_, 0));
    }
    server_.reset();
}

bool Vxi11Attachment::keepsRunning() const { return true; }

std::vector<std::string> Vxi11Attachment::instrumentAddresses() const {
    if (!server_) {
        return {};
    }
    std::string const host =
        address_.host.find(':') == std::string::npos ? address_.host : "[" + address_.host + "]";
    return {"TCPIP::" + host + "::inst0::INSTR"};
}

}  // namespace frontpanelsim
