#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "menu_test_items.h"
#include "platform_capture.h"
#include "test_menu.h"

namespace {

using yxfp_test::Key;
using yxfp_test::press;
using yxfp_test::Screen;
using yxfp_test::TestItem;
using yxfp_test::TestMenu;

constexpr char16_t kUp = 0x1E;
constexpr char16_t kDown = 0x1F;

// A 21x4 menu with the items "Item 0" .. "Item <count - 1>", given the focus.
struct NumberedMenu : TestMenu {
    explicit NumberedMenu(int count, unsigned chars = 21, unsigned lines = 4)
        : TestMenu(chars, lines) {
        for (int i = 0; i < count; ++i) {
            items.push_back(add(name(i)));
        }
        tree->setFocus(true);
    }
    static std::u16string name(int i) { return u"Item " + std::u16string(1, char16_t(u'0' + i)); }
    std::vector<std::shared_ptr<TestItem>> items;
};

// A focused 21x4 menu "Plain", "Editor" (with a form), the cursor on "Editor".
struct EditorMenu : TestMenu {
    EditorMenu() : TestMenu(21, 4) {
        add(u"Plain");
        editor = addWithForm(u"Editor");
        tree->setFocus(true);
        tree->moveDown();
    }
    std::shared_ptr<TestItem> editor;
};

// --- construction and drawing ---

TEST(MenuTreeTest, FactoryCreatesAnEmptyUnfocusedMenuTree) {
    TestMenu menu(21, 4);
    EXPECT_NE(dynamic_cast<yxfrontpanel::MenuTree*>(menu.tree.get()), nullptr);
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    EXPECT_FALSE(menu.tree->getLocal());
    EXPECT_EQ(menu.tree->itemCount(), 0U);
    EXPECT_EQ(menu.tree->allItemCount(), 0U);
    EXPECT_EQ(menu.menuTree().selectedItem(), nullptr);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, EmptyTreeDrawsABlankScreen) {
    TestMenu menu(21, 4);
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), Screen(4, std::u16string(21, u' ')));
}

TEST(MenuTreeTest, ItemLinesLeaveTheLastColumnToTheScrollbar) {
    NumberedMenu menu(3);
    EXPECT_EQ(menu.items[0]->getLineLength(), 20U);
    EXPECT_EQ(menu.items[0]->getSize(), (yxfrontpanel::drawing::Rectangle{20, 1}));
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 1"),
                                              menu.line(u"Item 2"), menu.line(u"")}));
}

TEST(MenuTreeTest, OnlyTheSelectedLineIsInvertedAndNotItsScrollbarCell) {
    NumberedMenu menu(6);
    menu.tree->moveDown();
    EXPECT_EQ(menu.provider.inversion(0), menu.plainMask());
    EXPECT_EQ(menu.provider.inversion(1), "####################.");
    EXPECT_EQ(menu.provider.inversion(2), menu.plainMask());
    EXPECT_EQ(menu.provider.inversion(3), menu.plainMask());
}

TEST(MenuTreeTest, LongItemTextIsCutAtTheScrollbar) {
    TestMenu menu(21, 4);
    menu.add(u"A rather long menu item name");
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.line(0), u"A rather long menu i ");
}

TEST(MenuTreeTest, SetFocusDrawsEveryTimeItIsGiven) {
    NumberedMenu menu(2);
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.drawCount(), 2U);
}

TEST(MenuTreeTest, LosingTheFocusDrawsNothing) {
    NumberedMenu menu(2);
    menu.tree->setFocus(false);
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

TEST(MenuTreeTest, SetFocusSwitchesTheShownFlagOfVisibleItemsOnly) {
    TestMenu menu(21, 4);
    auto shown = menu.add(u"Shown");
    auto hidden = std::make_shared<TestItem>(u"Hidden");
    hidden->setVisible(false);
    menu.tree->addItem(hidden);
    menu.tree->setFocus(true);
    EXPECT_TRUE(shown->getShown());
    EXPECT_FALSE(hidden->getShown());
    menu.tree->setFocus(false);
    EXPECT_FALSE(shown->getShown());
}

TEST(MenuTreeTest, DrawWithoutFocusDrawsNothingAndReturnsFalse) {
    TestMenu menu(21, 4);
    menu.add(u"Item");
    EXPECT_FALSE(menu.menuTree().draw());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, DrawReturnsTheProvidersAnswer) {
    NumberedMenu menu(2);
    EXPECT_TRUE(menu.menuTree().draw());
    menu.provider.enableDrawing(false);
    EXPECT_FALSE(menu.menuTree().draw());
}

TEST(MenuTreeTest, DrawWhileAnItemIsActiveStillComposesTheMenu) {
    TestMenu menu(21, 4);
    menu.addWithForm(u"Form item");
    menu.tree->setFocus(true);
    menu.tree->action();
    menu.provider.reset();
    EXPECT_TRUE(menu.menuTree().draw());
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Form item"));
}

TEST(MenuTreeTest, LinesBelowTheLastItemAreBlankedOnEveryDraw) {
    NumberedMenu menu(3);
    menu.items[2]->setVisible(false);
    menu.items[1]->setVisible(false);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Item 0"), menu.line(u""), menu.line(u""), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(1), menu.plainMask());
}

TEST(MenuTreeTest, PanelWithoutLinesHandsOverTheEmptyBuffer) {
    NumberedMenu menu(3, 21, 0);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.lastFrame().getLineCount(), 0U);
    press(*menu.tree, {Key::Down, Key::Down, Key::Up});
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[1].get());
}

TEST(MenuTreeTest, PanelWithoutColumnsGivesEmptyItemLines) {
    NumberedMenu menu(2, 0, 2);
    EXPECT_EQ(menu.items[0]->getLineLength(), 0U);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.lastFrame().getChars(), 0U);
}

// --- scrolling and the scrollbar ---

TEST(MenuTreeTest, DownArrowShowsWhileItemsFollowBelowTheScreen) {
    NumberedMenu menu(6);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 1"),
                                              menu.line(u"Item 2"), menu.line(u"Item 3", kDown)}));
}

TEST(MenuTreeTest, MoveDownWithinTheScreenMovesOnlyTheCursor) {
    NumberedMenu menu(6);
    for (int i = 1; i <= 3; ++i) {
        menu.tree->moveDown();
        EXPECT_EQ(menu.menuTree().getDistance(), i);
        EXPECT_EQ(menu.provider.drawCount(), 1U + i);
    }
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 1"),
                                              menu.line(u"Item 2"), menu.line(u"Item 3", kDown)}));
    EXPECT_EQ(menu.provider.inversion(3), menu.selectedMask());
    EXPECT_FALSE(menu.items[0]->getSelected());
    EXPECT_TRUE(menu.items[3]->getSelected());
}

TEST(MenuTreeTest, FourthMoveDownScrollsOneLineWithBothArrows) {
    NumberedMenu menu(6);
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Down});
    EXPECT_EQ(menu.menuTree().getDistance(), 3);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[4].get());
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1", kUp), menu.line(u"Item 2"),
                                              menu.line(u"Item 3"), menu.line(u"Item 4", kDown)}));
    EXPECT_EQ(menu.provider.inversion(3), menu.selectedMask());
    EXPECT_EQ(menu.provider.inversion(0), menu.plainMask());
}

TEST(MenuTreeTest, AtTheLastItemTheDownArrowIsGone) {
    NumberedMenu menu(6);
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Down, Key::Down});
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 2", kUp), menu.line(u"Item 3"),
                                              menu.line(u"Item 4"), menu.line(u"Item 5")}));
}

TEST(MenuTreeTest, MoveDownAtTheLastItemDoesNothing) {
    NumberedMenu menu(6);
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Down, Key::Down});
    auto const draws = menu.provider.drawCount();
    menu.tree->moveDown();
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[5].get());
    EXPECT_TRUE(menu.items[5]->getSelected());
}

TEST(MenuTreeTest, MoveUpAtTheFirstItemDoesNothingAndDoesNotRedraw) {
    NumberedMenu menu(3);
    menu.tree->moveUp();
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
    EXPECT_TRUE(menu.items[0]->getSelected());
}

TEST(MenuTreeTest, MoveUpScrollsBackWhenTheCursorLeavesTheTopLine) {
    NumberedMenu menu(6);
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Down, Key::Down});
    press(*menu.tree, {Key::Up, Key::Up, Key::Up});
    EXPECT_EQ(menu.menuTree().getDistance(), 0);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Item 2", kUp));
    menu.tree->moveUp();
    EXPECT_EQ(menu.menuTree().getDistance(), 0);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1", kUp), menu.line(u"Item 2"),
                                              menu.line(u"Item 3"), menu.line(u"Item 4", kDown)}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    menu.tree->moveUp();
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Item 0"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(MenuTreeTest, TwoLinePanelScrollsWithNineteenColumnItems) {
    NumberedMenu menu(3, 20, 2);
    EXPECT_EQ(menu.items[0]->getLineLength(), 19U);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 1", kDown)}));
    EXPECT_EQ(menu.provider.inversion(0), std::string(19, '#') + ".");
    press(*menu.tree, {Key::Down, Key::Down});
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1", kUp), menu.line(u"Item 2")}));
    EXPECT_EQ(menu.provider.inversion(1), std::string(19, '#') + ".");
}

TEST(MenuTreeTest, OneLinePanelPrefersTheDownArrow) {
    NumberedMenu menu(3, 21, 1);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0", kDown)}));
    menu.tree->moveDown();
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1", kDown)}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    menu.tree->moveDown();
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 2", kUp)}));
    menu.tree->moveUp();
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1", kDown)}));
}

TEST(MenuTreeTest, AddScrollbarAppendsOneNeverInvertedCell) {
    NumberedMenu menu(6);
    auto& tree = menu.menuTree();
    auto cellFor = [&tree](unsigned line, unsigned firstShown) {
        frontpanelhw::drawing::DisplayLine menuLine;
        menuLine.addCharacter(frontpanelhw::drawing::DisplayChar{u'x', true});
        tree.addScrollbar(menuLine, line, firstShown);
        EXPECT_EQ(menuLine.size(), 2U);
        EXPECT_FALSE(menuLine.getCharacter(1).inverted);
        return menuLine.getCharacter(1).character;
    };
    EXPECT_EQ(cellFor(0, 0), u' ');
    EXPECT_EQ(cellFor(0, 1), kUp);
    EXPECT_EQ(cellFor(1, 1), u' ');
    EXPECT_EQ(cellFor(3, 0), kDown);
    EXPECT_EQ(cellFor(3, 1), kDown);
    EXPECT_EQ(cellFor(3, 2), u' ');
}

// --- adding, clearing and looking up items ---

TEST(MenuTreeTest, AddItemDoesNotDraw) {
    NumberedMenu menu(1);
    menu.add(u"Late");
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.tree->itemCount(), 2U);
}

TEST(MenuTreeTest, AddItemMarksOnlyTheFirstItemSelected) {
    NumberedMenu menu(3);
    EXPECT_TRUE(menu.items[0]->getSelected());
    EXPECT_FALSE(menu.items[1]->getSelected());
    EXPECT_FALSE(menu.items[2]->getSelected());
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
}

TEST(MenuTreeTest, AddItemMarksAnInvisibleFirstItemToo) {
    TestMenu menu(21, 4);
    auto hidden = std::make_shared<TestItem>(u"Hidden");
    hidden->setVisible(false);
    menu.tree->addItem(hidden);
    auto shown = menu.add(u"Shown");
    EXPECT_TRUE(hidden->getSelected());
    EXPECT_TRUE(shown->getSelected());
    EXPECT_EQ(menu.tree->itemCount(), 1U);
    EXPECT_EQ(menu.tree->allItemCount(), 2U);
    EXPECT_EQ(menu.menuTree().selectedItem(), shown.get());
}

TEST(MenuTreeTest, AddItemMovesTheCursorIndexToTheTop) {
    NumberedMenu menu(3);
    press(*menu.tree, {Key::Down, Key::Down});
    menu.add(u"Late");
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
    EXPECT_EQ(menu.menuTree().getDistance(), 0);
}

TEST(MenuTreeTest, AddingAnEmptyPointerIsRefusedAndLogged) {
    NumberedMenu menu(2);
    yxfp_test::LogCapture log;
    EXPECT_FALSE(menu.tree->addItem(nullptr));
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].level, 4);
    EXPECT_EQ(log.records()[0].category, "libYxFrontPanelToolbox");
    EXPECT_EQ(log.records()[0].message, "Can not add menu item == nullptr!");
    EXPECT_EQ(menu.tree->allItemCount(), 2U);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

TEST(MenuTreeTest, RefusedItemIsNotLoggedWhileWarningsAreOff) {
    TestMenu menu(21, 4);
    yxfp_test::LogCapture log;
    yxbase2::system::log::setMaxLevel(3);
    EXPECT_FALSE(menu.tree->addItem(nullptr));
    EXPECT_TRUE(log.records().empty());
}

TEST(MenuTreeTest, GetItemCountsAllItemsInTheOrderOfAdding) {
    TestMenu menu(21, 4);
    auto first = menu.add(u"First");
    auto hidden = menu.add(u"Hidden");
    hidden->setVisible(false);
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.tree->getItem(0), first.get());
    EXPECT_EQ(menu.tree->getItem(1), hidden.get());
    EXPECT_EQ(menu.tree->itemCount(), 1U);
    EXPECT_EQ(menu.tree->allItemCount(), 2U);
}

TEST(MenuTreeTest, GetItemPastTheEndThrowsOutOfRange) {
    NumberedMenu menu(2);
    EXPECT_THROW(menu.tree->getItem(2), std::out_of_range);
}

TEST(MenuTreeTest, ClearItemsEmptiesTheTreeWithoutDrawing) {
    NumberedMenu menu(3);
    std::weak_ptr<TestItem> watched = menu.items[1];
    menu.tree->clearItems();
    menu.items.clear();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(menu.tree->itemCount(), 0U);
    EXPECT_EQ(menu.tree->allItemCount(), 0U);
    EXPECT_EQ(menu.menuTree().selectedItem(), nullptr);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.screen(), Screen(4, std::u16string(21, u' ')));
}

TEST(MenuTreeTest, DestroyedTreeLeavesItsItemsNothingToCall) {
    auto provider = std::make_unique<yxfp_test::RecordingProvider>(21, 4);
    auto tree = yxfrontpanel::MenuTreeFactory().create(*provider);
    auto item = TestItem::withForm(u"Survivor");
    tree->addItem(item);
    tree->setFocus(true);
    tree.reset();
    item->setVisible(false);
    item->updateOwnText(u"Still here");
    EXPECT_EQ(provider->drawCount(), 1U);
    EXPECT_THROW(item->enter(), std::bad_function_call);
}

// --- visibility ---

TEST(MenuTreeTest, HidingAnItemWhileShownMovesTheCursorToTheTopAndRedraws) {
    NumberedMenu menu(4);
    press(*menu.tree, {Key::Down, Key::Down});
    menu.provider.reset();
    menu.items[1]->setVisible(false);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 2"),
                                              menu.line(u"Item 3"), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_EQ(menu.provider.inversion(1), menu.plainMask());
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
    EXPECT_FALSE(menu.items[2]->getSelected());
}

TEST(MenuTreeTest, HidingTheFirstItemGivesTheCursorToTheNextVisibleOne) {
    NumberedMenu menu(3);
    menu.items[0]->setVisible(false);
    EXPECT_FALSE(menu.items[0]->getSelected());
    EXPECT_TRUE(menu.items[1]->getSelected());
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Item 1"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(MenuTreeTest, HidingAnItemWhileNotShownWaitsForTheNextFocus) {
    NumberedMenu menu(4);
    press(*menu.tree, {Key::Down, Key::Down});
    menu.tree->setFocus(false);
    menu.provider.reset();
    menu.items[0]->setVisible(false);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.tree->itemCount(), 4U);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[2].get());
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.tree->itemCount(), 3U);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 1"), menu.line(u"Item 2"),
                                              menu.line(u"Item 3"), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(MenuTreeTest, ShowingAHiddenItemWhileShownPutsItBackInOrder) {
    NumberedMenu menu(3);
    menu.items[1]->setVisible(false);
    menu.tree->moveDown();
    menu.provider.reset();
    menu.items[1]->setVisible(true);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Item 0"), menu.line(u"Item 1"),
                                              menu.line(u"Item 2"), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(MenuTreeTest, SettingAnUnchangedVisibilityStillReturnsTheCursorToTheTop) {
    NumberedMenu menu(3);
    menu.tree->moveDown();
    menu.provider.reset();
    menu.items[2]->setVisible(true);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
}

TEST(MenuTreeTest, HidingEveryItemLeavesAnEmptyScreenAndKeysDoNothing) {
    NumberedMenu menu(2);
    menu.items[0]->setVisible(false);
    menu.items[1]->setVisible(false);
    EXPECT_EQ(menu.provider.screen(), Screen(4, std::u16string(21, u' ')));
    auto const draws = menu.provider.drawCount();
    press(*menu.tree, {Key::Up, Key::Down});
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_EQ(menu.provider.drawCount(), draws);
}

TEST(MenuTreeTest, RecalcAvailableItemsRebuildsTheVisibleListWithTheCursorOnTop) {
    NumberedMenu menu(3);
    press(*menu.tree, {Key::Down, Key::Down});
    menu.menuTree().recalcAvailableItems();
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
    EXPECT_TRUE(menu.items[0]->getSelected());
    EXPECT_FALSE(menu.items[2]->getSelected());
    EXPECT_EQ(menu.provider.drawCount(), 3U);
}

TEST(MenuTreeTest, ChildVisibleChangedWhileNotShownOnlyMarksTheListStale) {
    NumberedMenu menu(3);
    menu.tree->moveDown();
    menu.tree->setFocus(false);
    menu.menuTree().childVisibleChanged(true);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[1].get());
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.items[0].get());
}

TEST(MenuTreeTest, ShownItemTextChangeRedrawsTheMenu) {
    NumberedMenu menu(2);
    menu.items[1]->updateOwnText(u"Item 1: 42 V");
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_EQ(menu.provider.line(1), menu.line(u"Item 1: 42 V"));
}

// --- the keys in the three states ---

TEST(MenuTreeTest, UnfocusedTreePassesUpDownLeftRightToTheSelectedItem) {
    TestMenu menu(21, 4);
    auto item = menu.add(u"Item");
    item->keyResult = true;
    press(*menu.tree, {Key::Up, Key::Down, Key::Down});
    EXPECT_TRUE(press(*menu.tree, Key::Left));
    EXPECT_TRUE(press(*menu.tree, Key::Right));
    EXPECT_EQ(item->keyCalls(), (std::vector<int>{1, 2, 1, 1}));
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, UnfocusedTreeRefusesEnter) {
    TestMenu menu(21, 4);
    auto item = menu.addWithForm(u"Item");
    EXPECT_FALSE(menu.tree->action());
    EXPECT_EQ(item->enters, 0);
    EXPECT_FALSE(item->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, UnfocusedEmptyTreeAnswersEveryKeyWithFalse) {
    TestMenu menu(21, 4);
    for (Key key : {Key::Up, Key::Down, Key::Left, Key::Right, Key::Enter, Key::Back}) {
        EXPECT_FALSE(press(*menu.tree, key)) << key;
    }
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, BackOnAnUnfocusedTreeExitsTheSelectedItem) {
    TestMenu menu(21, 4);
    auto item = menu.add(u"Item");
    EXPECT_FALSE(menu.tree->backToMenu());
    EXPECT_EQ(item->exits, 1);
    EXPECT_FALSE(menu.tree->getFocus());
}

TEST(MenuTreeTest, FocusedEmptyTreeIgnoresKeys) {
    TestMenu menu(21, 4);
    menu.tree->setFocus(true);
    menu.tree->moveDown();
    EXPECT_FALSE(menu.tree->left());
    EXPECT_FALSE(menu.tree->right());
    EXPECT_FALSE(menu.tree->action());
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

TEST(MenuTreeTest, MoveUpOnAFocusedEmptyTreeDoesNothing) {
    TestMenu menu(21, 4);
    menu.tree->setFocus(true);
    menu.tree->moveUp();
    menu.tree->moveUp();
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), Screen(4, std::u16string(21, u' ')));
    EXPECT_EQ(menu.menuTree().selectedItem(), nullptr);
}

TEST(MenuTreeTest, MoveUpOnAFocusedClearedTreeDoesNothing) {
    NumberedMenu menu(3);
    menu.tree->clearItems();
    menu.provider.reset();
    for (Key key : {Key::Up, Key::Up, Key::Down}) {
        press(*menu.tree, key);
    }
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.menuTree().selectedItem(), nullptr);
}

TEST(MenuTreeTest, EnterOnAnItemWithoutFormKeepsTheTreeActive) {
    NumberedMenu menu(2);
    EXPECT_FALSE(menu.tree->action());
    EXPECT_EQ(menu.items[0]->enters, 1);
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

// An item that notes which local flags it had received when it was entered.
class LocalProbeItem : public TestItem {
public:
    using TestItem::TestItem;
    bool enter() override {
        localsAtEnter = localCalls;
        return TestItem::enter();
    }
    std::vector<bool> localsAtEnter;
};

TEST(MenuTreeTest, EnterPassesTheLocalFlagBeforeEntering) {
    TestMenu menu(21, 4);
    auto item = std::make_shared<LocalProbeItem>(u"Probe");
    menu.tree->addItem(item);
    menu.add(u"Other");
    menu.tree->setFocus(true);
    menu.tree->moveDown();
    menu.tree->setLocal(true);
    menu.tree->moveUp();
    ASSERT_TRUE(item->localCalls.empty());
    menu.tree->action();
    EXPECT_EQ(item->localsAtEnter, (std::vector<bool>{true}));
}

TEST(MenuTreeTest, SetLocalReachesOnlyTheSelectedItem) {
    NumberedMenu menu(2);
    menu.tree->setLocal(true);
    EXPECT_TRUE(menu.tree->getLocal());
    EXPECT_EQ(menu.items[0]->localCalls, (std::vector<bool>{true}));
    EXPECT_TRUE(menu.items[1]->localCalls.empty());
}

TEST(MenuTreeTest, SetLocalOnAnEmptyTreeStoresTheFlag) {
    TestMenu menu(21, 4);
    menu.tree->setLocal(true);
    EXPECT_TRUE(menu.tree->getLocal());
}

TEST(MenuTreeTest, EnterOpensTheFormOfTheSelectedItem) {
    EditorMenu menu;
    auto const& item = menu.editor;
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->action());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_TRUE(item->getFocus());
    EXPECT_FALSE(item->getShown());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.line(0), yxfp_test::padded(u"Form Editor", 21));
}

TEST(MenuTreeTest, ActiveItemReceivesUpDownLeftRightAndTheCursorStays) {
    TestMenu menu(21, 4);
    auto item = menu.addWithForm(u"Editor");
    menu.add(u"Other");
    menu.tree->setFocus(true);
    menu.tree->action();
    menu.provider.reset();
    press(*menu.tree, {Key::Down, Key::Down, Key::Up, Key::Left, Key::Right});
    EXPECT_EQ(item->keyCalls(), (std::vector<int>{1, 2, 1, 1}));
    EXPECT_EQ(menu.menuTree().selectedItem(), item.get());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuTreeTest, EnterOnAnActiveItemIsDecidedByTheItem) {
    TestMenu menu(21, 4);
    auto item = menu.addWithForm(u"Editor");
    menu.tree->setFocus(true);
    menu.tree->action();
    EXPECT_FALSE(menu.tree->action());
    EXPECT_EQ(item->enters, 2);
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_TRUE(item->getFocus());
}

TEST(MenuTreeTest, BackOnAFocusedTreeReturnsTrueWithoutCallingAnyItem) {
    NumberedMenu menu(2);
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_EQ(menu.items[0]->exits, 0);
    EXPECT_EQ(menu.items[1]->exits, 0);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

TEST(MenuTreeTest, BackClosesTheActiveItemAndRedrawsTheMenu) {
    EditorMenu menu;
    auto const& item = menu.editor;
    menu.tree->action();
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    EXPECT_FALSE(item->getFocus());
    EXPECT_TRUE(item->getShown());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Plain"), menu.line(u"Editor"), menu.line(u""), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
}

// An item whose form refuses to close: its exit keeps the form open.
class StickyItem : public TestItem {
public:
    using TestItem::TestItem;
    bool exit() override {
        ++exits;
        return false;
    }
};

TEST(MenuTreeTest, BackReturnsFalseWhileTheItemKeepsItsFormOpen) {
    TestMenu menu(21, 4);
    auto item = std::make_shared<StickyItem>(u"Sticky");
    menu.tree->addItem(item);
    menu.tree->setFocus(true);
    ASSERT_FALSE(menu.tree->action());  // no form: the tree stays active
    menu.tree->setFocus(false);
    EXPECT_FALSE(menu.tree->backToMenu());
    EXPECT_EQ(item->exits, 1);
    EXPECT_FALSE(menu.tree->getFocus());
}

TEST(MenuTreeTest, LeftAndRightReachTheSelectedItemWhileTheTreeIsActive) {
    NumberedMenu menu(2);
    menu.tree->moveDown();
    menu.items[1]->keyResult = true;
    EXPECT_TRUE(menu.tree->left());
    EXPECT_TRUE(menu.tree->right());
    EXPECT_EQ(menu.items[1]->lefts, 1);
    EXPECT_EQ(menu.items[1]->rights, 1);
    EXPECT_EQ(menu.items[0]->lefts, 0);
    menu.items[1]->keyResult = false;
    EXPECT_FALSE(menu.tree->left());
}

}  // namespace
