#pragma once

#include <yxfrontpanel/runtime/vxi11_server.h>

#include <memory>

#include "attachment.h"
#include "device_errors.h"
#include "endpoint.h"

namespace frontpanelsim {

/** --listen vxi11:HOST[:PORT]: the panel's commands over VXI-11, with the demo's identity and
 *  its LOCAL/REMOTE mode, each link a session of its own. The instrument's own errors
 *  (`errors`) go into every link's error queue while it serves. It keeps a --headless run going
 *  until SIGINT or SIGTERM. */
class Vxi11Attachment : public Attachment {
public:
    /** Serves on `address`; reports what `errors` (may be null) passes on. */
    explicit Vxi11Attachment(Endpoint address, std::shared_ptr<DeviceErrors> errors = nullptr);
    ~Vxi11Attachment() override;

    /** Binds the core channel (and the portmapper when it can) and starts serving.
     *  @throws std::system_error when the core channel cannot be bound. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    bool keepsRunning() const override;
    /** `TCPIP::HOST::inst0::INSTR` while serving. */
    std::vector<std::string> instrumentAddresses() const override;

private:
    Endpoint address_;
    std::shared_ptr<DeviceErrors> errors_;
    std::size_t errorSink_ = 0;
    std::unique_ptr<yxfrontpanel::runtime::Vxi11Server> server_;
};

}  // namespace frontpanelsim
