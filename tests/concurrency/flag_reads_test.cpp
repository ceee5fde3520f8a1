#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "background_loop.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using yxfp_test::BackgroundLoop;
using yxfp_test::Key;
using yxfp_test::press;

// A menu item opening a real form, whose focus flag other threads may read.
class FormItem : public yxfrontpanel::MenuItem {
public:
    FormItem(std::u16string const& text, yxfrontpanel::IDrawingProvider const& provider)
        : MenuItem(text), form_(provider) {
        setForm(&form_);
    }

    void setLocal(bool /*local*/) override {}

    yxfrontpanel::Form const& form() const { return form_; }

private:
    yxfrontpanel::Form form_;
};

constexpr std::size_t kItems = 6;

// What a watching thread has seen of the items' flags: for each item whether it was ever seen
// selected, shown, visible, available, and whether its form was ever seen open.
struct Sightings {
    std::array<std::atomic<bool>, kItems> selected{};
    std::array<std::atomic<bool>, kItems> shown{};
    std::array<std::atomic<bool>, kItems> hidden{};
    std::array<std::atomic<bool>, kItems> unavailable{};
    std::array<std::atomic<bool>, kItems> formOpen{};
};

// A 20x4 menu of six items with forms; "Hidden" (index 2) is hidden and "Locked" (index 4) is
// unavailable before the key thread starts.
struct WatchedMenu {
    WatchedMenu() {
        for (char16_t const* name : {u"Alpha", u"Beta", u"Hidden", u"Gamma", u"Locked", u"Omega"}) {
            items.push_back(std::make_shared<FormItem>(name, menu.provider));
            menu.tree->addItem(items.back());
        }
        items[2]->setVisible(false);
        items[4]->setAvailable(false);
        menu.tree->setFocus(true);
    }

    // One round of the watching thread: reads every documented flag.
    void look(Sightings& seen) const {
        for (std::size_t i = 0; i < kItems; ++i) {
            FormItem const& item = *items[i];
            seen.selected[i] = seen.selected[i] || item.getSelected();
            seen.shown[i] = seen.shown[i] || item.getShown();
            seen.hidden[i] = seen.hidden[i] || !item.getVisible();
            seen.unavailable[i] = seen.unavailable[i] || !item.getAvailable();
            seen.formOpen[i] = seen.formOpen[i] || item.form().getFocus();
        }
    }

    yxfp_test::TestMenu menu{20, 4};
    std::vector<std::shared_ptr<FormItem>> items;
};

// Walks down over every visible item, waiting at each until the watcher has looked at it.
void walkDown(WatchedMenu& panel, BackgroundLoop const& watcher) {
    for (std::size_t step = 0; step < kItems; ++step) {
        watcher.awaitFullRound();
        press(*panel.menu.tree, Key::Down);
    }
}

TEST(FlagReadsTest, AWatcherSeesEveryVisibleItemSelectedWhileTheCursorPasses) {
    WatchedMenu panel;
    Sightings seen;
    BackgroundLoop watcher([&] { panel.look(seen); });

    walkDown(panel, watcher);
    watcher.stop();

    for (std::size_t i : {0U, 1U, 3U, 4U, 5U}) {
        EXPECT_TRUE(seen.selected[i].load()) << i;
    }
    EXPECT_FALSE(seen.selected[2].load());
}

TEST(FlagReadsTest, AWatcherSeesEveryVisibleItemShownAndOnlyTheHiddenOneHidden) {
    WatchedMenu panel;
    Sightings seen;
    BackgroundLoop watcher([&] { panel.look(seen); });

    walkDown(panel, watcher);
    watcher.stop();

    EXPECT_TRUE(seen.hidden[2].load());
    for (std::size_t i : {0U, 1U, 3U, 4U, 5U}) {
        EXPECT_TRUE(seen.shown[i].load()) << i;
        EXPECT_FALSE(seen.hidden[i].load()) << i;
    }
}

TEST(FlagReadsTest, AWatcherSeesOnlyTheLockedItemUnavailable) {
    WatchedMenu panel;
    Sightings seen;
    BackgroundLoop watcher([&] { panel.look(seen); });

    walkDown(panel, watcher);
    watcher.stop();

    for (std::size_t i = 0; i < kItems; ++i) {
        EXPECT_EQ(seen.unavailable[i].load(), i == 4) << i;
    }
}

TEST(FlagReadsTest, AWatcherSeesTheFocusMoveToAnOpenedFormAndBack) {
    WatchedMenu panel;
    Sightings seen;
    BackgroundLoop watcher([&] { panel.look(seen); });

    press(*panel.menu.tree, Key::Down);
    press(*panel.menu.tree, Key::Enter);
    watcher.awaitFullRound();
    press(*panel.menu.tree, Key::Back);
    watcher.awaitFullRound();
    watcher.stop();

    EXPECT_TRUE(seen.formOpen[1].load());
    for (std::size_t i : {0U, 2U, 3U, 4U, 5U}) {
        EXPECT_FALSE(seen.formOpen[i].load()) << i;
    }
    EXPECT_TRUE(panel.menu.tree->getFocus());
    EXPECT_FALSE(panel.items[1]->form().getFocus());
}

}  // namespace
