#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "decimal_comma_locale.h"
#include "item_screens.h"
#include "menu_keys.h"
#include "recording_provider.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

constexpr char16_t kUp = 0x1E;
constexpr char16_t kDown = 0x1F;

// `text` centred in the 19 text columns of a 20-column panel, plus the blank indicator cell.
std::u16string centredRow(std::u16string const& text) {
    return padded(std::u16string((19 - text.size()) / 2, u' ') + text, 19) + u" ";
}

// A 20x4 root menu with the read-only item "Voltage".
struct VoltageMenu : TestMenu {
    VoltageMenu() : TestMenu(20, 4) {
        item = std::make_shared<ReadOnlyMenuItem>(provider, u"Voltage");
        tree->addItem(item);
        tree->setFocus(true);
    }

    // The value screen: the marked name, the value, two blank lines.
    static Screen valueScreen(std::u16string const& value) {
        return {centredRow(u">> Voltage <<"), centredRow(value), centredRow(u""), centredRow(u"")};
    }

    // The text the item gave its view, its wrapped lines joined by line feeds.
    std::u16string shownText() const {
        std::u16string text;
        for (auto const& line : item->getLabel().getLines()) {
            text += (text.empty() ? u"" : u"\n") + line;
        }
        return text;
    }

    std::shared_ptr<ReadOnlyMenuItem> item;
};

TEST(ReadOnlyMenuItemTest, ShowsTheMarkedNameAndTheValueCentred) {
    VoltageMenu menu;
    menu.item->setValue(3.14159, 2);
    EXPECT_EQ(menu.shownText(), u">> Voltage <<\n3.14");
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::valueScreen(u"3.14"));
}

TEST(ReadOnlyMenuItemTest, FormatsExactlyTheGivenNumberOfDecimals) {
    VoltageMenu menu;
    menu.item->setValue(2.0, 0);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"2");
    menu.item->setValue(0.5, 3);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"0.500");
    menu.item->setValue(-12.345678, 4);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"-12.3457");
}

TEST(ReadOnlyMenuItemTest, RoundsAsTheStandardStreamsDo) {
    VoltageMenu menu;
    menu.item->setValue(2.5, 0);  // exactly halfway: to even
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"2");
    menu.item->setValue(0.125, 2);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"0.12");
    menu.item->setValue(1.005, 2);  // 1.00499999... in binary
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"1.00");
}

TEST(ReadOnlyMenuItemTest, NonFiniteValuesAreSpelledOut) {
    VoltageMenu menu;
    menu.item->setValue(std::numeric_limits<double>::infinity(), 2);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"inf");
    menu.item->setValue(-std::numeric_limits<double>::infinity(), 2);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"-inf");
    menu.item->setValue(std::numeric_limits<double>::quiet_NaN(), 2);
    EXPECT_EQ(menu.item->getLabel().getLines().back(), u"nan");
}

TEST(ReadOnlyMenuItemTest, FormatsInTheProcessWideLocale) {
    yxfp_test::DecimalCommaLocale comma;
    std::ostringstream plain;
    plain << 3.5;
    ASSERT_EQ(plain.str(), "3,5") << "the global locale writes a decimal comma";
    VoltageMenu menu;
    menu.item->setValue(3.14159, 2);
    EXPECT_EQ(menu.shownText(), u">> Voltage <<\n3,14");
}

TEST(ReadOnlyMenuItemTest, SetTextWidensEveryByte) {
    VoltageMenu menu;
    menu.item->setText(
        "12 \xF8"
        "C");
    EXPECT_EQ(menu.item->getLabel().getLines().back(),
              u"12 " + std::u16string(1, char16_t{0xF8}) + u"C");
}

TEST(ReadOnlyMenuItemTest, MenuLineShowsTheNameOnly) {
    VoltageMenu menu;
    menu.item->setValue(230.0, 1);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Voltage"));
    press(*menu.tree, {Key::Enter, Key::Back});
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Voltage"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(ReadOnlyMenuItemTest, EnterBeforeAnyValueLeavesTheMenuInControl) {
    VoltageMenu menu;
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

TEST(ReadOnlyMenuItemTest, NewValueWhileOpenIsShownAtOnce) {
    VoltageMenu menu;
    menu.item->setValue(1.0, 1);
    press(*menu.tree, Key::Enter);
    std::size_t const draws = menu.provider.drawCount();
    menu.item->setValue(2.25, 2);
    EXPECT_EQ(menu.provider.drawCount(), draws + 1);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::valueScreen(u"2.25"));
}

TEST(ReadOnlyMenuItemTest, TitleIsTheNameGivenAtConstruction) {
    VoltageMenu menu;
    static_cast<yxfrontpanel::Control&>(*menu.item).setText(u"Renamed");
    menu.item->setValue(1.5, 1);
    EXPECT_EQ(menu.shownText(), u">> Voltage <<\n1.5");
}

TEST(ReadOnlyMenuItemTest, FullScreenTextCanStillBeSetDirectly) {
    VoltageMenu menu;
    menu.item->setText(u"free text", yxfrontpanel::drawing::TextAllignment::Left);
    EXPECT_EQ(menu.shownText(), u"free text");
}

TEST(ReadOnlyMenuItemOneLineTest, ScrollsFromTheNameToTheValueOnAOneLinePanel) {
    TestMenu menu(20, 1);
    auto item = std::make_shared<ReadOnlyMenuItem>(menu.provider, u"Voltage");
    menu.tree->addItem(item);
    menu.tree->setFocus(true);
    item->setValue(3.14159, 2);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(0), padded(u"   >> Voltage <<", 19) + kDown);
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.line(0), padded(u"       3.14", 19) + kUp);
}

}  // namespace
