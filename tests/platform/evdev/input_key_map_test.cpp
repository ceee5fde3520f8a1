#include <frontpanelhw/input_key_map.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <linux/input-event-codes.h>

namespace {

using frontpanelhw::formatInputKeyMap;
using frontpanelhw::InputKeyMap;
using frontpanelhw::inputKeyName;
using frontpanelhw::KeyMapError;
using frontpanelhw::PanelKey;
using frontpanelhw::parseInputKeyMap;

/** The message of the KeyMapError that parsing `text` throws; empty when it does not throw. */
std::string parseError(std::string const& text) {
    try {
        parseInputKeyMap(text);
    } catch (KeyMapError const& error) {
        return error.what();
    }
    return {};
}

TEST(InputKeyMapTest, DefaultsAreTheArrowsEnterAndBackKeys) {
    std::map<int, PanelKey> const expected{
        {KEY_UP, PanelKey::Up},       {KEY_DOWN, PanelKey::Down},   {KEY_LEFT, PanelKey::Left},
        {KEY_RIGHT, PanelKey::Right}, {KEY_ENTER, PanelKey::Enter}, {KEY_KPENTER, PanelKey::Enter},
        {KEY_OK, PanelKey::Enter},    {KEY_ESC, PanelKey::Back},    {KEY_BACKSPACE, PanelKey::Back},
        {KEY_BACK, PanelKey::Back}};
    EXPECT_EQ(InputKeyMap::defaults().entries(), expected);
}

TEST(InputKeyMapTest, FindGivesNothingForCodesTheMapDoesNotName) {
    InputKeyMap const map = InputKeyMap::defaults();
    EXPECT_EQ(map.find(KEY_UP), PanelKey::Up);
    EXPECT_EQ(map.find(KEY_A), std::nullopt);
    EXPECT_EQ(map.find(-1), std::nullopt);
}

TEST(InputKeyMapTest, SetRejectsCodesOutsideTheKernelsRange) {
    InputKeyMap map;
    EXPECT_THROW(map.set(KEY_MAX + 1, PanelKey::Up), std::out_of_range);
    EXPECT_THROW(map.set(-1, PanelKey::Up), std::out_of_range);
    map.set(KEY_MAX, PanelKey::Up);
    EXPECT_EQ(map.find(KEY_MAX), PanelKey::Up);
}

TEST(InputKeyMapTest, ParsedEntriesAreAddedToTheDefaults) {
    InputKeyMap const map = parseInputKeyMap("KEY_F1=back,KEY_SELECT=enter");
    InputKeyMap expected = InputKeyMap::defaults();
    expected.set(KEY_F1, PanelKey::Back);
    expected.set(KEY_SELECT, PanelKey::Enter);
    EXPECT_EQ(map, expected);
}

TEST(InputKeyMapTest, ParsedEntryReplacesWhatACodeGaveBefore) {
    EXPECT_EQ(parseInputKeyMap("KEY_ESC=up").find(KEY_ESC), PanelKey::Up);
}

TEST(InputKeyMapTest, NoneRemovesACode) {
    InputKeyMap const map = parseInputKeyMap("KEY_BACKSPACE=none");
    EXPECT_EQ(map.find(KEY_BACKSPACE), std::nullopt);
    EXPECT_EQ(map.find(KEY_ESC), PanelKey::Back);
}

TEST(InputKeyMapTest, ParsesIntoAGivenBaseMap) {
    InputKeyMap const map = parseInputKeyMap("BTN_0=enter, BTN_1 = back", InputKeyMap());
    std::map<int, PanelKey> const expected{{BTN_0, PanelKey::Enter}, {BTN_1, PanelKey::Back}};
    EXPECT_EQ(map.entries(), expected);
}

TEST(InputKeyMapTest, PanelKeyNamesMayBeInAnyCase) {
    EXPECT_EQ(parseInputKeyMap("KEY_F2=LEFT,KEY_F3=Right").find(KEY_F3), PanelKey::Right);
}

TEST(InputKeyMapTest, DecimalCodesAreAccepted) {
    EXPECT_EQ(parseInputKeyMap("256=enter", InputKeyMap()).find(BTN_0), PanelKey::Enter);
}

TEST(InputKeyMapTest, EmptyTextLeavesTheBase) {
    EXPECT_EQ(parseInputKeyMap(""), InputKeyMap::defaults());
    EXPECT_EQ(parseInputKeyMap("  "), InputKeyMap::defaults());
}

TEST(InputKeyMapTest, UnknownKeyNameIsAnErrorNamingIt) {
    EXPECT_EQ(parseError("KEY_F1=back,KEY_FOO=enter"),
              "unknown key name 'KEY_FOO' in key map entry 'KEY_FOO=enter': use a Linux key name "
              "such as KEY_F1 or BTN_0 (evtest lists a device's keys) or a decimal key code");
}

TEST(InputKeyMapTest, NamesOfOtherEventTypesAreUnknownKeyNames) {
    EXPECT_NE(parseError("REL_X=up").find("unknown key name 'REL_X'"), std::string::npos);
}

TEST(InputKeyMapTest, UnknownPanelKeyIsAnErrorNamingIt) {
    EXPECT_EQ(parseError("KEY_F1=sideways"),
              "unknown panel key 'sideways' in key map entry 'KEY_F1=sideways': use up, down, "
              "left, right, enter, back or none");
}

TEST(InputKeyMapTest, EntryWithoutEqualsSignIsAnError) {
    EXPECT_EQ(parseError("KEY_F1"),
              "key map entry 'KEY_F1' is not CODE=KEY: write it like KEY_F1=back");
    EXPECT_EQ(parseError("KEY_F1=back,"),
              "key map entry '' is not CODE=KEY: write it like KEY_F1=back");
}

TEST(InputKeyMapTest, CodeOutOfRangeIsAnError) {
    EXPECT_EQ(parseError("768=up"),
              "key code 768 in key map entry '768=up' is out of range: Linux key codes go from 0 "
              "to 767");
}

TEST(InputKeyMapTest, TextFormReadsBackIntoTheSameMap) {
    InputKeyMap const map = parseInputKeyMap("KEY_F1=back,BTN_0=enter,700=up");
    std::string const text = formatInputKeyMap(map);
    EXPECT_EQ(text.rfind("KEY_ESC=back,", 0), 0U) << text;  // by code
    EXPECT_EQ(parseInputKeyMap(text, InputKeyMap()), map);
}

TEST(InputKeyMapTest, KeyNamesComeFromTheKernelsTables) {
    EXPECT_EQ(inputKeyName(KEY_F1), "KEY_F1");
    EXPECT_EQ(inputKeyName(KEY_OK), "KEY_OK");
    EXPECT_EQ(inputKeyName(-3), "-3");
}

}  // namespace
