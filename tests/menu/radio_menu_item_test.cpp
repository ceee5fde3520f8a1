#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "platform_capture.h"
#include "test_menu.h"

namespace {

using namespace std::chrono_literals;
using namespace yxfp_test;
using namespace yxfrontpanel;

// A 21x4 root menu holding the group "Range" and a plain "Other"; Range holds the choices
// High (id 3), Low (id 1) and Mid (id 2), added in that order. The root is on screen, in local
// mode unless told otherwise, and every value the group reports is recorded.
struct RadioMenu : TestMenu {
    explicit RadioMenu(bool local = true) : TestMenu(21, 4) {
        group = std::make_shared<RadioTreeMenuItem>(provider, u"Range");
        group->valueCallback = [this](int id) { reported.push_back(id); };
        tree->addItem(group);
        add(u"Other");
        group->addItem(high);
        group->addItem(low);
        group->addItem(mid);
        tree->setLocal(local);
        tree->setFocus(true);
    }

    // Opens the group's sub-menu from the root.
    void open() { press(*tree, Key::Enter); }

    Screen rootScreen() const { return {line(u"Range"), line(u"Other"), line(u""), line(u"")}; }
    // The sub-menu with the marker texts of High, Low and Mid.
    Screen groupScreen(std::u16string const& high, std::u16string const& low,
                       std::u16string const& mid) const {
        return {line(high), line(low), line(mid), line(u"")};
    }

    std::shared_ptr<RadioTreeMenuItem> group;
    std::shared_ptr<RadioMenuItem> high = std::make_shared<RadioMenuItem>(u"High", 3);
    std::shared_ptr<RadioMenuItem> low = std::make_shared<RadioMenuItem>(u"Low", 1);
    std::shared_ptr<RadioMenuItem> mid = std::make_shared<RadioMenuItem>(u"Mid", 2);
    std::vector<int> reported;
};

// --- RadioMenuItem on its own ---

TEST(RadioMenuItemTest, NewChoiceIsUncheckedWithABlankMarker) {
    RadioMenuItem item(u"Low", 1);
    EXPECT_EQ(item.getText(), u"Low");
    EXPECT_EQ(item.getOwnText(), u" Low");
    EXPECT_EQ(item.getId(), 1);
    EXPECT_FALSE(item.isChecked());
    EXPECT_TRUE(item.getEditor());
    EXPECT_EQ(item.getForm(), nullptr);
}

TEST(RadioMenuItemTest, SetMenuTextChangesOnlyTheMarker) {
    RadioMenuItem item(u"Low", 1);
    int redraws = 0;
    item.setRedrawParentCallback([&] { ++redraws; });
    item.setMenuText(true);
    EXPECT_EQ(item.getOwnText(), u">Low");
    EXPECT_FALSE(item.isChecked());
    item.setMenuText(false);
    EXPECT_EQ(item.getOwnText(), u" Low");
    EXPECT_EQ(redraws, 0);
}

TEST(RadioMenuItemTest, CheckStoresTheStateAfterAskingForTheRedraw) {
    RadioMenuItem item(u"Low", 1);
    std::vector<bool> checkedDuringRedraw;
    std::vector<std::u16string> textDuringRedraw;
    item.setRedrawParentCallback([&] {
        checkedDuringRedraw.push_back(item.isChecked());
        textDuringRedraw.push_back(item.getOwnText());
    });
    item.check(true);
    EXPECT_EQ(checkedDuringRedraw, (std::vector<bool>{false}));
    EXPECT_EQ(textDuringRedraw, (std::vector<std::u16string>{u">Low"}));
    EXPECT_TRUE(item.isChecked());
    item.check(false);
    EXPECT_EQ(checkedDuringRedraw, (std::vector<bool>{false, true}));
    EXPECT_EQ(item.getOwnText(), u" Low");
    EXPECT_FALSE(item.isChecked());
}

TEST(RadioMenuItemTest, CheckWithTheSameStateTwiceRedrawsOnce) {
    RadioMenuItem item(u"Low", 1);
    int redraws = 0;
    item.setRedrawParentCallback([&] { ++redraws; });
    item.check(true);
    item.check(true);
    EXPECT_EQ(redraws, 1);
    item.check(false);
    item.check(false);
    EXPECT_EQ(redraws, 2);
}

TEST(RadioMenuItemTest, EnterOutsideAGroupOnlyReportsTheIdInLocalMode) {
    RadioMenuItem item(u"Low", 1);
    std::vector<int> ids;
    item.setChoiceCallback([&](int id) { ids.push_back(id); });
    item.setLocal(true);
    EXPECT_FALSE(item.enter());
    EXPECT_FALSE(item.enter());
    EXPECT_EQ(ids, (std::vector<int>{1, 1}));
    EXPECT_FALSE(item.isChecked());
    EXPECT_EQ(item.getOwnText(), u" Low");
}

TEST(RadioMenuItemTest, EnterWithoutChoiceCallbackDoesNothing) {
    RadioMenuItem item(u"Low", 1);
    item.setLocal(true);
    EXPECT_FALSE(item.enter());
    EXPECT_FALSE(item.isChecked());
}

TEST(RadioMenuItemTest, EnterWithSelectingForbiddenDoesNotReport) {
    RadioMenuItem item(u"Low", 1);
    std::vector<int> ids;
    item.setChoiceCallback([&](int id) { ids.push_back(id); });
    item.setLocal(true);
    item.setEditor(false);
    EXPECT_FALSE(item.getEditor());
    EXPECT_FALSE(item.enter());
    EXPECT_TRUE(ids.empty());
}

TEST(RadioMenuItemTest, ArrowKeysDoNothing) {
    RadioMenuItem item(u"Low", 1);
    int redraws = 0;
    item.setRedrawParentCallback([&] { ++redraws; });
    EXPECT_FALSE(item.left());
    EXPECT_FALSE(item.right());
    EXPECT_FALSE(item.up());
    EXPECT_FALSE(item.down());
    EXPECT_EQ(redraws, 0);
    EXPECT_EQ(item.getOwnText(), u" Low");
}

TEST(RadioMenuItemTest, UpdateTextOfACheckedChoiceKeepsItsMarker) {
    RadioMenu menu;
    menu.open();
    menu.provider.reset();
    menu.high->updateText(u"Highest");
    EXPECT_EQ(menu.high->getText(), u"Highest");
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_EQ(menu.provider.drawCount(), 1U);
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">Highest", u" Low", u" Mid"));
}

TEST(RadioMenuItemTest, UpdateTextOfAnUncheckedChoiceKeepsTheBlankMarker) {
    RadioMenu menu;
    menu.open();
    menu.low->updateText(u"Lowest");
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">High", u" Lowest", u" Mid"));
}

TEST(RadioMenuItemTest, SetAvailableRebuildsTheLineWithoutTheMarker) {
    RadioMenu menu;
    menu.open();
    menu.high->setAvailable(false);
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u"High (N/A)", u" Low", u" Mid"));
    menu.high->setAvailable(true);
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u"High", u" Low", u" Mid"));
    EXPECT_TRUE(menu.high->isChecked());
    // Checking the same state again changes nothing; only a changed state brings it back.
    menu.high->check(true);
    EXPECT_EQ(menu.high->getOwnText(), u"High");
    menu.group->setValue(1);
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u">Low", u" Mid"));
}

// --- RadioTreeMenuItem ---

TEST(RadioTreeMenuItemTest, ChoicesAreListedInTheOrderOfAddingAndTheFirstIsChecked) {
    RadioMenu menu;
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_FALSE(menu.low->isChecked());
    EXPECT_FALSE(menu.mid->isChecked());
    EXPECT_EQ(menu.provider.screen(), menu.rootScreen());
    menu.open();
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">High", u" Low", u" Mid"));
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_EQ(menu.provider.inversion(1), menu.plainMask());
    EXPECT_EQ(menu.group->getSubTree()->allItemCount(), 3U);
    EXPECT_EQ(menu.group->getSubTree()->getItem(0), menu.high.get());
    EXPECT_EQ(menu.group->getSubTree()->getItem(1), menu.low.get());
    EXPECT_EQ(menu.group->getSubTree()->getItem(2), menu.mid.get());
    EXPECT_TRUE(menu.reported.empty());
}

TEST(RadioTreeMenuItemTest, TheGroupSharesEachChoiceWithTheSubMenu) {
    RadioMenu menu;
    long const shares = menu.low.use_count();
    // Emptying the sub-menu releases its shares; the group still holds the choice.
    menu.group->clearItems();
    EXPECT_LT(menu.low.use_count(), shares);
    EXPECT_EQ(menu.low.use_count(), 2);
}

TEST(RadioTreeMenuItemTest, SetValueMovesTheCheckWithoutReporting) {
    RadioMenu menu;
    menu.open();
    menu.provider.reset();
    menu.group->setValue(1);
    EXPECT_FALSE(menu.high->isChecked());
    EXPECT_TRUE(menu.low->isChecked());
    EXPECT_EQ(menu.high->getOwnText(), u" High");
    EXPECT_EQ(menu.low->getOwnText(), u">Low");
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u">Low", u" Mid"));
    // One redraw for the uncheck, one for the check.
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_TRUE(menu.reported.empty());
}

TEST(RadioTreeMenuItemTest, SetValueWithAnUnknownIdChangesNothing) {
    RadioMenu menu;
    menu.open();
    menu.provider.reset();
    menu.group->setValue(7);
    menu.group->setValue(0);
    menu.group->setValue(-3);
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_FALSE(menu.low->isChecked());
    EXPECT_FALSE(menu.mid->isChecked());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(menu.reported.empty());
}

TEST(RadioTreeMenuItemTest, SetValueOfTheCheckedChoiceUnchecksAndChecksAgain) {
    RadioMenu menu;
    menu.open();
    menu.provider.reset();
    menu.group->setValue(3);
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    auto const frames = menu.provider.frames();
    EXPECT_EQ(yxfp_test::screenOf(frames[0]), menu.groupScreen(u" High", u" Low", u" Mid"));
    EXPECT_EQ(yxfp_test::screenOf(frames[1]), menu.groupScreen(u">High", u" Low", u" Mid"));
}

TEST(RadioTreeMenuItemTest, SetValueWhileTheSubMenuIsClosedDrawsNothing) {
    RadioMenu menu;
    menu.provider.reset();
    menu.group->setValue(2);
    EXPECT_TRUE(menu.mid->isChecked());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    menu.open();
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u" Low", u">Mid"));
}

TEST(RadioTreeMenuItemTest, ActionKeyOnAnUncheckedChoiceSelectsAndReportsIt) {
    RadioMenu menu;
    menu.open();
    press(*menu.tree, Key::Down);
    menu.provider.reset();
    // The group passes the key down (true); the choice opens nothing.
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_FALSE(menu.group->getSubTree()->itemHasFocus());
    EXPECT_EQ(menu.reported, (std::vector<int>{1}));
    EXPECT_TRUE(menu.low->isChecked());
    EXPECT_FALSE(menu.high->isChecked());
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u">Low", u" Mid"));
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    // The sub-menu keeps the keys.
    EXPECT_TRUE(menu.group->getSubTree()->getFocus());
}

TEST(RadioTreeMenuItemTest, TheGroupHasCheckedTheChoiceBeforeItReportsIt) {
    RadioMenu menu;
    std::vector<bool> lowCheckedWhenReported;
    menu.group->valueCallback = [&](int) {
        lowCheckedWhenReported.push_back(menu.low->isChecked());
    };
    menu.open();
    press(*menu.tree, {Key::Down, Key::Enter});
    EXPECT_EQ(lowCheckedWhenReported, (std::vector<bool>{true}));
}

TEST(RadioTreeMenuItemTest, ActionKeyOnTheCheckedChoiceReportsItAgain) {
    RadioMenu menu;
    menu.open();
    press(*menu.tree, {Key::Down, Key::Enter, Key::Enter});
    EXPECT_EQ(menu.reported, (std::vector<int>{1, 1}));
    EXPECT_TRUE(menu.low->isChecked());
    press(*menu.tree, {Key::Up, Key::Enter});
    EXPECT_EQ(menu.reported, (std::vector<int>{1, 1, 3}));
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">High", u" Low", u" Mid"));
}

TEST(RadioTreeMenuItemTest, WithoutValueCallbackTheSelectionStillChecks) {
    RadioMenu menu;
    menu.group->valueCallback = nullptr;
    menu.open();
    press(*menu.tree, {Key::Down, Key::Down, Key::Enter});
    EXPECT_TRUE(menu.mid->isChecked());
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u" Low", u">Mid"));
}

TEST(RadioTreeMenuItemTest, SelectingForbiddenMakesTheActionKeyDoNothing) {
    RadioMenu menu;
    menu.group->setEditor(false);
    EXPECT_FALSE(menu.high->getEditor());
    EXPECT_FALSE(menu.low->getEditor());
    EXPECT_FALSE(menu.mid->getEditor());
    menu.open();
    press(*menu.tree, Key::Down);
    menu.provider.reset();
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(menu.reported.empty());
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_FALSE(menu.low->isChecked());
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(hints.sleeps().empty());
    menu.group->setEditor(true);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.reported, (std::vector<int>{1}));
}

TEST(RadioTreeMenuItemTest, ChoicesAddedAfterSetEditorKeepTheirOwnSetting) {
    RadioMenu menu;
    menu.group->setEditor(false);
    auto const late = std::make_shared<RadioMenuItem>(u"Auto", 9);
    menu.group->addItem(late);
    EXPECT_TRUE(late->getEditor());
    menu.open();
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Enter});
    EXPECT_EQ(menu.reported, (std::vector<int>{9}));
    EXPECT_TRUE(late->isChecked());
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u" High"), menu.line(u" Low"),
                                              menu.line(u" Mid"), menu.line(u">Auto")}));
}

TEST(RadioTreeMenuItemTest, OutsideLocalModeTheActionKeyShowsAHintForOneSecond) {
    RadioMenu menu(false);
    menu.open();
    press(*menu.tree, Key::Down);
    menu.provider.reset();
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(hints.sleeps(), (std::vector<std::chrono::nanoseconds>{1000ms}));
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], menu.groupScreen(u">High", u"Only in local mode!", u" Mid"));
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">High", u" Low", u" Mid"));
    EXPECT_EQ(menu.provider.inversion(1), menu.selectedMask());
    EXPECT_EQ(menu.provider.drawCount(), 2U);
    EXPECT_TRUE(menu.reported.empty());
    EXPECT_TRUE(menu.high->isChecked());
    EXPECT_FALSE(menu.low->isChecked());
}

TEST(RadioTreeMenuItemTest, HintOnTheCheckedChoiceRestoresItsMarker) {
    RadioMenu menu(false);
    menu.open();
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], menu.groupScreen(u"Only in local mode!", u" Low", u" Mid"));
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u">High", u" Low", u" Mid"));
}

TEST(RadioTreeMenuItemTest, LocalModeSwitchedWhileTheSubMenuIsOpenReachesTheChoices) {
    RadioMenu menu(false);
    menu.open();
    press(*menu.tree, Key::Down);
    menu.tree->setLocal(true);
    HintWatch hints(menu.provider);
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(hints.sleeps().empty());
    EXPECT_EQ(menu.reported, (std::vector<int>{1}));
    menu.tree->setLocal(false);
    press(*menu.tree, {Key::Down, Key::Enter});
    EXPECT_EQ(hints.sleeps().size(), 1U);
    EXPECT_EQ(menu.reported, (std::vector<int>{1}));
}

TEST(RadioTreeMenuItemTest, ArrowKeysOnAChoiceDoNothing) {
    RadioMenu menu;
    menu.open();
    menu.provider.reset();
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_EQ(menu.provider.drawCount(), 0U);
    EXPECT_TRUE(menu.reported.empty());
}

TEST(RadioTreeMenuItemTest, BackKeyClosesTheGroup) {
    RadioMenu menu;
    menu.open();
    press(*menu.tree, {Key::Down, Key::Enter});
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.provider.screen(), menu.rootScreen());
    menu.open();
    EXPECT_EQ(menu.provider.screen(), menu.groupScreen(u" High", u">Low", u" Mid"));
}

TEST(RadioTreeMenuItemTest, DuplicateIdIsListedButTheGroupKeepsTheFirstChoice) {
    RadioMenu menu;
    auto const twin = std::make_shared<RadioMenuItem>(u"Low too", 1);
    menu.group->addItem(twin);
    EXPECT_EQ(menu.group->getSubTree()->allItemCount(), 4U);
    EXPECT_FALSE(twin->isChecked());
    menu.open();
    // Selecting the twin reports its id, but the group checks the choice it keeps for it.
    press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Enter});
    EXPECT_EQ(menu.reported, (std::vector<int>{1}));
    EXPECT_TRUE(menu.low->isChecked());
    EXPECT_FALSE(twin->isChecked());
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u" High"), menu.line(u">Low"),
                                              menu.line(u" Mid"), menu.line(u" Low too")}));
}

TEST(RadioTreeMenuItemTest, DuplicateOfTheOnlyEntryIsCheckedAsWell) {
    yxfp_test::RecordingProvider provider(21, 4);
    RadioTreeMenuItem group(provider, u"Range");
    auto const first = std::make_shared<RadioMenuItem>(u"A", 1);
    auto const twin = std::make_shared<RadioMenuItem>(u"B", 1);
    group.addItem(first);
    group.addItem(twin);
    // The group still holds exactly one entry when the twin comes, so the twin is checked as
    // the first choice would be; the group's own entry stays the first.
    EXPECT_TRUE(first->isChecked());
    EXPECT_TRUE(twin->isChecked());
    group.setValue(1);
    EXPECT_TRUE(first->isChecked());
    EXPECT_TRUE(twin->isChecked());
    EXPECT_EQ(group.getSubTree()->allItemCount(), 2U);
}

TEST(RadioTreeMenuItemTest, AddingAnEmptyPointerIsRefusedAndLogged) {
    yxfp_test::LogCapture log;
    yxfp_test::RecordingProvider provider(21, 4);
    RadioTreeMenuItem group(provider, u"Range");
    group.addItem(nullptr);
    EXPECT_EQ(group.getSubTree()->allItemCount(), 0U);
    auto const records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].level, 4);
    EXPECT_EQ(records[0].message, "Can not add menu item == nullptr!");
    // The group is still empty: the first real choice is checked.
    auto const first = std::make_shared<RadioMenuItem>(u"A", 5);
    group.addItem(first);
    EXPECT_TRUE(first->isChecked());
}

TEST(RadioTreeMenuItemTest, SetValueOnAnEmptyGroupDoesNothing) {
    yxfp_test::RecordingProvider provider(21, 4);
    RadioTreeMenuItem group(provider, u"Range");
    group.setValue(0);
    group.setEditor(false);
    EXPECT_EQ(group.getSubTree()->allItemCount(), 0U);
}

TEST(RadioTreeMenuItemTest, AChoiceOutlivingItsGroupReportsToNobody) {
    yxfp_test::RecordingProvider provider(21, 4);
    auto const choice = std::make_shared<RadioMenuItem>(u"A", 1);
    std::vector<int> reported;
    {
        RadioTreeMenuItem group(provider, u"Range");
        group.valueCallback = [&](int id) { reported.push_back(id); };
        group.addItem(choice);
    }
    choice->setLocal(true);
    EXPECT_FALSE(choice->enter());
    EXPECT_TRUE(reported.empty());
    EXPECT_EQ(choice.use_count(), 1);
}

TEST(RadioTreeMenuItemTest, UnavailableGroupOpensNothing) {
    RadioMenu menu;
    menu.group->setAvailable(false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Range (N/A)"));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.provider.screen(), (Screen{menu.line(u"Range (N/A)"), menu.line(u"Other"),
                                              menu.line(u""), menu.line(u"")}));
}

}  // namespace
