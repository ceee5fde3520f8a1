#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bar_cells.h"
#include "item_screens.h"
#include "menu_keys.h"
#include "recording_provider.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

// A 20x4 root menu "Volume" (slider from 0, ten cells, captions five wide), "Other"; the
// slider's commits are recorded.
struct SliderMenu : TestMenu {
    SliderMenu() : TestMenu(20, 4) {
        item = std::make_shared<SliderMenuItem>(provider, u"Volume", u"Min", u"Max", 5, 10, 0);
        item->connectSlider([this](int value) { commits.push_back(value); });
        tree->addItem(item);
        add(u"Other");
        tree->setFocus(true);
    }

    Screen menuScreen() const { return {line(u"Volume"), line(u"Other"), line(u""), line(u"")}; }

    // The slider screen with value `shown` (arrow under it when `arrow`).
    static Screen sliderScreen(int shown, bool arrow) {
        std::u16string value = u"Val:" + std::u16string(1, static_cast<char16_t>(u'0' + shown));
        return {u"    >> Volume <<    ",
                u" Min " + barCells(static_cast<unsigned>(shown) + 1, 10) + u" Max ",
                u"     " + scaleRow(10, arrow ? shown : kNoArrow) + value, padded(u"", 20)};
    }

    std::shared_ptr<SliderMenuItem> item;
    std::vector<int> commits;
};

// --- opening and closing ---

TEST(SliderMenuItemTest, MenuLineShowsTheNameAndEnterOpensTheSliderFullScreen) {
    SliderMenu menu;
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.item->getSlider().getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_FALSE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, false));
}

TEST(SliderMenuItemTest, TheSliderIsTheItemsForm) {
    SliderMenu menu;
    EXPECT_EQ(menu.item->getForm(), &menu.item->getSlider());
}

TEST(SliderMenuItemTest, BackClosesWithoutCommittingAndReopeningShowsTheCommittedValue) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    press(*menu.tree, {Key::Enter, Key::Right, Key::Right});
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(2, true));
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(menu.commits.empty());
    EXPECT_EQ(menu.item->getSlider().getValue(), 0);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, true));
}

TEST(SliderMenuItemTest, UnavailableItemDoesNotOpen) {
    SliderMenu menu;
    menu.item->setAvailable(false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Volume (N/A)"));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.item->getSlider().getFocus());
}

// --- editing ---

TEST(SliderMenuItemTest, InLocalModeLeftAndRightMoveTheShownValueAtOnce) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, true));
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_TRUE(press(*menu.tree, Key::Right));
    EXPECT_EQ(menu.provider.drawCount(), draws + 1);
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(1, true));
    EXPECT_TRUE(press(*menu.tree, Key::Left));
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, true));
    EXPECT_FALSE(press(*menu.tree, Key::Left)) << "no wrap-around at the first value";
    EXPECT_TRUE(menu.commits.empty());
}

TEST(SliderMenuItemTest, EnterInTheOpenSliderCommitsAndKeepsItOpen) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    press(*menu.tree, {Key::Enter, Key::Right, Key::Right});
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.commits, std::vector<int>{2});
    EXPECT_EQ(menu.item->getSlider().getValue(), 2);
    EXPECT_TRUE(menu.item->getSlider().getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(2, true));
    press(*menu.tree, {Key::Right, Key::Enter});
    EXPECT_EQ(menu.commits, (std::vector<int>{2, 3}));
    press(*menu.tree, {Key::Back, Key::Enter});
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(3, true));
}

TEST(SliderMenuItemTest, OutsideLocalModeKeysDoNothingAndEnterCallsNobody) {
    SliderMenu menu;
    menu.item->setValue(4);
    press(*menu.tree, Key::Enter);
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(4, false));
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(menu.commits.empty());
    EXPECT_EQ(menu.item->getSlider().getValue(), 4);
}

TEST(SliderMenuItemTest, UpAndDownChangeNothing) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    press(*menu.tree, {Key::Enter, Key::Right});
    std::size_t const draws = menu.provider.drawCount();
    press(*menu.tree, {Key::Up, Key::Down});
    EXPECT_FALSE(menu.item->up());
    EXPECT_FALSE(menu.item->down());
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.item->getSlider().getBarValCorrected(), 1);
    EXPECT_TRUE(menu.item->getSlider().getFocus());
}

TEST(SliderMenuItemTest, EnterWithOnlyTheMenuCursorOnTheItemDoesNotCommit) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    std::size_t const draws = menu.provider.drawCount();
    // In the menu, left and right still reach the slider and move its shown value unseen.
    press(*menu.tree, {Key::Right, Key::Right});
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.item->getSlider().getBarValCorrected(), 2);
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.commits.empty());
    EXPECT_EQ(menu.item->getSlider().getValue(), 0);
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, true))
        << "opening shows the committed value again";
}

// --- read only ---

TEST(SliderMenuItemTest, ReadOnlyItemNeverEntersEditorMode) {
    SliderMenu menu;
    menu.item->setReadOnly(true);
    EXPECT_TRUE(menu.item->getReadOnly());
    menu.tree->setLocal(true);
    press(*menu.tree, Key::Enter);
    EXPECT_FALSE(menu.item->getSlider().getEditorMode());
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, false));
    press(*menu.tree, {Key::Right, Key::Enter});
    EXPECT_EQ(menu.provider.screen(), SliderMenu::sliderScreen(0, false));
    EXPECT_TRUE(menu.commits.empty());
}

TEST(SliderMenuItemTest, ReadOnlyAfterLocalModeLeavesEditorModeAsItIs) {
    SliderMenu menu;
    menu.tree->setLocal(true);
    EXPECT_TRUE(menu.item->getSlider().getEditorMode());
    menu.item->setReadOnly(true);
    EXPECT_TRUE(menu.item->getSlider().getEditorMode());
    // A read-only item ignores every local mode, so editor mode stays on ...
    menu.tree->setLocal(false);
    EXPECT_TRUE(menu.item->getSlider().getEditorMode());
    // ... until the item is writable again and hears the local mode.
    menu.item->setReadOnly(false);
    menu.tree->setLocal(false);
    EXPECT_FALSE(menu.item->getSlider().getEditorMode());
}

// --- application side ---

TEST(SliderMenuItemTest, ConnectSliderKeepsOnlyTheLastCallback) {
    SliderMenu menu;
    std::vector<int> second;
    menu.item->connectSlider([&second](int value) { second.push_back(value); });
    menu.tree->setLocal(true);
    press(*menu.tree, {Key::Enter, Key::Right, Key::Enter});
    EXPECT_TRUE(menu.commits.empty());
    EXPECT_EQ(second, std::vector<int>{1});
}

TEST(SliderMenuItemTest, SetValueCommitsInRangeAndRefusesOutside) {
    SliderMenu menu;
    EXPECT_TRUE(menu.item->setValue(7));
    EXPECT_EQ(menu.item->getSlider().getValue(), 7);
    EXPECT_FALSE(menu.item->setValue(10));
    EXPECT_EQ(menu.item->getSlider().getValue(), 7);
    EXPECT_TRUE(menu.commits.empty()) << "setting a value is not a commit by the user";
}

TEST(SliderMenuItemTest, LayoutTooWideForThePanelThrowsFromTheConstructor) {
    yxfp_test::RecordingProvider provider(20, 4);
    try {
        SliderMenuItem item(provider, u"Wide", u"a", u"b", 4, 13, 0);
        FAIL() << "expected std::out_of_range";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "Labels and Bar does not fit into line!");
    }
}

}  // namespace
