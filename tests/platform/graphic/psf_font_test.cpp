#include <frontpanelhw/graphic/font.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "graphic_test_support.h"
#include <dirent.h>
#include <unistd.h>

#ifdef YXFP_TEST_HAVE_ZLIB
#include <zlib.h>
#endif

namespace {

using frontpanelhw::graphic::Font;
using frontpanelhw::graphic::FontError;
using yxfp_graphic_test::Psf2Builder;

Font load(std::vector<std::uint8_t> const& bytes) {
    return Font::fromPsfBytes(bytes.data(), bytes.size(), "test.psf");
}

/** The glyph of `character` as text rows ('#' lit). */
std::string glyphText(Font const& font, char32_t character) {
    std::string text;
    for (unsigned y = 0; y < font.cellHeight(); ++y) {
        for (unsigned x = 0; x < font.cellWidth(); ++x) {
            text += font.glyphPixel(character, x, y) ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

std::vector<std::uint8_t> rows(std::uint8_t first, std::uint8_t rest, unsigned count = 8) {
    std::vector<std::uint8_t> glyph(count, rest);
    glyph[0] = first;
    return glyph;
}

/** A font of three 8x8 glyphs: 'A' (top row lit), 'B' and beta (left column), U+FFFD (full). */
Psf2Builder threeGlyphs() {
    Psf2Builder font;
    font.glyph(rows(0xFF, 0x00)).entry("A");
    font.glyph(rows(0x80, 0x80)).entry("B\xCE\xB2");
    font.glyph(rows(0xFF, 0xFF)).entry("\xEF\xBF\xBD");
    return font;
}

std::string tempPath(std::string const& name) {
    return ::testing::TempDir() + "psf_font_test_" + std::to_string(::getpid()) + "_" + name;
}

void writeFile(std::string const& path, std::vector<std::uint8_t> const& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<char const*>(bytes.data()), std::streamsize(bytes.size()));
}

TEST(PsfFontTest, MapsCharactersThroughTheUnicodeTable) {
    Font const font = load(threeGlyphs().bytes());

    EXPECT_EQ(font.cellWidth(), 8u);
    EXPECT_EQ(font.cellHeight(), 8u);
    EXPECT_EQ(font.glyphCount(), 3u);
    EXPECT_TRUE(font.hasGlyph(U'A'));
    EXPECT_TRUE(font.hasGlyph(U'B'));
    EXPECT_TRUE(font.hasGlyph(U'\u03B2'));
    EXPECT_FALSE(font.hasGlyph(U'C'));
    std::string topRowLit = "########\n";
    for (int row = 1; row < 8; ++row) {
        topRowLit += "........\n";
    }
    EXPECT_EQ(glyphText(font, U'A'), topRowLit);
    EXPECT_EQ(glyphText(font, U'\u03B2'), glyphText(font, U'B'));
    EXPECT_EQ(glyphText(font, U'B').substr(0, 9), "#.......\n");
}

TEST(PsfFontTest, ShowsTheFontsReplacementGlyphForMissingCharacters) {
    Font const font = load(threeGlyphs().bytes());

    EXPECT_EQ(glyphText(font, U'Z'), glyphText(font, U'\uFFFD'));
    EXPECT_TRUE(font.glyphPixel(U'Z', 7, 7));
}

TEST(PsfFontTest, DrawsABoxForMissingCharactersWhenTheFontHasNoReplacement) {
    Psf2Builder builder;
    builder.width = 6;
    builder.glyph(rows(0x00, 0x00)).entry("A");
    Font const font = load(builder.bytes());

    EXPECT_EQ(glyphText(font, U'Z'),
              "#####.\n"
              "#...#.\n"
              "#...#.\n"
              "#...#.\n"
              "#...#.\n"
              "#...#.\n"
              "#####.\n"
              "......\n");
}

TEST(PsfFontTest, SkipsCombiningSequencesOfTheTable) {
    Psf2Builder builder;
    builder.glyph(rows(0xFF, 0x00));
    // 'E', then a sequence "E + combining acute" that must not map U+0301 on its own.
    builder.table = {'E', 0xFE, 'E', 0xCC, 0x81, 0xFF};
    builder.flags = 1;
    Font const font = load(builder.bytes());

    EXPECT_TRUE(font.hasGlyph(U'E'));
    EXPECT_FALSE(font.hasGlyph(U'\u0301'));
}

TEST(PsfFontTest, TakesAFontWithoutTableAsCodePage437) {
    Psf2Builder builder;
    for (unsigned glyph = 0; glyph < 256; ++glyph) {
        builder.glyph(rows(static_cast<std::uint8_t>(glyph), 0x00));
    }
    Font const font = load(builder.bytes());

    EXPECT_EQ(glyphText(font, U'A').substr(0, 8), ".#.....#");       // 0x41
    EXPECT_EQ(glyphText(font, U'\u00B0').substr(0, 8), "#####...");  // 0xF8
    EXPECT_EQ(glyphText(font, U'\u2588').substr(0, 8), "##.##.##");  // 0xDB
}

TEST(PsfFontTest, ClearsThePaddingBitsOfNarrowAndWideGlyphs) {
    Psf2Builder narrow;
    narrow.width = 5;
    narrow.glyph(rows(0xFF, 0x00)).entry("A");
    Font const five = load(narrow.bytes());
    EXPECT_EQ(glyphText(five, U'A').substr(0, 6), "#####\n");
    EXPECT_EQ(five.glyphRows(U'A')[0], 0xF8);

    Psf2Builder wide;
    wide.width = 12;
    wide.height = 2;
    wide.glyph({0xFF, 0xFF, 0x80, 0x10}).entry("A");
    Font const twelve = load(wide.bytes());
    EXPECT_EQ(glyphText(twelve, U'A'), "############\n#..........#\n");
    EXPECT_EQ(twelve.glyphStride(), 2u);
}

TEST(PsfFontTest, ReadsPsf1FontsWithTheirTable) {
    std::vector<std::uint8_t> bytes{0x36, 0x04, 0x02, 4};  // 256 glyphs of 8x4, with a table
    for (unsigned glyph = 0; glyph < 256; ++glyph) {
        std::uint8_t const row = glyph == 1 ? 0xAA : 0x00;
        bytes.insert(bytes.end(), {row, row, row, row});
    }
    for (unsigned glyph = 0; glyph < 256; ++glyph) {
        if (glyph == 1) {
            bytes.insert(bytes.end(), {0x3A, 0x26});              // U+263A
            bytes.insert(bytes.end(), {0xFE, 0xFF, 0x41, 0x00});  // a sequence: not mapped
        }
        bytes.insert(bytes.end(), {0xFF, 0xFF});
    }
    Font const font = load(bytes);

    EXPECT_EQ(font.cellWidth(), 8u);
    EXPECT_EQ(font.cellHeight(), 4u);
    EXPECT_TRUE(font.hasGlyph(U'\u263A'));
    EXPECT_FALSE(font.hasGlyph(U'A'));
    EXPECT_EQ(glyphText(font, U'\u263A').substr(0, 9), "#.#.#.#.\n");
}

struct Malformed {
    char const* name;
    std::function<std::vector<std::uint8_t>()> bytes;
    char const* problem;
};

std::vector<std::uint8_t> spoiled(std::function<void(Psf2Builder&)> const& spoil) {
    Psf2Builder builder = threeGlyphs();
    spoil(builder);
    return builder.bytes();
}

std::vector<std::uint8_t> cut(std::size_t size) {
    auto bytes = threeGlyphs().bytes();
    bytes.resize(size);
    return bytes;
}

std::vector<std::uint8_t> withTable(std::vector<std::uint8_t> table) {
    Psf2Builder builder;
    builder.glyph(rows(0, 0));
    builder.table = std::move(table);
    builder.flags = 1;
    return builder.bytes();
}

TEST(PsfFontTest, RejectsEveryMalformedFileNamingItAndTheProblem) {
    std::vector<Malformed> const cases{
        {"empty", [] { return std::vector<std::uint8_t>{}; }, "not a PSF font"},
        {"text",
         [] {
             return std::vector<std::uint8_t>{'h', 'e', 'l', 'l', 'o'};
         },
         "not a PSF font"},
        {"gzip",
         [] {
             return std::vector<std::uint8_t>{0x1F, 0x8B, 8, 0};
         },
         "gzip"},
        {"short header", [] { return cut(20); }, "PSF2 header is cut off"},
        {"version", [] { return spoiled([](Psf2Builder& b) { b.version = 1; }); }, "version 1"},
        {"small header size", [] { return spoiled([](Psf2Builder& b) { b.headerSize = 16; }); },
         "header size 16"},
        {"huge header size",
         [] {
             auto bytes = threeGlyphs().bytes();
             bytes[8] = 0xFF;
             bytes[9] = 0xFF;
             return bytes;
         },
         "header size 65535"},
        {"flags", [] { return spoiled([](Psf2Builder& b) { b.flags |= 4; }); }, "flags 0x5"},
        {"zero width", [] { return spoiled([](Psf2Builder& b) { b.width = 0; }); },
         "glyph size 0x8"},
        {"wide", [] { return spoiled([](Psf2Builder& b) { b.width = 65; }); }, "glyph size 65x8"},
        {"tall", [] { return spoiled([](Psf2Builder& b) { b.height = 100; }); },
         "glyph size 8x100"},
        {"bytes per glyph",
         [] { return spoiled([](Psf2Builder& b) { b.glyphBytesOverride = 9; }); },
         "bytes per glyph 9"},
        {"no glyphs",
         [] {
             auto bytes = Psf2Builder().bytes();
             return bytes;
         },
         "glyph count 0"},
        {"too many glyphs",
         [] { return spoiled([](Psf2Builder& b) { b.glyphCountOverride = 70000; }); },
         "glyph count 70000"},
        {"glyphs past the end",
         [] { return spoiled([](Psf2Builder& b) { b.glyphCountOverride = 50; }); },
         "50 glyphs of 8 bytes need"},
        {"cut glyphs", [] { return cut(40); }, "3 glyphs of 8 bytes need 56 bytes"},
        {"table ends early", [] { return cut(threeGlyphs().bytes().size() - 1); },
         "Unicode table ends after 2 of 3 glyphs"},
        {"overlong UTF-8",
         [] {
             return withTable({0xC0, 0x80, 0xFF});
         },
         "starts no UTF-8"},
        {"overlong three bytes",
         [] {
             return withTable({0xE0, 0x80, 0x80, 0xFF});
         },
         "invalid UTF-8"},
        {"surrogate",
         [] {
             return withTable({0xED, 0xA0, 0x80, 0xFF});
         },
         "invalid UTF-8"},
        {"past U+10FFFF",
         [] {
             return withTable({0xF4, 0x90, 0x80, 0x80, 0xFF});
         },
         "invalid UTF-8"},
        {"bad continuation",
         [] {
             return withTable({0xC3, 0x41, 0xFF});
         },
         "invalid UTF-8"},
        {"cut UTF-8",
         [] {
             return withTable({0xE2, 0x82});
         },
         "cut off"},
        {"PSF1 mode",
         [] {
             return std::vector<std::uint8_t>{0x36, 0x04, 0x08, 8};
         },
         "PSF1 mode 0x8"},
        {"PSF1 height",
         [] {
             return std::vector<std::uint8_t>{0x36, 0x04, 0x00, 0};
         },
         "glyph size 8x0"},
        {"PSF1 cut glyphs",
         [] {
             return std::vector<std::uint8_t>{0x36, 0x04, 0x00, 8, 0};
         },
         "256 glyphs of 8 bytes need 2052 bytes"},
        {"PSF1 cut table",
         [] {
             std::vector<std::uint8_t> bytes{0x36, 0x04, 0x02, 1};
             bytes.resize(4 + 256, 0);
             bytes.insert(bytes.end(), {0x41, 0x00, 0xFF, 0xFF, 0x42});
             return bytes;
         },
         "Unicode table ends after 1 of 256 glyphs"},
    };
    for (Malformed const& malformed : cases) {
        std::vector<std::uint8_t> const bytes = malformed.bytes();
        try {
            Font::fromPsfBytes(bytes.data(), bytes.size(), "bad.psf");
            ADD_FAILURE() << malformed.name << ": accepted";
        } catch (FontError const& error) {
            EXPECT_EQ(error.source(), "bad.psf") << malformed.name;
            EXPECT_NE(error.problem().find(malformed.problem), std::string::npos)
                << malformed.name << ": " << error.what();
            EXPECT_EQ(std::string(error.what()).rfind("bad.psf: ", 0), 0u) << error.what();
        }
    }
}

TEST(PsfFontTest, LoadsAFontFileAndNamesAMissingOne) {
    std::string const path = tempPath("three.psf");
    writeFile(path, threeGlyphs().bytes());

    Font const font = Font::fromName(path);
    EXPECT_TRUE(font.hasGlyph(U'A'));
    EXPECT_EQ(font.name(), path);
    std::remove(path.c_str());

    try {
        Font::fromPsfFile(path);
        ADD_FAILURE() << "a missing file was accepted";
    } catch (FontError const& error) {
        EXPECT_EQ(error.source(), path);
        EXPECT_NE(error.problem().find("No such file"), std::string::npos) << error.what();
    }
}

TEST(PsfFontTest, FromNameGivesTheBuiltInFontsByName) {
    EXPECT_EQ(Font::fromName("6x8").cellWidth(), 6u);
    EXPECT_EQ(Font::fromName("6x8").cellHeight(), 8u);
    EXPECT_EQ(Font::fromName("8x16").cellWidth(), 8u);
    EXPECT_EQ(Font::fromName("8x16").cellHeight(), 16u);
    EXPECT_THROW(Font::fromName("7x9"), FontError);
}

#ifdef YXFP_TEST_HAVE_ZLIB
TEST(PsfFontTest, LoadsCompressedFontsAndTheSystemsConsoleFonts) {
    std::string const path = tempPath("three.psf.gz");
    std::vector<std::uint8_t> const bytes = threeGlyphs().bytes();
    gzFile file = gzopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(gzwrite(file, bytes.data(), unsigned(bytes.size())), int(bytes.size()));
    ASSERT_EQ(gzclose(file), Z_OK);

    Font const font = Font::fromPsfFile(path);
    EXPECT_EQ(glyphText(font, U'\u03B2'), glyphText(load(bytes), U'B'));
    std::remove(path.c_str());

    // Debian's console fonts, when installed, all load and have a glyph for 'A'.
    std::string const folder = "/usr/share/consolefonts/";
    if (DIR* dir = ::opendir(folder.c_str())) {
        while (dirent* entry = ::readdir(dir)) {  // NOLINT(concurrency-mt-unsafe): own stream
            std::string const name = entry->d_name;
            if (name.size() > 7 && name.compare(name.size() - 7, 7, ".psf.gz") == 0) {
                Font const console = Font::fromPsfFile(folder + name);
                EXPECT_TRUE(console.hasGlyph(U'A')) << name;
            }
        }
        ::closedir(dir);
    }
}
#endif

}  // namespace
