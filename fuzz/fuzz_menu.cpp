// Drives a menu built like an application's with arbitrary keys, mode switches and value
// updates; exactly one form of the open chain must hold the focus after every step.

#include <yxbase2/this_thread.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/inline_editor_menu_item.h>
#include <yxfrontpanel/ip_address_editor_menu_item.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/radio_menu_item.h>
#include <yxfrontpanel/scroll_label_menu_item.h>
#include <yxfrontpanel/slider_menu_item.h>
#include <yxfrontpanel/tree_menu_item.h>
#include <yxfrontpanel/trigger_menu_item.h>
#include <yxfrontpanel/value_editor_menu_item.h>

#include <chrono>
#include <iterator>
#include <memory>
#include <vector>

#include "fuzz_support.h"
#include "random_menu_walk.h"

namespace {

using yxfp_fuzz::check;
namespace yf = yxfrontpanel;

/** A root menu with a sub-menu and one item of every kind; every callback is connected. */
struct FuzzMenu {
    FuzzMenu() {
        root->addItem(settings);
        root->addItem(voltage);
        root->addItem(address);
        root->addItem(firmware);
        root->addItem(reset);
        settings->addItem(output);
        settings->addItem(contrast);
        settings->addItem(brightness);
        output->addValue(0, u"Off");
        output->addValue(1, u"On");
        output->valueCallback = [](int) {};
        contrast->addItem(std::make_shared<yf::RadioMenuItem>(u"Low", 0));
        contrast->addItem(std::make_shared<yf::RadioMenuItem>(u"High", 1));
        contrast->valueCallback = [](int) {};
        brightness->connectSlider([](int) {});
        voltage->setPrecision(1);
        voltage->setUnit(u"V");
        voltage->connectEditor([](double) {});
        address->connectEditor([](std::string const&) {});
        firmware->setText("1.4.2");
        reset->enableUserDialog(provider, "Reset settings", "to defaults?", "Yes ");
        reset->action = [this] { return actionSucceeds; };
        root->setFocus(true);
    }

    yxfp_fuzz::SizeCheckingDisplay display{20u, 4u};
    yf::DrawingProvider provider{display};
    std::unique_ptr<yf::IMenuTree> root = yf::MenuTreeFactory().create(provider);
    std::shared_ptr<yf::TreeMenuItem> settings =
        std::make_shared<yf::TreeMenuItem>(provider, u"Settings");
    std::shared_ptr<yf::InlineEditorMenuItem> output =
        std::make_shared<yf::InlineEditorMenuItem>(u"Output");
    std::shared_ptr<yf::RadioTreeMenuItem> contrast =
        std::make_shared<yf::RadioTreeMenuItem>(provider, u"Contrast");
    std::shared_ptr<yf::SliderMenuItem> brightness =
        std::make_shared<yf::SliderMenuItem>(provider, u"Brightness", u"Dim", u"Max", 4u, 12u, 0);
    std::shared_ptr<yf::ValueEditorMenuItem> voltage =
        std::make_shared<yf::ValueEditorMenuItem>(provider, u"Voltage", 0.0, 100.0);
    std::shared_ptr<yf::IpAddressEditorMenuItem> address =
        std::make_shared<yf::IpAddressEditorMenuItem>(provider, u"Address");
    std::shared_ptr<yf::ReadOnlyMenuItem> firmware =
        std::make_shared<yf::ReadOnlyMenuItem>(provider, u"Firmware");
    std::shared_ptr<yf::TriggerMenuItem> reset =
        std::make_shared<yf::TriggerMenuItem>(u"Reset", std::chrono::milliseconds(1000));
    std::vector<yf::MenuItem*> items{settings.get(),   output.get(),  contrast.get(),
                                     brightness.get(), voltage.get(), address.get(),
                                     firmware.get(),   reset.get()};
    bool actionSucceeds = true;
};

/** Exactly one form of the open chain holds the focus (see `yxfp_test::focusHolders`). */
void checkOneFocus(yf::IMenuTree& root) {
    check(yxfp_test::focusHolders(root) == 1, "not exactly one form of the menu has the focus");
}

void updateValue(FuzzMenu& menu, yxfp_fuzz::InputReader& input) {
    uint8_t const which = input.byte();
    uint8_t const argument = input.byte();
    switch (which % 7u) {
        case 0:
            menu.voltage->setValue(input.rawDouble());
            break;
        case 1:
            menu.address->setValue(std::to_string(argument) + ".168.1.2");
            break;
        case 2:
            menu.contrast->setValue(argument % 4 - 1);
            break;
        case 3:
            menu.brightness->setValue(argument % 16 - 2);
            break;
        case 4:
            menu.output->setValue(argument % 3);
            break;
        case 5:
            menu.firmware->setValue(input.rawDouble(), argument % 13u);
            break;
        default:
            menu.actionSucceeds = (argument & 1u) != 0u;
            break;
    }
}

void step(FuzzMenu& menu, yxfp_fuzz::InputReader& input) {
    uint8_t const op = input.byte();
    bool const flag = (op & 0x80u) != 0u;
    yf::IMenuTree& root = *menu.root;
    unsigned const action = (op & 0x7Fu) % 10u;
    if (action < std::size(yxfp_test::kAllKeys)) {
        yxfp_test::press(root, yxfp_test::kAllKeys[action]);
        return;
    }
    switch (action) {
        case 6:
            root.setLocal(flag);
            break;
        case 7:
            menu.items[input.byte() % menu.items.size()]->setVisible(flag);
            break;
        case 8:
            menu.items[input.byte() % menu.items.size()]->setAvailable(flag);
            break;
        default:
            updateValue(menu, input);
            break;
    }
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    // Hints would otherwise really wait.
    yxbase2::system::this_thread::setSleepHook([](std::chrono::nanoseconds) {});
    yxfp_fuzz::InputReader input(data, size);
    FuzzMenu menu;
    checkOneFocus(*menu.root);
    while (!input.empty()) {
        step(menu, input);
        checkOneFocus(*menu.root);
    }
    return 0;
}
