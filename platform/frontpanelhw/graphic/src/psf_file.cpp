#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <system_error>

#include "psf_reader.h"

#ifdef YXFP_HAVE_ZLIB
#include <zlib.h>
#endif

namespace frontpanelhw::graphic {
namespace {

std::string tooLarge() {
    return "larger than " + std::to_string(kMaxFontFileBytes >> 20) + " MiB; not a console font";
}

#ifdef YXFP_HAVE_ZLIB
/** Reads through zlib, which passes data that is not gzip through unchanged. */
std::vector<std::uint8_t> readAll(std::string const& path) {
    gzFile const file = gzopen(path.c_str(), "rb");
    if (file == nullptr) {
        throw FontError(path, std::generic_category().message(errno != 0 ? errno : ENOMEM));
    }
    std::unique_ptr<gzFile_s, int (*)(gzFile)> const closer(file, gzclose);
    std::vector<std::uint8_t> bytes;
    std::uint8_t chunk[16384];
    for (;;) {
        int const got = gzread(file, chunk, sizeof chunk);
        if (got < 0) {
            int code = 0;
            char const* message = gzerror(file, &code);
            throw FontError(
                path, std::string("cannot decompress: ") +
                          (code == Z_ERRNO ? std::generic_category().message(errno) : message));
        }
        if (got == 0) {
            return bytes;
        }
        if (bytes.size() + static_cast<std::size_t>(got) > kMaxFontFileBytes) {
            throw FontError(path, tooLarge());
        }
        bytes.insert(bytes.end(), chunk, chunk + got);
    }
}
#else
bool endsWithGz(std::string const& path) {
    return path.size() >= 3 && path.compare(path.size() - 3, 3, ".gz") == 0;
}

std::vector<std::uint8_t> readAll(std::string const& path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file) {
        throw FontError(path, std::strerror(errno));
    }
    std::vector<std::uint8_t> bytes;
    std::uint8_t chunk[16384];
    for (;;) {
        std::size_t const got = std::fread(chunk, 1, sizeof chunk, file.get());
        if (got == 0) {
            if (std::ferror(file.get()) != 0) {
                throw FontError(path, std::strerror(errno));
            }
            break;
        }
        if (bytes.size() + got > kMaxFontFileBytes) {
            throw FontError(path, tooLarge());
        }
        bytes.insert(bytes.end(), chunk, chunk + got);
    }
    if (endsWithGz(path) || (bytes.size() >= 2 && bytes[0] == 0x1F && bytes[1] == 0x8B)) {
        throw FontError(path,
                        "is gzip-compressed, and this build has no zlib (rebuild with zlib "
                        "installed, Debian: zlib1g-dev, or give the uncompressed .psf file)");
    }
    return bytes;
}
#endif

}  // namespace

std::vector<std::uint8_t> readFontFile(std::string const& path) {
    errno = 0;
    return readAll(path);
}

}  // namespace frontpanelhw::graphic
