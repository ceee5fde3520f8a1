#pragma once

#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime::detail {

/** One part of the page: its path, its Content-Type and its bytes. */
struct WebResource {
    std::string_view path;
    std::string_view contentType;
    std::string_view body;
};

/** The page at `/` and its style sheet and script (`/panel.css`, `/panel.js`): nothing is loaded
 *  from elsewhere, and no script or style is inline, so the page's Content-Security-Policy can
 *  allow only the page's own parts. Generated at build time from panel_page.{html,css,js}. */
std::vector<WebResource> const& webResources();

/** The part served at `path`; null for any other path. */
WebResource const* findWebResource(std::string_view path);

}  // namespace yxfrontpanel::runtime::detail
