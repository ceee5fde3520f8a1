#pragma once

#include <string_view>

namespace yxfrontpanel::runtime::detail {

/** The page served at `/`: HTML, CSS and JavaScript in one document, nothing loaded from
 *  elsewhere. Generated at build time from panel_page.html. */
std::string_view webPage();

}  // namespace yxfrontpanel::runtime::detail
