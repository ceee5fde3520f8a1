#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/remote_panel.h>

#include <utility>

namespace yxfrontpanel::runtime {

PanelControl::PanelControl(Panel& panel, LocalMode mode) : panel_(panel), mode_(std::move(mode)) {}

PanelControl::~PanelControl() = default;

bool PanelControl::pressKey(frontpanelhw::PanelKey key) {
    panel_.pressKey(key);
    return true;
}

frontpanelhw::drawing::DisplayBuffer const& PanelControl::screen() const {
    return panel_.homeScreenShown() ? panel_.shownFrame() : panel_.currentScreen();
}

bool PanelControl::isLocal() const {
    if (mode_.get) {
        return mode_.get();
    }
    IMenuTree const* const tree = panel_.root();
    return tree != nullptr && tree->getLocal();
}

void PanelControl::setLocal(bool local) {
    if (mode_.set) {
        mode_.set(local);
        return;
    }
    if (IMenuTree* const tree = panel_.root()) {
        tree->setLocal(local);
    }
}

IMenuTree* PanelControl::root() const { return panel_.root(); }

void PanelControl::publish() {
    auto next = std::make_shared<PanelSnapshot const>(snapshot());
    std::lock_guard<std::mutex> const lock(publishedMutex_);
    if (!published_ || published_->lines != next->lines || published_->inverted != next->inverted ||
        published_->local != next->local) {
        published_ = std::move(next);
    }
}

std::shared_ptr<PanelSnapshot const> PanelControl::published() const {
    std::lock_guard<std::mutex> const lock(publishedMutex_);
    return published_;
}

}  // namespace yxfrontpanel::runtime
