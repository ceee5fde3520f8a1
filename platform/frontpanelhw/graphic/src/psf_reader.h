#pragma once

// Loading PC screen fonts (PSF2 and PSF1) from untrusted bytes and files.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "font_data.h"

namespace frontpanelhw::graphic {

/** The largest font file accepted, compressed or not: far above any console font. */
constexpr std::size_t kMaxFontFileBytes = 4u << 20;

/** The font in `bytes` (a PSF2 or PSF1 file, not compressed). Glyphs map to code points through
 *  the font's Unicode table; a font without one is taken to be in code page 437 order.
 *  @throws FontError naming `source` and the first thing that is wrong. */
std::shared_ptr<Font::Data const> parsePsf(std::uint8_t const* bytes, std::size_t size,
                                           std::string const& source);

/** The bytes of the font file at `path`, decompressed when it is gzip data (through zlib; a
 *  build without zlib rejects it with a clear message). At most kMaxFontFileBytes.
 *  @throws FontError naming `path` when it cannot be read. */
std::vector<std::uint8_t> readFontFile(std::string const& path);

}  // namespace frontpanelhw::graphic
