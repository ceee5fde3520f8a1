#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "menu_keys.h"
#include "platform_capture.h"
#include "random_menu_walk.h"
#include "test_menu.h"

namespace {

using std::chrono::milliseconds;
using namespace yxfp_test;
using namespace yxfrontpanel;
using yxfrontpanel::drawing::TextAllignment;

std::u16string const kHelpText =
    u"The self test checks the display, the keys and the outputs. It takes about a minute; "
    u"do not switch the unit off meanwhile.";

// A 20x4 root menu of the new item kinds, with one sub-menu holding more of them:
//   root: Volume [slider], Reset [trigger + dialog], Zero [trigger], Help [text],
//         Voltage [read only], Service > (Bass [slider, read only], Erase [trigger + dialog],
//         Notes [text, never given one])
struct ItemsMenu : yxfp_test::TestMenu {
    ItemsMenu() : TestMenu(20, 4) {
        auto volume = remember(slider(u"Volume", 0));
        volume->connectSlider([this](int) { ++commits; });
        auto reset = remember(trigger(u"Reset"));
        reset->enableUserDialog(provider, "Reset device?", "", "Yes");
        auto zero = remember(trigger(u"Zero"));
        help = remember(std::make_shared<ScrollLabelMenuItem>(provider, u"Help"));
        help->setText(kHelpText, TextAllignment::Left);
        voltage = remember(std::make_shared<ReadOnlyMenuItem>(provider, u"Voltage"));
        voltage->setValue(230.0, 1);
        auto service = remember(std::make_shared<TreeMenuItem>(provider, u"Service"));
        auto bass = remember(slider(u"Bass", -5));
        bass->setReadOnly(true);
        auto erase = remember(trigger(u"Erase"));
        erase->enableUserDialog(provider, "Erase log?", "", "Erase");
        auto notes = remember(std::make_shared<ScrollLabelMenuItem>(provider, u"Notes"));
        for (auto const& item :
             {std::shared_ptr<MenuItem>(volume), std::shared_ptr<MenuItem>(reset),
              std::shared_ptr<MenuItem>(zero), std::shared_ptr<MenuItem>(help),
              std::shared_ptr<MenuItem>(voltage), std::shared_ptr<MenuItem>(service)}) {
            tree->addItem(item);
        }
        service->addItem(bass);
        service->addItem(erase);
        service->addItem(notes);
        tree->setFocus(true);
    }

    template <class Item>
    std::shared_ptr<Item> remember(std::shared_ptr<Item> item) {
        all.push_back(item);
        return item;
    }
    std::shared_ptr<SliderMenuItem> slider(std::u16string const& name, int minimum) {
        return std::make_shared<SliderMenuItem>(provider, name, u"lo", u"hi", 4, 12, minimum);
    }
    std::shared_ptr<TriggerMenuItem> trigger(std::u16string const& name) {
        auto item = std::make_shared<TriggerMenuItem>(name, milliseconds(500));
        item->action = [this] { return ++runs % 3 != 0; };  // every third run fails
        return item;
    }

    std::vector<std::shared_ptr<MenuItem>> all;
    std::shared_ptr<ScrollLabelMenuItem> help;
    std::shared_ptr<ReadOnlyMenuItem> voltage;
    int commits = 0;
    int runs = 0;
};

// Changes the menu the way an application thread might between two keys.
void changeSomething(ItemsMenu& menu, std::mt19937& random) {
    auto& item = *menu.all[yxfp_test::pick(random, menu.all.size())];
    std::size_t const what = yxfp_test::pick(random, 5);
    if (what < 3) {
        yxfp_test::flipAtRandom(random, *menu.tree, item);
    } else if (what == 3) {
        menu.voltage->setValue(static_cast<double>(yxfp_test::pick(random, 2001)) - 1e3,
                               static_cast<unsigned>(yxfp_test::pick(random, 5)));
    } else {
        // The same text again: a shorter one while scrolled would make its drawing throw.
        menu.help->setText(kHelpText, TextAllignment::Center);
    }
}

// What a session saw: the trigger runs and how many different forms ever had the focus.
struct SessionResult {
    int runs;
    std::size_t formsOpened;
};

// Runs `steps` random steps on a fresh menu; after each, no exception escaped, at most one
// form has the focus and every frame has the panel's size.
SessionResult runRandomSession(std::mt19937::result_type seed, int steps) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    yxfp_test::SleepCapture noWaiting;
    ItemsMenu menu;
    std::mt19937 random(seed);
    std::vector<IForm const*> opened;
    for (int step = 0; step < steps; ++step) {
        ::testing::Message action;
        try {
            if (yxfp_test::oneIn(random, 10)) {
                action << "a change of the menu";
                changeSomething(menu, random);
            } else {
                Key const key = yxfp_test::randomKey(random);
                action << "the key " << key;
                yxfp_test::press(*menu.tree, key);
            }
        } catch (std::exception const& error) {
            ADD_FAILURE() << "step " << step << ", " << action << ", threw " << error.what();
            break;
        }
        std::vector<IForm const*> forms;
        yxfp_test::collectForms(*menu.tree, forms);
        for (IForm const* form : forms) {
            if (form->getFocus() && std::find(opened.begin(), opened.end(), form) == opened.end()) {
                opened.push_back(form);
            }
        }
        int const holders = yxfp_test::focusHolders(*menu.tree);
        bool const sized = menu.provider.lastFrame().getChars() == 20U &&
                           menu.provider.lastFrame().getLineCount() == 4U;
        if (holders != 1 || !sized) {
            ADD_FAILURE() << "after step " << step << ", " << action << ": " << holders
                          << " holders of the focus, frame of the panel's size: " << sized;
            break;
        }
    }
    return {menu.runs, opened.size()};
}

TEST(TextItemsRandomKeysTest, RandomKeysNeverThrowAndKeepAtMostOneFormFocused) {
    for (std::mt19937::result_type const seed : {7U, 2024U, 31337U}) {
        SessionResult const result = runRandomSession(seed, 4000);
        EXPECT_GT(result.runs, 0) << "seed " << seed;
        // The root, its slider, both texts, a dialog and the sub-menu at least.
        EXPECT_GE(result.formsOpened, 6U) << "seed " << seed;
    }
}

}  // namespace
