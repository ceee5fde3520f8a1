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

using namespace yxfp_test;
using namespace yxfrontpanel;

// A 21x4 root menu "Settings" (sub-menu), "Plain"; Settings holds "Network" (sub-menu) and
// "Display" (form); Network holds "Address" (form) and "Mask" (no form).
struct ThreeLevelMenu : TestMenu {
    ThreeLevelMenu() : TestMenu(21, 4) {
        settings = std::make_shared<TreeMenuItem>(provider, u"Settings");
        network = std::make_shared<TreeMenuItem>(provider, u"Network");
        display = TestItem::withForm(u"Display", &provider);
        address = TestItem::withForm(u"Address", &provider);
        mask = std::make_shared<TestItem>(u"Mask");
        tree->addItem(settings);
        plain = add(u"Plain");
        settings->addItem(network);
        settings->addItem(display);
        network->addItem(address);
        network->addItem(mask);
        tree->setFocus(true);
    }
    Screen rootScreen() const { return {line(u"Settings"), line(u"Plain"), line(u""), line(u"")}; }
    Screen settingsScreen() const {
        return {line(u"Network"), line(u"Display"), line(u""), line(u"")};
    }
    Screen networkScreen() const { return {line(u"Address"), line(u"Mask"), line(u""), line(u"")}; }

    std::shared_ptr<TreeMenuItem> settings;
    std::shared_ptr<TreeMenuItem> network;
    std::shared_ptr<TestItem> display;
    std::shared_ptr<TestItem> address;
    std::shared_ptr<TestItem> mask;
    std::shared_ptr<TestItem> plain;
};

// A factory that counts its trees and remembers the provider it was given.
class CountingFactory : public yxfrontpanel::MenuTreeFactory {
public:
    std::unique_ptr<IMenuTree> create(
        yxfrontpanel::IDrawingProvider const& provider) const override {
        ++created;
        lastProvider = &provider;
        return MenuTreeFactory::create(provider);
    }
    mutable int created = 0;
    mutable yxfrontpanel::IDrawingProvider const* lastProvider = nullptr;
};

// A factory that hands out no tree at all.
class EmptyFactory : public yxfrontpanel::MenuTreeFactory {
public:
    std::unique_ptr<IMenuTree> create(yxfrontpanel::IDrawingProvider const&) const override {
        return nullptr;
    }
};

// --- construction ---

TEST(TreeMenuItemTest, OwnsASubTreeRegisteredAsItsForm) {
    yxfp_test::RecordingProvider provider(21, 4);
    TreeMenuItem item(provider, u"Settings");
    ASSERT_NE(item.getSubTree(), nullptr);
    EXPECT_NE(dynamic_cast<MenuTree*>(item.getSubTree()), nullptr);
    EXPECT_EQ(item.getForm(), item.getSubTree());
    EXPECT_EQ(item.getOwnText(), u"Settings");
    EXPECT_FALSE(item.getFocus());
    EXPECT_EQ(item.getSubTree()->itemCount(), 0U);
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(TreeMenuItemTest, ObtainsItsSubTreeFromTheGivenFactory) {
    yxfp_test::RecordingProvider provider(21, 4);
    CountingFactory factory;
    TreeMenuItem item(provider, u"Settings", factory);
    EXPECT_EQ(factory.created, 1);
    EXPECT_EQ(factory.lastProvider, &provider);
}

TEST(TreeMenuItemTest, FactoryWithoutTreeIsRefusedWithInvalidArgument) {
    yxfp_test::RecordingProvider provider(21, 4);
    EXPECT_THROW(TreeMenuItem(provider, u"Settings", EmptyFactory()), std::invalid_argument);
}

// --- items of the sub-menu ---

TEST(TreeMenuItemTest, AddItemHandsTheItemToTheSubTree) {
    ThreeLevelMenu menu;
    EXPECT_EQ(menu.settings->getSubTree()->allItemCount(), 2U);
    EXPECT_EQ(menu.settings->getSubTree()->getItem(1), menu.display.get());
    EXPECT_EQ(menu.display->getLineLength(), 20U);
}

TEST(TreeMenuItemTest, AddingAnEmptyPointerIsRefusedByTheSubTree) {
    ThreeLevelMenu menu;
    yxfp_test::LogCapture log;
    menu.settings->addItem(nullptr);
    EXPECT_EQ(menu.settings->getSubTree()->allItemCount(), 2U);
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].message, "Can not add menu item == nullptr!");
}

TEST(TreeMenuItemTest, ClearItemsEmptiesTheSubTree) {
    ThreeLevelMenu menu;
    menu.settings->clearItems();
    EXPECT_EQ(menu.settings->getSubTree()->allItemCount(), 0U);
    menu.tree->action();
    EXPECT_EQ(menu.provider.screen(), Screen(4, std::u16string(21, u' ')));
}

// --- opening and closing ---

TEST(TreeMenuItemTest, ItsLineInTheParentShowsTheNameAndEnterOpensTheSubMenu) {
    ThreeLevelMenu menu;
    EXPECT_EQ(menu.provider.screen(), menu.rootScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->action());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.settingsScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_TRUE(menu.settings->getFocus());
    EXPECT_TRUE(menu.settings->getSubTree()->getFocus());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
}

TEST(TreeMenuItemTest, EnterOnAnUnavailableClosedItemOpensNothing) {
    ThreeLevelMenu menu;
    menu.settings->setAvailable(false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Settings (N/A)"));
    menu.provider.reset();
    EXPECT_FALSE(menu.tree->action());
    EXPECT_FALSE(menu.settings->getSubTree()->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(TreeMenuItemTest, EnterInsideTheOpenSubMenuActsOnItsCursor) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.tree->moveDown();
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->action());
    EXPECT_TRUE(menu.display->getFocus());
    EXPECT_FALSE(menu.settings->getSubTree()->getFocus());
    EXPECT_TRUE(menu.settings->getSubTree()->itemHasFocus());
    EXPECT_EQ(menu.provider.line(0), yxfp_test::padded(u"Form Display", 21));
}

TEST(TreeMenuItemTest, EnterInsideAnOpenSubMenuReturnsTrueEvenWhenNothingOpens) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.tree->action();
    menu.tree->moveDown();  // onto Mask, which has no form
    EXPECT_TRUE(menu.tree->action());
    EXPECT_EQ(menu.mask->enters, 1);
    EXPECT_TRUE(menu.network->getSubTree()->getFocus());
}

TEST(TreeMenuItemTest, BackClosesTheSubMenuAndTheParentRedraws) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.rootScreen());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.settings->getSubTree()->getFocus());
}

TEST(TreeMenuItemTest, ExitOfTheOpenSubMenuReturnsFalse) {
    ThreeLevelMenu menu;
    menu.tree->action();
    EXPECT_FALSE(menu.settings->exit());
    EXPECT_TRUE(menu.tree->getFocus());
}

TEST(TreeMenuItemTest, ReopenedSubMenuStartsAtTheTop) {
    ThreeLevelMenu menu;
    press(*menu.tree, {Key::Enter, Key::Down, Key::Back, Key::Enter});
    EXPECT_EQ(menu.provider.screen(), menu.settingsScreen());
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
}

TEST(TreeMenuItemTest, ThreeBackKeysCloseThreeLevelsOneAtATime) {
    ThreeLevelMenu menu;
    press(*menu.tree, {Key::Enter, Key::Enter, Key::Enter});
    ASSERT_TRUE(menu.address->getFocus());
    ASSERT_EQ(menu.provider.line(0), yxfp_test::padded(u"Form Address", 21));

    menu.provider.reset();
    EXPECT_FALSE(menu.tree->backToMenu());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.networkScreen());
    EXPECT_FALSE(menu.address->getFocus());
    EXPECT_TRUE(menu.network->getSubTree()->getFocus());

    menu.provider.reset();
    EXPECT_FALSE(menu.tree->backToMenu());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.settingsScreen());
    EXPECT_TRUE(menu.settings->getSubTree()->getFocus());

    menu.provider.reset();
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.rootScreen());
    EXPECT_TRUE(menu.tree->getFocus());

    menu.provider.reset();
    EXPECT_TRUE(menu.tree->backToMenu());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(TreeMenuItemTest, UpAndDownReachTheDeepestOpenMenu) {
    ThreeLevelMenu menu;
    press(*menu.tree, {Key::Enter, Key::Enter});
    menu.provider.reset();
    menu.tree->moveDown();
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.networkScreen());
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
    EXPECT_EQ(menu.provider.inversion(0), menu.plainMask());
    menu.tree->moveUp();
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    // The upper levels kept their cursors.
    EXPECT_EQ(dynamic_cast<MenuTree&>(*menu.settings->getSubTree()).selectedItem(),
              menu.network.get());
    EXPECT_EQ(menu.menuTree().selectedItem(), menu.settings.get());
}

TEST(TreeMenuItemTest, KeysReachTheFormOpenedThreeLevelsDown) {
    ThreeLevelMenu menu;
    press(*menu.tree, {Key::Enter, Key::Enter, Key::Enter});
    menu.address->keyResult = true;
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->left());
    EXPECT_TRUE(menu.tree->right());
    press(*menu.tree, {Key::Up, Key::Down, Key::Down});
    EXPECT_EQ(menu.address->keyCalls(), (std::vector<int>{1, 2, 1, 1}));
    menu.tree->action();
    EXPECT_EQ(menu.address->enters, 2);
    EXPECT_TRUE(menu.address->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(TreeMenuItemTest, LeftAndRightInAnOpenSubMenuReachItsSelectedItem) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.tree->moveDown();
    menu.display->keyResult = true;
    EXPECT_TRUE(menu.tree->left());
    EXPECT_TRUE(menu.tree->right());
    EXPECT_EQ(menu.display->lefts, 1);
    EXPECT_EQ(menu.display->rights, 1);
}

TEST(TreeMenuItemTest, LeftAndRightOnAClosedSubMenuTravelDownTheSelectedItems) {
    ThreeLevelMenu menu;
    menu.address->keyResult = true;
    menu.provider.reset();
    EXPECT_TRUE(menu.tree->left());
    EXPECT_TRUE(menu.tree->right());
    EXPECT_EQ(menu.address->lefts, 1);
    EXPECT_EQ(menu.address->rights, 1);
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(TreeMenuItemTest, UpAndDownAnswerTrueAndMoveTheSubTreeCursor) {
    ThreeLevelMenu menu;
    menu.tree->action();
    EXPECT_TRUE(menu.settings->down());
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
    EXPECT_TRUE(menu.settings->up());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(TreeMenuItemTest, LeftAndRightOnAnEmptySubMenuAnswerFalse) {
    yxfp_test::RecordingProvider provider(21, 4);
    TreeMenuItem item(provider, u"Empty");
    EXPECT_FALSE(item.left());
    EXPECT_FALSE(item.right());
}

TEST(TreeMenuItemTest, HidingTheItemWithItsSubMenuOpenClosesIt) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.provider.reset();
    menu.settings->setVisible(false);
    EXPECT_FALSE(menu.settings->getSubTree()->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Plain"), menu.line(u""), menu.line(u""), menu.line(u"")}));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(TreeMenuItemTest, HidingAnItemOfTheOpenSubMenuRedrawsTheSubMenu) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.provider.reset();
    menu.network->setVisible(false);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Display"), menu.line(u""), menu.line(u""), menu.line(u"")}));
}

TEST(TreeMenuItemTest, HidingAnItemOfAClosedSubMenuShowsWhenItOpens) {
    ThreeLevelMenu menu;
    menu.provider.reset();
    menu.network->setVisible(false);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    menu.tree->action();
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Display"), menu.line(u""), menu.line(u""), menu.line(u"")}));
}

// --- local mode and availability ---

TEST(TreeMenuItemTest, SetLocalOnAnAvailableItemReachesTheSubTree) {
    ThreeLevelMenu menu;
    menu.settings->setLocal(true);
    EXPECT_TRUE(menu.settings->getSubTree()->getLocal());
    EXPECT_TRUE(menu.network->getSubTree()->getLocal());
    EXPECT_EQ(menu.address->localCalls, (std::vector<bool>{true}));
}

TEST(TreeMenuItemTest, TheRootsLocalFlagTravelsDownWithTheEnterKey) {
    ThreeLevelMenu menu;
    menu.tree->moveDown();
    menu.tree->setLocal(true);
    EXPECT_EQ(menu.plain->localCalls, (std::vector<bool>{true}));
    menu.tree->moveUp();
    EXPECT_FALSE(menu.settings->getSubTree()->getLocal());
    menu.tree->action();
    EXPECT_TRUE(menu.settings->getSubTree()->getLocal());
    EXPECT_TRUE(menu.network->getSubTree()->getLocal());
}

TEST(TreeMenuItemTest, SetLocalOnAnUnavailableItemWaitsForSetEditable) {
    ThreeLevelMenu menu;
    menu.settings->setAvailable(false);
    menu.settings->setLocal(true);
    EXPECT_FALSE(menu.settings->getSubTree()->getLocal());
    menu.settings->setEditable(true);
    EXPECT_TRUE(menu.settings->getAvailable());
    EXPECT_TRUE(menu.settings->getSubTree()->getLocal());
}

TEST(TreeMenuItemTest, SetEditableFalseMakesTheItemUnavailable) {
    ThreeLevelMenu menu;
    menu.settings->setEditable(false);
    EXPECT_FALSE(menu.settings->getAvailable());
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Settings (N/A)"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
}

TEST(TreeMenuItemTest, SetEditableFalseDoesNotTouchTheSubTreesLocalFlag) {
    ThreeLevelMenu menu;
    menu.settings->changeLocal(true);
    menu.settings->setEditable(false);
    EXPECT_TRUE(menu.settings->getSubTree()->getLocal());
}

TEST(TreeMenuItemTest, ChangeLocalPassesTheFlagRegardlessOfAvailability) {
    ThreeLevelMenu menu;
    menu.settings->setAvailable(false);
    menu.settings->changeLocal(true);
    EXPECT_TRUE(menu.settings->getSubTree()->getLocal());
}

TEST(TreeMenuItemTest, UnavailableOpenSubMenuKeepsServingKeys) {
    ThreeLevelMenu menu;
    menu.tree->action();
    menu.settings->setAvailable(false);
    menu.tree->moveDown();
    EXPECT_TRUE(menu.tree->action());
    EXPECT_TRUE(menu.display->getFocus());
}

}  // namespace
