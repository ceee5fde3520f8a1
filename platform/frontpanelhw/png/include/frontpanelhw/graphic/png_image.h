#pragma once

#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/png_export.h>
#include <frontpanelhw/graphic/rgb_color.h>

#include <cstdint>
#include <vector>

namespace frontpanelhw::graphic {

/** The PNG file of `bitmap` as the display shows it: 1-bit greyscale, lit pixels white on
 *  black, the same size. @throws std::runtime_error when the encoder fails (out of memory). */
FRONTPANELHW_PNG_EXPORT std::vector<std::uint8_t> encodePng(MonoBitmap const& bitmap);

/** The PNG file of `bitmap` in colour: 8-bit RGB, lit pixels `foreground`, dark ones
 *  `background`, every pixel drawn as a `scale` x `scale` square (scale 1..16), for pictures
 *  meant for people. @throws std::invalid_argument for a scale outside 1..16;
 *  std::runtime_error when the encoder fails. */
FRONTPANELHW_PNG_EXPORT std::vector<std::uint8_t> encodePngRgb(MonoBitmap const& bitmap,
                                                               RgbColor foreground,
                                                               RgbColor background,
                                                               unsigned scale = 1);

}  // namespace frontpanelhw::graphic
