#include "frame_printer.h"

#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/runtime/screen_print.h>

#include <string>

namespace frontpanelsim {

// The runtime prints screens for the command server's client too: one format in one place.

std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame, unsigned line) {
    return yxfrontpanel::runtime::formatColumnRanges(frontpanelhw::invertedRanges(frame, line));
}

std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame) {
    return yxfrontpanel::runtime::formatFrame(frame);
}

}  // namespace frontpanelsim
