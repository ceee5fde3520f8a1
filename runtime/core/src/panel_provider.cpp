#include "panel_provider.h"

#include <utility>

namespace yxfrontpanel::runtime::detail {

PanelProvider::PanelProvider(unsigned chars, unsigned lines, Sink sink)
    : chars_(chars), lines_(lines), sink_(std::move(sink)) {}

PanelProvider::~PanelProvider() = default;

void PanelProvider::enableDrawing(bool enable) { enabled_.store(enable); }

bool PanelProvider::draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const {
    return enabled_.load() && sink_(buffer);
}

unsigned PanelProvider::getLines() const { return lines_; }

unsigned PanelProvider::getChars() const { return chars_; }

}  // namespace yxfrontpanel::runtime::detail
