#include <frontpanelhw/graphic/font.h>

#include "builtin_fonts.h"
#include "font_data.h"
#include "psf_reader.h"

namespace frontpanelhw::graphic {

FontError::FontError(std::string const& source, std::string const& problem)
    : std::runtime_error(source + ": " + problem), source_(source), problem_(problem) {}

FontError::~FontError() = default;

std::string const& FontError::source() const { return source_; }

std::string const& FontError::problem() const { return problem_; }

namespace {

template <typename Glyph>
std::shared_ptr<Font::Data const> builtinData(unsigned width, unsigned height, char const* name,
                                              Glyph const* glyphs, std::size_t count) {
    auto data = std::make_shared<Font::Data>(width, height, name);
    for (std::size_t i = 0; i < count; ++i) {
        data->map(glyphs[i].code, data->addGlyph(glyphs[i].rows.data()));
    }
    data->finish();
    return data;
}

}  // namespace

Font::Font(std::shared_ptr<Data const> data) : data_(std::move(data)) {}

Font Font::builtin6x8() {
    static auto const data =
        builtinData(6, 8, "6x8", detail::font6x8Glyphs(), detail::font6x8GlyphCount());
    return Font(data);
}

Font Font::builtin8x16() {
    static auto const data =
        builtinData(8, 16, "8x16", detail::font8x16Glyphs(), detail::font8x16GlyphCount());
    return Font(data);
}

Font Font::fromPsfFile(std::string const& path) {
    std::vector<std::uint8_t> const bytes = readFontFile(path);
    return Font(parsePsf(bytes.data(), bytes.size(), path));
}

Font Font::fromPsfBytes(std::uint8_t const* bytes, std::size_t size, std::string const& source) {
    return Font(parsePsf(bytes, size, source));
}

Font Font::fromName(std::string const& name) {
    if (name == "6x8") {
        return builtin6x8();
    }
    if (name == "8x16") {
        return builtin8x16();
    }
    return fromPsfFile(name);
}

unsigned Font::cellWidth() const { return data_->width(); }

unsigned Font::cellHeight() const { return data_->height(); }

bool Font::glyphPixel(char32_t character, unsigned x, unsigned y) const {
    if (x >= data_->width() || y >= data_->height()) {
        return false;
    }
    std::uint8_t const* rows = data_->rows(data_->find(character));
    return (rows[static_cast<std::size_t>(y) * data_->stride() + x / 8] & (0x80u >> (x % 8))) != 0;
}

bool Font::hasGlyph(char32_t character) const { return data_->find(character) != Data::kNone; }

std::uint8_t const* Font::glyphRows(char32_t character) const {
    return data_->rows(data_->find(character));
}

unsigned Font::glyphStride() const { return data_->stride(); }

std::size_t Font::glyphCount() const { return data_->glyphCount(); }

std::string const& Font::name() const { return data_->name(); }

}  // namespace frontpanelhw::graphic
