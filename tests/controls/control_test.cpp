#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <memory>

#include "parent_probe.h"

namespace {

using yxfp_test::ParentProbe;
using yxfrontpanel::Control;
using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;

/** Tests of one control; attached() makes it with a parent probe watching it. */
class ControlTest : public testing::Test {
protected:
    Control& attached(Point location, Rectangle size) {
        control_ = std::make_unique<Control>(location, size);
        parent.attach(*control_);
        return *control_;
    }

    ParentProbe parent;

private:
    std::unique_ptr<Control> control_;
};

TEST_F(ControlTest, StartsWithDefaultTextVisibleAndNotShown) {
    Control control(Point{2, 1}, Rectangle{5, 2});
    EXPECT_EQ(control.getText(), u"Ctrl");
    EXPECT_TRUE(control.getVisible());
    EXPECT_FALSE(control.getShown());
    EXPECT_EQ(control.getLocation(), (Point{2, 1}));
    EXPECT_EQ(control.getSize(), (Rectangle{5, 2}));
    EXPECT_EQ(control.getBuffer().getChars(), 5U);
    EXPECT_EQ(control.getBuffer().getLineCount(), 2U);
}

TEST_F(ControlTest, DrawWithoutCallbackDoesNothingNotEvenRedrawParent) {
    Control control(Point{0, 0}, Rectangle{3, 1});
    int redraws = 0;
    control.setRedrawParentCallback([&redraws] { ++redraws; });
    control.draw(true);
    EXPECT_EQ(redraws, 0);
}

TEST_F(ControlTest, DrawAfterTheCallbackWasReplacedByAnEmptyOneDoesNothing) {
    Control& control = attached(Point{0, 0}, Rectangle{3, 1});
    control.onDrawCallback({});
    control.draw(true);
    EXPECT_EQ(parent.draws, 0);
    EXPECT_EQ(parent.redraws, 0);
}

TEST_F(ControlTest, EmptyOnDrawCallbackInstallsNothing) {
    Control control(Point{0, 0}, Rectangle{3, 1});
    int redraws = 0;
    control.setRedrawParentCallback([&redraws] { ++redraws; });
    control.onDrawCallback({});
    control.draw(true);
    EXPECT_EQ(redraws, 0);
}

TEST_F(ControlTest, DrawHandsLocationAndBufferToParent) {
    Control& control = attached(Point{4, 2}, Rectangle{3, 1});
    control.draw(false);
    EXPECT_EQ(parent.draws, 1);
    EXPECT_EQ(parent.redraws, 0);
    EXPECT_EQ(parent.lastLocation, (Point{4, 2}));
    control.draw(true);
    EXPECT_EQ(parent.draws, 2);
    EXPECT_EQ(parent.redraws, 1);
}

TEST_F(ControlTest, SetTextDrawsOnceAndRedrawsParentOnceOnlyForNewText) {
    Control& control = attached(Point{0, 0}, Rectangle{3, 1});
    control.setText(u"Ctrl");
    EXPECT_EQ(parent.draws, 0);
    EXPECT_EQ(parent.redraws, 0);
    control.setText(u"abc");
    EXPECT_EQ(control.getText(), u"abc");
    EXPECT_EQ(parent.draws, 1);
    EXPECT_EQ(parent.redraws, 1);
}

TEST_F(ControlTest, NarrowSetTextWidensEveryByteWithoutDecoding) {
    Control control(Point{0, 0}, Rectangle{3, 1});
    control.setText(std::string("a\xC3\xA4"));
    EXPECT_EQ(control.getText(), (std::u16string{u'a', char16_t{0xC3}, char16_t{0xA4}}));
}

TEST_F(ControlTest, HidingDeliversBlankBufferOfItsSize) {
    Control& control = attached(Point{1, 1}, Rectangle{4, 2});
    control.setVisible(false);
    ASSERT_TRUE(parent.lastBuffer.has_value());
    EXPECT_EQ(parent.lastBuffer->getChars(), 4U);
    EXPECT_EQ(parent.lastBuffer->getLineCount(), 2U);
    EXPECT_EQ(parent.lastBuffer->getLineString(0), u"    ");
    EXPECT_EQ(parent.lastBuffer->getLineString(1), u"    ");
    EXPECT_EQ(parent.redraws, 1);
}

TEST_F(ControlTest, HiddenControlBlanksTheSizeNotTheBufferSize) {
    Control& control = attached(Point{0, 0}, Rectangle{4, 1});
    control.overwriteSize(Rectangle{2, 1});
    control.setVisible(false);
    ASSERT_TRUE(parent.lastBuffer.has_value());
    EXPECT_EQ(parent.lastBuffer->getChars(), 2U);
}

TEST_F(ControlTest, SetVisibleToCurrentValueDoesNotDraw) {
    Control& control = attached(Point{0, 0}, Rectangle{2, 1});
    control.setVisible(true);
    EXPECT_EQ(parent.draws, 0);
    control.setVisible(false);
    control.setVisible(false);
    EXPECT_EQ(parent.draws, 1);
    EXPECT_FALSE(control.getVisible());
}

TEST_F(ControlTest, SetLocationRedrawsOnlyWhenAskedAndChanged) {
    Control& control = attached(Point{0, 0}, Rectangle{2, 1});
    control.setLocation(Point{0, 0}, true);
    EXPECT_EQ(parent.draws, 0);
    control.setLocation(Point{3, 1}, false);
    EXPECT_EQ(parent.draws, 0);
    EXPECT_EQ(control.getLocation(), (Point{3, 1}));
    control.setLocation(Point{5, 1}, true);
    EXPECT_EQ(parent.draws, 1);
    EXPECT_EQ(parent.redraws, 1);
    EXPECT_EQ(parent.lastLocation, (Point{5, 1}));
}

TEST_F(ControlTest, OverwriteSizeKeepsBufferDimensions) {
    Control control(Point{0, 0}, Rectangle{3, 1});
    control.overwriteSize(Rectangle{20, 1});
    EXPECT_EQ(control.getSize(), (Rectangle{20, 1}));
    EXPECT_EQ(control.getBuffer().getChars(), 3U);
}

TEST_F(ControlTest, RedrawParentReportsWhetherACallbackIsInstalled) {
    Control control(Point{0, 0}, Rectangle{1, 1});
    EXPECT_FALSE(control.redrawParent());
    int redraws = 0;
    control.setRedrawParentCallback([&redraws] { ++redraws; });
    EXPECT_TRUE(control.redrawParent());
    EXPECT_EQ(redraws, 1);
}

TEST_F(ControlTest, ShownFlagIsSetThroughItsSetter) {
    Control control(Point{0, 0}, Rectangle{1, 1});
    control.setShown(true);
    EXPECT_TRUE(control.getShown());
    control.setShown(false);
    EXPECT_FALSE(control.getShown());
}

TEST_F(ControlTest, DestructionDoesNotCallCallbacks) {
    {
        Control control(Point{0, 0}, Rectangle{1, 1});
        parent.attach(control);
    }
    EXPECT_EQ(parent.draws, 0);
    EXPECT_EQ(parent.redraws, 0);
}

}  // namespace
