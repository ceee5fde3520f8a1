#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "editor_screen.h"
#include "item_screens.h"
#include "menu_keys.h"
#include "recording_provider.h"

namespace {

using namespace std::chrono_literals;
using namespace yxfp_test;
using namespace yxfrontpanel;
namespace itemconnector = yxfrontpanel::itemconnector;

constexpr unsigned kChars = 21;
constexpr unsigned kLines = 4;
constexpr char16_t kUp = 0x1E;
constexpr char16_t kDown = 0x1F;
constexpr int kNoCursor = -1;

// The instrument's side: its values and what it heard from the panel.
struct Instrument {
    CallbackValue<double> voltage;
    CallbackValue<double> voltageMin;
    CallbackValue<double> voltageMax;
    CallbackValue<double> current;
    CallbackValue<double> currentMin;
    CallbackValue<double> currentMax;
    std::function<void(bool)> voltageVisible;
    std::function<void(bool)> voltageEditable;
    std::function<void(bool)> currentEditable;
    std::function<void(int)> showMode;
    std::vector<std::string> events;

    void record(std::string const& name, double value) {
        std::ostringstream text;
        text << name << ' ' << value;
        events.push_back(text.str());
    }
};

// A menu line: an item text in the 20 item cells plus the scrollbar cell.
std::u16string item(std::u16string const& text, char16_t scrollbar = u' ') {
    return padded(text, kChars - 1) + scrollbar;
}

// An editor screen: the framed headline, the value, the caret line (none: read-only), a blank.
Screen editor(std::u16string const& headline, std::u16string const& value, int caret) {
    return {centred(u">> " + headline + u" <<", kChars), centred(value, kChars),
            caret == kNoCursor ? padded(u"", kChars) : caretLine(caret, kChars),
            padded(u"", kChars)};
}

// Compares the whole panel: every line's text, and that exactly line `cursor` is inverted (the
// item cells of a menu line; nothing at all on an editor screen).
void expectPanel(RecordingProvider const& provider, Screen const& expected, int cursor) {
    EXPECT_EQ(provider.screen(), expected);
    for (unsigned line = 0; line < kLines; ++line) {
        std::string const mask = static_cast<int>(line) == cursor
                                     ? std::string(kChars - 1, '#') + "."
                                     : std::string(kChars, '.');
        EXPECT_EQ(provider.inversion(line), mask) << "line " << line;
    }
}

// The root screen and the two sub-menus' screens.
Screen const kRootScreen{item(u"Network"), item(u"Output"), item(u"Range"), item(u"")};
Screen const kNetworkScreen{item(u"IP address"), item(u"Netmask"), item(u""), item(u"")};
Screen outputScreen(std::u16string const& modeText) {
    return Screen{item(u"Voltage"), item(u"Current"), item(u"Mode: " + modeText), item(u"")};
}

// Restores a global default setter when it goes, also when a test stops early.
class DefaultSetterGuard {
public:
    DefaultSetterGuard() : saved_(itemconnector::voidBoolDefault) {}
    ~DefaultSetterGuard() { itemconnector::voidBoolDefault = saved_; }
    DefaultSetterGuard(DefaultSetterGuard const&) = delete;
    DefaultSetterGuard& operator=(DefaultSetterGuard const&) = delete;

private:
    std::function<void(bool)> saved_;
};

// A complete settings menu built the way the instrument's firmware builds it, in local mode with
// the root menu on screen. Each test walks one part of it by keys and checks the whole panel
// after every step.
class SettingsMenuTest : public ::testing::Test {
protected:
    SettingsMenuTest() {
        // Network: the address and the mask.
        auto const network = std::make_shared<TreeMenuItem>(provider, u"Network");
        auto const address = std::make_shared<IpAddressEditorMenuItem>(provider, u"IP address");
        address->setValue("192.168.1.20");
        address->connectEditor(
            [this](std::string const& text) { instrument.events.push_back("address " + text); });
        auto const mask = std::make_shared<IpMaskEditor>(provider, u"Netmask");
        mask->setValue(24);
        mask->valueCallback = [this](int bits) { instrument.record("mask", bits); };
        network->addItem(address);
        network->addItem(mask);

        // Output: two numbers bound to the instrument's values, and the regulation mode.
        auto const output = std::make_shared<TreeMenuItem>(provider, u"Output");
        instrument.voltageMax.set(30.0);
        instrument.voltage.set(12.0);
        auto const voltage = boundNumber(u"Voltage", 2, u"V", "voltage", instrument.voltage,
                                         instrument.voltageMin, instrument.voltageMax,
                                         instrument.voltageVisible, instrument.voltageEditable);
        instrument.currentMax.set(5.0);
        instrument.current.set(1.5);
        // The current's visibility never changes: its setter goes to the default sink.
        auto const current = boundNumber(
            u"Current", 3, u"A", "current", instrument.current, instrument.currentMin,
            instrument.currentMax, itemconnector::voidBoolDefault, instrument.currentEditable);
        auto const mode = std::make_shared<InlineEditorMenuItem>(u"Mode");
        mode->addValue(0, u"CV");
        mode->addValue(1, u"CC");
        mode->addValue(2, u"CP");
        mode->valueCallback = [this](int key) { instrument.record("mode", key); };
        instrument.showMode = itemconnector::inlineEditor(*mode);
        output->addItem(voltage);
        output->addItem(current);
        output->addItem(mode);

        // Range: a radio group.
        auto const range = std::make_shared<RadioTreeMenuItem>(provider, u"Range");
        range->addItem(std::make_shared<RadioMenuItem>(u"Low", 1));
        range->addItem(std::make_shared<RadioMenuItem>(u"High", 2));
        range->addItem(std::make_shared<RadioMenuItem>(u"Auto", 3));
        range->valueCallback = [this](int id) { instrument.record("range", id); };

        root->addItem(network);
        root->addItem(output);
        root->addItem(range);
        root->setLocal(true);
        root->setFocus(true);
    }

    // A number editor named `name` bound to the instrument's value and bounds; applying records
    // `event` with the value and publishes it.
    std::shared_ptr<ValueEditorMenuItem> boundNumber(
        std::u16string const& name, unsigned precision, std::u16string const& unit,
        std::string const& event, CallbackValue<double>& value, CallbackValue<double>& minValue,
        CallbackValue<double>& maxValue, std::function<void(bool)>& visible,
        std::function<void(bool)>& editable) {
        auto item = std::make_shared<ValueEditorMenuItem>(provider, name, 0.0, 1.0);
        item->setPrecision(precision);
        item->setUnit(unit);
        itemconnector::valueEditor(
            value, minValue, maxValue,
            [this, event, &value](double applied) {
                instrument.record(event, applied);
                value.set(applied);
            },
            *item, visible, editable);
        return item;
    }

    // One key and the whole panel expected after it.
    struct Step {
        Key key;
        Screen screen;
        int cursor;
    };

    // Presses the keys in order and compares the whole panel after each.
    void walk(std::vector<Step> const& steps) {
        for (std::size_t i = 0; i < steps.size(); ++i) {
            SCOPED_TRACE(::testing::Message() << "step " << i + 1 << ": " << steps[i].key);
            press(*root, steps[i].key);
            expectPanel(provider, steps[i].screen, steps[i].cursor);
        }
    }

    // From the root menu into the output sub-menu, its first line selected.
    void openOutput() {
        press(*root, {Key::Down, Key::Enter});
        expectPanel(provider, outputScreen(u"CV"), 0);
    }

    RecordingProvider provider{kChars, kLines};
    Instrument instrument;
    std::unique_ptr<yxfrontpanel::IMenuTree> root =
        yxfrontpanel::MenuTreeFactory().create(provider);
    // Declared after the instrument and the menu, so that it goes first: the default setter is
    // bound to an item of this menu.
    DefaultSetterGuard defaultSetter;
};

TEST_F(SettingsMenuTest, StartsOnTheRootMenu) { expectPanel(provider, kRootScreen, 0); }

TEST_F(SettingsMenuTest, NetworkEditsTheAddressDigitByDigit) {
    walk({
        {Key::Enter, kNetworkScreen, 0},
        {Key::Enter, editor(u"IP address", u"192.168.  1. 20", 3), kNoCursor},
        {Key::Left, editor(u"IP address", u"192.168.  1. 20", 17), kNoCursor},
        {Key::Left, editor(u"IP address", u"192.168.  1. 20", 16), kNoCursor},
        {Key::Up, editor(u"IP address", u"192.168.  1. 30", 16), kNoCursor},
        {Key::Enter, kNetworkScreen, 0},
    });
    EXPECT_EQ(instrument.events, (std::vector<std::string>{"address 192.168.1.30"}));
}

TEST_F(SettingsMenuTest, NetworkChoosesTheMaskFromTheList) {
    walk({
        {Key::Enter, kNetworkScreen, 0},
        {Key::Down, kNetworkScreen, 1},
        {Key::Enter,
         Screen{item(u" 0.0.0.0 | /0"), item(u" 240.0.0.0 | /4"), item(u" 255.0.0.0 | /8"),
                item(u" 255.240.0.0 | /12", kDown)},
         0},
    });
    for (int i = 0; i < 12; ++i) {
        press(*root, Key::Down);
    }
    expectPanel(provider,
                {item(u" 255.255.248.0 | /21", kUp), item(u" 255.255.252.0 | /22"),
                 item(u" 255.255.254.0 | /23"), item(u">255.255.255.0 | /24", kDown)},
                3);
    walk({
        {Key::Down,
         Screen{item(u" 255.255.252.0 | /22", kUp), item(u" 255.255.254.0 | /23"),
                item(u">255.255.255.0 | /24"), item(u" 255.255.255.128 | /", kDown)},
         3},
        {Key::Enter,
         Screen{item(u" 255.255.252.0 | /22", kUp), item(u" 255.255.254.0 | /23"),
                item(u" 255.255.255.0 | /24"), item(u">255.255.255.128 | /", kDown)},
         3},
        {Key::Back, kNetworkScreen, 1},
        {Key::Back, kRootScreen, 0},
    });
    EXPECT_EQ(instrument.events, (std::vector<std::string>{"mask 25"}));
}

TEST_F(SettingsMenuTest, OutputEditsAndAppliesTheVoltage) {
    walk({
        {Key::Down, kRootScreen, 1},
        {Key::Enter, outputScreen(u"CV"), 0},
        {Key::Enter, editor(u"Voltage", u"12.00 V", 7), kNoCursor},
        {Key::Right, editor(u"Voltage", u"12.00 V", 8), kNoCursor},
        {Key::Up, editor(u"Voltage", u"13.00 V", 8), kNoCursor},
        {Key::Right, editor(u"Voltage", u"13.00 V", 10), kNoCursor},
        {Key::Up, editor(u"Voltage", u"13.10 V", 10), kNoCursor},
        {Key::Enter, outputScreen(u"CV"), 0},
    });
    EXPECT_EQ(instrument.voltage.get(), 13.1);
    EXPECT_EQ(instrument.events, (std::vector<std::string>{"voltage 13.1"}));
    EXPECT_EQ(instrument.voltageMax.get(), 30.0);
}

TEST_F(SettingsMenuTest, OutputShowsAVoltageTheInstrumentPublishes) {
    openOutput();
    instrument.voltage.set(9.5);
    expectPanel(provider, outputScreen(u"CV"), 0);
    walk({
        {Key::Enter, editor(u"Voltage", u"09.50 V", 7), kNoCursor},
        {Key::Back, outputScreen(u"CV"), 0},
    });
    EXPECT_EQ(instrument.voltage.get(), 9.5);
    EXPECT_TRUE(instrument.events.empty());
}

TEST_F(SettingsMenuTest, OutputDropsACurrentEditLeftByTheBackKey) {
    openOutput();
    walk({
        {Key::Down, outputScreen(u"CV"), 1},
        {Key::Enter, editor(u"Current", u"1.500 A", 7), kNoCursor},
        {Key::Down, editor(u"Current", u"0.500 A", 7), kNoCursor},
        {Key::Back, outputScreen(u"CV"), 1},
    });
    EXPECT_EQ(instrument.current.get(), 1.5);
    EXPECT_TRUE(instrument.events.empty());
}

TEST_F(SettingsMenuTest, OutputShowsALockedCurrentReadOnly) {
    openOutput();
    press(*root, Key::Down);
    instrument.currentEditable(false);
    walk({
        {Key::Enter, editor(u"Current", u"1.500 A", kNoCursor), kNoCursor},
        {Key::Up, editor(u"Current", u"1.500 A", kNoCursor), kNoCursor},
        {Key::Enter, outputScreen(u"CV"), 1},
    });
    EXPECT_EQ(instrument.current.get(), 1.5);
    EXPECT_TRUE(instrument.events.empty());
}

TEST_F(SettingsMenuTest, OutputStepsTheModeInPlace) {
    openOutput();
    press(*root, Key::Down);
    walk({
        {Key::Down, outputScreen(u"CV"), 2},
        {Key::Enter, outputScreen(u"CC"), 2},
        {Key::Enter, outputScreen(u"CP"), 2},
    });
    instrument.showMode(0);
    expectPanel(provider, outputScreen(u"CV"), 2);
    EXPECT_EQ(instrument.events, (std::vector<std::string>{"mode 1", "mode 2"}));
}

TEST_F(SettingsMenuTest, OutputFollowsTheVoltagesVisibility) {
    openOutput();
    press(*root, {Key::Down, Key::Down});
    instrument.voltageVisible(false);
    expectPanel(provider, {item(u"Current"), item(u"Mode: CV"), item(u""), item(u"")}, 0);
    instrument.voltageVisible(true);
    expectPanel(provider, outputScreen(u"CV"), 0);
    press(*root, {Key::Down, Key::Down});
    expectPanel(provider, outputScreen(u"CV"), 2);
}

TEST_F(SettingsMenuTest, OutsideLocalModeTheModeShowsTheHintAndStays) {
    openOutput();
    press(*root, {Key::Down, Key::Down});
    root->setLocal(false);
    HintWatch hints(provider);
    press(*root, Key::Enter);
    EXPECT_EQ(hints.sleeps(), (std::vector<std::chrono::nanoseconds>{1000ms}));
    ASSERT_EQ(hints.screens().size(), 1U);
    EXPECT_EQ(hints.screens()[0], (Screen{item(u"Voltage"), item(u"Current"),
                                          item(u"Only in local mode!"), item(u"")}));
    expectPanel(provider, outputScreen(u"CV"), 2);
    root->setLocal(true);
    press(*root, Key::Back);
    expectPanel(provider, kRootScreen, 1);
    EXPECT_TRUE(instrument.events.empty());
}

TEST_F(SettingsMenuTest, RangeChoosesHigh) {
    walk({
        {Key::Down, kRootScreen, 1},
        {Key::Down, kRootScreen, 2},
        {Key::Enter, Screen{item(u">Low"), item(u" High"), item(u" Auto"), item(u"")}, 0},
        {Key::Down, Screen{item(u">Low"), item(u" High"), item(u" Auto"), item(u"")}, 1},
        {Key::Enter, Screen{item(u" Low"), item(u">High"), item(u" Auto"), item(u"")}, 1},
        {Key::Back, kRootScreen, 2},
    });
    EXPECT_TRUE(press(*root, Key::Back));
    expectPanel(provider, kRootScreen, 2);
    EXPECT_EQ(instrument.events, (std::vector<std::string>{"range 2"}));
}

}  // namespace
