#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "menu_keys.h"
#include "platform_capture.h"
#include "random_menu_walk.h"
#include "test_menu.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;
namespace itemconnector = yxfrontpanel::itemconnector;

// A menu holding every kind of editing item, connected as an application connects them:
//   root:   Network >, Output >, Range (radio group), Mode (inline, no values yet)
//   Network: Address (IP editor), Netmask (mask editor)
//   Output:  Voltage and Current (number editors bound to CallbackValues), Fan (inline)
struct EditingMenu : yxfp_test::TestMenu {
    EditingMenu() : TestMenu(21, 4) {
        auto const network = std::make_shared<TreeMenuItem>(provider, u"Network");
        auto const output = std::make_shared<TreeMenuItem>(provider, u"Output");
        address->connectEditor([this](std::string const&) { ++applied; });
        mask->valueCallback = [this](int) { ++applied; };
        network->addItem(address);
        network->addItem(mask);
        voltageMax.set(30.0);
        currentMax.set(5.0);
        connect(voltage, voltageMin, voltageMax, *voltageItem);
        connect(current, currentMin, currentMax, *currentItem);
        currentItem->setPrecision(3);
        fan->addValue(0, u"Off");
        fan->addValue(1, u"On");
        fan->valueCallback = [this](int) { ++applied; };
        output->addItem(voltageItem);
        output->addItem(currentItem);
        output->addItem(fan);
        range->addItem(std::make_shared<RadioMenuItem>(u"Low", 1));
        range->addItem(std::make_shared<RadioMenuItem>(u"High", 2));
        range->valueCallback = [this](int) { ++applied; };
        tree->addItem(network);
        tree->addItem(output);
        tree->addItem(range);
        tree->addItem(mode);
        tree->setFocus(true);
        subMenus = {network, output, range, mask};
        items = {network, output, range, mode, address, mask, voltageItem, currentItem, fan};
    }

    void connect(CallbackValue<double>& value, CallbackValue<double>& minValue,
                 CallbackValue<double>& maxValue, ValueEditorMenuItem& item) {
        itemconnector::valueEditor(
            value, minValue, maxValue, [this](double) { ++applied; }, item,
            visibleSetters.emplace_back(), editorModeSetters.emplace_back());
    }

    CallbackValue<double> voltage, voltageMin, voltageMax, current, currentMin, currentMax;
    std::vector<std::function<void(bool)>> visibleSetters;
    std::vector<std::function<void(bool)>> editorModeSetters;
    std::shared_ptr<IpAddressEditorMenuItem> address =
        std::make_shared<IpAddressEditorMenuItem>(provider, u"Address");
    std::shared_ptr<IpMaskEditor> mask = std::make_shared<IpMaskEditor>(provider, u"Netmask");
    std::shared_ptr<ValueEditorMenuItem> voltageItem =
        std::make_shared<ValueEditorMenuItem>(provider, u"Voltage", 0.0, 1.0);
    std::shared_ptr<ValueEditorMenuItem> currentItem =
        std::make_shared<ValueEditorMenuItem>(provider, u"Current", 0.0, 1.0);
    std::shared_ptr<InlineEditorMenuItem> fan = std::make_shared<InlineEditorMenuItem>(u"Fan");
    std::shared_ptr<RadioTreeMenuItem> range =
        std::make_shared<RadioTreeMenuItem>(provider, u"Range");
    std::shared_ptr<InlineEditorMenuItem> mode = std::make_shared<InlineEditorMenuItem>(u"Mode");
    std::vector<std::shared_ptr<TreeMenuItem>> subMenus;
    std::vector<std::shared_ptr<yxfrontpanel::MenuItem>> items;
    int applied = 0;
};

// Changes something the way the application might between two keys.
void changeSomething(EditingMenu& menu, std::mt19937& random) {
    auto pick = [&random](std::size_t count) { return yxfp_test::pick(random, count); };
    std::size_t const what = pick(9);
    if (what < 3) {
        yxfp_test::flipAtRandom(random, *menu.tree, *menu.items[pick(menu.items.size())]);
        return;
    }
    switch (what) {
        case 3:
            menu.editorModeSetters[pick(2)](pick(2) == 0);
            break;
        case 4:
            menu.voltage.set(static_cast<double>(pick(40)));
            menu.currentMax.set(static_cast<double>(pick(8)));
            break;
        case 5: {
            // The inline items: values come and go, keys may be unknown.
            auto& item = pick(2) == 0 ? *menu.mode : *menu.fan;
            if (pick(3) == 0) {
                item.clearValues();
            } else {
                item.addValue(static_cast<int>(pick(4)), u"V");
                item.setValue(static_cast<int>(pick(6)));
            }
            item.editable = pick(4) != 0;
            break;
        }
        case 6:
            menu.range->setValue(static_cast<int>(pick(4)));
            menu.mask->setValue(static_cast<int>(pick(33)));
            break;
        case 7:
            menu.subMenus[pick(menu.subMenus.size())]->setEditable(pick(3) != 0);
            menu.range->setEditor(pick(3) != 0);
            break;
        default:
            menu.address->setValue(pick(2) == 0 ? "10.0.0.1" : "no address");
            menu.voltageItem->setCloseAfterApply(pick(2) == 0);
            break;
    }
}

void runRandomSession(std::mt19937::result_type seed, int steps) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    yxfp_test::SleepCapture noWaiting;
    EditingMenu menu;
    menu.tree->setLocal(true);
    std::mt19937 random(seed);
    int keys = 0;
    for (int step = 0; step < steps; ++step) {
        if (yxfp_test::oneIn(random, 8)) {
            ASSERT_NO_THROW(changeSomething(menu, random)) << "step " << step;
        } else {
            Key const key = yxfp_test::randomKey(random);
            ASSERT_NO_THROW(yxfp_test::press(*menu.tree, key)) << "step " << step << " " << key;
            ++keys;
        }
        ASSERT_EQ(yxfp_test::focusHolders(*menu.tree), 1) << "after step " << step;
        ASSERT_EQ(menu.provider.lastFrame().getChars(), 21U);
        ASSERT_EQ(menu.provider.lastFrame().getLineCount(), 4U);
    }
    EXPECT_GT(keys, steps / 2);
    // The walk did reach the items: something was applied, selected or stepped.
    EXPECT_GT(menu.applied, 0);
    EXPECT_GT(noWaiting.sleeps().size(), 0U);
}

TEST(EditingItemsKeySequenceTest, RandomKeysAndChangesNeverBreakTheMenu) {
    for (std::mt19937::result_type const seed : {3U, 1234U, 98765U}) {
        runRandomSession(seed, 6000);
    }
}

}  // namespace
