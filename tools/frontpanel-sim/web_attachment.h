#pragma once

#include <memory>
#include <string>

#include "attachment.h"
#include "endpoint.h"

namespace yxfrontpanel::runtime {
class WebPanelServer;
}

namespace frontpanelsim {

/** --web: serves the demo panel to browsers while the run lasts and says where on standard
 *  error ("frontpanel-sim: web panel on http://HOST:PORT/"). */
class WebAttachment : public Attachment {
public:
    WebAttachment(Endpoint endpoint, std::string accessToken);
    ~WebAttachment() override;

    /** @throws std::runtime_error when the address cannot be served. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    /** True: a server keeps a --headless run going. */
    bool keepsRunning() const override;

private:
    Endpoint endpoint_;
    std::string accessToken_;
    std::unique_ptr<yxfrontpanel::runtime::WebPanelServer> server_;
};

}  // namespace frontpanelsim
