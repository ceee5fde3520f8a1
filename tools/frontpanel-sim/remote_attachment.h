#pragma once

#include <yxfrontpanel/runtime/remote_control.h>

#include <memory>
#include <string>
#include <vector>

#include "attachment.h"
#include "device_errors.h"

namespace frontpanelsim {

/** What the demo answers to `*IDN?`, over every remote channel. */
yxfrontpanel::runtime::scpi::Identity demoIdentity();

/** --listen: the panel's command server on the given addresses, with the demo's identity and
 *  its LOCAL/REMOTE mode. The instrument's own errors (`errors`) go into every client's error
 *  queue while it serves. It keeps a --headless run going until SIGINT, SIGTERM or SIGHUP. */
class RemoteAttachment : public Attachment {
public:
    /** Serves on `addresses`; reports what `errors` (may be null) passes on. */
    explicit RemoteAttachment(std::vector<std::string> addresses,
                              std::shared_ptr<DeviceErrors> errors = nullptr);
    ~RemoteAttachment() override;

    /** Binds the addresses and starts serving. @throws std::system_error naming an address
     *  that cannot be bound. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    bool keepsRunning() const override;
    /** The bound addresses while attached (an ephemeral port with its number). */
    std::vector<std::string> addresses() const;
    /** `TCPIP::HOST::PORT::SOCKET` for each bound TCP address (none for Unix sockets). */
    std::vector<std::string> instrumentAddresses() const override;

private:
    std::vector<std::string> addresses_;
    std::shared_ptr<DeviceErrors> errors_;
    std::size_t errorSink_ = 0;
    std::unique_ptr<yxfrontpanel::runtime::RemoteControl> remote_;
};

}  // namespace frontpanelsim
