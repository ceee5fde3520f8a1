#include "printed_frames.h"

#include <frontpanelhw/screen_text.h>

#include <ostream>

namespace frontpanelsim {

PrintedFrames::PrintedFrames(PrintMode mode, std::ostream& out) : mode_(mode), out_(out) {}

PrintedFrames::~PrintedFrames() = default;

void PrintedFrames::attach(SimContext const& context) {
    panel_ = &context.panel;
    listener_ = context.panel.addFrameListener(
        [this](frontpanelhw::drawing::DisplayBuffer const& frame) { frames_.push_back(frame); });
}

void PrintedFrames::detach() noexcept {
    if (panel_ != nullptr) {
        panel_->removeFrameListener(listener_);
        panel_ = nullptr;
    }
    std::size_t const first = mode_ == PrintMode::Last && !frames_.empty() ? frames_.size() - 1 : 0;
    if (mode_ == PrintMode::None) {
        return;
    }
    for (std::size_t index = first; index < frames_.size(); ++index) {
        out_ << "frame " << index + 1 << '\n' << frontpanelhw::formatFrame(frames_[index]);
    }
    out_.flush();
}

}  // namespace frontpanelsim
