#pragma once

// The memory of a framebuffer device or of a regular file standing in for one, and its pixel
// format.

#include <frontpanelhw/graphic/framebuffer_display.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace frontpanelhw::graphic {

/** Where one colour component lies in a pixel value. */
struct ColorField {
    unsigned offset = 0;
    unsigned length = 0;
};

class FramebufferDisplay::Screen {
public:
    /** Opens and maps `path`: a framebuffer device when the options give no file geometry, a
     *  regular file of exactly that geometry otherwise. @throws std::runtime_error. */
    Screen(std::string const& path, FramebufferOptions const& options);
    ~Screen();
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;

    unsigned width() const { return width_; }
    unsigned height() const { return height_; }
    unsigned bitsPerPixel() const { return bitsPerPixel_; }
    /** The pixel value of `color` in the screen's format. */
    std::uint32_t pack(RgbColor color) const;
    /** Sets pixel (x, y) of the screen (inside it) to `value`. */
    void put(unsigned x, unsigned y, std::uint32_t value) {
        std::uint8_t* pixel = origin_ + static_cast<std::size_t>(y) * lineLength_ +
                              static_cast<std::size_t>(x) * bytesPerPixel_;
        for (unsigned byte = 0; byte < bytesPerPixel_; ++byte) {
            pixel[byte] = static_cast<std::uint8_t>(value >> (8 * byte));
        }
    }

private:
    void openDevice(std::string const& path);
    void openFile(std::string const& path, FramebufferOptions const& options);
    void map(std::string const& path, std::size_t length, std::size_t offset);

    int fd_ = -1;
    void* map_ = nullptr;
    std::size_t mapLength_ = 0;
    std::uint8_t* origin_ = nullptr;  // pixel (0, 0) of the visible screen
    unsigned width_ = 0;
    unsigned height_ = 0;
    unsigned bitsPerPixel_ = 0;
    unsigned bytesPerPixel_ = 0;
    std::size_t lineLength_ = 0;
    ColorField red_;
    ColorField green_;
    ColorField blue_;
    ColorField alpha_;
};

}  // namespace frontpanelhw::graphic
