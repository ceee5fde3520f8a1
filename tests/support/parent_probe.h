#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/control.h>

#include <optional>

namespace yxfp_test {

/** Stands in for a control's parent: installs both callbacks and records what they receive. */
struct ParentProbe {
    int draws = 0;
    int redraws = 0;
    yxfrontpanel::drawing::Point lastLocation{0, 0};
    std::optional<frontpanelhw::drawing::DisplayBuffer> lastBuffer;

    void attach(yxfrontpanel::Control& control) {
        control.onDrawCallback([this](yxfrontpanel::drawing::Point location,
                                      frontpanelhw::drawing::DisplayBuffer& buffer) {
            ++draws;
            lastLocation = location;
            lastBuffer = buffer;
        });
        control.setRedrawParentCallback([this] { ++redraws; });
    }
};

}  // namespace yxfp_test
