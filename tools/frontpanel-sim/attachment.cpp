#include "attachment.h"

#include "web_attachment.h"

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
    // One entry per option that plugs something into the run, in the order they attach.
    if (options.web) {
        attachments.push_back(std::make_unique<WebAttachment>(*options.web, options.webToken));
    }
    return attachments;
}

}  // namespace frontpanelsim
