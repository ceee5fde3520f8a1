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

// A 21x4 root menu with the number item "Voltage" (0 to 30, two decimals, unit V, showing 5.5)
// above a plain "Other", on screen and in local mode unless told otherwise. Every applied value
// is recorded.
struct VoltageMenu : TestMenu {
    explicit VoltageMenu(bool local = true) : TestMenu(kChars, 4) {
        voltage->setPrecision(2);
        voltage->setUnit(u"V");
        voltage->setValue(5.5);
        voltage->connectEditor([this](double value) { applied.push_back(value); });
        tree->addItem(voltage);
        add(u"Other");
        tree->setLocal(local);
        tree->setFocus(true);
    }

    Screen menuScreen() const { return {line(u"Voltage"), line(u"Other"), line(u""), line(u"")}; }
    // The editor screen showing `value` with the caret at `caret` (none: read-only).
    static Screen editorScreen(std::u16string const& value, std::optional<unsigned> caret) {
        return yxfp_test::editorScreen(u"Voltage", value, caret, kChars);
    }

    std::shared_ptr<ValueEditorMenuItem> voltage =
        std::make_shared<ValueEditorMenuItem>(provider, u"Voltage", 0.0, 30.0);
    std::vector<double> applied;
};

// "05.50 V" starts at column 7 of the 21 columns: tens at 7, units at 8, tenths at 10.
constexpr unsigned kTens = 7;
constexpr unsigned kUnits = 8;
constexpr unsigned kTenths = 10;

TEST(ValueEditorMenuItemTest, NewItemOwnsAnEditorTitledWithItsName) {
    yxfp_test::RecordingProvider provider(kChars, 4);
    ValueEditorMenuItem item(provider, u"Voltage", -1.0, 12.0);
    EXPECT_EQ(item.getForm(), &item.getEditor());
    EXPECT_EQ(item.getOwnText(), u"Voltage");
    EXPECT_EQ(item.getEditor().getHeadlineLabel().getText(), u">> Voltage <<");
    EXPECT_EQ(item.getEditor().getMinValue(), -1.0);
    EXPECT_EQ(item.getEditor().getMaxValue(), 12.0);
    EXPECT_FALSE(item.getEditor().getEditorMode());
    EXPECT_FALSE(item.getFocus());
    EXPECT_EQ(provider.drawCount(), 0U);
}

TEST(ValueEditorMenuItemTest, MenuLineShowsTheNameAndActionKeyOpensItEditable) {
    VoltageMenu menu;
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.voltage->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_TRUE(menu.voltage->getEditor().getEditorMode());
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", kTens));
}

TEST(ValueEditorMenuItemTest, ArrowKeysEditTheValueInTheOpenEditor) {
    VoltageMenu menu;
    press(*menu.tree, Key::Enter);
    press(*menu.tree, Key::Up);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"15.50 V", kTens));
    EXPECT_TRUE(press(*menu.tree, Key::Right));
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"15.50 V", kUnits));
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"14.50 V", kUnits));
    // The decimal point is jumped over.
    press(*menu.tree, Key::Right);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"14.50 V", kTenths));
    EXPECT_TRUE(press(*menu.tree, Key::Left));
    press(*menu.tree, Key::Left);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"14.50 V", kTens));
    press(*menu.tree, {Key::Up, Key::Up});
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"30.00 V", kTens));
    EXPECT_TRUE(menu.applied.empty());
    // Nothing is committed before the action key.
    EXPECT_EQ(menu.voltage->getEditor().getValue(), 5.5);
}

TEST(ValueEditorMenuItemTest, ActionKeyInTheEditorAppliesAndReturnsToTheMenu) {
    VoltageMenu menu;
    press(*menu.tree, {Key::Enter, Key::Up});
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.applied, (std::vector<double>{15.5}));
    EXPECT_EQ(menu.voltage->getEditor().getValue(), 15.5);
    EXPECT_FALSE(menu.voltage->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"15.50 V", kTens));
}

TEST(ValueEditorMenuItemTest, WithoutCloseAfterApplyTheEditorStaysOpen) {
    VoltageMenu menu;
    menu.voltage->setCloseAfterApply(false);
    press(*menu.tree, {Key::Enter, Key::Up});
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.applied, (std::vector<double>{15.5}));
    EXPECT_TRUE(menu.voltage->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    press(*menu.tree, {Key::Up, Key::Enter});
    EXPECT_EQ(menu.applied, (std::vector<double>{15.5, 25.5}));
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"25.50 V", kTens));
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(ValueEditorMenuItemTest, BackKeyDiscardsTheEdit) {
    VoltageMenu menu;
    press(*menu.tree, {Key::Enter, Key::Up, Key::Up});
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(menu.applied.empty());
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", kTens));
}

TEST(ValueEditorMenuItemTest, OutsideLocalModeTheEditorIsReadOnly) {
    VoltageMenu menu(false);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", std::nullopt));
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Up));
    EXPECT_FALSE(press(*menu.tree, Key::Down));
    EXPECT_FALSE(menu.voltage->up());
    EXPECT_FALSE(menu.voltage->down());
    EXPECT_EQ(menu.voltage->getEditor().getEditValue(), 5.5);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    // The action key commits nothing and closes.
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.applied.empty());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(ValueEditorMenuItemTest, EditorModeBeforeLocalModeLeavesTheEditorReadOnly) {
    yxfp_test::RecordingProvider provider(kChars, 4);
    ValueEditorMenuItem item(provider, u"Voltage", 0.0, 30.0);
    // Each step: local mode (true) or editing (false) switched to `on`, and the editor's mode
    // after it.
    struct Step {
        bool local;
        bool on;
        bool editorMode;
    };
    Step const steps[] = {{false, true, false}, {true, true, true},  {false, false, false},
                          {true, true, false},  {false, true, true}, {true, false, false}};
    for (Step const& step : steps) {
        if (step.local) {
            item.setLocal(step.on);
        } else {
            item.setEditorMode(step.on);
        }
        EXPECT_EQ(item.getEditor().getEditorMode(), step.editorMode)
            << (step.local ? "setLocal(" : "setEditorMode(") << step.on << ")";
    }
}

TEST(ValueEditorMenuItemTest, EditingSwitchedOffShowsTheValueReadOnlyInLocalMode) {
    VoltageMenu menu;
    menu.voltage->setEditorMode(false);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", std::nullopt));
    press(*menu.tree, Key::Up);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", std::nullopt));
    // Switched on while the editor is open, the caret appears and keys edit.
    menu.voltage->setEditorMode(true);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", kTens));
    press(*menu.tree, Key::Up);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"15.50 V", kTens));
    menu.voltage->setEditorMode(false);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"15.50 V", std::nullopt));
}

TEST(ValueEditorMenuItemTest, LeftAndRightDoNothingWhileTheEditorIsClosed) {
    VoltageMenu menu;
    menu.voltage->setLocal(true);
    unsigned const caret = yxfp_test::caretColumn(menu.voltage->getEditor());
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_EQ(yxfp_test::caretColumn(menu.voltage->getEditor()), caret);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(ValueEditorMenuItemTest, UpAndDownReachTheClosedEditorWhichIgnoresThem) {
    VoltageMenu menu;
    menu.voltage->setLocal(true);
    EXPECT_FALSE(menu.voltage->up());
    EXPECT_FALSE(menu.voltage->down());
    EXPECT_EQ(menu.voltage->getEditor().getEditValue(), 5.5);
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
}

TEST(ValueEditorMenuItemTest, ApplyingWithoutACallbackThrowsAndKeepsTheEditorOpen) {
    yxfp_test::TestMenu menu(kChars, 4);
    auto const item = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    item->setValue(5.0);
    menu.tree->addItem(item);
    menu.tree->setLocal(true);
    menu.tree->setFocus(true);
    press(*menu.tree, Key::Enter);
    EXPECT_THROW(press(*menu.tree, Key::Enter), std::bad_function_call);
    EXPECT_TRUE(item->getFocus());
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Voltage"));
}

TEST(ValueEditorMenuItemTest, ReadOnlyEditorWithoutCallbackClosesQuietly) {
    yxfp_test::TestMenu menu(kChars, 4);
    auto const item = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    menu.tree->addItem(item);
    menu.tree->setFocus(true);
    press(*menu.tree, Key::Enter);
    EXPECT_NO_THROW(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.tree->getFocus());
}

TEST(ValueEditorMenuItemTest, UnavailableItemOpensNothing) {
    VoltageMenu menu;
    menu.voltage->setAvailable(false);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_FALSE(menu.voltage->getFocus());
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Voltage (N/A)"), menu.line(u"Other"),
                                              menu.line(u""), menu.line(u"")}));
}

TEST(ValueEditorMenuItemTest, SettersAreHandedToTheEditor) {
    VoltageMenu menu;
    menu.voltage->setMinValue(-5.0);
    menu.voltage->setMaxValue(100.0);
    menu.voltage->setUnit(u"mV");
    menu.voltage->setValue(-2.25);
    EXPECT_EQ(menu.voltage->getEditor().getMinValue(), -5.0);
    EXPECT_EQ(menu.voltage->getEditor().getMaxValue(), 100.0);
    EXPECT_EQ(menu.voltage->getEditor().getUnit(), u"mV");
    EXPECT_EQ(menu.voltage->getEditor().getValue(), -2.25);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(1), centred(u"-002.25 mV ", kChars));
}

TEST(ValueEditorMenuItemTest, PrecisionIsUsedFromTheNextValueDrawn) {
    VoltageMenu menu;
    menu.voltage->setPrecision(1);
    EXPECT_EQ(menu.voltage->getEditor().getPrecision(), 1U);
    EXPECT_EQ(menu.voltage->getEditor().getValueLabel().getText(), u"05.50 V");
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(1), centred(u"05.5 V", kChars));
}

TEST(ValueEditorMenuItemTest, ConnectEditorReplacesTheApplyCallback) {
    VoltageMenu menu;
    std::vector<double> second;
    menu.voltage->connectEditor([&](double value) { second.push_back(value); });
    press(*menu.tree, {Key::Enter, Key::Down, Key::Enter});
    EXPECT_TRUE(menu.applied.empty());
    EXPECT_EQ(second, (std::vector<double>{0.0}));
}

TEST(ValueEditorMenuItemTest, SetValueWhileOpenChangesOnlyTheEdit) {
    VoltageMenu menu;
    press(*menu.tree, Key::Enter);
    menu.voltage->setValue(7.25);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"07.25 V", kTens));
    EXPECT_EQ(menu.voltage->getEditor().getValue(), 5.5);
    press(*menu.tree, Key::Back);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), VoltageMenu::editorScreen(u"05.50 V", kTens));
}

TEST(ValueEditorMenuItemTest, HidingTheOpenItemClosesItsEditor) {
    VoltageMenu menu;
    press(*menu.tree, Key::Enter);
    menu.voltage->setVisible(false);
    EXPECT_FALSE(menu.voltage->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Other"), menu.line(u""), menu.line(u""), menu.line(u"")}));
}

}  // namespace
