#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "menu_keys.h"
#include "platform_capture.h"
#include "temp_directory.h"
#include "test_menu.h"

// Each kind of item bound to a store key, driven by keys as a user drives it: the item shows
// the stored value, a committed edit reaches the store and the file, and changes made elsewhere
// reach the item.
namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;
using yxfrontpanel::InlineEditorMenuItem;
using yxfrontpanel::IpAddressEditorMenuItem;
using yxfrontpanel::RadioMenuItem;
using yxfrontpanel::RadioTreeMenuItem;
using yxfrontpanel::ReadOnlyMenuItem;
using yxfrontpanel::SliderMenuItem;
using yxfrontpanel::ValueEditorMenuItem;

std::vector<SettingDefinition> panelDefinitions() {
    return {SettingDefinition::number("voltage", 12.5, 0.0, 30.0),
            SettingDefinition::ipv4("address", ip::IpV4Address(192, 168, 1, 10)),
            SettingDefinition::choice("mode", 0, {0, 1, 2}),
            SettingDefinition::boolean("output", false),
            SettingDefinition::choice("range", 1, {1, 2, 3}),
            SettingDefinition::integer("brightness", 5, 0, 9),
            SettingDefinition::number("measured", 1.5, -100.0, 100.0),
            SettingDefinition::text("serial", "SN-0001", 16)};
}

std::unique_ptr<SettingsStore> panelStore(std::string const& path) {
    SettingsStoreOptions options;
    options.applicationName = "panel";
    auto store = std::make_unique<SettingsStore>(path, options, panelDefinitions());
    store->load();
    return store;
}

// A 20x4 local menu on screen with one item at the top; a temporary settings file.
struct BoundMenu : TestMenu {
    BoundMenu() : TestMenu(20, 4) {}
    void show(std::shared_ptr<yxfrontpanel::MenuItem> const& item) {
        tree->addItem(item);
        tree->setLocal(true);
        tree->setFocus(true);
    }
    // What a second store finds in the file after saving.
    std::unique_ptr<SettingsStore> savedAndReloaded() const {
        EXPECT_TRUE(store->saveNow());
        return panelStore(path);
    }

    TempDirectory dir;
    std::string path = dir.file("panel.json");
    std::unique_ptr<SettingsStore> store = panelStore(path);
};

TEST(SettingBindingsTest, AValueEditorShowsCommitsAndFollowsTheStore) {
    BoundMenu menu;
    auto item = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    item->setPrecision(2);
    menu.store->set("voltage", 7.5);
    std::vector<double> applied;
    auto binding = bindSetting(*menu.store, "voltage", *item,
                               [&applied](double value) { applied.push_back(value); });
    menu.show(item);
    EXPECT_EQ(item->getEditor().getValue(), 7.5);

    press(*menu.tree, {Key::Enter, Key::Up, Key::Enter});
    double const edited = item->getEditor().getValue();
    EXPECT_NE(edited, 7.5);
    EXPECT_EQ(menu.store->number("voltage"), edited);
    EXPECT_EQ(applied, (std::vector<double>{edited}));
    EXPECT_EQ(menu.savedAndReloaded()->number("voltage"), edited);

    menu.store->set("voltage", 3.25);
    EXPECT_EQ(item->getEditor().getValue(), 3.25);
    yxfp_test::LogCapture const log;
    menu.store->resetToDefaults();
    EXPECT_EQ(item->getEditor().getValue(), 12.5);
}

TEST(SettingBindingsTest, AValueOutsideTheEditorsRangeIsClampedWithALineNamingTheKey) {
    BoundMenu menu;
    auto item = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 20.0);
    menu.store->set("voltage", 25.0);
    yxfp_test::LogCapture log;
    auto binding = bindSetting(*menu.store, "voltage", *item);
    EXPECT_EQ(menu.store->number("voltage"), 20.0);
    EXPECT_EQ(item->getEditor().getValue(), 20.0);
    bool named = false;
    for (auto const& record : log.records()) {
        named = named || record.message.find("'voltage'") != std::string::npos;
    }
    EXPECT_TRUE(named);
}

TEST(SettingBindingsTest, AnIpAddressEditorShowsCommitsAndFollowsTheStore) {
    BoundMenu menu;
    auto item = std::make_shared<IpAddressEditorMenuItem>(menu.provider, u"Address");
    std::vector<std::string> applied;
    auto binding = bindSetting(*menu.store, "address", *item,
                               [&applied](std::string const& text) { applied.push_back(text); });
    menu.show(item);
    EXPECT_EQ(item->getEditor().getValue(), ip::IpV4Address(192, 168, 1, 10));

    press(*menu.tree, {Key::Enter, Key::Up, Key::Enter});
    ip::IpV4Address const edited = item->getEditor().getValue();
    EXPECT_NE(edited, ip::IpV4Address(192, 168, 1, 10));
    EXPECT_EQ(menu.store->ipv4("address"), edited);
    EXPECT_EQ(applied, (std::vector<std::string>{ip::toString(edited)}));
    EXPECT_EQ(menu.savedAndReloaded()->ipv4("address"), edited);

    menu.store->set("address", ip::IpV4Address(10, 1, 2, 3));
    EXPECT_EQ(item->getEditor().getValue(), ip::IpV4Address(10, 1, 2, 3));
}

TEST(SettingBindingsTest, AnInlineChoiceShowsCommitsAndFollowsTheStore) {
    BoundMenu menu;
    auto item = std::make_shared<InlineEditorMenuItem>(u"Mode");
    item->addValue(0, u"Slow");
    item->addValue(1, u"Normal");
    item->addValue(2, u"Fast");
    menu.store->set("mode", std::int64_t{1});
    std::vector<int> heard;
    auto binding =
        bindSetting(*menu.store, "mode", *item, [&heard](int key) { heard.push_back(key); });
    menu.show(item);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Mode: Normal"));

    press(*menu.tree, Key::Enter);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Mode: Fast"));
    EXPECT_EQ(menu.store->integer("mode"), 2);
    EXPECT_EQ(heard, (std::vector<int>{2}));
    EXPECT_EQ(menu.savedAndReloaded()->integer("mode"), 2);

    menu.store->set("mode", std::int64_t{0});
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Mode: Slow"));
}

TEST(SettingBindingsTest, AnInlineChoiceCanHoldABoolean) {
    BoundMenu menu;
    auto item = std::make_shared<InlineEditorMenuItem>(u"Output");
    item->addValue(0, u"Off");
    item->addValue(1, u"On");
    auto binding = bindSetting(*menu.store, "output", *item);
    menu.show(item);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Output: Off"));
    press(*menu.tree, Key::Enter);
    EXPECT_TRUE(menu.store->boolean("output"));
    EXPECT_TRUE(menu.savedAndReloaded()->boolean("output"));
    menu.store->set("output", false);
    EXPECT_EQ(menu.provider.line(0), menu.line(u"Output: Off"));
}

TEST(SettingBindingsTest, ARadioGroupShowsCommitsAndFollowsTheStore) {
    BoundMenu menu;
    auto group = std::make_shared<RadioTreeMenuItem>(menu.provider, u"Range");
    std::vector<std::shared_ptr<RadioMenuItem>> choices = {
        std::make_shared<RadioMenuItem>(u"Low", 1), std::make_shared<RadioMenuItem>(u"Mid", 2),
        std::make_shared<RadioMenuItem>(u"High", 3)};
    for (auto const& choice : choices) {
        group->addItem(choice);
    }
    menu.store->set("range", std::int64_t{2});
    auto binding = bindSetting(*menu.store, "range", *group);
    menu.show(group);
    EXPECT_TRUE(choices[1]->isChecked());
    EXPECT_FALSE(choices[0]->isChecked());

    press(*menu.tree, {Key::Enter, Key::Down, Key::Down, Key::Enter});
    EXPECT_TRUE(choices[2]->isChecked());
    EXPECT_EQ(menu.store->integer("range"), 3);
    EXPECT_EQ(menu.savedAndReloaded()->integer("range"), 3);

    menu.store->set("range", std::int64_t{1});
    EXPECT_TRUE(choices[0]->isChecked());
    EXPECT_FALSE(choices[2]->isChecked());
}

TEST(SettingBindingsTest, ASliderShowsCommitsAndFollowsTheStore) {
    BoundMenu menu;
    auto item =
        std::make_shared<SliderMenuItem>(menu.provider, u"Brightness", u"Min", u"Max", 5, 10, 0);
    std::vector<int> committed;
    auto binding = bindSetting(*menu.store, "brightness", *item,
                               [&committed](int value) { committed.push_back(value); });
    menu.show(item);
    EXPECT_EQ(item->getSlider().getValue(), 5);

    press(*menu.tree, {Key::Enter, Key::Right, Key::Right, Key::Enter, Key::Back});
    EXPECT_EQ(item->getSlider().getValue(), 7);
    EXPECT_EQ(menu.store->integer("brightness"), 7);
    EXPECT_EQ(committed, (std::vector<int>{7}));
    EXPECT_EQ(menu.savedAndReloaded()->integer("brightness"), 7);

    menu.store->set("brightness", std::int64_t{2});
    EXPECT_EQ(item->getSlider().getValue(), 2);
}

TEST(SettingBindingsTest, AReadOnlyItemShowsNumbersAndTexts) {
    BoundMenu menu;
    auto measured = std::make_shared<ReadOnlyMenuItem>(menu.provider, u"Measured");
    auto serial = std::make_shared<ReadOnlyMenuItem>(menu.provider, u"Serial");
    auto measuredBinding = bindSetting(*menu.store, "measured", *measured, 3);
    auto serialBinding = bindSetting(*menu.store, "serial", *serial);
    EXPECT_EQ(measured->getLabel().getLines().back(), u"1.500");
    EXPECT_EQ(serial->getLabel().getLines().back(), u"SN-0001");
    menu.store->set("measured", -2.25);
    EXPECT_EQ(measured->getLabel().getLines().back(), u"-2.250");
}

TEST(SettingBindingsTest, LoadingAFileUpdatesEveryBoundItem) {
    BoundMenu menu;
    {
        auto writer = panelStore(menu.path);
        writer->set("voltage", 21.0);
        writer->set("brightness", std::int64_t{8});
        ASSERT_TRUE(writer->saveNow());
    }
    auto voltage = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    auto brightness =
        std::make_shared<SliderMenuItem>(menu.provider, u"Brightness", u"Min", u"Max", 5, 10, 0);
    auto voltageBinding = bindSetting(*menu.store, "voltage", *voltage);
    auto brightnessBinding = bindSetting(*menu.store, "brightness", *brightness);
    menu.store->load();
    EXPECT_EQ(voltage->getEditor().getValue(), 21.0);
    EXPECT_EQ(brightness->getSlider().getValue(), 8);
}

TEST(SettingBindingsTest, AReleasedBindingNoLongerFollowsTheStore) {
    BoundMenu menu;
    auto item = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    auto binding = bindSetting(*menu.store, "voltage", *item);
    EXPECT_TRUE(binding.active());
    binding.release();
    EXPECT_FALSE(binding.active());
    menu.store->set("voltage", 1.0);
    EXPECT_EQ(item->getEditor().getValue(), 12.5);
}

TEST(SettingBindingsTest, KeysOfAnotherTypeOrUndeclaredKeysAreRefused) {
    BoundMenu menu;
    auto voltage = std::make_shared<ValueEditorMenuItem>(menu.provider, u"Voltage", 0.0, 30.0);
    auto slider =
        std::make_shared<SliderMenuItem>(menu.provider, u"Brightness", u"Min", u"Max", 5, 10, 0);
    EXPECT_THROW(bindSetting(*menu.store, "serial", *voltage), std::invalid_argument);
    EXPECT_THROW(bindSetting(*menu.store, "voltage", *slider), std::invalid_argument);
    EXPECT_THROW(bindSetting(*menu.store, "missing", *voltage), std::out_of_range);
}

}  // namespace
