#include "attachment.h"

#include <iostream>

#include "input_devices.h"
#include "printed_frames.h"

namespace frontpanelsim {

// Out of line so that the interface's vtable has one home.
Attachment::~Attachment() = default;

bool Attachment::keepsRunning() const { return false; }

Attachments attachmentsFor(SimOptions const& options) {
    Attachments attachments;
    // One entry per option that plugs something into the run, in the order they attach, e.g.
    //     if (options.listen) attachments.push_back(std::make_unique<...>(*options.listen));
    if (!options.inputs.empty()) {
        attachments.push_back(std::make_unique<InputDevices>(options.inputs));
    }
    if (options.headless && options.print != PrintMode::None) {
        attachments.push_back(std::make_unique<PrintedFrames>(options.print, std::cout));
    }
    return attachments;
}

}  // namespace frontpanelsim
