#include "screenshot.h"

#include <yxfrontpanel/components.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

#if YXFP_HAS_PNG
/** The big-endian 32-bit number at `offset` of `bytes`. */
std::uint32_t be32(std::string const& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = (value << 8) | static_cast<unsigned char>(bytes.at(offset + i));
    }
    return value;
}

TEST(ScreenshotTest, IsAPngOfTheCellGridInSixByEightPixels) {
    frontpanelhw::drawing::DisplayBuffer screen(20, 4);
    screen.setLineContent(0, 0, u"Output");
    std::string const png = frontpanelsim::screenshotPng(screen);
    ASSERT_GT(png.size(), 24U);
    EXPECT_EQ(png.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
    EXPECT_EQ(png.substr(12, 4), "IHDR");
    EXPECT_EQ(be32(png, 16), 120U);
    EXPECT_EQ(be32(png, 20), 32U);
}

TEST(ScreenshotTest, DifferentScreensGiveDifferentImages) {
    frontpanelhw::drawing::DisplayBuffer blank(16, 2);
    frontpanelhw::drawing::DisplayBuffer text(16, 2);
    text.setLineContent(1, 0, u"Hello");
    EXPECT_NE(frontpanelsim::screenshotPng(blank), frontpanelsim::screenshotPng(text));
    EXPECT_TRUE(frontpanelsim::screenshotsAvailable());
}
#else
TEST(ScreenshotTest, WithoutPngSupportScreenshotsAreRefused) {
    EXPECT_FALSE(frontpanelsim::screenshotsAvailable());
    EXPECT_THROW(frontpanelsim::screenshotPng(frontpanelhw::drawing::DisplayBuffer(2, 1)),
                 std::runtime_error);
}
#endif

}  // namespace
