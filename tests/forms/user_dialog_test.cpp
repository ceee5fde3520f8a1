#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recording_provider.h"

namespace {

using yxfp_test::padded;
using yxfp_test::RecordingProvider;
using yxfrontpanel::createLine;
using yxfrontpanel::createOkLbl;
using yxfrontpanel::UserDialog;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;
using yxfrontpanel::drawing::TextAllignment;
using Screen = std::vector<std::u16string>;

// `text` centred in `width` columns the way a label places it (odd rest on the right).
std::u16string centred(std::u16string const& text, std::size_t width) {
    std::size_t const left = (width - text.size()) / 2;
    return padded(std::u16string(left, u' ') + text, width);
}

// --- layout ---

TEST(UserDialogTest, EvenWidthCutsTheConfirmHintAtTheRightEdge) {
    RecordingProvider provider(20, 4);
    UserDialog dialog(provider, "Reset device?", "All settings lost", "Yes");
    dialog.setFocus(true);
    // Cancel hint in 0-9 (cut), column 10 blank, confirm hint in 11-20: its last cell is past
    // the panel, so the "s" of "Yes" is not seen.
    EXPECT_EQ(provider.screen(),
              (Screen{centred(u"Reset device?", 20), centred(u"All settings lost", 20),
                      u"BACK: Canc" + std::u16string(u" ") + u"   OK: Ye", padded(u"", 20)}));
}

TEST(UserDialogTest, OddWidthFitsTheConfirmHintExactly) {
    RecordingProvider provider(21, 4);
    UserDialog dialog(provider, "Reset device?", "All settings lost", "Yes");
    dialog.setFocus(true);
    EXPECT_EQ(provider.screen(),
              (Screen{centred(u"Reset device?", 21), centred(u"All settings lost", 21),
                      u"BACK: Canc    OK: Yes", padded(u"", 21)}));
}

TEST(UserDialogTest, NoLabelCoversTheColumnBetweenTheHints) {
    RecordingProvider provider(21, 4);
    UserDialog dialog(provider, "", "", "abcdef");  // "OK: abcdef" fills its ten columns
    dialog.setFocus(true);
    EXPECT_EQ(provider.line(2), u"BACK: Canc OK: abcdef");
    EXPECT_EQ(provider.line(2)[10], u' ');
}

TEST(UserDialogTest, WidePanelShowsTheWholeCancelHint) {
    RecordingProvider provider(40, 4);
    UserDialog dialog(provider, "a", "b", "Yes");
    dialog.setFocus(true);
    EXPECT_EQ(provider.line(2),
              padded(u"BACK: Cancel", 20) + u" " + std::u16string(13, u' ') + u"OK: Ye");
}

TEST(UserDialogTest, EmptyConfirmWordEndsTheLabelWithTheBlankOfTheHint) {
    RecordingProvider provider(21, 4);
    UserDialog dialog(provider, "a", "b", "");
    dialog.setFocus(true);
    EXPECT_EQ(provider.line(2), u"BACK: Canc       OK: ");
    EXPECT_EQ(provider.line(2).back(), u' ');
}

TEST(UserDialogTest, NarrowBytesAboveAsciiAreWidenedOneByOne) {
    RecordingProvider provider(21, 4);
    UserDialog dialog(provider, "\xC3\xA9t\xE9", "\xF8", "\xFC");
    dialog.setFocus(true);
    std::u16string const widened{char16_t{0xC3}, char16_t{0xA9}, u't', char16_t{0xE9}};
    EXPECT_EQ(provider.line(0), centred(widened, 21));
    EXPECT_EQ(provider.line(1), centred(std::u16string(1, char16_t{0xF8}), 21));
    EXPECT_EQ(provider.line(2), u"BACK: Canc" + std::u16string(u"      OK: ") + char16_t{0xFC});
}

TEST(UserDialogTest, MessageLongerThanThePanelShowsNothing) {
    RecordingProvider provider(20, 4);
    UserDialog dialog(provider, "This message is far too long", "fits", "Yes");
    dialog.setFocus(true);
    EXPECT_EQ(provider.line(0), padded(u"", 20));
    EXPECT_EQ(provider.line(1), centred(u"fits", 20));
}

TEST(UserDialogTest, ShortPanelDropsTheLinesPastItsLast) {
    RecordingProvider provider(20, 2);
    UserDialog dialog(provider, "first", "second", "Yes");
    dialog.setFocus(true);
    EXPECT_EQ(provider.screen(), (Screen{centred(u"first", 20), centred(u"second", 20)}));
    RecordingProvider oneLine(20, 1);
    UserDialog small(oneLine, "first", "second", "Yes");
    small.setFocus(true);
    EXPECT_EQ(oneLine.screen(), Screen{centred(u"first", 20)});
}

// --- focus and drawing ---

TEST(UserDialogTest, DrawsOnlyWhenItGainsTheFocus) {
    RecordingProvider provider(20, 4);
    UserDialog dialog(provider, "a", "b", "c");
    EXPECT_EQ(provider.drawCount(), 0U);
    dialog.setFocus(true);
    dialog.setFocus(true);
    EXPECT_EQ(provider.drawCount(), 1U);
    dialog.setFocus(false);
    EXPECT_EQ(provider.drawCount(), 1U);
    EXPECT_FALSE(dialog.getFocus());
}

TEST(UserDialogTest, NothingIsInverted) {
    RecordingProvider provider(21, 4);
    UserDialog dialog(provider, "a", "b", "c");
    dialog.setFocus(true);
    for (unsigned line = 0; line < 4; ++line) {
        EXPECT_EQ(provider.inversion(line), std::string(21, '.')) << "line " << line;
    }
}

// --- the label factories ---

TEST(CreateLineTest, MakesACentredLabelOfTheWidenedText) {
    auto const label = createLine("Go \xB0", Point{2, 1}, 9);
    EXPECT_EQ(label->getLocation(), (Point{2, 1}));
    EXPECT_EQ(label->getSize(), (Rectangle{9, 1}));
    EXPECT_EQ(label->getTextAllignment(), TextAllignment::Center);
    EXPECT_EQ(label->getText(), u"Go " + std::u16string(1, char16_t{0xB0}));
    EXPECT_EQ(label->getBuffer().getLineString(0),
              u"  Go " + std::u16string(1, char16_t{0xB0}) + u"   ");
}

TEST(CreateOkLblTest, MakesARightAlignedHintOneColumnRightOfItsWidth) {
    auto const label = createOkLbl(10, "Go");
    EXPECT_EQ(label->getLocation(), (Point{11, 2}));
    EXPECT_EQ(label->getSize(), (Rectangle{10, 1}));
    EXPECT_EQ(label->getTextAllignment(), TextAllignment::Right);
    EXPECT_EQ(label->getText(), u"OK: Go");
    EXPECT_EQ(label->getBuffer().getLineString(0), u"    OK: Go");
}

TEST(CreateOkLblTest, EmptyWordKeepsTheTrailingBlankInTheLastColumn) {
    auto const label = createOkLbl(10, "");
    EXPECT_EQ(label->getText(), u"OK: ");
    EXPECT_EQ(label->getBuffer().getLineString(0), u"      OK: ");
    EXPECT_EQ(label->getEndColumn(), 10U);
}

}  // namespace
