// The driver's character mapping checked against the controller model's own copy of the
// datasheet's character ROM tables, cell by cell, and on modules with the A00 ROM driven through
// random walks of a menu full of punctuation.
#include <frontpanelhw/code_page.h>
#include <frontpanelhw/hd44780_charset.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <string>

#include "hd44780_model_rom.h"
#include "hd44780_rig.h"
#include "menu_keys.h"
#include "platform_capture.h"
#include "random_menu_walk.h"

namespace {

using frontpanelhw::Hd44780Mapping;
using frontpanelhw::Hd44780Rom;
using yxfp_test::Hd44780Rig;
using yxfp_test::TeeDisplay;

constexpr Hd44780Rom kRoms[] = {Hd44780Rom::A00, Hd44780Rom::A02};

std::string cellName(Hd44780Rom rom, unsigned code) {
    return std::string(frontpanelhw::hd44780RomName(rom)) + " code " + std::to_string(code) + " (" +
           frontpanelhw::toUtf8(yxfp_model::romPattern(rom, static_cast<std::uint8_t>(code))) + ")";
}

// The toolkit's cell code for a Unicode character (code page 437 below 0x100), if it has one.
std::optional<char16_t> toolkitCode(char32_t character) {
    for (unsigned code = 0; code < 0x10000; ++code) {
        if ((code < 0xD800 || code > 0xDFFF) &&
            frontpanelhw::toUnicode(static_cast<char16_t>(code)) == character) {
            return static_cast<char16_t>(code);
        }
    }
    return std::nullopt;
}

// Every ROM cell: the driver's idea of what the code shows is the datasheet's.
TEST(Hd44780CharacterRomTest, DriverTablesAgreeWithTheDatasheetCellByCell) {
    for (Hd44780Rom const rom : kRoms) {
        for (unsigned code = 0x10; code < 0x100; ++code) {
            auto const byte = static_cast<std::uint8_t>(code);
            EXPECT_EQ(frontpanelhw::hd44780RomGlyph(rom, byte), yxfp_model::romPattern(rom, byte))
                << cellName(rom, code);
        }
    }
}

// Every character a ROM has goes out as a code that shows it.
TEST(Hd44780CharacterRomTest, EveryRomCharacterIsWrittenAsACodeThatShowsIt) {
    for (Hd44780Rom const rom : kRoms) {
        for (unsigned code = 0x10; code < 0x100; ++code) {
            char32_t const shown = yxfp_model::romPattern(rom, static_cast<std::uint8_t>(code));
            auto const cell = toolkitCode(shown);
            if (shown == U' ' || !cell) {
                continue;
            }
            auto const mapping = frontpanelhw::mapHd44780Character(*cell, rom);
            ASSERT_EQ(mapping.kind, Hd44780Mapping::Kind::Rom) << cellName(rom, code);
            EXPECT_EQ(yxfp_model::romPattern(rom, mapping.romCode), shown)
                << cellName(rom, code) << " written as " << unsigned{mapping.romCode};
        }
    }
}

// Printable ASCII reaches the module as its own code, except where the ROM has another glyph
// there (A00: the yen sign at the backslash, an arrow at the tilde).
TEST(Hd44780CharacterRomTest, PrintableAsciiIsWrittenAsItsOwnCode) {
    for (Hd44780Rom const rom : kRoms) {
        for (char16_t ascii = 0x20; ascii < 0x7F; ++ascii) {
            bool const romLacksIt = rom == Hd44780Rom::A00 && (ascii == u'\\' || ascii == u'~');
            auto const mapping = frontpanelhw::mapHd44780Character(ascii, rom);
            if (romLacksIt) {
                EXPECT_EQ(mapping.kind, Hd44780Mapping::Kind::Custom) << cellName(rom, ascii);
                continue;
            }
            ASSERT_EQ(mapping.kind, Hd44780Mapping::Kind::Rom) << cellName(rom, ascii);
            EXPECT_EQ(mapping.romCode, ascii) << cellName(rom, ascii);
        }
    }
}

// A menu as an instrument has one: measured values, addresses, serial numbers and notes with
// every punctuation mark of ASCII.
struct PunctuationMenu {
    explicit PunctuationMenu(frontpanelhw::IDisplay& display)
        : provider(display), tree(yxfrontpanel::MenuTreeFactory().create(provider)) {
        auto voltage = std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider, u"Out 1");
        voltage->setValue(5.0, 2);
        auto address = std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider, u"IP");
        address->setText("192.168.1.100");
        auto serial = std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider, u"S/N");
        serial->setText("YX-2026/07");
        auto notes = std::make_shared<yxfrontpanel::ScrollLabelMenuItem>(provider, u"Notes");
        notes->setText(
            u"Owner's note: \"a,b;c\" (x+y)*z=1 <5> [6] {7} 50% #8 @9 $0 & a_b|c`d^e "
            u"!? ~ \\ end.",
            yxfrontpanel::drawing::TextAllignment::Left);
        auto limits = std::make_shared<yxfrontpanel::TreeMenuItem>(provider, u"Limits: -5..+5");
        auto lower = std::make_shared<yxfrontpanel::ReadOnlyMenuItem>(provider, u"Low, 'min'");
        lower->setValue(-5.0, 1);
        limits->addItem(lower);
        for (std::shared_ptr<yxfrontpanel::MenuItem> const& item :
             {std::shared_ptr<yxfrontpanel::MenuItem>(voltage),
              std::shared_ptr<yxfrontpanel::MenuItem>(address),
              std::shared_ptr<yxfrontpanel::MenuItem>(serial),
              std::shared_ptr<yxfrontpanel::MenuItem>(notes),
              std::shared_ptr<yxfrontpanel::MenuItem>(limits)}) {
            tree->addItem(item);
        }
        tree->setFocus(true);
    }

    yxfrontpanel::DrawingProvider provider;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
};

struct ModuleSize {
    unsigned chars;
    unsigned lines;
};

class Hd44780A00WalkTest : public ::testing::TestWithParam<ModuleSize> {};

// 150 random keys: after each, every cell of the frame is on the module, and every ASCII cell
// (letters, digits, punctuation) holds its own code in display RAM.
TEST_P(Hd44780A00WalkTest, EveryAsciiCellOfTheFrameIsOnTheModule) {
    yxfp_test::SleepCapture const noWaiting;
    ModuleSize const size = GetParam();
    Hd44780Rig rig(size.chars, size.lines, Hd44780Rom::A00);
    TeeDisplay tee(rig.display());
    PunctuationMenu menu(tee);
    std::mt19937 random(150U + size.chars);
    unsigned asciiCells = 0;
    for (int step = 0; step < 150; ++step) {
        yxfp_test::press(*menu.tree, yxfp_test::randomKey(random));
        auto const& frame = tee.last();
        ASSERT_EQ(rig.screen(), Hd44780Rig::meant(frame)) << "step " << step;
        for (unsigned line = 0; line < size.lines; ++line) {
            for (unsigned column = 0; column < size.chars; ++column) {
                char16_t const cell = frame.getCell(column, line).character;
                if (cell < 0x20 || cell > 0x7D || cell == u'\\') {
                    continue;
                }
                ++asciiCells;
                ASSERT_EQ(rig.model().code(column, line), cell)
                    << "step " << step << " cell " << column << "," << line;
            }
        }
    }
    EXPECT_GT(asciiCells, 150U * size.chars);
}

INSTANTIATE_TEST_SUITE_P(Modules, Hd44780A00WalkTest,
                         ::testing::Values(ModuleSize{16, 2}, ModuleSize{20, 4}, ModuleSize{40, 2}),
                         [](auto const& info) {
                             return "M" + std::to_string(info.param.chars) + "x" +
                                    std::to_string(info.param.lines);
                         });

}  // namespace
