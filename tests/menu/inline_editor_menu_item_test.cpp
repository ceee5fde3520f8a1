#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using namespace std::chrono_literals;
using namespace yxfp_test;
using namespace yxfrontpanel;

// A 21x4 root menu with the inline item "Mode" on the first line and a plain "Other" below, on
// screen and in local mode unless told otherwise. Every key the item reports is recorded.
struct InlineMenu : TestMenu {
    explicit InlineMenu(bool local = true) : TestMenu(21, 4) {
        mode->valueCallback = [this](int key) { reported.push_back(key); };
        tree->addItem(mode);
        add(u"Other");
        tree->setLocal(local);
        tree->setFocus(true);
    }

    // Adds the values (2, B), (0, A), (5, C) in that order.
    void addValues() {
        mode->addValue(2, u"B");
        mode->addValue(0, u"A");
        mode->addValue(5, u"C");
    }

    Screen screen(std::u16string const& modeLine) const {
        return {line(modeLine), line(u"Other"), line(u""), line(u"")};
    }

    std::shared_ptr<InlineEditorMenuItem> mode = std::make_shared<InlineEditorMenuItem>(u"Mode");
    std::vector<int> reported;
};

// The same menu with the values (2, B), (0, A), (5, C) added.
struct ValuedMenu : InlineMenu {
    explicit ValuedMenu(bool local = true) : InlineMenu(local) { addValues(); }
};

TEST(InlineEditorMenuItemTest, NewItemShowsItsNameUntilTheFirstValue) {
    InlineMenu menu;
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode");
    EXPECT_EQ(menu.mode->getValueCount(), 0U);
    EXPECT_TRUE(menu.mode->editable.load());
    EXPECT_EQ(menu.mode->getForm(), nullptr);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode"));
}

TEST(InlineEditorMenuItemTest, TheFirstValueAddedIsShownAtOnce) {
    InlineMenu menu;
    menu.provider.reset();
    menu.addValues();
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    // Only the first value rebuilds the line.
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.mode->getValueCount(), 3U);
    EXPECT_TRUE(menu.reported.empty());
}

TEST(InlineEditorMenuItemTest, ActionKeyStepsInKeyOrderAndWrapsAround) {
    ValuedMenu menu;
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: C"));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
    EXPECT_EQ(menu.reported, (std::vector<int>{5, 0, 2}));
    // The menu keeps the keys: the cursor still moves.
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
}

TEST(InlineEditorMenuItemTest, TheLineIsRedrawnBeforeTheKeyIsReported) {
    ValuedMenu menu;
    std::vector<std::u16string> lineWhenReported;
    menu.mode->valueCallback = [&](int) { lineWhenReported.push_back(menu.provider.line(0)); };
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(lineWhenReported, (std::vector<std::u16string>{menu.line(u"Mode: C")}));
}

TEST(InlineEditorMenuItemTest, AddingAKeyAgainChangesNeitherTextNorCurrentValue) {
    ValuedMenu menu;
    menu.provider.reset();
    menu.mode->addValue(2, u"Other B");
    menu.mode->addValue(0, u"Other A");
    EXPECT_EQ(menu.mode->getValueCount(), 3U);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode: B");
    press(*menu.tree, {Key::Enter, Key::Enter});
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
}

TEST(InlineEditorMenuItemTest, SetValueShowsTheValueWithoutReporting) {
    ValuedMenu menu;
    menu.provider.reset();
    menu.mode->setValue(5);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: C"));
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_TRUE(menu.reported.empty());
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
    EXPECT_EQ(menu.reported, (std::vector<int>{0}));
}

TEST(InlineEditorMenuItemTest, SetValueWithAnUnknownKeyKeepsTheLine) {
    ValuedMenu menu;
    menu.mode->setValue(5);
    menu.provider.reset();
    menu.mode->setValue(1);
    menu.mode->setValue(7);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode: C");
    EXPECT_TRUE(menu.reported.empty());
}

TEST(InlineEditorMenuItemTest, SteppingFromAnUnknownKeyGoesToTheFirstValue) {
    ValuedMenu menu;
    menu.mode->setValue(3);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
    EXPECT_EQ(menu.reported, (std::vector<int>{0}));
}

TEST(InlineEditorMenuItemTest, UnknownKeyAndAvailabilityChangeLeaveAnEmptyLine) {
    ValuedMenu menu;
    menu.mode->setValue(3);
    // The availability change empties the line, and an unknown key rebuilds nothing.
    menu.mode->setAvailable(false);
    EXPECT_EQ(menu.mode->getOwnText(), u"");
    press(*menu.tree, Key::Down);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u""), menu.line(u"Other"), menu.line(u""), menu.line(u"")}));
    menu.mode->setValue(0);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: (N/A)"));
}

TEST(InlineEditorMenuItemTest, UnavailableItemShowsTheNotAvailableText) {
    ValuedMenu menu;
    menu.mode->setAvailable(false);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: (N/A)"));
    menu.mode->setNotAvailableText(u"--");
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: --"));
    menu.mode->setAvailable(true);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
}

TEST(InlineEditorMenuItemTest, UnavailableItemIgnoresTheActionKeyInLocalMode) {
    ValuedMenu menu;
    menu.mode->setAvailable(false);
    menu.provider.reset();
    HintWatch hints(menu.provider);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(hints.sleeps().empty());
    EXPECT_TRUE(menu.reported.empty());
    menu.mode->setAvailable(true);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
}

TEST(InlineEditorMenuItemTest, UnavailableItemOutsideLocalModeStillShowsTheHint) {
    ValuedMenu menu(false);
    menu.mode->setAvailable(false);
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], menu.screen(u"Only in local mode!"));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: (N/A)"));
    EXPECT_TRUE(menu.reported.empty());
}

TEST(InlineEditorMenuItemTest, SingleValueIsKeptAndReportedOnEveryPress) {
    InlineMenu menu;
    menu.mode->addValue(4, u"Only");
    press(*menu.tree, {Key::Enter, Key::Enter, Key::Enter});
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: Only"));
    EXPECT_EQ(menu.reported, (std::vector<int>{4, 4, 4}));
}

TEST(InlineEditorMenuItemTest, OutsideLocalModeTheActionKeyShowsAHintForOneSecond) {
    ValuedMenu menu(false);
    menu.provider.reset();
    HintWatch hints(menu.provider);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(hints.sleeps(), (std::vector<std::chrono::nanoseconds>{1000ms}));
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], menu.screen(u"Only in local mode!"));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_TRUE(menu.reported.empty());
    // Back in local mode the value steps from where it was.
    menu.tree->setLocal(true);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: C"));
}

TEST(InlineEditorMenuItemTest, HintBeforeAnyValueReturnsToTheName) {
    InlineMenu menu(false);
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], menu.screen(u"Only in local mode!"));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode"));
}

TEST(InlineEditorMenuItemTest, NotEditableIgnoresTheActionKeyEntirely) {
    for (bool const local : {true, false}) {
        InlineMenu menu(local);
        menu.addValues();
        menu.mode->editable = false;
        menu.provider.reset();
        HintWatch hints(menu.provider);
        EXPECT_FALSE(press(*menu.tree, Key::Enter)) << "local " << local;
        EXPECT_EQ(menu.provider.drawCount(), 0U) << "local " << local;
        EXPECT_TRUE(hints.sleeps().empty()) << "local " << local;
        EXPECT_TRUE(menu.reported.empty()) << "local " << local;
        menu.mode->editable = true;
        menu.tree->setLocal(true);
        press(*menu.tree, Key::Enter);
        EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: C")) << "local " << local;
    }
}

TEST(InlineEditorMenuItemTest, ActionKeyBeforeAnyValueDoesNothingInLocalMode) {
    InlineMenu menu;
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(menu.reported.empty());
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode");
}

TEST(InlineEditorMenuItemTest, UnavailableBeforeAnyValueShowsThePlainItemLine) {
    InlineMenu menu;
    menu.mode->setAvailable(false);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode (N/A)"));
    menu.mode->setAvailable(true);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode"));
}

TEST(InlineEditorMenuItemTest, ClearValuesEmptiesTheListAndLeavesTheLine) {
    ValuedMenu menu;
    menu.provider.reset();
    menu.mode->clearValues();
    EXPECT_EQ(menu.mode->getValueCount(), 0U);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode: B");
}

TEST(InlineEditorMenuItemTest, SteppingAfterClearValuesDoesNothing) {
    ValuedMenu menu;
    menu.mode->clearValues();
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    menu.mode->toggleValue();
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(menu.reported.empty());
    menu.mode->setValue(2);
    menu.mode->toggleValue();
    EXPECT_TRUE(menu.reported.empty());
}

TEST(InlineEditorMenuItemTest, RebuildingAfterClearValuesShowsTheName) {
    ValuedMenu menu;
    menu.mode->clearValues();
    menu.mode->createMenuText();
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode"));
}

TEST(InlineEditorMenuItemTest, FirstValueAfterClearValuesBecomesCurrent) {
    ValuedMenu menu;
    press(*menu.tree, Key::Enter);
    menu.mode->clearValues();
    menu.mode->addValue(9, u"Z");
    menu.mode->addValue(1, u"Y");
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: Z"));
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: Y"));
    EXPECT_EQ(menu.reported, (std::vector<int>{5, 1}));
}

TEST(InlineEditorMenuItemTest, RebuildingRedrawsWhileShownEvenWithTheSameText) {
    ValuedMenu menu;
    menu.provider.reset();
    menu.mode->createMenuText();
    menu.mode->setValue(2);
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
}

TEST(InlineEditorMenuItemTest, NothingIsDrawnWhileTheMenuIsNotShown) {
    yxfp_test::RecordingProvider provider(21, 4);
    InlineEditorMenuItem item(u"Mode");
    int redraws = 0;
    item.setRedrawParentCallback([&] { ++redraws; });
    item.addValue(1, u"On");
    item.setValue(1);
    item.toggleValue();
    EXPECT_EQ(redraws, 0);
    EXPECT_EQ(item.getOwnText(), u"Mode: On");
}

TEST(InlineEditorMenuItemTest, ArrowKeysDoNothing) {
    ValuedMenu menu;
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_FALSE(menu.mode->up());
    EXPECT_FALSE(menu.mode->down());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_EQ(menu.mode->getOwnText(), u"Mode: B");
    EXPECT_TRUE(menu.reported.empty());
}

TEST(InlineEditorMenuItemTest, BackKeyOnTheMenuLeavesTheItemAlone) {
    ValuedMenu menu;
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: B"));
}

TEST(InlineEditorMenuItemTest, HiddenAndShownAgainKeepsTheValue) {
    ValuedMenu menu;
    press(*menu.tree, Key::Enter);
    menu.mode->setVisible(false);
    EXPECT_EQ(menu.provider.screen(),
              (Screen{menu.line(u"Other"), menu.line(u""), menu.line(u""), menu.line(u"")}));
    menu.mode->setVisible(true);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: C"));
}

TEST(InlineEditorMenuItemTest, ConnectorPushesKeysIntoTheItem) {
    ValuedMenu menu;
    std::function<void(int)> const push = yxfrontpanel::itemconnector::inlineEditor(*menu.mode);
    push(0);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
    push(8);
    EXPECT_EQ(menu.provider.screen(), menu.screen(u"Mode: A"));
    EXPECT_TRUE(menu.reported.empty());
}

// An item that records each value pushed into it through its virtual setter.
class RecordingInlineItem : public InlineEditorMenuItem {
public:
    RecordingInlineItem() : InlineEditorMenuItem(u"Mode") {}
    void setValue(int key) override {
        keys.push_back(key);
        InlineEditorMenuItem::setValue(key);
    }
    std::vector<int> keys;
};

TEST(InlineEditorMenuItemTest, ConnectorCallsTheVirtualSetter) {
    RecordingInlineItem item;
    item.addValue(1, u"On");
    auto const push = yxfrontpanel::itemconnector::inlineEditor(item);
    push(1);
    push(3);
    EXPECT_EQ(item.keys, (std::vector<int>{1, 3}));
}

}  // namespace
