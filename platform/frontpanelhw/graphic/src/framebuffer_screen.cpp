#include "framebuffer_screen.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace frontpanelhw::graphic {
namespace {

[[noreturn]] void fail(std::string const& path, std::string const& problem) {
    throw std::runtime_error("framebuffer " + path + ": " + problem);
}

[[noreturn]] void failErrno(std::string const& path, std::string const& what) {
    fail(path, what + ": " + std::generic_category().message(errno));
}

bool supportedDepth(unsigned bits) { return bits == 16 || bits == 24 || bits == 32; }

ColorField field(fb_bitfield const& bits) { return ColorField{bits.offset, bits.length}; }

}  // namespace

FramebufferDisplay::Screen::Screen(std::string const& path, FramebufferOptions const& options) {
    bool const file =
        options.fileWidth != 0 || options.fileHeight != 0 || options.fileBitsPerPixel != 0;
    fd_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd_ < 0) {
        failErrno(path, "cannot open");
    }
    try {
        if (file) {
            openFile(path, options);
        } else {
            openDevice(path);
        }
    } catch (...) {
        if (map_ != nullptr) {
            ::munmap(map_, mapLength_);
        }
        ::close(fd_);
        throw;
    }
}

FramebufferDisplay::Screen::~Screen() {
    ::munmap(map_, mapLength_);
    ::close(fd_);
}

void FramebufferDisplay::Screen::openDevice(std::string const& path) {
    fb_fix_screeninfo fixed{};
    fb_var_screeninfo variable{};
    if (::ioctl(fd_, FBIOGET_FSCREENINFO, &fixed) != 0) {
        failErrno(path,
                  "not a framebuffer device (FBIOGET_FSCREENINFO failed; a regular file "
                  "needs its geometry WxH:BPP)");
    }
    if (::ioctl(fd_, FBIOGET_VSCREENINFO, &variable) != 0) {
        failErrno(path, "FBIOGET_VSCREENINFO failed");
    }
    if (fixed.type != FB_TYPE_PACKED_PIXELS ||
        (fixed.visual != FB_VISUAL_TRUECOLOR && fixed.visual != FB_VISUAL_DIRECTCOLOR)) {
        fail(path, "only packed true-colour framebuffers are supported");
    }
    if (!supportedDepth(variable.bits_per_pixel)) {
        fail(path, std::to_string(variable.bits_per_pixel) +
                       " bits per pixel are not supported (16, 24 or 32)");
    }
    width_ = variable.xres;
    height_ = variable.yres;
    bitsPerPixel_ = variable.bits_per_pixel;
    bytesPerPixel_ = bitsPerPixel_ / 8;
    lineLength_ = fixed.line_length;
    red_ = field(variable.red);
    green_ = field(variable.green);
    blue_ = field(variable.blue);
    alpha_ = field(variable.transp);
    std::size_t const first = static_cast<std::size_t>(variable.yoffset) * lineLength_ +
                              static_cast<std::size_t>(variable.xoffset) * bytesPerPixel_;
    std::size_t const needed = first + static_cast<std::size_t>(height_) * lineLength_;
    if (width_ == 0 || height_ == 0 ||
        lineLength_ < static_cast<std::size_t>(width_) * bytesPerPixel_ ||
        needed > fixed.smem_len) {
        fail(path, "the reported geometry does not fit its memory");
    }
    map(path, fixed.smem_len, first);
}

void FramebufferDisplay::Screen::openFile(std::string const& path,
                                          FramebufferOptions const& options) {
    if (options.fileWidth == 0 || options.fileHeight == 0 ||
        !supportedDepth(options.fileBitsPerPixel)) {
        throw std::invalid_argument("framebuffer " + path +
                                    ": the geometry needs a width, a height and 16, 24 or 32 "
                                    "bits per pixel");
    }
    width_ = options.fileWidth;
    height_ = options.fileHeight;
    bitsPerPixel_ = options.fileBitsPerPixel;
    bytesPerPixel_ = bitsPerPixel_ / 8;
    lineLength_ = static_cast<std::size_t>(width_) * bytesPerPixel_;
    if (bitsPerPixel_ == 16) {
        red_ = {11, 5};
        green_ = {5, 6};
        blue_ = {0, 5};
    } else {
        red_ = {16, 8};
        green_ = {8, 8};
        blue_ = {0, 8};
    }
    struct stat status {};
    if (::fstat(fd_, &status) != 0) {
        failErrno(path, "cannot examine");
    }
    std::size_t const size = lineLength_ * height_;
    if (!S_ISREG(status.st_mode)) {
        fail(path, "a geometry is given, so it must be a regular file");
    }
    if (static_cast<std::size_t>(status.st_size) != size) {
        fail(path, "holds " + std::to_string(status.st_size) + " bytes, " + std::to_string(width_) +
                       "x" + std::to_string(height_) + " pixels of " +
                       std::to_string(bitsPerPixel_) + " bits need " + std::to_string(size));
    }
    map(path, size, 0);
}

void FramebufferDisplay::Screen::map(std::string const& path, std::size_t length,
                                     std::size_t offset) {
    void* const address = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
    if (address == MAP_FAILED) {
        failErrno(path, "cannot map its memory");
    }
    map_ = address;
    mapLength_ = length;
    origin_ = static_cast<std::uint8_t*>(address) + offset;
}

std::uint32_t FramebufferDisplay::Screen::pack(RgbColor color) const {
    auto const component = [](std::uint8_t value, ColorField const& where) {
        if (where.length == 0) {
            return std::uint32_t{0};
        }
        unsigned const length = where.length > 8 ? 8 : where.length;
        return static_cast<std::uint32_t>(value >> (8 - length)) << where.offset;
    };
    std::uint32_t value =
        component(color.red, red_) | component(color.green, green_) | component(color.blue, blue_);
    if (alpha_.length != 0 && alpha_.length < 32) {
        value |= ((std::uint32_t{1} << alpha_.length) - 1) << alpha_.offset;  // opaque
    }
    return value;
}

}  // namespace frontpanelhw::graphic
