#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using yxfrontpanel::drawing::Point;
using yxfrontpanel::drawing::Rectangle;
using yxfrontpanel::drawing::TextAllignment;

template <class T>
std::string streamed(T const& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

TEST(DrawingTest, PointComparesBothCoordinates) {
    EXPECT_EQ((Point{1, 2}), (Point{1, 2}));
    EXPECT_NE((Point{1, 2}), (Point{2, 1}));
    EXPECT_NE((Point{1, 2}), (Point{1, 3}));
    EXPECT_FALSE((Point{1, 2}) != (Point{1, 2}));
}

TEST(DrawingTest, RectangleComparesBothDimensions) {
    EXPECT_EQ((Rectangle{1, 2}), (Rectangle{1, 2}));
    EXPECT_NE((Rectangle{1, 2}), (Rectangle{2, 1}));
    EXPECT_NE((Rectangle{1, 2}), (Rectangle{1, 3}));
    EXPECT_FALSE((Rectangle{4, 4}) != (Rectangle{4, 4}));
}

TEST(DrawingTest, PointStreamsItsCoordinates) {
    EXPECT_EQ(streamed(Point{3, 1}), "X: 3 - Y: 1");
    EXPECT_EQ(streamed(Point{4294967295U, 0}), "X: 4294967295 - Y: 0");
}

TEST(DrawingTest, RectangleStreamsItsDimensions) {
    EXPECT_EQ(streamed(Rectangle{20, 4}), "Width: 20 - Height: 4");
}

TEST(DrawingTest, AlignmentStreamsItsName) {
    EXPECT_EQ(streamed(TextAllignment::Left), "Left");
    EXPECT_EQ(streamed(TextAllignment::Right), "Right");
    EXPECT_EQ(streamed(TextAllignment::Center), "Center");
}

TEST(DrawingTest, AlignmentOutsideTheKnownValuesStreamsNothing) {
    EXPECT_EQ(streamed(static_cast<TextAllignment>(3)), "");
    EXPECT_EQ(streamed(static_cast<TextAllignment>(255)), "");
}

TEST(DrawingTest, AlignmentValuesAreFixed) {
    EXPECT_EQ(static_cast<int>(TextAllignment::Left), 0);
    EXPECT_EQ(static_cast<int>(TextAllignment::Right), 1);
    EXPECT_EQ(static_cast<int>(TextAllignment::Center), 2);
}

TEST(DrawingTest, SharedTextConstantsHoldTheirTexts) {
    EXPECT_EQ(yxfrontpanel::kCelsiusUnitText, (std::u16string{char16_t{0x00F8}, u'C'}));
    EXPECT_EQ(yxfrontpanel::kMarkerOpen, u">> ");
    EXPECT_EQ(yxfrontpanel::kMarkerClose, u" <<");
    EXPECT_EQ(yxfrontpanel::kOnlyInLocalModeText, u"Only in local mode!");
}

}  // namespace
