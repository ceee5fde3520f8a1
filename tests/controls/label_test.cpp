#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include "parent_probe.h"

namespace {

using yxfp_test::ParentProbe;
using yxfrontpanel::Label;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;
using yxfrontpanel::drawing::TextAllignment;

// A label attached to a probe and redrawn, so that its buffer shows the current text.
std::u16string rendered(Label& label) {
    label.draw(false);
    return label.getBuffer().getLineString(0);
}

TEST(LabelTest, ConstructorRendersLeftAlignedText) {
    Label label(Point{3, 2}, 6, u"abc");
    EXPECT_EQ(label.getSize(), (Rectangle{6, 1}));
    EXPECT_EQ(label.getLocation(), (Point{3, 2}));
    EXPECT_EQ(label.getTextAllignment(), TextAllignment::Left);
    EXPECT_EQ(label.getBuffer().getLineString(0), u"abc   ");
    EXPECT_EQ(label.getStartColumn(), 0U);
    EXPECT_EQ(label.getEndColumn(), 3U);
}

TEST(LabelTest, TextOnlyConstructorIsAsWideAsTheText) {
    Label label(u"hello");
    EXPECT_EQ(label.getSize(), (Rectangle{5, 1}));
    EXPECT_EQ(label.getLocation(), (Point{0, 0}));
    EXPECT_EQ(label.getBuffer().getLineString(0), u"hello");
}

TEST(LabelTest, DefaultConstructorIsEmptyAndZeroWide) {
    Label label;
    EXPECT_EQ(label.getText(), u"");
    EXPECT_EQ(label.getSize(), (Rectangle{0, 1}));
    EXPECT_EQ(label.getBuffer().getChars(), 0U);
}

TEST(LabelTest, RightAlignmentStartsAtWidthMinusLength) {
    Label label(Point{0, 0}, 10, u"abc");
    label.setTextAllignment(TextAllignment::Right);
    EXPECT_EQ(label.getStartColumn(), 7U);
    EXPECT_EQ(label.getEndColumn(), 10U);
    EXPECT_EQ(label.getBuffer().getLineString(0), u"       abc");
}

TEST(LabelTest, CenterAlignmentRoundsTheStartDown) {
    Label label(Point{0, 0}, 10, u"abc");
    label.setTextAllignment(TextAllignment::Center);
    EXPECT_EQ(label.getStartColumn(), 3U);
    EXPECT_EQ(label.getBuffer().getLineString(0), u"   abc    ");
}

TEST(LabelTest, OverlongTextUnderRightOrCenterShowsNothing) {
    for (TextAllignment alignment : {TextAllignment::Right, TextAllignment::Center}) {
        Label label(Point{0, 0}, 10, u"abcdefghijkl");
        label.setTextAllignment(alignment);
        EXPECT_EQ(label.getBuffer().getLineString(0), u"          ") << alignment;
        EXPECT_GE(label.getStartColumn(), 10U) << alignment;
    }
}

TEST(LabelTest, OverlongTextUnderLeftIsCut) {
    Label label(Point{0, 0}, 10, u"abcdefghijkl");
    EXPECT_EQ(label.getBuffer().getLineString(0), u"abcdefghij");
    EXPECT_EQ(label.getEndColumn(), 12U);
}

TEST(LabelTest, SetTextAllignmentRedrawsEvenWhenUnchanged) {
    Label label(Point{0, 0}, 5, u"ab");
    ParentProbe parent;
    parent.attach(label);
    label.setTextAllignment(TextAllignment::Left);
    EXPECT_EQ(parent.draws, 1);
    EXPECT_EQ(parent.redraws, 1);
}

TEST(LabelTest, UnknownAlignmentKeepsThePreviousStartColumn) {
    Label label(Point{0, 0}, 10, u"abc");
    label.setTextAllignment(TextAllignment::Right);
    label.setTextAllignment(static_cast<TextAllignment>(7));
    EXPECT_EQ(label.getStartColumn(), 7U);
    EXPECT_EQ(label.getBuffer().getLineString(0), u"       abc");
}

TEST(LabelTest, NewTextIsRenderedAndHandedToParent) {
    Label label(Point{1, 0}, 4, u"ab");
    ParentProbe parent;
    parent.attach(label);
    label.setText(u"xyz");
    ASSERT_TRUE(parent.lastBuffer.has_value());
    EXPECT_EQ(parent.lastBuffer->getLineString(0), u"xyz ");
    EXPECT_EQ(parent.redraws, 1);
}

TEST(LabelTest, ShorterTextClearsTheRestOfTheLine) {
    Label label(Point{0, 0}, 4, u"abcd");
    label.setText(u"x");
    EXPECT_EQ(rendered(label), u"x   ");
}

}  // namespace
