#pragma once

#include <yxfrontpanel/runtime/remote_control.h>

#include <memory>
#include <string>
#include <vector>

#include "attachment.h"

namespace frontpanelsim {

/** What the demo answers to `*IDN?`, over every remote channel. */
yxfrontpanel::runtime::scpi::Identity demoIdentity();

/** --listen: the panel's command server on the given addresses, with the demo's identity and
 *  its LOCAL/REMOTE mode. It keeps a --headless run going until SIGINT, SIGTERM or SIGHUP. */
class RemoteAttachment : public Attachment {
public:
    explicit RemoteAttachment(std::vector<std::string> addresses);
    ~RemoteAttachment() override;

    /** Binds the addresses and starts serving. @throws std::system_error naming an address
     *  that cannot be bound. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    bool keepsRunning() const override;

private:
    std::vector<std::string> addresses_;
    std::unique_ptr<yxfrontpanel::runtime::RemoteControl> remote_;
};

}  // namespace frontpanelsim
