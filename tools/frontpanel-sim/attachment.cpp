#include "attachment.h"

#include <iostream>

#include "input_devices.h"
#include "printed_frames.h"
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
    if (!options.inputs.empty()) {
        attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    }
    if (options.headless && options.print != PrintMode::None) {
        attachments.push_back(std::make_unique<PrintedFrames>(options.print, std::cout));
    }
    return attachments;
}

}  // namespace frontpanelsim
