#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "recording_provider.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;
using yxfrontpanel::drawing::TextAllignment;

constexpr char16_t kUp = 0x1E;
constexpr char16_t kDown = 0x1F;

// Six short lines "one".."six".
std::u16string const kSixLines = u"one\ntwo\nthree\nfour\nfive\nsix";

// A 20x4 root menu "Help" (scrolling text), "Other".
struct HelpMenu : TestMenu {
    HelpMenu() : TestMenu(20, 4) {
        item = std::make_shared<ScrollLabelMenuItem>(provider, u"Help");
        tree->addItem(item);
        other = add(u"Other");
        tree->setFocus(true);
    }

    Screen menuScreen() const { return {line(u"Help"), line(u"Other"), line(u""), line(u"")}; }

    // Gives the item `text`, left-aligned, and opens it with the enter key, then presses `keys`.
    void open(std::u16string const& text, std::initializer_list<Key> keys = {}) {
        item->setText(text, TextAllignment::Left);
        press(*tree, Key::Enter);
        press(*tree, keys);
    }

    // A left-aligned text line of the 19 text columns plus the indicator cell.
    static std::u16string row(std::u16string const& text, char16_t indicator = u' ') {
        return padded(text, 19) + indicator;
    }

    std::shared_ptr<ScrollLabelMenuItem> item;
    std::shared_ptr<yxfp_test::TestItem> other;
};

// --- entering ---

TEST(ScrollLabelMenuItemTest, EnterBeforeAnyTextLeavesTheMenuInControl) {
    HelpMenu menu;
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(menu.item->hasText());
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    EXPECT_FALSE(menu.item->getLabel().getFocus());
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(ScrollLabelMenuItemTest, EnterShowsTheTextFullScreen) {
    HelpMenu menu;
    menu.item->setText(kSixLines, TextAllignment::Left);
    EXPECT_EQ(menu.provider.drawCount(), 1U) << "setting the text while closed draws nothing";
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{HelpMenu::row(u"one"), HelpMenu::row(u"two"), HelpMenu::row(u"three"),
                      HelpMenu::row(u"four", kDown)}));
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_TRUE(menu.item->getFocus());
}

TEST(ScrollLabelMenuItemTest, TheTextViewIsTheItemsForm) {
    HelpMenu menu;
    EXPECT_EQ(menu.item->getForm(), &menu.item->getLabel());
}

TEST(ScrollLabelMenuItemTest, UnavailableItemWithTextStillOpens) {
    HelpMenu menu;
    menu.item->setText(u"text", TextAllignment::Center);
    menu.item->setAvailable(false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Help (N/A)"));
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.line(0), u"       text        " + std::u16string(u" "));
}

TEST(ScrollLabelMenuItemTest, EnterInTheOpenTextRedrawsIt) {
    HelpMenu menu;
    menu.open(kSixLines);
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.drawCount(), draws + 1);
    EXPECT_TRUE(menu.tree->itemHasFocus());
}

TEST(ScrollLabelMenuItemTest, TheMenuIsNotToldOnTheWayInSoItsItemsStayShown) {
    HelpMenu menu;
    menu.open(u"text");
    // The tree learnt of the change from enter's answer only; it never took the shown flags.
    EXPECT_TRUE(menu.item->getShown());
    EXPECT_TRUE(menu.other->getShown());
}

TEST(ScrollLabelMenuItemTest, MenuChangeWhileTheTextIsOpenIsDrawnOverItUntilTheNextScroll) {
    HelpMenu menu;
    menu.open(kSixLines);
    menu.other->setAvailable(false);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Help"), menu.line(u"Other (N/A)"),
                                              menu.line(u""), menu.line(u"")}));
    EXPECT_TRUE(menu.item->getLabel().getFocus()) << "the keys still go to the text";
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.line(0), HelpMenu::row(u"two", kUp));
}

// --- keys in the open text ---

TEST(ScrollLabelMenuItemTest, UpAndDownScrollTheText) {
    HelpMenu menu;
    menu.open(kSixLines, {Key::Down, Key::Down});
    EXPECT_EQ(menu.provider.screen(), (Screen{HelpMenu::row(u"three", kUp), HelpMenu::row(u"four"),
                                              HelpMenu::row(u"five"), HelpMenu::row(u"six")}));
    std::size_t const draws = menu.provider.drawCount();
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.drawCount(), draws) << "the last line is already at the bottom";
    press(*menu.tree, Key::Up);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{HelpMenu::row(u"two", kUp), HelpMenu::row(u"three"), HelpMenu::row(u"four"),
                      HelpMenu::row(u"five", kDown)}));
    EXPECT_TRUE(menu.item->up());
    EXPECT_TRUE(menu.item->down());
}

TEST(ScrollLabelMenuItemTest, LeftRightAndLocalModeAreIgnored) {
    HelpMenu menu;
    menu.open(kSixLines);
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    menu.tree->setLocal(true);
    menu.item->setLocal(false);
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.item->getLabel().getFirstLine(), 0U);
}

TEST(ScrollLabelMenuItemTest, BackClosesTheTextAndTheMenuRedraws) {
    HelpMenu menu;
    menu.open(kSixLines);
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.drawCount(), draws + 1);
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_FALSE(menu.item->getLabel().getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
}

TEST(ScrollLabelMenuItemTest, ReopeningKeepsTheScrollPosition) {
    HelpMenu menu;
    menu.open(kSixLines, {Key::Down, Key::Back, Key::Enter});
    EXPECT_EQ(menu.provider.line(0), HelpMenu::row(u"two", kUp));
}

TEST(ScrollLabelMenuItemTest, HidingTheOpenItemClosesTheText) {
    HelpMenu menu;
    menu.open(kSixLines);
    menu.item->setVisible(false);
    EXPECT_FALSE(menu.item->getLabel().getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Other"), menu.line(u""), menu.line(u""), menu.line(u"")}));
}

// --- texts ---

TEST(ScrollLabelMenuItemTest, NewTextWhileOpenIsDrawnAtOnce) {
    HelpMenu menu;
    menu.open(kSixLines);
    std::size_t const draws = menu.provider.drawCount();
    menu.item->setText(u"short", TextAllignment::Right);
    EXPECT_EQ(menu.provider.drawCount(), draws + 1);
    EXPECT_EQ(menu.provider.screen(), (Screen{padded(u"", 14) + u"short ", HelpMenu::row(u""),
                                              HelpMenu::row(u""), HelpMenu::row(u"")}));
}

TEST(ScrollLabelMenuItemTest, LongTextIsWrappedToTheWidthLessTheIndicator) {
    HelpMenu menu;
    menu.open(u"Press enter to start the self test of the unit");
    EXPECT_EQ(menu.provider.screen(),
              (Screen{HelpMenu::row(u"Press enter to"), HelpMenu::row(u"start the self test"),
                      HelpMenu::row(u"of the unit"), HelpMenu::row(u"")}));
}

TEST(ScrollLabelMenuItemTest, ShorterTextWhileScrolledMakesTheNextOpeningThrow) {
    HelpMenu menu;
    menu.open(kSixLines, {Key::Down, Key::Down, Key::Back});
    menu.item->setText(u"a", TextAllignment::Left);  // closed: nothing is drawn yet
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_THROW(press(*menu.tree, Key::Enter), std::out_of_range);
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_TRUE(menu.tree->getFocus()) << "the menu keeps the keys";
    EXPECT_FALSE(menu.tree->itemHasFocus());
}

TEST(ScrollLabelMenuItemOneLineTest, ScrollsLineByLineOnAOneLinePanel) {
    TestMenu menu(20, 1);
    auto item = std::make_shared<ScrollLabelMenuItem>(menu.provider, u"Help");
    menu.tree->addItem(item);
    menu.tree->setFocus(true);
    item->setText(u"first\nsecond", TextAllignment::Left);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(0), padded(u"first", 19) + kDown);
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.line(0), padded(u"second", 19) + kUp);
    press(*menu.tree, Key::Back);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Help"));
}

}  // namespace
