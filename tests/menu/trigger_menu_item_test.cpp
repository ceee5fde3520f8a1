#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "item_screens.h"
#include "menu_keys.h"
#include "platform_capture.h"
#include "recording_provider.h"
#include "test_menu.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using namespace yxfp_test;
using namespace yxfrontpanel;

constexpr char16_t kTick = 0x00FB;

// `text` centred in `width` columns the way a label places it.
std::u16string centred(std::u16string const& text, std::size_t width) {
    return padded(std::u16string((width - text.size()) / 2, u' ') + text, width);
}

// A root menu "Reset" (trigger, hint 1500 ms), "Other" in local mode; the trigger's action
// counts its runs and answers `succeed`. Every sleep records the screen shown meanwhile.
struct TriggerMenu : TestMenu {
    explicit TriggerMenu(unsigned chars = 21, milliseconds hint = milliseconds(1500))
        : TestMenu(chars, 4),
          sleeps([this](nanoseconds) { duringSleep.push_back(provider.screen()); }) {
        item = std::make_shared<TriggerMenuItem>(u"Reset", hint);
        item->action = [this] {
            ++runs;
            screenDuringAction = provider.screen();
            return succeed;
        };
        tree->addItem(item);
        add(u"Other");
        tree->setLocal(true);
        tree->setFocus(true);
    }

    Screen menuScreen(std::u16string const& first = u"Reset") const {
        return {line(first), line(u"Other"), line(u""), line(u"")};
    }

    void enableDialog() { item->enableUserDialog(provider, "Reset device?", "Sure?", "Yes"); }
    Screen dialogScreen() const {
        return {centred(u"Reset device?", 21), centred(u"Sure?", 21), u"BACK: Canc    OK: Yes",
                padded(u"", 21)};
    }

    std::shared_ptr<TriggerMenuItem> item;
    int runs = 0;
    bool succeed = true;
    Screen screenDuringAction;
    std::vector<Screen> duringSleep;
    SleepCapture sleeps;
};

// --- without a dialog ---

TEST(TriggerMenuItemTest, OneEnterRunsTheActionAndShowsTheTickForTheHintDuration) {
    TriggerMenu menu;
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 1);
    EXPECT_EQ(menu.sleeps.sleeps(), std::vector<nanoseconds>{milliseconds(1500)});
    ASSERT_EQ(menu.duringSleep.size(), 1U);
    EXPECT_EQ(menu.duringSleep[0], menu.menuScreen(u"Reset " + std::u16string(1, kTick)));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_EQ(menu.provider.inversion(0), menu.selectedMask());
    EXPECT_EQ(menu.provider.drawCount(), draws + 2) << "the tick, then the plain name";
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
}

TEST(TriggerMenuItemTest, HintLastsTheItemsOwnDuration) {
    TriggerMenu menu(21, milliseconds(250));
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.sleeps.sleeps(), std::vector<nanoseconds>{milliseconds(250)});
}

TEST(TriggerMenuItemTest, ActionRunsOnTheCallingThreadWithTheMenuOnScreen) {
    TriggerMenu menu;
    std::thread::id actionThread;
    menu.item->action = [&actionThread] {
        actionThread = std::this_thread::get_id();
        return true;
    };
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(actionThread, std::this_thread::get_id());
}

TEST(TriggerMenuItemTest, FailingActionShowsNoTick) {
    TriggerMenu menu;
    menu.succeed = false;
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 1);
    EXPECT_TRUE(menu.sleeps.sleeps().empty());
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_EQ(menu.item->getOwnText(), u"Reset");
}

TEST(TriggerMenuItemTest, EmptyActionDoesNothingAlsoOutsideLocalMode) {
    TriggerMenu menu;
    menu.item->action = nullptr;
    menu.enableDialog();
    std::size_t const draws = menu.provider.drawCount();
    menu.tree->setLocal(false);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    menu.tree->setLocal(true);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_TRUE(menu.sleeps.sleeps().empty());
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_FALSE(menu.item->getDialog()->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
}

TEST(TriggerMenuItemTest, UnavailableItemRunsNothing) {
    TriggerMenu menu;
    menu.item->setAvailable(false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Reset (N/A)"));
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 0);
    EXPECT_TRUE(menu.sleeps.sleeps().empty());
}

TEST(TriggerMenuItemTest, ArrowKeysDoNothing) {
    TriggerMenu menu;
    EXPECT_FALSE(press(*menu.tree, Key::Left));
    EXPECT_FALSE(press(*menu.tree, Key::Right));
    EXPECT_FALSE(menu.item->up());
    EXPECT_FALSE(menu.item->down());
    EXPECT_EQ(menu.runs, 0);
    EXPECT_EQ(menu.provider.drawCount(), 1U);
}

// --- local mode ---

TEST(TriggerMenuItemTest, OutsideLocalModeShowsTheHintOnTheItemsLine) {
    TriggerMenu menu(20);
    menu.enableDialog();
    menu.tree->setLocal(false);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 0);
    EXPECT_FALSE(menu.item->getDialog()->getFocus()) << "the dialog is not opened";
    EXPECT_EQ(menu.sleeps.sleeps(), std::vector<nanoseconds>{milliseconds(1500)});
    ASSERT_EQ(menu.duringSleep.size(), 1U);
    EXPECT_EQ(menu.duringSleep[0][0], u"Only in local mode! ");
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(menu.tree->getFocus());
}

TEST(TriggerMenuItemTest, LocalFlagMayBeSetFromAnotherThread) {
    TriggerMenu menu;
    menu.item->setLocal(false);
    std::thread other([&menu] { menu.item->setLocal(true); });
    other.join();
    EXPECT_TRUE(menu.item->getLocal());
    menu.item->enter();
    EXPECT_EQ(menu.runs, 1);
}

// --- with a dialog ---

TEST(TriggerMenuItemTest, FirstEnterOpensTheDialogWithoutRunningTheAction) {
    TriggerMenu menu;
    menu.enableDialog();
    EXPECT_EQ(menu.item->getForm(), menu.item->getDialog());
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 0);
    EXPECT_EQ(menu.provider.screen(), menu.dialogScreen());
    EXPECT_TRUE(menu.item->getDialog()->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_TRUE(menu.sleeps.sleeps().empty());
}

TEST(TriggerMenuItemTest, SecondEnterClosesTheDialogAndRunsTheActionOnce) {
    TriggerMenu menu;
    menu.enableDialog();
    press(*menu.tree, Key::Enter);
    std::size_t const draws = menu.provider.drawCount();
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 1);
    EXPECT_EQ(menu.screenDuringAction, menu.menuScreen()) << "the dialog closed first";
    ASSERT_EQ(menu.duringSleep.size(), 1U);
    EXPECT_EQ(menu.duringSleep[0], menu.menuScreen(u"Reset " + std::u16string(1, kTick)));
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_EQ(menu.provider.drawCount(), draws + 3) << "menu, tick, plain name";
    EXPECT_FALSE(menu.item->getDialog()->getFocus());
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_FALSE(menu.tree->itemHasFocus());
}

TEST(TriggerMenuItemTest, BackInTheDialogRunsNothing) {
    TriggerMenu menu;
    menu.enableDialog();
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_EQ(menu.runs, 0);
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen());
    EXPECT_TRUE(menu.tree->getFocus());
}

TEST(TriggerMenuItemTest, ArrowKeysInTheDialogDoNothing) {
    TriggerMenu menu;
    menu.enableDialog();
    press(*menu.tree, Key::Enter);
    std::size_t const draws = menu.provider.drawCount();
    press(*menu.tree, {Key::Up, Key::Down, Key::Left, Key::Right});
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_TRUE(menu.item->getDialog()->getFocus());
}

TEST(TriggerMenuItemTest, ItemMadeUnavailableWhileTheDialogIsOpenIgnoresTheConfirmation) {
    TriggerMenu menu;
    menu.enableDialog();
    press(*menu.tree, Key::Enter);
    menu.item->setAvailable(false);
    EXPECT_FALSE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 0);
    EXPECT_TRUE(menu.sleeps.sleeps().empty());
    EXPECT_FALSE(menu.item->getDialog()->getFocus());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen(u"Reset (N/A)"));
}

TEST(TriggerMenuItemTest, UnavailableItemWithADialogAnswersTrueWithoutOpeningIt) {
    TriggerMenu menu;
    menu.enableDialog();
    menu.item->setAvailable(false);
    std::size_t const draws = menu.provider.drawCount();
    // The dialog refuses to open, yet the action is said to wait for the confirmation: the
    // menu hands the keys to the item while it stays on screen ...
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_FALSE(menu.item->getDialog()->getFocus());
    EXPECT_TRUE(menu.tree->itemHasFocus());
    EXPECT_EQ(menu.provider.drawCount(), draws);
    EXPECT_TRUE(press(*menu.tree, Key::Enter));
    EXPECT_EQ(menu.runs, 0);
    // ... until back gives the menu the keys again.
    EXPECT_TRUE(press(*menu.tree, Key::Back));
    EXPECT_TRUE(menu.tree->getFocus());
    EXPECT_EQ(menu.provider.screen(), menu.menuScreen(u"Reset (N/A)"));
}

TEST(TriggerMenuItemTest, EnableUserDialogTwiceKeepsOnlyTheSecond) {
    TriggerMenu menu;
    menu.enableDialog();
    menu.item->enableUserDialog(menu.provider, "Erase log?", "", "Erase");
    EXPECT_EQ(menu.item->getForm(), menu.item->getDialog());
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.screen(), (Screen{centred(u"Erase log?", 21), padded(u"", 21),
                                              u"BACK: Canc  OK: Erase", padded(u"", 21)}));
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.runs, 1);
}

TEST(TriggerMenuItemTest, DialogOpensAndClosesItsForm) {
    TriggerMenu menu;
    EXPECT_EQ(menu.item->getDialog(), nullptr);
    EXPECT_FALSE(menu.item->dialog()) << "no dialog";
    menu.enableDialog();
    EXPECT_TRUE(menu.item->dialog());
    EXPECT_TRUE(menu.item->getDialog()->getFocus());
    EXPECT_FALSE(menu.item->dialog());
    EXPECT_FALSE(menu.item->getDialog()->getFocus());
    EXPECT_EQ(menu.runs, 0);
}

}  // namespace
