#include "remote_attachment.h"

#include <iostream>
#include <stdexcept>
#include <utility>

#include "screenshot.h"

namespace frontpanelsim {

yxfrontpanel::runtime::scpi::Identity demoIdentity() {
    return {"YxFrontPanel", "frontpanel-sim demo PSU", "YX-2026-00042", "1.4.2"};
}

RemoteAttachment::RemoteAttachment(std::vector<std::string> addresses,
                                   std::shared_ptr<DeviceErrors> errors)
    : addresses_(std::move(addresses)), errors_(std::move(errors)) {}

// The server stops (its thread joined) before the addresses go.
RemoteAttachment::~RemoteAttachment() = default;

void RemoteAttachment::attach(SimContext const& context) {
    yxfrontpanel::runtime::RemoteControlOptions options;
    options.server.listen = addresses_;
    options.identity = demoIdentity();
    PanelApp& app = context.app;
    options.localMode.get = [&app] { return app.isLocal(); };
    options.localMode.set = [&app](bool local) { app.setLocal(local); };
    options.hooks.reset = [&app] {
        if (!app.resetDefaults()) {
            throw std::runtime_error("the defaults could not be restored");
        }
    };
    options.screenshotPng = screenshotProvider(context.panel);
    remote_ = std::make_unique<yxfrontpanel::runtime::RemoteControl>(context.panel, options);
    remote_->start();
    if (errors_) {
        yxfrontpanel::runtime::RemoteControl* const remote = remote_.get();
        errorSink_ = errors_->add(
            [remote](int code, std::string const& text) { remote->reportError(code, text); });
    }
    // The bound addresses, with the port the system picked for port 0, for scripts to read.
    for (std::string const& address : remote_->addresses()) {
        std::cerr << "frontpanel-sim: remote control on " << address << std::endl;
    }
}

void RemoteAttachment::detach() noexcept {
    if (errors_ && errorSink_ != 0) {
        errors_->remove(std::exchange(errorSink_, 0));
    }
    remote_.reset();
}

std::vector<std::string> RemoteAttachment::addresses() const {
    return remote_ ? remote_->addresses() : std::vector<std::string>{};
}

std::vector<std::string> RemoteAttachment::instrumentAddresses() const {
    std::vector<std::string> resources;
    for (std::string const& address : addresses()) {
        std::size_t const colon = address.rfind(':');
        if (address.rfind("unix:", 0) == 0 || colon == std::string::npos) {
            continue;  // a Unix socket has no VISA resource string
        }
        resources.push_back("TCPIP::" + address.substr(0, colon) +
                            "::" + address.substr(colon + 1) + "::SOCKET");
    }
    return resources;
}

bool RemoteAttachment::keepsRunning() const { return true; }

}  // namespace frontpanelsim
