#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using frontpanelhw::MemoryDisplay;
using frontpanelhw::drawing::DisplayBuffer;
using yxfrontpanel::DrawingProvider;

// A device that answers "not shown" or throws, to see the provider pass both through.
class RefusingDisplay : public frontpanelhw::IDisplay {
public:
    unsigned getLines() const override { return 2; }
    unsigned getChars() const override { return 8; }
    bool draw(DisplayBuffer const& /*buffer*/) override {
        ++calls;
        if (throwOnDraw) {
            throw std::runtime_error("device gone");
        }
        return false;
    }
    int calls = 0;
    bool throwOnDraw = false;
};

TEST(DrawingProviderTest, ReportsTheDeviceSize) {
    MemoryDisplay display(21, 4);
    DrawingProvider provider(display);
    EXPECT_EQ(provider.getChars(), 21U);
    EXPECT_EQ(provider.getLines(), 4U);
}

TEST(DrawingProviderTest, StartsEnabledAndForwardsFrames) {
    MemoryDisplay display(4, 1);
    DrawingProvider provider(display);
    DisplayBuffer frame(4, 1);
    frame.setLineContent(0, 0, u"ab");
    EXPECT_TRUE(provider.getDrawingEnabled());
    EXPECT_TRUE(provider.draw(frame));
    EXPECT_EQ(display.getDrawCount(), 1U);
    EXPECT_EQ(display.getLastFrame().getLineString(0), u"ab  ");
}

TEST(DrawingProviderTest, DisabledDrawingReturnsFalseAndDeviceSeesNothing) {
    MemoryDisplay display(4, 1);
    DrawingProvider provider(display);
    provider.enableDrawing(false);
    EXPECT_FALSE(provider.draw(DisplayBuffer(4, 1)));
    EXPECT_EQ(display.getDrawCount(), 0U);
    provider.enableDrawing(true);
    EXPECT_EQ(display.getDrawCount(), 0U) << "enabling must not redraw";
    EXPECT_TRUE(provider.draw(DisplayBuffer(4, 1)));
    EXPECT_EQ(display.getDrawCount(), 1U);
}

TEST(DrawingProviderTest, ReturnsTheDeviceAnswer) {
    RefusingDisplay display;
    DrawingProvider provider(display);
    EXPECT_FALSE(provider.draw(DisplayBuffer(8, 2)));
    EXPECT_EQ(display.calls, 1);
}

TEST(DrawingProviderTest, UnlocksWhenTheDeviceThrows) {
    RefusingDisplay display;
    DrawingProvider provider(display);
    display.throwOnDraw = true;
    EXPECT_THROW(provider.draw(DisplayBuffer(8, 2)), std::runtime_error);
    display.throwOnDraw = false;
    EXPECT_FALSE(provider.draw(DisplayBuffer(8, 2))) << "a second draw must not deadlock";
    EXPECT_EQ(display.calls, 2);
}

TEST(DrawingProviderTest, DestructionLeavesTheDeviceAlone) {
    MemoryDisplay display(4, 1);
    { DrawingProvider provider(display); }
    EXPECT_EQ(display.getDrawCount(), 0U);
}

}  // namespace
