#pragma once

#include <yxfrontpanel/export.h>

#include <cstdint>
#include <iosfwd>

namespace yxfrontpanel::drawing {

/** A cell position: column `x` and line `y`, both counted from 0. */
struct Point {
    /** Column, from the left. */
    std::uint32_t x;
    /** Line, from the top. */
    std::uint32_t y;
};

/** A size in cells (no origin): `width` columns by `height` lines. */
struct Rectangle {
    /** Columns. */
    std::uint32_t width;
    /** Lines. */
    std::uint32_t height;
};

/** How a label places its text within its width. The values are fixed; the double "l" is the
 *  name's historical spelling. */
enum class TextAllignment : std::uint32_t {  // NOLINT(readability-identifier-naming)
    Left = 0,
    Right = 1,
    Center = 2
};

/** Both coordinates equal. */
YXFP_EXPORT bool operator==(Point const& lhs, Point const& rhs);
/** The negation of `operator==`. */
YXFP_EXPORT bool operator!=(Point const& lhs, Point const& rhs);
/** Both dimensions equal. */
YXFP_EXPORT bool operator==(Rectangle const& lhs, Rectangle const& rhs);
/** The negation of `operator==`. */
YXFP_EXPORT bool operator!=(Rectangle const& lhs, Rectangle const& rhs);

/** Writes "X: <x> - Y: <y>". */
YXFP_EXPORT std::ostream& operator<<(std::ostream& stream, Point const& point);
/** Writes "Width: <width> - Height: <height>". */
YXFP_EXPORT std::ostream& operator<<(std::ostream& stream, Rectangle const& size);
/** Writes "Left", "Right" or "Center"; any other value writes nothing. */
YXFP_EXPORT std::ostream& operator<<(std::ostream& stream, TextAllignment const& alignment);

}  // namespace yxfrontpanel::drawing
