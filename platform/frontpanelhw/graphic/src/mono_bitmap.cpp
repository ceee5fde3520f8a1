#include <frontpanelhw/graphic/mono_bitmap.h>

#include <algorithm>

namespace frontpanelhw::graphic {

MonoBitmap::MonoBitmap(unsigned width, unsigned height)
    : width_(width),
      height_(height),
      stride_((width + 7) / 8),
      bits_(static_cast<std::size_t>(stride_) * height, 0) {}

unsigned MonoBitmap::width() const { return width_; }

unsigned MonoBitmap::height() const { return height_; }

unsigned MonoBitmap::stride() const { return stride_; }

bool MonoBitmap::pixel(unsigned x, unsigned y) const {
    if (x >= width_ || y >= height_) {
        return false;
    }
    return (bits_[static_cast<std::size_t>(y) * stride_ + x / 8] & (0x80u >> (x % 8))) != 0;
}

void MonoBitmap::setPixel(unsigned x, unsigned y, bool on) {
    if (x >= width_ || y >= height_) {
        return;
    }
    std::uint8_t& byte = bits_[static_cast<std::size_t>(y) * stride_ + x / 8];
    auto const mask = static_cast<std::uint8_t>(0x80u >> (x % 8));
    byte = static_cast<std::uint8_t>(on ? (byte | mask) : (byte & ~mask));
}

void MonoBitmap::fill(bool on) {
    if (!on) {
        std::fill(bits_.begin(), bits_.end(), 0);
        return;
    }
    // Lit rows keep their padding bits 0, so that equal pictures have equal bytes.
    unsigned const tail = width_ % 8;
    auto const last = static_cast<std::uint8_t>(tail == 0 ? 0xFFu : (0xFF00u >> tail) & 0xFFu);
    for (unsigned y = 0; y < height_; ++y) {
        auto row = bits_.begin() + static_cast<std::ptrdiff_t>(y) * stride_;
        std::fill(row, row + stride_, 0xFF);
        row[stride_ - 1] = last;
    }
}

std::uint8_t const* MonoBitmap::data() const { return bits_.data(); }

std::uint8_t* MonoBitmap::data() { return bits_.data(); }

bool MonoBitmap::operator==(MonoBitmap const& other) const {
    if (width_ != other.width_ || height_ != other.height_) {
        return false;
    }
    for (unsigned y = 0; y < height_; ++y) {
        for (unsigned x = 0; x < width_; ++x) {
            if (pixel(x, y) != other.pixel(x, y)) {
                return false;
            }
        }
    }
    return true;
}

bool MonoBitmap::operator!=(MonoBitmap const& other) const { return !(*this == other); }

bool PixelRect::empty() const { return width == 0 || height == 0; }

PixelRect PixelRect::united(PixelRect const& other) const {
    if (other.empty()) {
        return *this;
    }
    if (empty()) {
        return other;
    }
    unsigned const left = std::min(x, other.x);
    unsigned const top = std::min(y, other.y);
    unsigned const right = std::max(x + width, other.x + other.width);
    unsigned const bottom = std::max(y + height, other.y + other.height);
    return PixelRect{left, top, right - left, bottom - top};
}

bool PixelRect::operator==(PixelRect const& other) const {
    return x == other.x && y == other.y && width == other.width && height == other.height;
}

bool PixelRect::operator!=(PixelRect const& other) const { return !(*this == other); }

}  // namespace frontpanelhw::graphic
