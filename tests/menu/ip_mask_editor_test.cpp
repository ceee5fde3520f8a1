#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

using Masks = std::vector<std::pair<int, std::u16string>>;

// Every offered prefix length with its mask, in the order of the sub-menu.
Masks const kMasks{
    {0, u"0.0.0.0"},          {4, u"240.0.0.0"},        {8, u"255.0.0.0"},
    {12, u"255.240.0.0"},     {16, u"255.255.0.0"},     {17, u"255.255.128.0"},
    {18, u"255.255.192.0"},   {19, u"255.255.224.0"},   {20, u"255.255.240.0"},
    {21, u"255.255.248.0"},   {22, u"255.255.252.0"},   {23, u"255.255.254.0"},
    {24, u"255.255.255.0"},   {25, u"255.255.255.128"}, {26, u"255.255.255.192"},
    {27, u"255.255.255.224"}, {28, u"255.255.255.240"}, {29, u"255.255.255.248"},
    {30, u"255.255.255.252"}, {31, u"255.255.255.254"}, {32, u"255.255.255.255"},
};

// The choice text of a prefix length, as the sub-menu lists it.
std::u16string choiceText(std::pair<int, std::u16string> const& mask) {
    return mask.second + u" | /" + yxfrontpanel::stringhelper::toU16(std::to_string(mask.first));
}

// A 21x4 root menu with the mask editor "Netmask" on screen in local mode; the prefix lengths
// the user chooses are recorded.
struct MaskMenu : TestMenu {
    MaskMenu() : TestMenu(21, 4) {
        mask = std::make_shared<IpMaskEditor>(provider, u"Netmask");
        mask->valueCallback = [this](int bits) { reported.push_back(bits); };
        tree->addItem(mask);
        tree->setLocal(true);
        tree->setFocus(true);
    }

    RadioMenuItem& choice(unsigned index) const {
        return dynamic_cast<RadioMenuItem&>(*mask->getSubTree()->getItem(index));
    }
    // The index of the choice for `bits` in the sub-menu.
    static unsigned indexOf(int bits) {
        auto const found = std::find_if(kMasks.begin(), kMasks.end(),
                                        [bits](auto const& mask) { return mask.first == bits; });
        return static_cast<unsigned>(found - kMasks.begin());
    }

    std::shared_ptr<IpMaskEditor> mask;
    std::vector<int> reported;
};

TEST(IpMaskEditorTest, TheTableHoldsTheTwentyOneOfferedMasks) {
    MaskMenu menu;
    auto const& table = menu.mask->getBitToMaskMap();
    EXPECT_EQ(Masks(table.begin(), table.end()), kMasks);
}

TEST(IpMaskEditorTest, EveryMaskIsAChoiceWithItsPrefixLengthAsId) {
    MaskMenu menu;
    ASSERT_EQ(menu.mask->getSubTree()->allItemCount(), 21U);
    ASSERT_EQ(menu.mask->getSubTree()->itemCount(), 21U);
    for (unsigned i = 0; i < kMasks.size(); ++i) {
        RadioMenuItem const& choice = menu.choice(i);
        EXPECT_EQ(choice.getId(), kMasks[i].first) << "row " << i;
        EXPECT_EQ(choice.getText(), choiceText(kMasks[i])) << "row " << i;
        EXPECT_EQ(choice.getOwnText(), (i == 0 ? u">" : u" ") + choiceText(kMasks[i]))
            << "row " << i;
        EXPECT_EQ(choice.isChecked(), i == 0) << "row " << i;
    }
    EXPECT_EQ(menu.choice(12).getText(), u"255.255.255.0 | /24");
    EXPECT_EQ(menu.choice(0).getText(), u"0.0.0.0 | /0");
    EXPECT_EQ(menu.choice(20).getText().size(), 21U);
}

TEST(IpMaskEditorTest, WalkingTheSubMenuShowsEveryMaskInAscendingOrder) {
    MaskMenu menu;
    EXPECT_EQ(menu.provider.screen(), (yxfp_test::Screen{menu.line(u"Netmask"), menu.line(u""),
                                                         menu.line(u""), menu.line(u"")}));
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(
        menu.provider.screen(),
        (yxfp_test::Screen{menu.line(u">0.0.0.0 | /0"), menu.line(u" 240.0.0.0 | /4"),
                           menu.line(u" 255.0.0.0 | /8"), menu.line(u" 255.240.0.0 | /12", 0x1F)}));
    for (unsigned i = 1; i < kMasks.size(); ++i) {
        press(*menu.tree, Key::Down);
        unsigned const row = std::min(i, 3U);
        // The cursor line: the marked choice text, cut to the 20 cells of an item line.
        char16_t const scrollbar =
            row == 0 ? 0x1E : (row == 3 && i + 1 < kMasks.size() ? 0x1F : u' ');
        EXPECT_EQ(menu.provider.line(row), menu.line(u" " + choiceText(kMasks[i]), scrollbar))
            << "row " << i;
        EXPECT_EQ(menu.provider.inversion(row), menu.selectedMask()) << "row " << i;
    }
    // The last screen: the longest masks lose their prefix at the right edge.
    EXPECT_EQ(menu.provider.screen(),
              (yxfp_test::Screen{
                  menu.line(u" 255.255.255.248 | /", 0x1E), menu.line(u" 255.255.255.252 | /"),
                  menu.line(u" 255.255.255.254 | /"), menu.line(u" 255.255.255.255 | /")}));
}

TEST(IpMaskEditorTest, NewEditorHasTheZeroPrefixChecked) {
    yxfp_test::RecordingProvider provider(21, 4);
    IpMaskEditor mask(provider, u"Netmask");
    EXPECT_EQ(mask.getSubTree()->allItemCount(), 21U);
    EXPECT_TRUE(dynamic_cast<RadioMenuItem&>(*mask.getSubTree()->getItem(0)).isChecked());
    EXPECT_EQ(mask.getOwnText(), u"Netmask");
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(IpMaskEditorTest, SetValueChecksTheMaskOfThePrefixLength) {
    MaskMenu menu;
    menu.mask->setValue(24);
    EXPECT_TRUE(menu.choice(MaskMenu::indexOf(24)).isChecked());
    EXPECT_EQ(menu.choice(MaskMenu::indexOf(24)).getOwnText(), u">255.255.255.0 | /24");
    EXPECT_FALSE(menu.choice(0).isChecked());
    EXPECT_EQ(menu.choice(0).getOwnText(), u" 0.0.0.0 | /0");
    EXPECT_TRUE(menu.reported.empty());
}

TEST(IpMaskEditorTest, PrefixLengthsThatAreNotOfferedChangeNothing) {
    MaskMenu menu;
    menu.mask->setValue(24);
    for (int bits : {1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, 33, -1}) {
        menu.mask->setValue(bits);
        EXPECT_TRUE(menu.choice(MaskMenu::indexOf(24)).isChecked()) << "bits " << bits;
    }
    int checked = 0;
    for (unsigned i = 0; i < kMasks.size(); ++i) {
        checked += menu.choice(i).isChecked() ? 1 : 0;
    }
    EXPECT_EQ(checked, 1);
}

TEST(IpMaskEditorTest, SelectingAMaskInLocalModeReportsItsPrefixLength) {
    MaskMenu menu;
    press(*menu.tree, Key::Enter);
    for (unsigned i = 0; i < MaskMenu::indexOf(30); ++i) {
        press(*menu.tree, Key::Down);
    }
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.reported, (std::vector<int>{30}));
    EXPECT_TRUE(menu.choice(MaskMenu::indexOf(30)).isChecked());
    EXPECT_FALSE(menu.choice(0).isChecked());
    EXPECT_EQ(menu.provider.line(3), menu.line(u">255.255.255.252 | /", 0x1F));
    press(*menu.tree, Key::Back);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Netmask"));
}

TEST(IpMaskEditorTest, FillingTheTableAgainKeepsIt) {
    MaskMenu menu;
    menu.mask->initBitToMaskMap();
    EXPECT_EQ(menu.mask->getBitToMaskMap().size(), 21U);
    EXPECT_EQ(menu.mask->getSubTree()->allItemCount(), 21U);
}

TEST(IpMaskEditorTest, CreatingTheChoicesAgainListsThemTwiceButKeepsTheFirst) {
    MaskMenu menu;
    menu.mask->setValue(16);
    menu.mask->initElementsFromMap();
    EXPECT_EQ(menu.mask->getSubTree()->allItemCount(), 42U);
    EXPECT_FALSE(menu.choice(21).isChecked());
    menu.mask->setValue(8);
    EXPECT_TRUE(menu.choice(MaskMenu::indexOf(8)).isChecked());
    EXPECT_FALSE(menu.choice(21 + MaskMenu::indexOf(8)).isChecked());
}

}  // namespace
