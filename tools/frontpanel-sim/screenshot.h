#pragma once

#include <frontpanelhw/display_types.h>

#include <functional>
#include <string>

namespace yxfrontpanel::runtime {
class Panel;
}

namespace frontpanelsim {

/** Whether this build can make screenshots (the PNG component was built). */
bool screenshotsAvailable();

/** `screen` as a PNG file: the graphic displays' cell renderer with the built-in 6x8 font,
 *  inverted cells inverted, one pixel per font pixel, lit pixels white on black (columns x 6
 *  by lines x 8 pixels). @throws std::runtime_error when the build has no PNG support. */
std::string screenshotPng(frontpanelhw::drawing::DisplayBuffer const& screen);

/** What every channel that offers screenshots gets (`HCOPy:SDUMp:DATA?`, the web panel's
 *  `/screenshot.png`): the panel's shown screen through `screenshotPng`, called on the panel's
 *  thread. Empty when the build has no PNG support. */
std::function<std::string()> screenshotProvider(yxfrontpanel::runtime::Panel& panel);

}  // namespace frontpanelsim
