#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iomanip>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "counting_value_item.h"
#include "item_screens.h"
#include "menu_keys.h"
#include "test_menu.h"

namespace {

using yxfp_test::CountingValueItem;
using yxfp_test::Key;
using yxfp_test::press;
using yxfrontpanel::CallbackValue;
using yxfrontpanel::ValueEditorMenuItem;
namespace itemconnector = yxfrontpanel::itemconnector;

using Call = std::pair<std::string, double>;
using Calls = std::vector<Call>;

// A number item that records every call of the setters the connector binds.
class RecordingValueItem : public ValueEditorMenuItem {
public:
    explicit RecordingValueItem(yxfrontpanel::IDrawingProvider const& provider)
        : ValueEditorMenuItem(provider, u"Voltage", 0.0, 10.0) {}

    void setValue(double value) override {
        calls.emplace_back("value", value);
        ValueEditorMenuItem::setValue(value);
    }
    void setMinValue(double value) override {
        calls.emplace_back("min", value);
        ValueEditorMenuItem::setMinValue(value);
    }
    void setMaxValue(double value) override {
        calls.emplace_back("max", value);
        ValueEditorMenuItem::setMaxValue(value);
    }
    void setEditorMode(bool mode) override {
        calls.emplace_back("editorMode", mode ? 1.0 : 0.0);
        ValueEditorMenuItem::setEditorMode(mode);
    }
    void setVisible(bool visible) override {
        calls.emplace_back("visible", visible ? 1.0 : 0.0);
        ValueEditorMenuItem::setVisible(visible);
    }

    Calls calls;
};

// The caller's side of a connection through plain functions.
struct FunctionSide {
    std::function<void(double)> value;
    std::function<void(double)> minValue;
    std::function<void(double)> maxValue;
    std::function<void(bool)> setVisible;
    std::function<void(bool)> setEditorMode;
    std::vector<double> applied;
    std::function<void(double)> onApply = [this](double v) { applied.push_back(v); };
};

// --- plain functions ---

TEST(ItemConnectorTest, FunctionsAreBoundToTheItemsSetters) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    FunctionSide side;
    itemconnector::valueEditor(side.value, side.minValue, side.maxValue, side.onApply, item,
                               side.setVisible, side.setEditorMode);
    EXPECT_TRUE(item.calls.empty());
    side.minValue(-2.0);
    side.maxValue(20.0);
    side.value(4.5);
    side.setVisible(false);
    side.setEditorMode(false);
    EXPECT_EQ(
        item.calls,
        (Calls{
            {"min", -2.0}, {"max", 20.0}, {"value", 4.5}, {"visible", 0.0}, {"editorMode", 0.0}}));
    EXPECT_EQ(item.getEditor().getMinValue(), -2.0);
    EXPECT_EQ(item.getEditor().getMaxValue(), 20.0);
    EXPECT_EQ(item.getEditor().getValue(), 4.5);
    EXPECT_FALSE(item.getVisible());
}

TEST(ItemConnectorTest, FunctionConnectionWiresTheBoundsBeforeTheValue) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    FunctionSide side;
    // One function given for all three: the one wired last keeps it.
    std::function<void(double)> shared;
    itemconnector::valueEditor(shared, shared, shared, side.onApply, item, side.setVisible,
                               side.setEditorMode);
    shared(3.0);
    EXPECT_EQ(item.calls, (Calls{{"value", 3.0}}));

    RecordingValueItem second(provider);
    std::function<void(double)> bounds;
    itemconnector::valueEditor(side.value, bounds, bounds, side.onApply, second, side.setVisible,
                               side.setEditorMode);
    bounds(7.0);
    EXPECT_EQ(second.calls, (Calls{{"max", 7.0}}));
}

TEST(ItemConnectorTest, FunctionConnectionWiresVisibilityBeforeEditorMode) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    FunctionSide side;
    std::function<void(bool)> flag;
    itemconnector::valueEditor(side.value, side.minValue, side.maxValue, side.onApply, item, flag,
                               flag);
    flag(false);
    EXPECT_EQ(item.calls, (Calls{{"editorMode", 0.0}}));
    EXPECT_TRUE(item.getVisible());
}

TEST(ItemConnectorTest, TheApplyCallbackIsConnectedToTheEditor) {
    yxfp_test::TestMenu menu(21, 4);
    auto const item = std::make_shared<RecordingValueItem>(menu.provider);
    FunctionSide side;
    itemconnector::valueEditor(side.value, side.minValue, side.maxValue, side.onApply, *item,
                               side.setVisible, side.setEditorMode);
    side.value(4.0);
    menu.tree->addItem(item);
    menu.tree->setLocal(true);
    menu.tree->setFocus(true);
    // "04": the caret starts on the tens; the units are one to the right.
    press(*menu.tree, {Key::Enter, Key::Right, Key::Up, Key::Enter});
    EXPECT_EQ(side.applied, (std::vector<double>{5.0}));
}

TEST(ItemConnectorTest, TheDefaultBoolSetterDoesNothingAndCanTakeAnUnusedSetter) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    // A copy, so that this translation unit's default stays a setter that does nothing.
    std::function<void(bool)> unusedVisible = itemconnector::voidBoolDefault;
    ASSERT_TRUE(unusedVisible);
    EXPECT_NO_THROW(unusedVisible(false));
    EXPECT_NO_THROW(itemconnector::voidBoolDefault(true));
    FunctionSide side;
    itemconnector::valueEditor(side.value, side.minValue, side.maxValue, side.onApply, item,
                               unusedVisible, side.setEditorMode);
    EXPECT_TRUE(item.calls.empty());
    side.setEditorMode(false);
    EXPECT_EQ(item.calls, (Calls{{"editorMode", 0.0}}));
}

// --- CallbackValue ---

TEST(ItemConnectorTest, CallbackValuesPrimeTheItemWithMinimumMaximumAndValueInOrder) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    CallbackValue<double> value;
    CallbackValue<double> minValue;
    CallbackValue<double> maxValue;
    value.set(12.5);
    minValue.set(-5.0);
    maxValue.set(50.0);
    FunctionSide side;
    itemconnector::valueEditor(value, minValue, maxValue, side.onApply, item, side.setVisible,
                               side.setEditorMode);
    EXPECT_EQ(item.calls, (Calls{{"min", -5.0}, {"max", 50.0}, {"value", 12.5}}));
    EXPECT_EQ(item.getEditor().getMinValue(), -5.0);
    EXPECT_EQ(item.getEditor().getMaxValue(), 50.0);
    EXPECT_EQ(item.getEditor().getValue(), 12.5);
    EXPECT_EQ(value.get(), 12.5);
    EXPECT_EQ(minValue.get(), -5.0);
    EXPECT_EQ(maxValue.get(), 50.0);
}

TEST(ItemConnectorTest, BoundsArePrimedBeforeTheValueSoItIsDrawnWithItsWidth) {
    yxfp_test::TestMenu menu(21, 4);
    auto const item = std::make_shared<RecordingValueItem>(menu.provider);
    item->setPrecision(1);
    CallbackValue<double> value;
    CallbackValue<double> minValue;
    CallbackValue<double> maxValue;
    value.set(7.5);
    maxValue.set(100.0);
    FunctionSide side;
    itemconnector::valueEditor(value, minValue, maxValue, side.onApply, *item, side.setVisible,
                               side.setEditorMode);
    EXPECT_EQ(item->getEditor().getValueLabel().getText(), u"007.5");
    menu.tree->addItem(item);
    menu.tree->setFocus(true);
    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(1), yxfp_test::centred(u"007.5", 21));
}

TEST(ItemConnectorTest, CallbackValuesForwardLaterPublicationsAndSetters) {
    yxfp_test::RecordingProvider provider(21, 4);
    RecordingValueItem item(provider);
    CallbackValue<double> value;
    CallbackValue<double> minValue;
    CallbackValue<double> maxValue;
    maxValue.set(10.0);
    FunctionSide side;
    itemconnector::valueEditor(value, minValue, maxValue, side.onApply, item, side.setVisible,
                               side.setEditorMode);
    item.calls.clear();
    maxValue.set(30.0);
    value.set(25.0);
    value.callback(26.0);
    side.setVisible(false);
    side.setEditorMode(false);
    EXPECT_EQ(item.calls, (Calls{{"max", 30.0},
                                 {"value", 25.0},
                                 {"value", 26.0},
                                 {"visible", 0.0},
                                 {"editorMode", 0.0}}));
    EXPECT_EQ(value.get(), 26.0);
    EXPECT_EQ(item.getEditor().getValue(), 26.0);
}

TEST(CallbackValueTest, SetWithoutCallbackStoresTheValue) {
    CallbackValue<double> value;
    EXPECT_EQ(value.get(), 0.0);
    EXPECT_FALSE(value.callback);
    value.set(2.5);
    EXPECT_EQ(value.get(), 2.5);
    EXPECT_EQ(value.value, 2.5);
}

TEST(CallbackValueTest, TheValueIsStoredOnlyAfterTheConsumerHasIt) {
    CallbackValue<double> value;
    value.set(1.0);
    std::vector<double> storedDuringCall;
    std::vector<double> received;
    value.changedCb([&](double v) {
        received.push_back(v);
        // The publisher holds the mutex here; the field is read directly.
        storedDuringCall.push_back(value.value);
        EXPECT_FALSE(value.mutex.try_lock());
    });
    value.set(2.0);
    EXPECT_EQ(received, (std::vector<double>{2.0}));
    EXPECT_EQ(storedDuringCall, (std::vector<double>{1.0}));
    EXPECT_EQ(value.get(), 2.0);
}

TEST(CallbackValueTest, EmptyTargetThrowsAndReleasesTheMutex) {
    CallbackValue<double> value;
    value.set(1.0);
    value.changedCb(std::function<void(double)>());
    EXPECT_THROW(value.set(2.0), std::bad_function_call);
    EXPECT_THROW(value.callback(3.0), std::bad_function_call);
    ASSERT_TRUE(value.mutex.try_lock());
    value.mutex.unlock();
    EXPECT_EQ(value.get(), 1.0);
}

TEST(CallbackValueTest, ARefusedPublicationLeavesTheValue) {
    CallbackValue<double> value;
    value.set(1.0);
    value.changedCb([](double v) {
        if (v < 0) {
            throw std::out_of_range("negative");
        }
    });
    EXPECT_THROW(value.set(-1.0), std::out_of_range);
    EXPECT_EQ(value.get(), 1.0);
    value.set(4.0);
    EXPECT_EQ(value.get(), 4.0);
}

TEST(CallbackValueTest, ChangedCbReplacesAnEarlierTarget) {
    CallbackValue<int> value;
    std::vector<int> first;
    std::vector<int> second;
    value.changedCb([&](int v) { first.push_back(v); });
    value.set(1);
    value.changedCb([&](int v) { second.push_back(v); });
    value.set(2);
    EXPECT_EQ(first, (std::vector<int>{1}));
    EXPECT_EQ(second, (std::vector<int>{2}));
    EXPECT_EQ(value.get(), 2);
}

// --- publications from several threads ---

// How the editor shows a whole number in the range 0 to 10000: five digits, zero-padded.
std::u16string levelText(double value) {
    std::ostringstream text;
    text << std::setw(5) << std::setfill('0') << static_cast<int>(value);
    return yxfrontpanel::stringhelper::toU16(text.str());
}

TEST(CallbackValueTest, PublicationsFromFourThreadsAllReachTheItem) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 400;

    // The item sits in the closed sub-menu "Output" of a root menu that is on screen.
    yxfp_test::TestMenu menu(21, 4);
    auto const output = std::make_shared<yxfrontpanel::TreeMenuItem>(menu.provider, u"Output");
    auto const level = std::make_shared<CountingValueItem>(menu.provider, u"Level");
    output->addItem(level);
    menu.tree->addItem(output);
    menu.tree->setFocus(true);

    CallbackValue<double> value;
    CallbackValue<double> minValue;
    CallbackValue<double> maxValue;
    maxValue.set(10000.0);
    FunctionSide side;
    itemconnector::valueEditor(value, minValue, maxValue, side.onApply, *level, side.setVisible,
                               side.setEditorMode);
    ASSERT_EQ(level->values.load(), 1);
    std::size_t const draws = menu.provider.drawCount();

    std::atomic<int> running{kThreads};
    // The publishers start once the main thread reads, so that its reads meet theirs even
    // when they would otherwise be done before it got to run.
    std::atomic<bool> reading{false};
    std::vector<std::thread> publishers;
    publishers.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        publishers.emplace_back([&value, &running, &reading, t] {
            while (!reading.load()) {
                std::this_thread::yield();
            }
            for (int i = 0; i < kPerThread; ++i) {
                value.set(static_cast<double>(t * 1000 + i));
            }
            --running;
        });
    }
    // Meanwhile the main thread reads: every value seen is one that was published.
    bool allValid = true;
    do {
        double const seen = value.get();
        int const whole = static_cast<int>(seen);
        allValid = allValid && seen == whole && whole % 1000 < kPerThread && whole < 4000;
        reading = true;
    } while (running.load() > 0);
    for (auto& publisher : publishers) {
        publisher.join();
    }
    EXPECT_TRUE(allValid);

    EXPECT_EQ(level->values.load(), 1 + kThreads * kPerThread);
    double const last = value.get();
    EXPECT_EQ(level->getEditor().getValue(), last);
    EXPECT_EQ(level->getEditor().getEditValue(), last);
    EXPECT_EQ(level->getEditor().getValueLabel().getText(), levelText(last));
    // Nothing was drawn: the item is not on screen.
    EXPECT_EQ(menu.provider.drawCount(), draws);
    // Opened, the editor shows the last value published.
    press(*menu.tree, {Key::Enter, Key::Enter});
    EXPECT_EQ(menu.provider.screen(),
              (yxfp_test::Screen{yxfp_test::centred(u">> Level <<", 21),
                                 yxfp_test::centred(levelText(last), 21),
                                 yxfp_test::centred(u"", 21), yxfp_test::centred(u"", 21)}));
}

}  // namespace
