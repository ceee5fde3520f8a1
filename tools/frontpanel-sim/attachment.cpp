#include "attachment.h"

#ifdef YXFP_HAVE_SETTINGS
#include "settings_attachment.h"
#endif

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
#ifdef YXFP_HAVE_SETTINGS
    if (options.settingsFile) {
        attachments.push_back(std::make_unique<SettingsAttachment>(*options.settingsFile));
    }
#else
    static_cast<void>(options);
#endif
    // One entry per option that plugs something into the run, in the order they attach, e.g.
    //     if (options.listen) attachments.push_back(std::make_unique<...>(*options.listen));
    return attachments;
}

}  // namespace frontpanelsim
