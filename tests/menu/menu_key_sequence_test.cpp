#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "menu_keys.h"
#include "menu_test_items.h"
#include "random_menu_walk.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;

// A three-level menu with hidden and unavailable entries on every level:
//   root:     Settings >, Measure [form], Info, Hidden [form, hidden], Locked [form, n/a],
//             Service > [n/a]
//   Settings: Network >, Display [form], Secret [hidden], Contrast [form, n/a]
//   Network:  Address [form], Mask, Gateway [form, hidden], Dns [form]
//   Service:  Reset [form]
struct MixedMenu : yxfp_test::TestMenu {
    MixedMenu() : TestMenu(21, 4) {
        auto settings = subMenu(u"Settings");
        auto network = subMenu(u"Network");
        auto service = subMenu(u"Service");
        tree->addItem(settings);
        tree->addItem(formItem(u"Measure"));
        tree->addItem(plainItem(u"Info"));
        tree->addItem(hidden(formItem(u"Hidden")));
        tree->addItem(unavailable(formItem(u"Locked")));
        tree->addItem(unavailable(service));
        settings->addItem(network);
        settings->addItem(formItem(u"Display"));
        settings->addItem(hidden(plainItem(u"Secret")));
        settings->addItem(unavailable(formItem(u"Contrast")));
        network->addItem(formItem(u"Address"));
        network->addItem(plainItem(u"Mask"));
        network->addItem(hidden(formItem(u"Gateway")));
        network->addItem(formItem(u"Dns"));
        service->addItem(formItem(u"Reset"));
        tree->setFocus(true);
    }

    template <class Item>
    std::shared_ptr<Item> remember(std::shared_ptr<Item> item) {
        all.push_back(item);
        return item;
    }
    std::shared_ptr<TreeMenuItem> subMenu(std::u16string const& name) {
        return remember(std::make_shared<TreeMenuItem>(provider, name));
    }
    std::shared_ptr<TestItem> formItem(std::u16string const& name) {
        return remember(TestItem::withForm(name, &provider));
    }
    std::shared_ptr<TestItem> plainItem(std::u16string const& name) {
        return remember(std::make_shared<TestItem>(name));
    }
    static std::shared_ptr<MenuItem> hidden(std::shared_ptr<MenuItem> item) {
        item->setVisible(false);
        return item;
    }
    static std::shared_ptr<MenuItem> unavailable(std::shared_ptr<MenuItem> item) {
        item->setAvailable(false);
        return item;
    }

    std::vector<std::shared_ptr<MenuItem>> all;
};

// The focus invariant: exactly one form of the whole menu has the focus, and it is the last
// link of the open chain walked down from the root. So every level above it is a tree without
// the focus whose selected item owns the next level, and nothing below it or beside the chain
// has the focus.
::testing::AssertionResult focusIsOnTheOpenChain(MixedMenu& menu) {
    std::vector<IForm const*> forms;
    yxfp_test::collectForms(*menu.tree, forms);
    auto const focused = std::count_if(forms.begin(), forms.end(),
                                       [](IForm const* form) { return form->getFocus(); });
    if (focused != 1) {
        return ::testing::AssertionFailure() << focused << " forms have the focus";
    }
    auto const chain = yxfp_test::openChain(*menu.tree);
    if (!chain.back()->getFocus()) {
        return ::testing::AssertionFailure()
               << "the focused form is not the end of the open chain of " << chain.size();
    }
    return ::testing::AssertionSuccess();
}

// Changes one item the way an application thread might between two keys.
void changeSomething(MixedMenu& menu, std::mt19937& random) {
    auto& item = *menu.all[yxfp_test::pick(random, menu.all.size())];
    yxfp_test::flipAtRandom(random, *menu.tree, item);
}

// Runs `steps` random steps on a fresh menu: mostly keys, now and then a change of visibility,
// availability or local mode. Checks the focus invariant after every step and returns the
// longest open chain seen (4: a form three menus down was open).
std::size_t runRandomSession(std::mt19937::result_type seed, int steps) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    MixedMenu menu;
    std::mt19937 random(seed);
    std::size_t deepest = 0;
    int changes = 0;
    EXPECT_TRUE(focusIsOnTheOpenChain(menu));
    for (int step = 0; step < steps; ++step) {
        ::testing::Message action;
        if (yxfp_test::oneIn(random, 10)) {
            changeSomething(menu, random);
            ++changes;
            action << "a change of the menu";
        } else {
            Key const key = yxfp_test::randomKey(random);
            yxfp_test::press(*menu.tree, key);
            action << "the key " << key;
        }
        ::testing::AssertionResult const kept = focusIsOnTheOpenChain(menu);
        EXPECT_TRUE(kept) << "after step " << step << ", " << action;
        EXPECT_EQ(menu.provider.lastFrame().getChars(), 21U);
        EXPECT_EQ(menu.provider.lastFrame().getLineCount(), 4U);
        if (!kept) {
            return deepest;
        }
        deepest = std::max(deepest, yxfp_test::openChain(*menu.tree).size());
    }
    EXPECT_GT(changes, steps / 20);
    return deepest;
}

TEST(MenuKeySequenceTest, RandomKeysKeepExactlyOneOpenLevelFocused) {
    // This run also opens a form three menus down. The walk draws with yxfp_test::pick, whose
    // results are the same with every standard library, so the depth is too.
    EXPECT_EQ(runRandomSession(20240612U, 5000), 4U);
}

TEST(MenuKeySequenceTest, RandomKeysFromOtherSeedsKeepExactlyOneOpenLevelFocused) {
    for (std::mt19937::result_type const seed : {1U, 77U, 4242U}) {
        EXPECT_GE(runRandomSession(seed, 3000), 3U) << "seed " << seed;
    }
}

}  // namespace
