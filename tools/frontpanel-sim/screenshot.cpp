#include "screenshot.h"

#include <frontpanelhw/graphic/cell_renderer.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/mono_bitmap.h>
#include <yxfrontpanel/components.h>
#include <yxfrontpanel/runtime/panel.h>

#include <stdexcept>
#include <vector>

#if YXFP_HAS_PNG
#include <frontpanelhw/graphic/png_image.h>
#endif

namespace frontpanelsim {

bool screenshotsAvailable() { return YXFP_HAS_PNG != 0; }

std::string screenshotPng(frontpanelhw::drawing::DisplayBuffer const& screen) {
    using namespace frontpanelhw::graphic;
    CellRenderer renderer(Font::builtin6x8());
    MonoBitmap bitmap(screen.getChars() * renderer.font().cellWidth(),
                      screen.getLineCount() * renderer.font().cellHeight());
    renderer.render(screen, bitmap);
#if YXFP_HAS_PNG
    std::vector<std::uint8_t> const png = encodePng(bitmap);
    return std::string(png.begin(), png.end());
#else
    throw std::runtime_error("this build has no PNG support");
#endif
}

std::function<std::string()> screenshotProvider(yxfrontpanel::runtime::Panel& panel) {
    if (!screenshotsAvailable()) {
        return {};
    }
    yxfrontpanel::runtime::Panel* const shown = &panel;
    return [shown] { return screenshotPng(shown->shownFrame()); };
}

}  // namespace frontpanelsim
