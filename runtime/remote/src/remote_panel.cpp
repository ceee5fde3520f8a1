#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/remote_panel.h>

namespace yxfrontpanel::runtime {

IRemotePanel::~IRemotePanel() = default;

std::vector<std::string> IRemotePanel::screenLines() const {
    frontpanelhw::drawing::DisplayBuffer const& frame = screen();
    std::vector<std::string> lines;
    lines.reserve(frame.getLineCount());
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        lines.push_back(frontpanelhw::lineText(frame, line));
    }
    return lines;
}

std::string IRemotePanel::invertedColumnsOf(unsigned line) const {
    return frontpanelhw::formatColumnRanges(frontpanelhw::invertedRanges(screen(), line));
}

std::shared_ptr<PanelSnapshot const> IRemotePanel::published() const { return nullptr; }

PanelSnapshot IRemotePanel::snapshot() const {
    PanelSnapshot result;
    result.lines = screenLines();
    for (unsigned line = 0; line < result.lines.size(); ++line) {
        result.inverted.push_back(invertedColumnsOf(line));
    }
    result.local = isLocal();
    return result;
}

TreeControl::TreeControl(IMenuTree& tree, frontpanelhw::MemoryDisplay const& display)
    : tree_(tree), display_(display) {}

TreeControl::~TreeControl() = default;

bool TreeControl::pressKey(frontpanelhw::PanelKey key) {
    applyKey(tree_, key);
    return false;
}

frontpanelhw::drawing::DisplayBuffer const& TreeControl::screen() const {
    return display_.getLastFrame();
}

bool TreeControl::isLocal() const { return tree_.getLocal(); }

void TreeControl::setLocal(bool local) { tree_.setLocal(local); }

IMenuTree* TreeControl::root() const { return &tree_; }

}  // namespace yxfrontpanel::runtime
