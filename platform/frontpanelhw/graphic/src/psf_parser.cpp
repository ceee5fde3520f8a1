// PSF2 layout (all fields 32-bit little-endian): magic 72 B5 4A 86, version 0, header size,
// flags (bit 0: a Unicode table follows the glyphs), glyph count, bytes per glyph, height,
// width; the glyphs start at the header size, each `height` rows of (width + 7) / 8 bytes. The
// Unicode table holds, for each glyph in turn, UTF-8 characters, then optionally sequences
// (each introduced by 0xFE) of characters that combine into that glyph, then 0xFF.
//
// PSF1 layout: magic 36 04, mode (bit 0: 512 glyphs instead of 256, bit 1: a Unicode table
// follows, bit 2: the same, with sequences), height; the glyphs are 8 pixels wide, one byte per
// row. Its table holds 16-bit little-endian code points per glyph, 0xFFFE introducing sequences
// and 0xFFFF ending the glyph's entry.

#include <frontpanelhw/code_page.h>

#include <sstream>

#include "psf_reader.h"

namespace frontpanelhw::graphic {
namespace {

constexpr unsigned kMaxCellPixels = 64;
constexpr std::uint32_t kMaxGlyphs = 65536;

/** Reads little-endian fields and reports what is wrong, naming the source. */
class Reader {
public:
    Reader(std::uint8_t const* bytes, std::size_t size, std::string const& source)
        : bytes_(bytes), size_(size), source_(source) {}

    [[noreturn]] void fail(std::string const& problem) const { throw FontError(source_, problem); }

    std::size_t size() const { return size_; }
    std::uint8_t const* at(std::size_t offset) const { return bytes_ + offset; }

    std::uint32_t u32(std::size_t offset) const {
        return static_cast<std::uint32_t>(bytes_[offset]) |
               static_cast<std::uint32_t>(bytes_[offset + 1]) << 8 |
               static_cast<std::uint32_t>(bytes_[offset + 2]) << 16 |
               static_cast<std::uint32_t>(bytes_[offset + 3]) << 24;
    }
    unsigned u16(std::size_t offset) const {
        return static_cast<unsigned>(bytes_[offset]) | static_cast<unsigned>(bytes_[offset + 1])
                                                           << 8;
    }

private:
    std::uint8_t const* bytes_;
    std::size_t size_;
    std::string const& source_;
};

std::string numberText(std::uint64_t value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string hexText(unsigned value) {
    std::ostringstream text;
    text << std::hex << value;
    return text.str();
}

void checkCell(Reader const& reader, std::uint32_t width, std::uint32_t height) {
    if (width == 0 || width > kMaxCellPixels || height == 0 || height > kMaxCellPixels) {
        reader.fail("glyph size " + numberText(width) + "x" + numberText(height) +
                    " is outside 1x1..64x64");
    }
}

/** Glyphs without a Unicode table: code page 437 order, as the PC console's own fonts. */
void mapCodePage437(Font::Data& data, std::uint32_t glyphs) {
    for (std::uint32_t index = 1; index < glyphs && index < 256; ++index) {
        data.map(toUnicode(static_cast<char16_t>(index)), index);
    }
}

/** Decodes one UTF-8 character at `offset` (which the caller advances by the length). */
char32_t decodeUtf8(Reader const& reader, std::size_t offset, std::size_t end,
                    std::size_t& length) {
    std::uint8_t const lead = *reader.at(offset);
    char32_t code = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        length = 1;
        return lead;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        code = lead & 0x1Fu;
        minimum = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        code = lead & 0x0Fu;
        minimum = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        code = lead & 0x07u;
        minimum = 0x10000;
    } else {
        reader.fail("Unicode table: byte 0x" + hexText(unsigned{lead}) + " at offset " +
                    numberText(offset) + " starts no UTF-8 character");
    }
    if (length > end - offset) {
        reader.fail("Unicode table: UTF-8 character at offset " + numberText(offset) +
                    " is cut off by the end of the file");
    }
    for (std::size_t i = 1; i < length; ++i) {
        std::uint8_t const next = *reader.at(offset + i);
        if ((next & 0xC0u) != 0x80u) {
            reader.fail("Unicode table: invalid UTF-8 character at offset " + numberText(offset));
        }
        code = (code << 6) | (next & 0x3Fu);
    }
    if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
        reader.fail("Unicode table: invalid UTF-8 character at offset " + numberText(offset));
    }
    return code;
}

void readPsf2Table(Reader const& reader, std::size_t offset, std::uint32_t glyphs,
                   Font::Data& data) {
    std::size_t const end = reader.size();
    for (std::uint32_t glyph = 0; glyph < glyphs; ++glyph) {
        bool inSequence = false;  // a combining sequence maps to no single code point
        for (;;) {
            if (offset >= end) {
                reader.fail("Unicode table ends after " + numberText(glyph) + " of " +
                            numberText(glyphs) + " glyphs");
            }
            std::uint8_t const byte = *reader.at(offset);
            if (byte == 0xFF) {
                ++offset;
                break;
            }
            if (byte == 0xFE) {
                inSequence = true;
                ++offset;
                continue;
            }
            std::size_t length = 0;
            char32_t const code = decodeUtf8(reader, offset, end, length);
            offset += length;
            if (!inSequence) {
                data.map(code, glyph);
            }
        }
    }
}

std::shared_ptr<Font::Data const> parsePsf2(Reader const& reader, std::string const& source) {
    constexpr std::size_t kHeaderBytes = 32;
    if (reader.size() < kHeaderBytes) {
        reader.fail("PSF2 header is cut off (" + numberText(reader.size()) + " bytes)");
    }
    std::uint32_t const version = reader.u32(4);
    std::uint32_t const headerSize = reader.u32(8);
    std::uint32_t const flags = reader.u32(12);
    std::uint32_t const glyphs = reader.u32(16);
    std::uint32_t const glyphBytes = reader.u32(20);
    std::uint32_t const height = reader.u32(24);
    std::uint32_t const width = reader.u32(28);
    if (version != 0) {
        reader.fail("PSF2 version " + numberText(version) + " is not supported (only 0)");
    }
    if (headerSize < kHeaderBytes || headerSize > reader.size()) {
        reader.fail("PSF2 header size " + numberText(headerSize) + " is outside 32.." +
                    numberText(reader.size()) + " (the file's size)");
    }
    if ((flags & ~1u) != 0) {
        reader.fail("PSF2 flags 0x" + hexText(flags) +
                    " hold unknown bits (only bit 0, the Unicode table, is defined)");
    }
    checkCell(reader, width, height);
    if (glyphs == 0 || glyphs > kMaxGlyphs) {
        reader.fail("glyph count " + numberText(glyphs) + " is outside 1.." +
                    numberText(kMaxGlyphs));
    }
    std::uint64_t const rowBytes = (width + 7) / 8;
    if (glyphBytes != rowBytes * height) {
        reader.fail("bytes per glyph " + numberText(glyphBytes) + " do not match " +
                    numberText(width) + "x" + numberText(height) + " pixels (" +
                    numberText(rowBytes * height) + ")");
    }
    // cppcheck-suppress cppcheckError ; cppcheck 2.10 fails to analyse this sum, not a finding
    std::uint64_t const glyphsEnd = std::uint64_t{headerSize} + std::uint64_t{glyphs} * glyphBytes;
    if (glyphsEnd > reader.size()) {
        reader.fail(numberText(glyphs) + " glyphs of " + numberText(glyphBytes) + " bytes need " +
                    numberText(glyphsEnd) + " bytes, the file has " + numberText(reader.size()));
    }
    auto data = std::make_shared<Font::Data>(width, height, source);
    for (std::uint32_t glyph = 0; glyph < glyphs; ++glyph) {
        data->addGlyph(reader.at(headerSize + std::size_t{glyph} * glyphBytes));
    }
    if ((flags & 1u) != 0) {
        readPsf2Table(reader, static_cast<std::size_t>(glyphsEnd), glyphs, *data);
    } else {
        mapCodePage437(*data, glyphs);
    }
    data->finish();
    return data;
}

std::shared_ptr<Font::Data const> parsePsf1(Reader const& reader, std::string const& source) {
    constexpr std::size_t kHeaderBytes = 4;
    if (reader.size() < kHeaderBytes) {
        reader.fail("PSF1 header is cut off (" + numberText(reader.size()) + " bytes)");
    }
    unsigned const mode = *reader.at(2);
    unsigned const height = *reader.at(3);
    if ((mode & ~7u) != 0) {
        reader.fail("PSF1 mode 0x" + hexText(mode) +
                    " holds unknown bits (only bits 0-2 are defined)");
    }
    checkCell(reader, 8, height);
    std::uint32_t const glyphs = (mode & 1u) != 0 ? 512 : 256;
    std::size_t const glyphsEnd = kHeaderBytes + std::size_t{glyphs} * height;
    if (glyphsEnd > reader.size()) {
        reader.fail(numberText(glyphs) + " glyphs of " + numberText(height) + " bytes need " +
                    numberText(glyphsEnd) + " bytes, the file has " + numberText(reader.size()));
    }
    auto data = std::make_shared<Font::Data>(8, height, source);
    for (std::uint32_t glyph = 0; glyph < glyphs; ++glyph) {
        data->addGlyph(reader.at(kHeaderBytes + std::size_t{glyph} * height));
    }
    if ((mode & 6u) != 0) {
        std::size_t offset = glyphsEnd;
        for (std::uint32_t glyph = 0; glyph < glyphs; ++glyph) {
            bool inSequence = false;
            for (;;) {
                if (offset + 2 > reader.size()) {
                    reader.fail("Unicode table ends after " + numberText(glyph) + " of " +
                                numberText(glyphs) + " glyphs");
                }
                unsigned const code = reader.u16(offset);
                offset += 2;
                if (code == 0xFFFF) {
                    break;
                }
                if (code == 0xFFFE) {
                    inSequence = true;
                } else if (!inSequence && (code < 0xD800 || code > 0xDFFF)) {
                    data->map(static_cast<char32_t>(code), glyph);
                }
            }
        }
    } else {
        mapCodePage437(*data, glyphs);
    }
    data->finish();
    return data;
}

}  // namespace

std::shared_ptr<Font::Data const> parsePsf(std::uint8_t const* bytes, std::size_t size,
                                           std::string const& source) {
    Reader const reader(bytes, size, source);
    if (size >= 4 && bytes[0] == 0x72 && bytes[1] == 0xB5 && bytes[2] == 0x4A && bytes[3] == 0x86) {
        return parsePsf2(reader, source);
    }
    if (size >= 2 && bytes[0] == 0x36 && bytes[1] == 0x04) {
        return parsePsf1(reader, source);
    }
    if (size >= 2 && bytes[0] == 0x1F && bytes[1] == 0x8B) {
        reader.fail("gzip-compressed data where a PSF font was expected");
    }
    reader.fail("not a PSF font (no PSF2 or PSF1 magic number at the start)");
}

}  // namespace frontpanelhw::graphic
