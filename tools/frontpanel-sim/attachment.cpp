#include "attachment.h"

#include <yxfrontpanel/components.h>

#include <iostream>

#include "input_devices.h"
#include "printed_frames.h"
#if YXFP_HAS_SETTINGS
#include "settings_attachment.h"
#endif
#include "remote_attachment.h"
#include "web_attachment.h"

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
    // One entry per option that plugs something into the run, in the order they attach. The
    // settings come first, so that whatever attaches later finds the stored values in place.
#if YXFP_HAS_SETTINGS
    if (options.settingsFile) {
        attachments.push_back(std::make_unique<SettingsAttachment>(*options.settingsFile));
    }
#endif
    if (!options.listen.empty()) {
        attachments.push_back(std::make_unique<RemoteAttachment>(options.listen));
    }
    if (options.web) {
        attachments.push_back(
            std::make_unique<WebAttachment>(*options.web, options.webToken, options.webHosts));
    }
    if (!options.inputs.empty()) {
        attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    }
    if (options.headless && options.print != PrintMode::None) {
        attachments.push_back(std::make_unique<PrintedFrames>(options.print, std::cout));
    }
    return attachments;
}

}  // namespace frontpanelsim
