#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editor_screen.h"
#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using ip::IpV4Address;
using namespace yxfp_test;
using namespace yxfrontpanel;

std::u16string const kHeadline = u"      >> IP <<      ";
std::u16string const kBlank = padded(u"", kChars);

// The value line: the 15 columns of the address start at column 2 of a 20-column panel.
std::u16string valueLine(std::u16string const& address) { return padded(u"  " + address, kChars); }

// Digit columns of the address on a 20-column panel, left to right.
std::vector<unsigned> const kDigitColumns{2, 3, 4, 6, 7, 8, 10, 11, 12, 14, 15, 16};

class IpAddressEditorTest : public ::testing::Test {
protected:
    // An editor showing `address`, focused and editable, with the caret on the first digit.
    IpAddressEditor& open(IpV4Address const& address) {
        editor_.setValue(address);
        openForEditing(editor_);
        return editor_;
    }

    void press(int direction, int times) {
        for (int i = 0; i < times; ++i) {
            editor_.moveMarker(direction);
        }
    }

    RecordingProvider provider_{kChars, kLines};
    IpAddressEditor editor_{provider_, u"IP"};
};

// Lets a test choose the caret's index into the value text: the editable characters are taken
// to start `index` columns left of the caret's first place.
class IndexedEditor : public IpAddressEditor {
public:
    explicit IndexedEditor(IDrawingProvider const& provider) : IpAddressEditor(provider, u"IP") {}

    unsigned int getStartOfNumberInLbl() const override {
        return IpAddressEditor::getStartOfNumberInLbl() - static_cast<unsigned>(index);
    }

    int index = 0;
};

TEST_F(IpAddressEditorTest, ConstructionDrawsNothingAndHoldsTheZeroAddress) {
    EXPECT_EQ(provider_.drawCount(), 0U);
    EXPECT_EQ(editor_.getValueLabel().getText(), u"");
    EXPECT_EQ(editor_.getValue(), IpV4Address(0, 0, 0, 0));
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(0, 0, 0, 0));
}

TEST_F(IpAddressEditorTest, FocusShowsTheCommittedAddressWithBlankFill) {
    editor_.setValue(IpV4Address(192, 168, 1, 2));
    EXPECT_EQ(provider_.drawCount(), 0U);
    editor_.setFocus(true);
    EXPECT_EQ(provider_.drawCount(), 1U);
    EXPECT_EQ(provider_.screen(), (std::vector<std::u16string>{
                                      kHeadline, valueLine(u"192.168.  1.  2"), kBlank, kBlank}));
}

TEST_F(IpAddressEditorTest, FocusWithoutAnAddressShowsZeros) {
    editor_.setFocus(true);
    EXPECT_EQ(provider_.line(1), valueLine(u"  0.  0.  0.  0"));
}

TEST_F(IpAddressEditorTest, RightVisitsEveryDigitAndWrapsFromTheLastToTheFirst) {
    open(IpV4Address(192, 168, 1, 2));
    std::vector<unsigned> columns;
    for (std::size_t i = 0; i < kDigitColumns.size(); ++i) {
        editor_.moveMarker(+1);
        columns.push_back(caretColumn(editor_));
    }
    std::vector<unsigned> expected(kDigitColumns.begin() + 1, kDigitColumns.end());
    expected.push_back(2);
    EXPECT_EQ(columns, expected);
}

TEST_F(IpAddressEditorTest, CaretNeverRestsOnAPoint) {
    for (IpV4Address const& address :
         {IpV4Address(192, 168, 1, 2), IpV4Address(0, 0, 0, 0), IpV4Address(255, 255, 255, 255),
          IpV4Address(1, 22, 133, 4)}) {
        open(address);
        for (int i = 0; i < 30; ++i) {
            editor_.moveMarker(i < 15 ? +1 : -1);
            EXPECT_NE(characterUnderCaret(editor_), u'.') << address << " step " << i;
            EXPECT_NE(characterUnderCaret(editor_), 0) << address << " step " << i;
        }
    }
}

TEST_F(IpAddressEditorTest, AddressStartingAtColumnZeroKeepsTheCaretOnTheFirstDigit) {
    RecordingProvider narrow(15, 3);
    IpAddressEditor editor(narrow, u"IP");
    editor.setValue(IpV4Address(1, 2, 3, 4));
    openForEditing(editor);
    ASSERT_EQ(caretColumn(editor), 0U);
    editor.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor), 0U);
    EXPECT_EQ(narrow.line(2), caretLine(0, 15));
}

TEST_F(IpAddressEditorTest, SelectedBlockFollowsTheCaret) {
    open(IpV4Address(192, 168, 1, 2));
    std::vector<unsigned> blocks{editor_.getSelectedBlock()};
    for (int i = 0; i < 11; ++i) {
        editor_.moveMarker(+1);
        blocks.push_back(editor_.getSelectedBlock());
    }
    EXPECT_EQ(blocks, (std::vector<unsigned>{0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3}));
}

TEST_F(IpAddressEditorTest, SelectedBlockOfEveryIndexFollowsTheTable) {
    RecordingProvider wide(60, 4);  // a start column far from 0 lets the index go negative
    IndexedEditor editor(wide);
    editor.setValue(IpV4Address(1, 2, 3, 4));
    editor.setEditorMode(true);
    std::vector<unsigned> const table{5, 0, 0, 0, 5, 1, 1, 1, 5, 2, 2, 2, 5, 3, 3, 3, 5, 5};
    for (int index = -1; index <= 16; ++index) {
        editor.index = index;
        ASSERT_EQ(editor.getMarkerInValuePosition(0), index);
        EXPECT_EQ(editor.getSelectedBlock(), table[static_cast<std::size_t>(index + 1)])
            << "index " << index;
    }
}

TEST_F(IpAddressEditorTest, CaretLeftOfTheAddressSelectsNoBlock) {
    editor_.setValue(IpV4Address(1, 2, 3, 4));
    EXPECT_EQ(caretColumn(editor_), 0U);
    EXPECT_EQ(editor_.getSelectedBlock(), 5U);
}

// One step of the digit the caret reaches after `moves` presses from the first digit.
struct DigitStep {
    char const* what;
    IpV4Address address;
    int moves;
    int delta;
    IpV4Address stepped;
    std::u16string shown;
};

TEST_F(IpAddressEditorTest, StepsClampToTheOctetAndShowTheAddress) {
    DigitStep const steps[] = {
        {"up on the hundreds of 250", IpV4Address(250, 0, 0, 0), 0, +1, IpV4Address(255, 0, 0, 0),
         u"255.  0.  0.  0"},
        {"down on the units of 0", IpV4Address(0, 0, 0, 0), +2, -1, IpV4Address(0, 0, 0, 0),
         u"  0.  0.  0.  0"},
        {"up on the tens of 1", IpV4Address(0, 0, 0, 1), -2, +1, IpV4Address(0, 0, 0, 11),
         u"  0.  0.  0. 11"},
    };
    for (DigitStep const& step : steps) {
        SCOPED_TRACE(step.what);
        open(step.address);
        press(step.moves < 0 ? -1 : +1, step.moves < 0 ? -step.moves : step.moves);
        unsigned const column = caretColumn(editor_);
        editor_.changeValue(step.delta);
        EXPECT_EQ(editor_.getEditValue(), step.stepped);
        EXPECT_EQ(provider_.screen(),
                  (std::vector<std::u16string>{kHeadline, valueLine(step.shown),
                                               caretLine(column, kChars), kBlank}));
    }
}

TEST_F(IpAddressEditorTest, EachDigitStepsByItsPlaceWithinItsOctet) {
    open(IpV4Address(100, 100, 100, 100));
    std::vector<IpV4Address> seen;
    for (std::size_t i = 0; i < kDigitColumns.size(); ++i) {
        editor_.changeValue(+1);
        seen.push_back(editor_.getEditValue());
        editor_.changeValue(-1);
        editor_.moveMarker(+1);
    }
    EXPECT_EQ(seen, (std::vector<IpV4Address>{
                        IpV4Address(200, 100, 100, 100), IpV4Address(110, 100, 100, 100),
                        IpV4Address(101, 100, 100, 100), IpV4Address(100, 200, 100, 100),
                        IpV4Address(100, 110, 100, 100), IpV4Address(100, 101, 100, 100),
                        IpV4Address(100, 100, 200, 100), IpV4Address(100, 100, 110, 100),
                        IpV4Address(100, 100, 101, 100), IpV4Address(100, 100, 100, 200),
                        IpV4Address(100, 100, 100, 110), IpV4Address(100, 100, 100, 101)}));
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(100, 100, 100, 100));
}

TEST_F(IpAddressEditorTest, LargeStepsClampToTheOctetRange) {
    open(IpV4Address(9, 9, 9, 9));
    editor_.changeValue(+1000);
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(255, 9, 9, 9));
    editor_.changeValue(-1000);
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(0, 9, 9, 9));
}

TEST_F(IpAddressEditorTest, StepsAreCommittedAtOnceWithoutCallingTheCallback) {
    open(IpV4Address(10, 0, 0, 1));
    int calls = 0;
    editor_.setApplyCallback([&calls](std::string const&) { ++calls; });
    editor_.changeValue(+1);
    EXPECT_EQ(editor_.getValue(), IpV4Address(110, 0, 0, 1));
    EXPECT_EQ(calls, 0);
}

TEST_F(IpAddressEditorTest, ReopeningWithoutApplyShowsTheSteppedAddress) {
    open(IpV4Address(10, 0, 0, 1));
    int calls = 0;
    editor_.setApplyCallback([&calls](std::string const&) { ++calls; });
    editor_.changeValue(+1);
    editor_.setFocus(false);
    editor_.setFocus(true);
    EXPECT_EQ(provider_.line(1), valueLine(u"110.  0.  0.  1"));
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(110, 0, 0, 1));
    EXPECT_EQ(calls, 0);
}

// With three full octets and a last octet below 100, the point search from the last octet's
// leading blank finds no point and falls back to that blank, so moving left from the middle
// digit of the last octet jumps onto the point before it. Stepping there changes nothing.
TEST_F(IpAddressEditorTest, LeftOntoTheLastOctetsLeadingBlankLandsOnThePoint) {
    open(IpV4Address(192, 168, 100, 4));
    press(-1, 2);
    ASSERT_EQ(caretColumn(editor_), 15U);
    editor_.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor_), 13U);
    EXPECT_EQ(characterUnderCaret(editor_), u'.');
    EXPECT_EQ(editor_.getSelectedBlock(), 5U);
    provider_.reset();
    editor_.changeValue(+1);
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(192, 168, 100, 4));
    EXPECT_EQ(provider_.drawCount(), 0U);
    editor_.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor_), 12U);
}

TEST_F(IpAddressEditorTest, ApplyCommitsAndReportsTheDottedText) {
    open(IpV4Address(10, 0, 0, 1));
    std::vector<std::string> applied;
    editor_.setApplyCallback([&applied](std::string const& text) { applied.push_back(text); });
    editor_.drawValue(IpV4Address(10, 0, 0, 2));
    EXPECT_EQ(editor_.getValue(), IpV4Address(10, 0, 0, 1));
    editor_.apply();
    EXPECT_EQ(applied, (std::vector<std::string>{"10.0.0.2"}));
    EXPECT_EQ(editor_.getValue(), IpV4Address(10, 0, 0, 2));
}

TEST_F(IpAddressEditorTest, DrawValueShowsAndEditsWithoutCommitting) {
    open(IpV4Address(10, 0, 0, 1));
    editor_.drawValue(IpV4Address(172, 16, 0, 254));
    EXPECT_EQ(provider_.line(1), valueLine(u"172. 16.  0.254"));
    EXPECT_EQ(editor_.getEditValue(), IpV4Address(172, 16, 0, 254));
    EXPECT_EQ(editor_.getValue(), IpV4Address(10, 0, 0, 1));
}

TEST_F(IpAddressEditorTest, SetValueWhileOpenReplacesTheCommittedAddressToo) {
    open(IpV4Address(10, 0, 0, 1));
    editor_.setValue(IpV4Address(10, 0, 0, 9));
    EXPECT_EQ(editor_.getValue(), IpV4Address(10, 0, 0, 9));
    EXPECT_EQ(provider_.line(1), valueLine(u" 10.  0.  0.  9"));
}

TEST_F(IpAddressEditorTest, SetValueFromTextParsesDottedDecimal) {
    EXPECT_TRUE(editor_.setValue(std::string("192.168.001.010")));
    EXPECT_EQ(editor_.getValue(), IpV4Address(192, 168, 1, 10));
    editor_.setFocus(true);
    EXPECT_EQ(provider_.line(1), valueLine(u"192.168.  1. 10"));
}

TEST_F(IpAddressEditorTest, BadAddressTextResetsToZerosAndYieldsFalse) {
    for (std::string const text :
         {"abc", "1.2.3", "1.2.3.4.5", "1..2.3", ".1.2.3", "", "a.b.c.d", "99999999999.1.1.1"}) {
        ASSERT_TRUE(editor_.setValue(std::string("10.20.30.40")));
        editor_.setFocus(true);
        EXPECT_FALSE(editor_.setValue(text)) << text;
        EXPECT_EQ(editor_.getValue(), IpV4Address(0, 0, 0, 0)) << text;
        EXPECT_EQ(editor_.getEditValue(), IpV4Address(0, 0, 0, 0)) << text;
        EXPECT_EQ(provider_.line(1), valueLine(u"  0.  0.  0.  0")) << text;
        editor_.setFocus(false);
    }
}

}  // namespace
