// The character tables of HD44780-compatible controllers: the two common character ROMs and the
// custom glyphs the library loads into CGRAM for the characters the ROMs lack. Every ROM row
// names the table of the Hitachi HD44780U datasheet (ADE-207-272) it comes from.
#include "hd44780_rom_tables.h"

namespace frontpanelhw {

namespace {

using detail::RomGlyphTable;

constexpr char32_t kBlank = 0x20;

// Fills `table[first..last]` with the blank pattern.
constexpr void fillBlank(RomGlyphTable& table, unsigned first, unsigned last) {
    for (unsigned code = first; code <= last; ++code) {
        table[code] = kBlank;
    }
}

// Fills `table[first..last]` with consecutive characters starting at `character`.
constexpr void fillRun(RomGlyphTable& table, unsigned first, unsigned last, char32_t character) {
    for (unsigned code = first; code <= last; ++code) {
        table[code] = character + (code - first);
    }
}

constexpr void fillRow(RomGlyphTable& table, unsigned first, std::array<char32_t, 16> const& row) {
    for (unsigned i = 0; i < row.size(); ++i) {
        table[first + i] = row[i];
    }
}

constexpr RomGlyphTable makeA00() {
    RomGlyphTable table{};  // 0x00-0x0F: CGRAM
    // Datasheet Table 4, ROM code A00, columns 0001 and 1000-1010 upper half: blank.
    fillBlank(table, 0x10, 0x1F);
    fillBlank(table, 0x80, 0xA0);
    // Table 4, A00, columns 0010-0111: ASCII, except the yen sign and the two arrows.
    fillRun(table, 0x20, 0x7F, 0x20);
    table[0x5C] = 0x00A5;  // ¥
    table[0x7E] = 0x2192;  // →
    table[0x7F] = 0x2190;  // ←
    // Table 4, A00, columns 1010-1101: half-width katakana in JIS X 0201 order (U+FF61-U+FF9F).
    fillRun(table, 0xA1, 0xDF, 0xFF61);
    // Table 4, A00, column 1110: α ä β ε μ σ ρ g √ ⁻¹ j ˣ ¢ £ ñ ö (g and j with descenders).
    fillRow(table, 0xE0,
            {0x03B1, 0x00E4, 0x03B2, 0x03B5, 0x03BC, 0x03C3, 0x03C1, 'g', 0x221A, 0x207B, 'j',
             0x02E3, 0x00A2, 0x00A3, 0x00F1, 0x00F6});
    // Table 4, A00, column 1111: p q θ ∞ Ω ü Σ π x̄ y 千 万 円 ÷ blank █ (p q y with descenders).
    fillRow(table, 0xF0,
            {'p', 'q', 0x03B8, 0x221E, 0x03A9, 0x00FC, 0x03A3, 0x03C0, 'x', 'y', 0x5343, 0x4E07,
             0x5186, 0x00F7, kBlank, 0x2588});
    return table;
}

constexpr RomGlyphTable makeA02() {
    RomGlyphTable table{};  // 0x00-0x0F: CGRAM
    // Datasheet Table 4, ROM code A02, column 0001: ► ◄ “ ” ⏫ ⏬ ● ↵ ↑ ↓ → ← ≤ ≥ ▲ ▼.
    fillRow(table, 0x10,
            {0x25BA, 0x25C4, 0x201C, 0x201D, 0x23EB, 0x23EC, 0x25CF, 0x21B5, 0x2191, 0x2193, 0x2192,
             0x2190, 0x2264, 0x2265, 0x25B2, 0x25BC});
    // Table 4, A02, columns 0010-0111: ASCII, and the house sign at 0x7F.
    fillRun(table, 0x20, 0x7E, 0x20);
    table[0x7F] = 0x2302;  // ⌂
    // Table 4, A02, column 1000: Cyrillic capitals Б Д Ж З И Й Л П У Ц Ч Ш Щ Ъ Ы Э.
    fillRow(table, 0x80,
            {0x0411, 0x0414, 0x0416, 0x0417, 0x0418, 0x0419, 0x041B, 0x041F, 0x0423, 0x0426, 0x0427,
             0x0428, 0x0429, 0x042A, 0x042B, 0x042D});
    // Table 4, A02, column 1001: α ♪ Γ π Σ σ ♬ τ bell Θ Ω δ ∞ ♥ ε ∩.
    fillRow(table, 0x90,
            {0x03B1, 0x266A, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x266C, 0x03C4, 0x237E, 0x0398, 0x03A9,
             0x03B4, 0x221E, 0x2665, 0x03B5, 0x2229});
    // Table 4, A02, columns 1010-1111: Latin-1, with these exceptions.
    fillRun(table, 0xA0, 0xFF, 0xA0);
    table[0xA0] = 0x2016;  // ‖
    table[0xA8] = 0x0192;  // ƒ
    table[0xAC] = 0x042E;  // Ю
    table[0xAD] = 0x042F;  // Я
    table[0xAF] = 0x2018;  // ‘
    table[0xB4] = 0x20A7;  // ₧
    table[0xB8] = 0x03C9;  // ω
    return table;
}

constexpr RomGlyphTable kA00 = makeA00();
constexpr RomGlyphTable kA02 = makeA02();

// Drawn by this library for the characters the toolkit writes (scroll and slider arrows, bar
// cells, the success tick, the degree sign) and a few more that either ROM lacks. Rows from the
// top, bit 4 the leftmost dot of the 5x8 cell.
constexpr std::array<Hd44780CustomGlyph, 18> kCustomGlyphs = {{
    {0x25B2, {0x00, 0x04, 0x04, 0x0E, 0x0E, 0x1F, 0x1F, 0x00}, '^'},  // ▲
    {0x25BC, {0x00, 0x1F, 0x1F, 0x0E, 0x0E, 0x04, 0x04, 0x00}, 'v'},  // ▼
    {0x2588, {0x1F, 0x1F, 0x1F, 0x1F, 0x1F, 0x1F, 0x1F, 0x1F}, '#'},  // █
    {0x2591, {0x15, 0x00, 0x0A, 0x00, 0x15, 0x00, 0x0A, 0x00}, '.'},  // ░
    {0x2592, {0x15, 0x0A, 0x15, 0x0A, 0x15, 0x0A, 0x15, 0x0A}, ':'},  // ▒
    {0x2593, {0x1F, 0x15, 0x1F, 0x0A, 0x1F, 0x15, 0x1F, 0x0A}, '#'},  // ▓
    {0x221A, {0x00, 0x01, 0x03, 0x16, 0x1C, 0x08, 0x00, 0x00}, '*'},  // √, drawn as a tick
    {0x00B0, {0x0C, 0x12, 0x12, 0x0C, 0x00, 0x00, 0x00, 0x00}, 'o'},  // °
    {0x25BA, {0x08, 0x0C, 0x0E, 0x0F, 0x0E, 0x0C, 0x08, 0x00}, '>'},  // ►
    {0x25C4, {0x02, 0x06, 0x0E, 0x1E, 0x0E, 0x06, 0x02, 0x00}, '<'},  // ◄
    {0x2192, {0x00, 0x04, 0x02, 0x1F, 0x02, 0x04, 0x00, 0x00}, '>'},  // →
    {0x2190, {0x00, 0x04, 0x08, 0x1F, 0x08, 0x04, 0x00, 0x00}, '<'},  // ←
    {0x2191, {0x04, 0x0E, 0x15, 0x04, 0x04, 0x04, 0x04, 0x00}, '^'},  // ↑
    {0x2193, {0x04, 0x04, 0x04, 0x04, 0x15, 0x0E, 0x04, 0x00}, 'v'},  // ↓
    {0x005C, {0x00, 0x10, 0x08, 0x04, 0x02, 0x01, 0x00, 0x00}, '|'},  // backslash (A00: ¥)
    {0x007E, {0x00, 0x00, 0x08, 0x15, 0x02, 0x00, 0x00, 0x00}, '-'},  // ~ (A00: →)
    {0x2665, {0x00, 0x0A, 0x1F, 0x1F, 0x0E, 0x04, 0x00, 0x00}, '*'},  // ♥
    {0x2666, {0x00, 0x04, 0x0E, 0x1F, 0x0E, 0x04, 0x00, 0x00}, '*'},  // ♦
}};

// The micro sign of Latin-1 and the Greek mu share one glyph on every ROM that has either.
constexpr std::array<detail::RomLookalike, 2> kLookalikes = {{
    {0x00B5, 0x03BC},
    {0x03BC, 0x00B5},
}};

}  // namespace

namespace detail {

RomGlyphTable const& romGlyphTable(Hd44780Rom rom) { return rom == Hd44780Rom::A00 ? kA00 : kA02; }

std::array<RomLookalike, 2> const& romLookalikes() { return kLookalikes; }

}  // namespace detail

std::array<Hd44780CustomGlyph, 18> const& hd44780CustomGlyphs() { return kCustomGlyphs; }

}  // namespace frontpanelhw
