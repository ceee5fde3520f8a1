#pragma once

#include <frontpanelhw/graphic/export.h>

#include <cstdint>

namespace frontpanelhw::graphic {

/** A colour, 8 bits per component: how lit and dark pixels look on a colour screen or picture. */
struct FRONTPANELHW_GRAPHIC_EXPORT RgbColor {
    /** Red. */
    std::uint8_t red = 0;
    /** Green. */
    std::uint8_t green = 0;
    /** Blue. */
    std::uint8_t blue = 0;
};

}  // namespace frontpanelhw::graphic
