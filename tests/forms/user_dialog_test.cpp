#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "item_screens.h"
#include "recording_provider.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;
using yxfrontpanel::drawing::TextAllignment;

// --- layout ---

// On an even width the confirm hint is cut at the right edge: cancel hint in 0-9 (cut),
// column 10 blank, confirm hint in 11-20, whose last cell is past the panel, so the "s" of
// "Yes" is not seen. An odd width fits it exactly.
TEST(UserDialogTest, ConfirmHintFitsOnlyAnOddWidth) {
    std::pair<unsigned, std::u16string> const widths[] = {
        {20, u"BACK: Canc" + std::u16string(u" ") + u"   OK: Ye"},
        {21, u"BACK: Canc    OK: Yes"},
    };
    for (auto const& [width, hints] : widths) {
        RecordingProvider provider(width, 4);
        UserDialog dialog(provider, "Reset device?", "All settings lost", "Yes");
        dialog.setFocus(true);
        EXPECT_EQ(provider.screen(),
                  (Screen{centred(u"Reset device?", width), centred(u"All settings lost", width),
                          hints, padded(u"", width)}))
            << width << " columns";
    }
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
