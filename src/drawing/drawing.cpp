#include <yxfrontpanel/drawing.h>

#include <ostream>

namespace yxfrontpanel::drawing {

bool operator==(Point const& lhs, Point const& rhs) { return lhs.x == rhs.x && lhs.y == rhs.y; }

bool operator!=(Point const& lhs, Point const& rhs) { return !(lhs == rhs); }

bool operator==(Rectangle const& lhs, Rectangle const& rhs) {
    return lhs.width == rhs.width && lhs.height == rhs.height;
}

bool operator!=(Rectangle const& lhs, Rectangle const& rhs) { return !(lhs == rhs); }

std::ostream& operator<<(std::ostream& stream, Point const& point) {
    return stream << "X: " << point.x << " - Y: " << point.y;
}

std::ostream& operator<<(std::ostream& stream, Rectangle const& size) {
    return stream << "Width: " << size.width << " - Height: " << size.height;
}

std::ostream& operator<<(std::ostream& stream, TextAllignment const& alignment) {
    switch (alignment) {
        case TextAllignment::Left:
            return stream << "Left";
        case TextAllignment::Right:
            return stream << "Right";
        case TextAllignment::Center:
            return stream << "Center";
    }
    return stream;
}

}  // namespace yxfrontpanel::drawing
