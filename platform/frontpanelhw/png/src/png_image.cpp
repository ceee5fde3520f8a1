#include <frontpanelhw/graphic/png_image.h>

#include <csetjmp>
#include <stdexcept>

#include <png.h>

namespace frontpanelhw::graphic {
namespace {

/** Where libpng's output goes. */
struct Output {
    std::vector<std::uint8_t> bytes;
};

void writeBytes(png_structp png, png_bytep data, png_size_t length) {
    auto* output = static_cast<Output*>(png_get_io_ptr(png));
    try {
        output->bytes.insert(output->bytes.end(), data, data + length);
    } catch (...) {
        png_error(png, "out of memory");
    }
}

void flushNothing(png_structp /*png*/) {}

[[noreturn]] void onError(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }

void onWarning(png_structp /*png*/, png_const_charp /*message*/) {}

/** Encodes `height` rows through libpng. No object with a destructor lives in this frame, so
 *  libpng's error jump out of the calls below skips nothing. */
bool encodeRows(Output& output, unsigned width, unsigned height, int bitDepth, int colorType,
                png_bytep const* rows) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
    if (png == nullptr) {
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &output, writeBytes, flushNothing);
    png_set_IHDR(png, info, width, height, bitDepth, colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (unsigned y = 0; y < height; ++y) {
        png_write_row(png, rows[y]);
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

std::vector<std::uint8_t> finish(Output& output, bool encoded) {
    if (!encoded) {
        throw std::runtime_error("PNG encoder failed (out of memory)");
    }
    return std::move(output.bytes);
}

}  // namespace

std::vector<std::uint8_t> encodePng(MonoBitmap const& bitmap) {
    if (bitmap.width() == 0 || bitmap.height() == 0) {
        throw std::invalid_argument("PNG: a picture needs at least one pixel");
    }
    // The bitmap's rows are already 1-bit greyscale rows: MSB first, 1 = white.
    std::vector<png_bytep> rows(bitmap.height());
    for (unsigned y = 0; y < bitmap.height(); ++y) {
        // libpng only reads the rows it writes.
        rows[y] =
            const_cast<png_bytep>(bitmap.data() + static_cast<std::size_t>(y) * bitmap.stride());
    }
    Output output;
    bool const encoded =
        encodeRows(output, bitmap.width(), bitmap.height(), 1, PNG_COLOR_TYPE_GRAY, rows.data());
    return finish(output, encoded);
}

std::vector<std::uint8_t> encodePngRgb(MonoBitmap const& bitmap, RgbColor foreground,
                                       RgbColor background, unsigned scale) {
    if (scale < 1 || scale > 16) {
        throw std::invalid_argument("PNG: scale " + std::to_string(scale) + " is outside 1..16");
    }
    if (bitmap.width() == 0 || bitmap.height() == 0) {
        throw std::invalid_argument("PNG: a picture needs at least one pixel");
    }
    unsigned const width = bitmap.width() * scale;
    unsigned const height = bitmap.height() * scale;
    std::size_t const rowBytes = static_cast<std::size_t>(width) * 3;
    std::vector<std::uint8_t> pixels(rowBytes * height);
    for (unsigned y = 0; y < height; ++y) {
        std::uint8_t* out = pixels.data() + rowBytes * y;
        for (unsigned x = 0; x < width; ++x) {
            RgbColor const color = bitmap.pixel(x / scale, y / scale) ? foreground : background;
            *out++ = color.red;
            *out++ = color.green;
            *out++ = color.blue;
        }
    }
    std::vector<png_bytep> rows(height);
    for (unsigned y = 0; y < height; ++y) {
        rows[y] = pixels.data() + rowBytes * y;
    }
    Output output;
    bool const encoded = encodeRows(output, width, height, 8, PNG_COLOR_TYPE_RGB, rows.data());
    return finish(output, encoded);
}

}  // namespace frontpanelhw::graphic
