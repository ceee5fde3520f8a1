#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "menu_test_items.h"
#include "platform_capture.h"
#include "recording_provider.h"
#include "test_menu.h"

namespace {

using namespace std::chrono_literals;
using yxfp_test::padded;
using yxfp_test::SleepCapture;
using yxfp_test::TestItem;

// A 21x4 panel with a focused root tree holding the given items.
struct ShownMenu : yxfp_test::TestMenu {
    explicit ShownMenu(std::vector<std::shared_ptr<TestItem>> const& items) : TestMenu(21, 4) {
        for (auto const& item : items) {
            tree->addItem(item);
        }
        tree->setFocus(true);
    }
};

// How the 21x4 panel shows an item text: 20 cells of item plus a blank scrollbar cell.
std::u16string menuLine(std::u16string const& text) { return padded(text, 20) + u" "; }

TEST(MenuItemTest, NewItemShowsItsNameAsMenuText) {
    TestItem item(u"Speed");
    EXPECT_EQ(item.getText(), u"Speed");
    EXPECT_EQ(item.getOwnText(), u"Speed");
    EXPECT_TRUE(item.getAvailable());
    EXPECT_FALSE(item.getSelected());
    EXPECT_TRUE(item.getVisible());
    EXPECT_EQ(item.getLineLength(), 0U);
    EXPECT_EQ(item.getForm(), nullptr);
    EXPECT_EQ(item.getNotAvailableText(), u"(N/A)");
    EXPECT_EQ(item.getLocation(), (yxfrontpanel::drawing::Point{0, 0}));
    EXPECT_EQ(item.getSize(), (yxfrontpanel::drawing::Rectangle{0, 0}));
}

TEST(MenuItemTest, LineIsCutToTheLineLength) {
    TestItem item(u"Frequency");
    item.setLineLength(5);
    auto const line = item.createLineFromMenuText();
    EXPECT_EQ(line.getString(), u"Frequ");
    EXPECT_EQ(yxfp_test::inversionOf(line), ".....");
}

TEST(MenuItemTest, LineIsPaddedWithBlanksToTheLineLength) {
    TestItem item(u"Hz");
    item.setLineLength(5);
    EXPECT_EQ(item.createLineFromMenuText().getString(), u"Hz   ");
    EXPECT_EQ(item.getMenuText().getString(), u"Hz   ");
}

TEST(MenuItemTest, SelectedLineIsInvertedOverItsWholeLength) {
    TestItem item(u"Hz");
    item.setLineLength(5);
    item.setSelected(true);
    EXPECT_TRUE(item.getSelected());
    EXPECT_EQ(yxfp_test::inversionOf(item.getMenuText()), "#####");
}

TEST(MenuItemTest, SelectedItemWithLineLengthZeroGivesEmptyLine) {
    TestItem item(u"Hz");
    item.setSelected(true);
    EXPECT_EQ(item.getMenuText().size(), 0U);
}

TEST(MenuItemTest, HiddenItemYieldsEmptyLine) {
    TestItem item(u"Hz");
    item.setLineLength(5);
    item.setVisible(false);
    EXPECT_EQ(item.getMenuText().size(), 0U);
    EXPECT_EQ(item.createLineFromMenuText().getString(), u"Hz   ");
}

TEST(MenuItemTest, SetLineLengthOverwritesSizeButKeepsBuffer) {
    TestItem item(u"Hz");
    item.setLineLength(7);
    EXPECT_EQ(item.getLineLength(), 7U);
    EXPECT_EQ(item.getSize(), (yxfrontpanel::drawing::Rectangle{7, 1}));
    EXPECT_EQ(item.getBuffer().getChars(), 0U);
    EXPECT_EQ(item.getBuffer().getLineCount(), 0U);
}

TEST(MenuItemTest, UnavailableItemReadsNameBlankAndNotAvailableText) {
    TestItem item(u"Speed");
    item.setLineLength(12);
    item.setAvailable(false);
    EXPECT_FALSE(item.getAvailable());
    EXPECT_EQ(item.getOwnText(), u"Speed (N/A)");
    EXPECT_EQ(item.getMenuText().getString(), u"Speed (N/A) ");
}

// The own text of an item "Speed" after the steps of each case.
TEST(MenuItemTest, OwnTextFollowsAvailabilityVisibilityAndUpdates) {
    struct Case {
        char const* steps;
        std::function<void(TestItem&)> apply;
        std::u16string ownText;
    };
    Case const cases[] = {
        {"available again: the bare name",
         [](TestItem& item) {
             item.setAvailable(false);
             item.setAvailable(true);
         },
         u"Speed"},
        {"setAvailable drops a text of its own",
         [](TestItem& item) {
             item.updateOwnText(u"Speed: 5");
             item.setAvailable(true);
         },
         u"Speed"},
        {"createMenuText keeps a non-empty text while available",
         [](TestItem& item) {
             item.updateOwnText(u"Speed: 5");
             item.createMenuText();
         },
         u"Speed: 5"},
        {"a not-available text while available keeps the name",
         [](TestItem& item) { item.setNotAvailableText(u"--"); }, u"Speed"},
        {"setVisible rebuilds the text",
         [](TestItem& item) {
             item.setOwnText(u"");
             item.setVisible(true);
         },
         u"Speed"},
    };
    for (Case const& step : cases) {
        TestItem item(u"Speed");
        step.apply(item);
        EXPECT_EQ(item.getOwnText(), step.ownText) << step.steps;
    }
}

TEST(MenuItemTest, SetNotAvailableTextRebuildsTheLine) {
    TestItem item(u"Speed");
    item.setAvailable(false);
    item.setNotAvailableText(u"--");
    EXPECT_EQ(item.getNotAvailableText(), u"--");
    EXPECT_EQ(item.getOwnText(), u"Speed --");
}

TEST(MenuItemTest, SetAvailableRedrawsTheMenuWhileShown) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    item->setAvailable(false);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed (N/A)"));
}

TEST(MenuItemTest, SetAvailableDoesNotDrawWhileNotShown) {
    yxfp_test::TestMenu menu(21, 4);
    auto item = menu.add(u"Speed");
    item->setAvailable(false);
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    menu.tree->setFocus(true);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed (N/A)"));
}

// Rebuilding an unchanged menu text and storing an own text draw nothing.
TEST(MenuItemTest, CreateMenuTextWithUnchangedTextAndSetOwnTextDoNotRedraw) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    item->createMenuText();
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    item->setOwnText(u"Speed: 3");
    EXPECT_EQ(item->getOwnText(), u"Speed: 3");
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuItemTest, UpdateOwnTextRedrawsTheMenuOnlyWhileShown) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    item->updateOwnText(u"Speed: 12");
    EXPECT_EQ(item->getOwnText(), u"Speed: 12");
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed: 12"));
    menu.tree->setFocus(false);
    menu.provider.reset();
    item->updateOwnText(u"Speed: 13");
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

// Renaming does not rebuild the menu text: it keeps the old name until something rebuilds it.
TEST(MenuItemTest, RenamingKeepsTheMenuTextUntilItIsRebuilt) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    item->setText(u"Rate");
    EXPECT_EQ(item->getText(), u"Rate");
    EXPECT_EQ(item->getOwnText(), u"Speed");
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed"));
    item->createMenuText();
    EXPECT_EQ(item->getOwnText(), u"Speed");
    item->setAvailable(true);
    EXPECT_EQ(item->getOwnText(), u"Rate");
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Rate"));
}

// The same through the Control interface, the way a form or any other owner of a Control sees
// the item, and again after the menu text has once been the name by choice.
TEST(MenuItemTest, RenamingThroughControlKeepsAMenuTextEqualToTheOldName) {
    TestItem item(u"Speed");
    item.updateOwnText(u"Speed: 5");
    item.updateOwnText(u"Speed");
    yxfrontpanel::Control& control = item;
    control.setText(std::string("Rate"));
    EXPECT_EQ(item.getOwnText(), u"Speed");
    item.setAvailable(false);
    EXPECT_EQ(item.getOwnText(), u"Rate (N/A)");
}

// A menu text set to the name follows no later rename either.
TEST(MenuItemTest, OwnTextEqualToTheNameStaysAfterARename) {
    TestItem item(u"Speed");
    item.updateOwnText(u"Speed: 5");
    item.setOwnText(u"Speed");
    item.setText(u"Rate");
    item.setText(u"Pace");
    EXPECT_EQ(item.getOwnText(), u"Speed");
}

TEST(MenuItemTest, GetFocusIsFalseWithoutForm) {
    TestItem item(u"Speed");
    EXPECT_FALSE(item.getFocus());
}

TEST(MenuItemTest, GetFocusFollowsTheForm) {
    auto item = TestItem::withForm(u"Speed");
    EXPECT_FALSE(item->getFocus());
    item->form()->setFocus(true);
    EXPECT_TRUE(item->getFocus());
    EXPECT_EQ(item->getForm(), item->form());
}

TEST(MenuItemTest, EnterWithoutFormReturnsFalse) {
    TestItem item(u"Speed");
    EXPECT_FALSE(item.enter());
}

TEST(MenuItemTest, EnterOnUnavailableItemOpensNothing) {
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({item});
    item->setAvailable(false);
    menu.provider.reset();
    EXPECT_FALSE(item->enter());
    EXPECT_TRUE(item->form()->focusCalls.empty());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuItemTest, EnterOpensTheFormAndTakesTheFocusFromTheTree) {
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({item});
    EXPECT_TRUE(item->enter());
    EXPECT_EQ(item->form()->focusCalls, (std::vector<bool>{true}));
    EXPECT_TRUE(item->getFocus());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_FALSE(item->getShown());
}

TEST(MenuItemTest, EnterWhileTheFormIsOpenReturnsFalse) {
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({item});
    item->enter();
    EXPECT_FALSE(item->enter());
    EXPECT_EQ(item->form()->focusCalls, (std::vector<bool>{true}));
}

TEST(MenuItemTest, ExitWithoutFormReturnsTrueAndDoesNothing) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    EXPECT_TRUE(item->exit());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
}

TEST(MenuItemTest, ExitClosesTheFormReturnsFalseAndTheTreeRedraws) {
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({item});
    item->enter();
    menu.provider.reset();
    EXPECT_FALSE(item->exit());
    EXPECT_EQ(item->form()->focusCalls, (std::vector<bool>{true, false}));
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed"));
}

TEST(MenuItemTest, EnterOutsideATreeThrowsBadFunctionCallAfterFocusingTheForm) {
    auto item = TestItem::withForm(u"Speed");
    EXPECT_THROW(item->enter(), std::bad_function_call);
    EXPECT_TRUE(item->form()->getFocus());
}

TEST(MenuItemTest, SetFocusTellsTheTreeTheOppositeAndReturnsTheValue) {
    auto item = TestItem::withForm(u"Speed");
    std::vector<bool> heard;
    item->setFocusChangedCallback([&heard](bool focus) { heard.push_back(focus); });
    EXPECT_TRUE(item->setFocus(true));
    EXPECT_FALSE(item->setFocus(false));
    EXPECT_EQ(heard, (std::vector<bool>{false, true}));
    EXPECT_EQ(item->form()->focusCalls, (std::vector<bool>{true, false}));
}

TEST(MenuItemTest, SetFocusWithoutFormDoesNothingAndReturnsFalse) {
    TestItem item(u"Speed");
    std::vector<bool> heard;
    item.setFocusChangedCallback([&heard](bool focus) { heard.push_back(focus); });
    EXPECT_FALSE(item.setFocus(true));
    EXPECT_TRUE(heard.empty());
}

TEST(MenuItemTest, SetFocusRebuildsTheMenuText) {
    auto item = TestItem::withForm(u"Speed");
    item->setFocusChangedCallback([](bool) {});
    item->setOwnText(u"");
    item->setFocus(true);
    EXPECT_EQ(item->getOwnText(), u"Speed");
}

TEST(MenuItemTest, SetVisibleReportsEveryValueAlsoWhenUnchanged) {
    TestItem item(u"Speed");
    std::vector<bool> heard;
    item.setVisibleChangedCallback([&heard](bool visible) { heard.push_back(visible); });
    item.setVisible(true);
    item.setVisible(false);
    item.setVisible(false);
    EXPECT_EQ(heard, (std::vector<bool>{true, false, false}));
    EXPECT_FALSE(item.getVisible());
}

TEST(MenuItemTest, HidingAFocusedItemClosesItsFormFirst) {
    auto first = std::make_shared<TestItem>(u"First");
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({first, item});
    menu.tree->moveDown();
    menu.tree->action();
    ASSERT_TRUE(item->getFocus());
    menu.provider.reset();
    item->setVisible(false);
    EXPECT_EQ(item->exits, 1);
    EXPECT_FALSE(item->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
    // Closing redraws the menu, the visibility change redraws it without the item.
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_EQ(menu.provider.screen(),
              (std::vector<std::u16string>{menuLine(u"First"), menuLine(u""), menuLine(u""),
                                           menuLine(u"")}));
}

TEST(MenuItemTest, ShowingAFocusedItemDoesNotCloseIt) {
    auto item = TestItem::withForm(u"Speed");
    ShownMenu menu({item});
    menu.tree->action();
    item->setVisible(true);
    EXPECT_EQ(item->exits, 0);
    EXPECT_TRUE(item->getFocus());
}

TEST(MenuItemTest, ShowHintShowsTheHintDuringTheSleepAndTheRestoreTextAfter) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    std::u16string lineDuringSleep;
    SleepCapture sleeps([&](std::chrono::nanoseconds) { lineDuringSleep = menu.provider.line(0); });
    item->showHint(u"Only in local mode!", u"Speed", 1500ms);
    EXPECT_EQ(lineDuringSleep, menuLine(u"Only in local mode!"));
    EXPECT_EQ(sleeps.sleeps(), (std::vector<std::chrono::nanoseconds>{1500ms}));
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Speed"));
    EXPECT_EQ(item->getOwnText(), u"Speed");
}

TEST(MenuItemTest, ShowHintWithEmptyRestoreKeepsTheHint) {
    auto item = std::make_shared<TestItem>(u"Speed");
    ShownMenu menu({item});
    menu.provider.reset();
    SleepCapture sleeps;
    item->showHint(u"Busy", u"", 1000ms);
    EXPECT_EQ(sleeps.sleeps(), (std::vector<std::chrono::nanoseconds>{1000ms}));
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.line(0), menuLine(u"Busy"));
    EXPECT_EQ(item->getOwnText(), u"Busy");
}

TEST(MenuItemTest, ShowHintWhileNotShownOnlyChangesTheText) {
    TestItem item(u"Speed");
    SleepCapture sleeps;
    item.showHint(u"Busy", u"Ready", 20ms);
    EXPECT_EQ(sleeps.sleeps(), (std::vector<std::chrono::nanoseconds>{20ms}));
    EXPECT_EQ(item.getOwnText(), u"Ready");
}

TEST(MenuItemTest, SleepForHandsTheDurationToTheBaseLibrary) {
    SleepCapture sleeps;
    yxfrontpanel::wrapper::sleep_for(std::chrono::nanoseconds(1234));
    yxfrontpanel::wrapper::sleep_for(2s);
    EXPECT_EQ(sleeps.sleeps(),
              (std::vector<std::chrono::nanoseconds>{std::chrono::nanoseconds(1234), 2s}));
}

}  // namespace
