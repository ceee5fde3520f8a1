#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "counting_value_item.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using yxfp_test::CountingValueItem;
using yxfp_test::Key;
using yxfp_test::press;
using yxfrontpanel::CallbackValue;
namespace itemconnector = yxfrontpanel::itemconnector;

constexpr int kPublishers = 3;
constexpr int kPublicationsEach = 300;

// The values an application publishes for one number item, wired by the connector.
struct PublishedValue {
    explicit PublishedValue(CountingValueItem& item) {
        minValue.value = 0.0;
        maxValue.value = 10000.0;
        itemconnector::valueEditor(
            value, minValue, maxValue, [](double) {}, item, setVisible, setEditorMode);
    }

    CallbackValue<double> value;
    CallbackValue<double> minValue;
    CallbackValue<double> maxValue;
    std::function<void(bool)> setVisible;
    std::function<void(bool)> setEditorMode;
};

// Publisher `thread` publishes distinct values: thread*1000 + 1 .. thread*1000 + count.
double publication(int thread, int index) { return thread * 1000.0 + index + 1; }

// A 20x4 menu with two plain items on top and the number items below the screen, so the key
// thread moves the cursor and redraws while the numbers are published but never opens them.
struct PublishingMenu {
    PublishingMenu() {
        for (char16_t const* name : {u"Alpha", u"Beta", u"Gamma", u"Delta"}) {
            menu.add(name);
        }
        for (auto& item : items) {
            item = std::make_shared<CountingValueItem>(menu.provider, u"Voltage");
            menu.tree->addItem(item);
        }
        for (std::size_t i = 0; i < items.size(); ++i) {
            values[i] = std::make_unique<PublishedValue>(*items[i]);
        }
        menu.tree->setFocus(true);
    }

    // Moves up and down among the plain items while the publishers run.
    void moveAround() const {
        for (int round = 0; round < 200; ++round) {
            press(*menu.tree, {Key::Down, Key::Down, Key::Down, Key::Up, Key::Up, Key::Up});
        }
    }

    yxfp_test::TestMenu menu{20, 4};
    std::array<std::shared_ptr<CountingValueItem>, 2> items;
    std::array<std::unique_ptr<PublishedValue>, 2> values;
};

// Runs `publish(thread, index)` for every index on each of the publisher threads while the key
// thread moves around the menu; returns once all are done.
void publishWhileMoving(PublishingMenu const& panel, std::function<void(int, int)> const& publish) {
    std::vector<std::thread> publishers;
    publishers.reserve(kPublishers);
    for (int thread = 0; thread < kPublishers; ++thread) {
        publishers.emplace_back([&publish, thread] {
            for (int i = 0; i < kPublicationsEach; ++i) {
                publish(thread, i);
            }
        });
    }
    panel.moveAround();
    for (auto& publisher : publishers) {
        publisher.join();
    }
}

TEST(CallbackValuePublishingTest, EveryPublicationFromThreeThreadsReachesTheItemOnce) {
    PublishingMenu panel;
    int const initialValues = panel.items[0]->values.load();

    publishWhileMoving(
        panel, [&panel](int thread, int i) { panel.values[0]->value.set(publication(thread, i)); });

    EXPECT_EQ(panel.items[0]->values.load(), initialValues + kPublishers * kPublicationsEach);
}

TEST(CallbackValuePublishingTest, TheEditorHoldsTheLastValueStoredInTheCallbackValue) {
    PublishingMenu panel;

    publishWhileMoving(panel, [&panel](int thread, int i) {
        panel.values[static_cast<std::size_t>(i % 2)]->value.set(publication(thread, i));
    });

    for (std::size_t i = 0; i < panel.items.size(); ++i) {
        double const last = panel.values[i]->value.get();
        EXPECT_EQ(panel.items[i]->getEditor().getValue(), last);
        // The last value is the final publication of one of the threads for this item.
        bool const isAFinalPublication = last == publication(0, kPublicationsEach - 2 + int(i)) ||
                                         last == publication(1, kPublicationsEach - 2 + int(i)) ||
                                         last == publication(2, kPublicationsEach - 2 + int(i));
        EXPECT_TRUE(isAFinalPublication) << last;
    }
}

TEST(CallbackValuePublishingTest, TheKeyThreadKeepsDrawingTheMenuWhilePublishersRun) {
    PublishingMenu panel;
    std::thread publisher([&panel] {
        for (int i = 0; i < kPublicationsEach; ++i) {
            panel.values[1]->value.set(publication(0, i));
        }
    });
    panel.moveAround();
    press(*panel.menu.tree, Key::Down);
    publisher.join();

    EXPECT_EQ(panel.menu.provider.line(0), panel.menu.line(u"Alpha", u' '));
    EXPECT_EQ(panel.menu.provider.line(1), panel.menu.line(u"Beta"));
    EXPECT_EQ(panel.menu.provider.inversion(1), panel.menu.selectedMask());
    EXPECT_EQ(panel.menu.provider.line(3), panel.menu.line(u"Delta", u'\x1F'));
    EXPECT_EQ(panel.values[1]->value.get(), publication(0, kPublicationsEach - 1));
}

}  // namespace
