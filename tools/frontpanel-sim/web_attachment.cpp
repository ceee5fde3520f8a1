#include "web_attachment.h"

#include <yxfrontpanel/runtime/web_panel.h>

#include <iostream>
#include <stdexcept>
#include <utility>

#include "remote_attachment.h"
#include "screenshot.h"

namespace frontpanelsim {

WebAttachment::WebAttachment(Endpoint endpoint, std::string accessToken,
                             std::vector<std::string> hostNames,
                             std::vector<Attachment const*> servers)
    : endpoint_(std::move(endpoint)),
      accessToken_(std::move(accessToken)),
      hostNames_(std::move(hostNames)),
      servers_(std::move(servers)) {}

WebAttachment::~WebAttachment() = default;

void WebAttachment::attach(SimContext const& context) {
    yxfrontpanel::runtime::WebPanelOptions options;
    options.address = endpoint_.host;
    options.port = endpoint_.port;
    options.accessToken = accessToken_;
    options.hostNames = hostNames_;
    options.identity = demoIdentity();
    for (Attachment const* server : servers_) {
        for (std::string& resource : server->instrumentAddresses()) {
            options.instrumentAddresses.push_back(std::move(resource));
        }
    }
    options.screenshotPng = screenshotProvider(context.panel);
    server_ = std::make_unique<yxfrontpanel::runtime::WebPanelServer>(context.panel, options);
    std::string const host =
        endpoint_.host.find(':') == std::string::npos ? endpoint_.host : "[" + endpoint_.host + "]";
    std::cerr << "frontpanel-sim: web panel on http://" << host << ':' << server_->port() << "/"
              << std::endl;
}

void WebAttachment::detach() noexcept { server_.reset(); }

bool WebAttachment::keepsRunning() const { return true; }

}  // namespace frontpanelsim
