#include <frontpanelhw/graphic/png_display.h>
#include <frontpanelhw/graphic/png_image.h>

#include <cstdio>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace frontpanelhw::graphic {
namespace {

/** Writes `bytes` to `path` (created or truncated); false on any failure. */
bool writeFile(std::string const& path, std::vector<std::uint8_t> const& bytes) {
    int const fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        return false;
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t const written = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (written <= 0) {
            ::close(fd);
            return false;
        }
        done += static_cast<std::size_t>(written);
    }
    return ::close(fd) == 0;
}

std::string withoutPngSuffix(std::string const& path) {
    std::string const suffix = ".png";
    if (path.size() > suffix.size() &&
        path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0) {
        return path.substr(0, path.size() - suffix.size());
    }
    return path;
}

PngDisplayOptions const& checked(PngDisplayOptions const& options) {
    if (options.scale < 1 || options.scale > 16) {
        throw std::invalid_argument("PNG display: scale " + std::to_string(options.scale) +
                                    " is outside 1..16");
    }
    return options;
}

}  // namespace

PngDisplay::PngDisplay(std::string path, PngDisplayOptions const& options)
    : GraphicDisplay(options.width, options.height, checked(options).font, options.chars,
                     options.lines),
      path_(std::move(path)),
      options_(options) {}

PngDisplay::~PngDisplay() = default;

std::string const& PngDisplay::lastFile() const { return lastFile_; }

unsigned PngDisplay::frameCount() const { return frames_; }

bool PngDisplay::flush(MonoBitmap const& bitmap, PixelRect /*changed*/) {
    std::vector<std::uint8_t> const bytes =
        options_.scale == 1
            ? encodePng(bitmap)
            : encodePngRgb(bitmap, options_.foreground, options_.background, options_.scale);
    std::string target = path_;
    if (options_.everyFrame) {
        char number[16];
        std::snprintf(number, sizeof number, "-%06u.png", frames_ + 1);
        target = withoutPngSuffix(path_) + number;
        if (!writeFile(target, bytes)) {
            return false;
        }
    } else {
        std::string const temporary = path_ + ".tmp";
        if (!writeFile(temporary, bytes) || std::rename(temporary.c_str(), path_.c_str()) != 0) {
            std::remove(temporary.c_str());
            return false;
        }
    }
    lastFile_ = target;
    ++frames_;
    return true;
}

}  // namespace frontpanelhw::graphic
