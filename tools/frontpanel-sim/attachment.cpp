#include "attachment.h"

#ifdef YXFP_HAVE_SETTINGS
#include "settings_attachment.h"
#endif
#include "web_attachment.h"

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
    // One entry per option that plugs something into the run, in the order they attach. The
    // settings come first, so that whatever attaches later finds the stored values in place.
#ifdef YXFP_HAVE_SETTINGS
    if (options.settingsFile) {
        attachments.push_back(std::make_unique<SettingsAttachment>(*options.settingsFile));
    }
#endif
    if (options.web) {
        attachments.push_back(std::make_unique<WebAttachment>(*options.web, options.webToken));
    }
    return attachments;
}

}  // namespace frontpanelsim
