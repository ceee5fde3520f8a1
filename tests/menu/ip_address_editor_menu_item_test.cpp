#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "editor_screen.h"
#include "item_screens.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

constexpr unsigned kChars = 21;
// The 15 columns of the address start at column 3 of the 21: the first octet's digits are at
// 3, 4 and 5, the last octet's at 15, 16 and 17.
constexpr unsigned kFirstDigit = 3;
constexpr unsigned kLastDigit = 17;

// A 21x4 root menu with the item "Address" showing 192.168.1.2 above a plain "Other", on
// screen and in local mode unless told otherwise. Every applied address is recorded.
struct AddressMenu : TestMenu {
    explicit AddressMenu(bool local = true) : TestMenu(kChars, 4) {
        address->setValue("192.168.1.2");
        address->connectEditor([this](std::string const& text) { applied.push_back(text); });
        tree->addItem(address);
        add(u"Other");
        tree->setLocal(local);
        tree->setFocus(true);
    }

    Screen menuScreen() const { return {line(u"Address"), line(u"Other"), line(u""), line(u"")}; }
    // The editor screen showing `value` with the caret at `caret` (none: read-only).
    static Screen editorScreen(std::u16string const& value, std::optional<unsigned> caret) {
        return yxfp_test::editorScreen(u"Address", value, caret, kChars);
    }

    std::shared_ptr<IpAddressEditorMenuItem> address =
        std::make_shared<IpAddressEditorMenuItem>(provider, u"Address");
    std::vector<std::string> applied;
};

TEST(IpAddressEditorMenuItemTest, NewItemOwnsAnEditorTitledWithItsName) {
    yxfp_test::RecordingProvider provider(kChars, 4);
    IpAddressEditorMenuItem item(provider, u"Address");
    EXPECT_EQ(item.getForm(), &item.getEditor());
    EXPECT_EQ(item.getOwnText(), u"Address");
    EXPECT_EQ(item.getEditor().getHeadlineLabel().getText(), u">> Address <<");
    EXPECT_EQ(item.getEditor().getValue(), ip::IpV4Address(0, 0, 0, 0));
    EXPECT_FALSE(item.getEditor().getEditorMode());
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(IpAddressEditorMenuItemTest, ActionKeyOpensTheEditor) {
    AddressMenu menu;
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.address->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.screen(), AddressMenu::editorScreen(u"192.168.  1.  2", kFirstDigit));
}

TEST(IpAddressEditorMenuItemTest, ActionKeyAgainAppliesOnceAndCloses) {
    AddressMenu menu;
    press(*menu.tree, {Key::Enter, Key::Down});
    EXPECT_EQ(menu.provider.screen(), AddressMenu::editorScreen(u" 92.168.  1.  2", kFirstDigit));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.applied, (std::vector<std::string>{"92.168.1.2"}));
    EXPECT_FALSE(menu.address->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(IpAddressEditorMenuItemTest, WithoutCloseAfterApplyEveryActionKeyAppliesAgain) {
    AddressMenu menu;
    menu.address->setCloseAfterApply(false);
    press(*menu.tree, Key::Enter);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.address->getFocus());
    press(*menu.tree, {Key::Left, Key::Up});
    EXPECT_EQ(menu.provider.screen(), AddressMenu::editorScreen(u"192.168.  1.  3", kLastDigit));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.applied, (std::vector<std::string>{"192.168.1.2", "192.168.1.3"}));
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.screen(), AddressMenu::editorScreen(u"192.168.  1.  3", kLastDigit));
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(IpAddressEditorMenuItemTest, LeftAndRightMoveTheCaretOverTheDigits) {
    AddressMenu menu;
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(press(*menu.tree, Key::Left));
    EXPECT_EQ(menu.provider.line(2), caretLine(kLastDigit, kChars));
    EXPECT_TRUE(press(*menu.tree, Key::Right));
    EXPECT_EQ(menu.provider.line(2), caretLine(kFirstDigit, kChars));
    press(*menu.tree, {Key::Right, Key::Right, Key::Right});
    // The point after the first octet is jumped over.
    EXPECT_EQ(menu.provider.line(2), caretLine(7, kChars));
}

TEST(IpAddressEditorMenuItemTest, LeftAndRightDoNothingWhileTheEditorIsClosed) {
    AddressMenu menu;
    menu.address->setLocal(true);
    unsigned const caret = yxfp_test::caretColumn(menu.address->getEditor());
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_EQ(yxfp_test::caretColumn(menu.address->getEditor()), caret);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(IpAddressEditorMenuItemTest, UpAndDownWhileClosedReachTheEditorWhichIgnoresThem) {
    AddressMenu menu;
    menu.address->setLocal(true);
    menu.provider.reset();
    EXPECT_FALSE(menu.address->up());
    EXPECT_FALSE(menu.address->down());
    EXPECT_EQ(menu.address->getEditor().getEditValue(), ip::IpV4Address(192, 168, 1, 2));
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(IpAddressEditorMenuItemTest, OutsideLocalModeTheEditorIsReadOnly) {
    AddressMenu menu(false);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), AddressMenu::editorScreen(u"192.168.  1.  2", std::nullopt));
    EXPECT_FALSE(press(*menu.tree, Key::Up));
    EXPECT_EQ(menu.address->getEditor().getEditValue(), ip::IpV4Address(192, 168, 1, 2));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.applied.empty());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(IpAddressEditorMenuItemTest, SetLocalSwitchesTheEditorMode) {
    yxfp_test::RecordingProvider provider(kChars, 4);
    IpAddressEditorMenuItem item(provider, u"Address");
    item.setLocal(true);
    EXPECT_TRUE(item.getEditor().getEditorMode());
    item.setLocal(false);
    EXPECT_FALSE(item.getEditor().getEditorMode());
}

TEST(IpAddressEditorMenuItemTest, ConnectEditorTwiceKeepsOnlyTheSecondCallback) {
    AddressMenu menu;
    std::vector<std::string> second;
    menu.address->connectEditor([&](std::string const& text) { second.push_back(text); });
    press(*menu.tree, {Key::Enter, Key::Enter});
    EXPECT_TRUE(menu.applied.empty());
    EXPECT_EQ(second, (std::vector<std::string>{"192.168.1.2"}));
}

TEST(IpAddressEditorMenuItemTest, SetValueWithBadTextShowsTheZeroAddress) {
    AddressMenu menu;
    EXPECT_FALSE(menu.address->setValue("192.168.1"));
    EXPECT_EQ(menu.address->getEditor().getValue(), ip::IpV4Address(0, 0, 0, 0));
    EXPECT_TRUE(menu.address->setValue("10.0.0.254"));
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(1), centred(u" 10.  0.  0.254", kChars));
}

TEST(IpAddressEditorMenuItemTest, AStepKeptByTheBackKeyIsNotReported) {
    AddressMenu menu;
    press(*menu.tree, {Key::Enter, Key::Left, Key::Up, Key::Back});
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(menu.applied.empty());
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(1), centred(u"192.168.  1.  3", kChars));
}

TEST(IpAddressEditorMenuItemTest, ApplyingWithoutACallbackThrowsAndKeepsTheEditorOpen) {
    yxfp_test::TestMenu menu(kChars, 4);
    auto const item = std::make_shared<IpAddressEditorMenuItem>(menu.provider, u"Address");
    menu.tree->addItem(item);
    menu.tree->setLocal(true);
    menu.tree->setFocus(true);
    press(*menu.tree, Key::Enter);
    EXPECT_THROW(press(*menu.tree, Key::Enter), std::bad_function_call);
    EXPECT_TRUE(item->getFocus());
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Address"));
}

TEST(IpAddressEditorMenuItemTest, UnavailableItemOpensNothing) {
    AddressMenu menu;
    menu.address->setAvailable(false);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_FALSE(menu.address->getFocus());
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Address (N/A)"));
}

}  // namespace
