#include "attachment.h"

#include <yxfrontpanel/components.h>

#include <iostream>

#include "device_errors.h"
#include "input_devices.h"
#include "printed_frames.h"
#if YXFP_HAS_SETTINGS
#include "settings_attachment.h"
#endif
#if YXFP_HAS_REMOTE
#include "remote_attachment.h"
#endif
#if YXFP_HAS_VXI11
#include "vxi11_attachment.h"
#endif
#if YXFP_HAS_WEB && YXFP_HAS_REMOTE
#include "web_attachment.h"
#endif

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

std::vector<std::string> Attachment::instrumentAddresses() const { return {}; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
    // The instrument's own errors (a failed settings save) reach the remote channels' clients.
    auto const errors = std::make_shared<DeviceErrors>();
    // One entry per option that plugs something into the run, in the order they attach. The
    // settings come first, so that whatever attaches later finds the stored values in place.
#if YXFP_HAS_SETTINGS
    if (options.settingsFile) {
        attachments.push_back(std::make_unique<SettingsAttachment>(*options.settingsFile, errors));
    }
#endif
    // The options of a part this build left out were refused by parseOptions.
#if YXFP_HAS_REMOTE
    if (!options.listen.empty()) {
        attachments.push_back(std::make_unique<RemoteAttachment>(options.listen, errors));
    }
#endif
#if YXFP_HAS_VXI11
    if (options.vxi11) {
        attachments.push_back(std::make_unique<Vxi11Attachment>(*options.vxi11, errors));
    }
#endif
#if YXFP_HAS_WEB && YXFP_HAS_REMOTE
    if (options.web) {
        // The servers above attach first; the web panel lists what they serve.
        std::vector<Attachment const*> servers;
        for (auto const& attachment : attachments) {
            servers.push_back(attachment.get());
        }
        attachments.push_back(std::make_unique<WebAttachment>(*options.web, options.webToken,
                                                              options.webHosts, servers));
    }
#endif
    if (!options.inputs.empty()) {
        attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    }
    if (options.headless && options.print != PrintMode::None) {
        attachments.push_back(std::make_unique<PrintedFrames>(options.print, std::cout));
    }
    return attachments;
}

}  // namespace frontpanelsim
