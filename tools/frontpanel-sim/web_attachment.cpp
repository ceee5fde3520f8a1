#include "web_attachment.h"

#include <yxfrontpanel/runtime/web_panel.h>

#include <iostream>
#include <stdexcept>
#include <utility>

namespace frontpanelsim {

WebAttachment::WebAttachment(Endpoint endpoint, std::string accessToken,
                             std::vector<std::string> hostNames)
    : endpoint_(std::move(endpoint)),
      accessToken_(std::move(accessToken)),
      hostNames_(std::move(hostNames)) {}

WebAttachment::~WebAttachment() = default;

void WebAttachment::attach(SimContext const& context) {
    yxfrontpanel::runtime::WebPanelOptions options;
    options.address = endpoint_.host;
    options.port = endpoint_.port;
    options.accessToken = accessToken_;
    options.hostNames = hostNames_;
    server_ = std::make_unique<yxfrontpanel::runtime::WebPanelServer>(context.panel, options);
    std::string const host =
        endpoint_.host.find(':') == std::string::npos ? endpoint_.host : "[" + endpoint_.host + "]";
    std::cerr << "frontpanel-sim: web panel on http://" << host << ':' << server_->port() << "/"
              << std::endl;
}

void WebAttachment::detach() noexcept { server_.reset(); }

bool WebAttachment::keepsRunning() const { return true; }

}  // namespace frontpanelsim
