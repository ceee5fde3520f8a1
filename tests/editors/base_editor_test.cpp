#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "editor_screen.h"
#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;
using yxfrontpanel::drawing::Point;

// The smallest complete editor: shows whatever text it is given and records the keys it gets.
class TextEditor : public BaseEditor {
public:
    TextEditor(IDrawingProvider const& provider, std::u16string const& headline)
        : BaseEditor(provider, headline) {}

    void show(std::u16string const& text) { valueLabel().setText(text); }
    void putCaretAt(unsigned column) { markerLabel().setLocation(Point{column, 2}, true); }

    void apply() override { ++applies; }
    void moveMarker(int direction) override { moves.push_back(direction); }
    void changeValue(int delta) override { changes.push_back(delta); }

    int applies = 0;
    std::vector<int> moves;
    std::vector<int> changes;
};

struct Screen {
    // Shows "12.5 V" in the focused editor and opens it with the caret at column `caret`.
    void editAt(unsigned caret) {
        editor.show(u"12.5 V");
        editor.setFocus(true);
        editor.setEditorMode(true);
        editor.putCaretAt(caret);
    }

    RecordingProvider provider{kChars, kLines};
    TextEditor editor{provider, u"Volt"};
};

std::u16string const kHeadline = u"     >> Volt <<     ";
std::u16string const kBlank = padded(u"", kChars);

TEST(BaseEditorTest, ConstructionDrawsNothing) {
    Screen screen;
    EXPECT_EQ(screen.provider.drawCount(), 0U);
    EXPECT_FALSE(screen.editor.getFocus());
    EXPECT_FALSE(screen.editor.getEditorMode());
}

TEST(BaseEditorTest, FocusShowsFramedCentredHeadlineEmptyValueLineAndNoCaret) {
    Screen screen;
    screen.editor.setFocus(true);
    EXPECT_EQ(screen.provider.drawCount(), 1U);
    EXPECT_EQ(screen.provider.screen(),
              (std::vector<std::u16string>{kHeadline, kBlank, kBlank, kBlank}));
}

TEST(BaseEditorTest, LabelsFollowTheScreenLayout) {
    Screen screen;
    using yxfrontpanel::drawing::Rectangle;
    using yxfrontpanel::drawing::TextAllignment;
    EXPECT_EQ(screen.editor.getHeadlineLabel().getText(), u">> Volt <<");
    EXPECT_EQ(screen.editor.getHeadlineLabel().getLocation(), (Point{0, 0}));
    EXPECT_EQ(screen.editor.getHeadlineLabel().getTextAllignment(), TextAllignment::Center);
    EXPECT_EQ(screen.editor.getValueLabel().getText(), u"");
    EXPECT_EQ(screen.editor.getValueLabel().getLocation(), (Point{0, 1}));
    EXPECT_EQ(screen.editor.getValueLabel().getSize(), (Rectangle{kChars, 1}));
    EXPECT_EQ(screen.editor.getValueLabel().getTextAllignment(), TextAllignment::Center);
    EXPECT_EQ(screen.editor.getMarkerLabel().getText(), u"^");
    EXPECT_EQ(screen.editor.getMarkerLabel().getLocation(), (Point{0, 2}));
    EXPECT_EQ(screen.editor.getMarkerLabel().getSize(), (Rectangle{1, 1}));
    EXPECT_FALSE(screen.editor.getMarkerLabel().getVisible());
}

TEST(BaseEditorTest, PanelWidthComesFromTheProvider) {
    RecordingProvider provider(16, 3);
    TextEditor editor(provider, u"Hz");
    editor.setFocus(true);
    EXPECT_EQ(provider.screen(),
              (std::vector<std::u16string>{u"    >> Hz <<    ", padded(u"", 16), padded(u"", 16)}));
}

TEST(BaseEditorTest, HeadlineWiderThanThePanelIsNotShown) {
    RecordingProvider provider(10, 3);
    TextEditor editor(provider, u"Frequency");
    editor.setFocus(true);
    EXPECT_EQ(provider.line(0), padded(u"", 10));
}

TEST(BaseEditorTest, EditorModeShowsTheCaretUnderTheFirstEditableCharacter) {
    Screen screen;
    screen.editor.show(u"12.5 V");
    screen.editor.setFocus(true);
    screen.provider.reset();
    screen.editor.setEditorMode(true);
    EXPECT_TRUE(screen.editor.getEditorMode());
    EXPECT_EQ(screen.provider.drawCount(), 1U);
    EXPECT_EQ(screen.provider.screen(),
              (std::vector<std::u16string>{kHeadline, padded(u"       12.5 V", kChars),
                                           caretLine(7, kChars), kBlank}));
}

TEST(BaseEditorTest, LeavingEditorModeHidesTheCaretAndKeepsItsColumn) {
    Screen screen;
    screen.editAt(9);
    screen.editor.setEditorMode(false);
    EXPECT_FALSE(screen.editor.getEditorMode());
    EXPECT_EQ(screen.provider.line(2), kBlank);
    EXPECT_EQ(caretColumn(screen.editor), 9U);
}

TEST(BaseEditorTest, EditorModeAgainMovesTheCaretBackWithoutRedrawing) {
    Screen screen;
    screen.editAt(9);
    screen.provider.reset();
    screen.editor.setEditorMode(true);
    EXPECT_EQ(caretColumn(screen.editor), 7U);
    EXPECT_EQ(screen.provider.drawCount(), 0U);
}

TEST(BaseEditorTest, StartOfNumberIsTheValueLabelsStartColumn) {
    Screen screen;
    EXPECT_EQ(screen.editor.getStartOfNumberInLbl(), 10U);
    screen.editor.show(u"123");
    EXPECT_EQ(screen.editor.getStartOfNumberInLbl(), 8U);
    screen.editor.show(u"1234");
    EXPECT_EQ(screen.editor.getStartOfNumberInLbl(), 8U);
}

TEST(BaseEditorTest, PowerValueCountsPlacesFromTheDecimalPoint) {
    Screen screen;
    EXPECT_EQ(screen.editor.getPowerValue(9, 8), 0);
    EXPECT_EQ(screen.editor.getPowerValue(9, 7), 1);
    EXPECT_EQ(screen.editor.getPowerValue(9, 10), -1);
    EXPECT_EQ(screen.editor.getPowerValue(9, 11), -2);
    EXPECT_EQ(screen.editor.getPowerValue(9, 9), 0);
    EXPECT_EQ(screen.editor.getPowerValue(9, 0), 8);
}

TEST(BaseEditorTest, PowerValueOfFarColumnsStaysInTheIntRange) {
    Screen screen;
    EXPECT_EQ(screen.editor.getPowerValue(UINT_MAX, 0), INT_MAX);
    EXPECT_EQ(screen.editor.getPowerValue(0, UINT_MAX), INT_MIN);
}

TEST(BaseEditorTest, DotPositionOfANumberWithUnitIsTheColumnOfTheBlank) {
    Screen screen;
    screen.editor.show(u"12 V");  // centred: starts at column 8
    EXPECT_EQ(screen.editor.getDotPosition(0), 10U);
}

TEST(BaseEditorTest, DotPositionOfAPlainNumberFollowsItsLastDigit) {
    Screen screen;
    screen.editor.show(u"12");  // centred: starts at column 9
    EXPECT_EQ(screen.editor.getDotPosition(0), 11U);
}

TEST(BaseEditorTest, DotPositionFindsThePointAtOrAfterTheStartIndex) {
    Screen screen;
    screen.editor.show(u"1.2.3 V");  // starts at column 6
    EXPECT_EQ(screen.editor.getDotPosition(0), 7U);
    EXPECT_EQ(screen.editor.getDotPosition(1), 7U);
    EXPECT_EQ(screen.editor.getDotPosition(2), 9U);
    // No point from index 4 on: the blank before the unit is taken.
    EXPECT_EQ(screen.editor.getDotPosition(4), 11U);
    // An index outside the text skips the point search.
    EXPECT_EQ(screen.editor.getDotPosition(7), 11U);
    EXPECT_EQ(screen.editor.getDotPosition(UINT_MAX), 11U);
}

// The dot position of index 0 for each text shown (none for an empty one).
TEST(BaseEditorTest, DotPositionOfIndexZeroFollowsTheShownText) {
    struct Case {
        char const* why;
        std::u16string text;
        unsigned dot;
    };
    Case const cases[] = {
        {"starts at column 8 without point or blank: its end", u"1234", 12U},
        {"nothing shown: the start column", u"", 10U},
        {"starts at column 7, a leading minus shifts it left", u"-1.5 ", 8U},
        {"starts at column 7, only a minus at the start counts", u"1.5 -", 8U},
    };
    for (Case const& shown : cases) {
        Screen screen;
        if (!shown.text.empty()) {
            screen.editor.show(shown.text);
        }
        EXPECT_EQ(screen.editor.getDotPosition(0), shown.dot) << shown.why;
    }
}

TEST(BaseEditorTest, MarkerInValuePositionIsTheCaretsIndexIntoTheText) {
    Screen screen;
    screen.editor.show(u"12.5 V");  // starts at column 7
    screen.editor.putCaretAt(9);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(0), 2);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(1), 3);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(-1), 1);
    screen.editor.putCaretAt(0);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(-1), -8);
}

TEST(BaseEditorTest, MinusAnywhereShiftsTheMarkerPositionByOne) {
    Screen screen;
    screen.editor.show(u"12.5 -V");  // starts at column 6
    screen.editor.putCaretAt(8);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(0), 3);
    // ... while the dot position only looks at the first character.
    EXPECT_EQ(screen.editor.getDotPosition(0), 8U);
}

TEST(BaseEditorTest, MarkerPositionOfFarOffsetsStaysInTheIntRange) {
    Screen screen;
    screen.editor.show(u"1");
    screen.editor.putCaretAt(UINT_MAX);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(INT_MAX), INT_MAX);
    screen.editor.putCaretAt(0);
    EXPECT_EQ(screen.editor.getMarkerInValuePosition(INT_MIN), INT_MIN);
}

TEST(BaseEditorTest, SecondInitReplacesTheScreen) {
    Screen screen;
    screen.editor.show(u"old");
    screen.editor.setFocus(true);
    screen.provider.reset();
    screen.editor.init(kChars, u"Amp");
    EXPECT_EQ(screen.provider.drawCount(), 1U);
    EXPECT_EQ(screen.provider.screen(),
              (std::vector<std::u16string>{u"     >> Amp <<      ", kBlank, kBlank, kBlank}));
    // The form shows the new labels only: changing the new value label shows once.
    screen.provider.reset();
    screen.editor.show(u"new");
    EXPECT_EQ(screen.provider.drawCount(), 1U);
    EXPECT_EQ(screen.provider.line(1), padded(u"        new", kChars));
}

TEST(BaseEditorTest, KeysReachTheDerivedEditor) {
    Screen screen;
    BaseEditor& editor = screen.editor;
    editor.moveMarker(-1);
    editor.changeValue(1);
    editor.apply();
    EXPECT_EQ(screen.editor.moves, (std::vector<int>{-1}));
    EXPECT_EQ(screen.editor.changes, (std::vector<int>{1}));
    EXPECT_EQ(screen.editor.applies, 1);
}

}  // namespace
