// The character generator ROMs of the HD44780U as the datasheet's Table 4 draws them, one
// string per column of the table (the upper four bits of the code), sixteen cells each from
// xxxx0000 at the top. A space stands for a blank cell. Where the datasheet draws a glyph that
// Unicode has no single character for, the nearest one is used: ⁻ for the superscript minus one
// of A00 0xE9, x for x-bar at A00 0xF8, ⏫/⏬ for A02's double arrows, ⍾ for A02's bell.
#include "hd44780_model_rom.h"

#include <array>
#include <string_view>

namespace yxfp_model {

namespace {

using Column = std::u32string_view;
using Table = std::array<Column, 16>;

constexpr Column kCgram{U"\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16};
constexpr Column kBlank = U"                ";

// ROM code A00, "Japanese standard font".
constexpr Table kA00 = {
    kCgram,                  // 0000: CGRAM (1)-(8), twice
    kBlank,                  // 0001: no characters
    U" !\"#$%&'()*+,-./",    // 0010
    U"0123456789:;<=>?",     // 0011
    U"@ABCDEFGHIJKLMNO",     // 0100
    U"PQRSTUVWXYZ[¥]^_",     // 0101: the yen sign where ASCII has the backslash
    U"`abcdefghijklmno",     // 0110
    U"pqrstuvwxyz{|}→←",     // 0111: arrows where ASCII has the tilde and DEL
    kBlank,                  // 1000: no characters
    kBlank,                  // 1001: no characters
    U" ｡｢｣､･ｦｧｨｩｪｫｬｭｮｯ",     // 1010: half-width katakana and punctuation
    U"ｰｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿ",     // 1011
    U"ﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏ",     // 1100
    U"ﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜﾝﾞﾟ",     // 1101
    U"αäβεμσρg√⁻jˣ¢£ñö",     // 1110: g and j with descenders (5x10 patterns)
    U"pqθ∞ΩüΣπxy千万円÷ █",  // 1111: p, q and y with descenders; x-bar; a blank; all dots
};

// ROM code A02, "European standard font".
constexpr Table kA02 = {
    kCgram,                // 0000: CGRAM (1)-(8), twice
    U"►◄“”⏫⏬●↵↑↓→←≤≥▲▼",   // 0001
    U" !\"#$%&'()*+,-./",  // 0010
    U"0123456789:;<=>?",   // 0011
    U"@ABCDEFGHIJKLMNO",   // 0100
    U"PQRSTUVWXYZ[\\]^_",  // 0101
    U"`abcdefghijklmno",   // 0110
    U"pqrstuvwxyz{|}~⌂",   // 0111
    U"БДЖЗИЙЛПУЦЧШЩЪЫЭ",   // 1000: Cyrillic capitals
    U"α♪ΓπΣσ♬τ⍾ΘΩδ∞♥ε∩",   // 1001
    U"‖¡¢£¤¥¦§ƒ©ª«ЮЯ®‘",   // 1010
    U"°±²³₧µ¶·ω¹º»¼½¾¿",   // 1011
    U"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏ",   // 1100
    U"ÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß",   // 1101
    U"àáâãäåæçèéêëìíîï",   // 1110
    U"ðñòóôõö÷øùúûüýþÿ",   // 1111
};

constexpr bool wellFormed(Table const& table) {
    for (Column const column : table) {
        if (column.size() != 16) {
            return false;
        }
    }
    return true;
}
static_assert(wellFormed(kA00), "every column of A00 has sixteen cells");
static_assert(wellFormed(kA02), "every column of A02 has sixteen cells");

}  // namespace

char32_t romPattern(frontpanelhw::Hd44780Rom rom, std::uint8_t code) {
    Table const& table = rom == frontpanelhw::Hd44780Rom::A00 ? kA00 : kA02;
    return table[code >> 4][code & 0x0F];
}

}  // namespace yxfp_model
