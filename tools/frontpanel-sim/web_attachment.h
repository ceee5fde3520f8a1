#pragma once

#include <memory>
#include <string>
#include <vector>

#include "attachment.h"
#include "endpoint.h"

namespace yxfrontpanel::runtime {
class WebPanelServer;
}

namespace frontpanelsim {

/** --web: serves the demo panel to browsers while the run lasts and says where on standard
 *  error ("frontpanel-sim: web panel on http://HOST:PORT/"), with the demo's identity for the
 *  LXI identification, the interfaces the other servers serve and the screenshots of
 *  `HCOPy:SDUMp:DATA?`. */
class WebAttachment : public Attachment {
public:
    /** Serves at `endpoint` with `accessToken` (may be empty) and the further `hostNames`;
     *  lists the interfaces of `servers` (attached before it, detached after it). */
    WebAttachment(Endpoint endpoint, std::string accessToken, std::vector<std::string> hostNames,
                  std::vector<Attachment const*> servers = {});
    ~WebAttachment() override;

    /** @throws std::runtime_error when the address cannot be served. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    /** True: a server keeps a --headless run going. */
    bool keepsRunning() const override;

private:
    Endpoint endpoint_;
    std::string accessToken_;
    std::vector<std::string> hostNames_;
    std::vector<Attachment const*> servers_;
    std::unique_ptr<yxfrontpanel::runtime::WebPanelServer> server_;
};

}  // namespace frontpanelsim
