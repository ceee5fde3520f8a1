// The controller models refuse what a driver must not send, so that the driver tests built on
// them can fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "oled_model.h"
#include "st7920_model.h"

namespace {

using yxfp_models::ModelError;
using yxfp_models::OledChip;
using yxfp_models::OledModel;
using yxfp_models::St7920Model;
using Bytes = std::vector<std::uint8_t>;

void i2c(OledModel& model, Bytes const& bytes) { model.i2cTransfer(bytes.data(), bytes.size()); }

void st7920(St7920Model& model, Bytes const& bytes) {
    model.spiTransfer(bytes.data(), bytes.size());
}

TEST(OledModelTest, Sh1106RefusesTheSsd1306sAddressingAndChargePump) {
    OledModel model(OledChip::Sh1106, 64);
    EXPECT_THROW(i2c(model, {0x00, 0x20, 0x00}), ModelError);
    EXPECT_THROW(i2c(model, {0x00, 0x21}), ModelError);
    EXPECT_THROW(i2c(model, {0x00, 0x8D}), ModelError);
}

TEST(OledModelTest, Ssd1306RefusesScrollingAndUnknownCommands) {
    OledModel model(OledChip::Ssd1306, 64);
    EXPECT_THROW(i2c(model, {0x00, 0x2F}), ModelError);
    EXPECT_THROW(i2c(model, {0x00, 0xAD}), ModelError);
    EXPECT_THROW(i2c(model, {0x00, 0x30}), ModelError);
}

TEST(OledModelTest, Ssd1306RefusesAColumnRangeInPageAddressingMode) {
    OledModel model(OledChip::Ssd1306, 64);
    EXPECT_THROW(i2c(model, {0x00, 0x21, 0, 127}), ModelError);
    i2c(model, {0x00, 0x20, 0x00, 0x21, 0, 127});
    EXPECT_THROW(i2c(model, {0x00, 0xB0}), ModelError) << "page start in horizontal mode";
}

TEST(OledModelTest, ControlByteWithLowBitsSetIsRefused) {
    OledModel model(OledChip::Ssd1306, 64);
    EXPECT_THROW(i2c(model, {0x01, 0xAF}), ModelError);
}

TEST(OledModelTest, Ssd1306StaysDarkWithoutItsChargePump) {
    OledModel model(OledChip::Ssd1306, 32);
    i2c(model, {0x00, 0xA8, 0x1F, 0xDA, 0x02, 0xAF});
    EXPECT_FALSE(model.lit());
    i2c(model, {0x00, 0x8D, 0x14});
    EXPECT_TRUE(model.lit());
}

TEST(OledModelTest, WrongComPinsForTheGlassIsReported) {
    OledModel model(OledChip::Ssd1306, 64);
    i2c(model, {0x00, 0x8D, 0x14, 0xDA, 0x02, 0xAF});
    EXPECT_THROW((void)model.picture(), ModelError);
}

TEST(OledModelTest, PageModeWritesShowUprightWithRemapAndDownwardScan) {
    OledModel model(OledChip::Sh1106, 64);
    // Column 2 is the glass's left edge; bit 0 of page 0 its top row.
    i2c(model, {0x00, 0xA1, 0xC8, 0xAF, 0xB0, 0x02, 0x10});
    i2c(model, {0x40, 0x01, 0x80});
    auto const picture = model.picture();
    EXPECT_TRUE(picture.pixel(0, 0));
    EXPECT_TRUE(picture.pixel(1, 7));
    EXPECT_FALSE(picture.pixel(1, 0));
    EXPECT_EQ(model.ram(0, 2), 0x01);
}

TEST(OledModelTest, Sh1106RefusesDataPastItsLastColumn) {
    OledModel model(OledChip::Sh1106, 64);
    i2c(model, {0x00, 0xB0, 0x03, 0x18});  // column 131
    i2c(model, {0x40, 0xFF});
    EXPECT_THROW(i2c(model, {0x40, 0xFF}), ModelError);
}

TEST(St7920ModelTest, RefusesReadsTextAndAMissingStartByte) {
    St7920Model model;
    EXPECT_THROW(st7920(model, {0xFC, 0x30, 0x00}), ModelError) << "RW = 1";
    EXPECT_THROW(st7920(model, {0x30, 0x00}), ModelError) << "no start byte";
    EXPECT_THROW(st7920(model, {0xF8, 0x80, 0x00}), ModelError) << "DDRAM address";
    EXPECT_THROW(st7920(model, {0xFA, 0x40, 0x10}), ModelError) << "text data";
    EXPECT_THROW(st7920(model, {0xF8, 0x30, 0x01}), ModelError) << "nibble without zeros";
}

TEST(St7920ModelTest, GraphicsOverAnUnclearedTextLayerIsReported) {
    St7920Model model;
    st7920(model, {0xF8, 0x00, 0xC0, 0x30, 0x40, 0x30, 0x60});  // display on, extended, graphics
    EXPECT_TRUE(model.lit());
    EXPECT_THROW((void)model.picture(), ModelError);
}

TEST(St7920ModelTest, LowerHalfOfTheGlassIsTheRightHalfOfTheRows) {
    St7920Model model;
    st7920(model, {0xF8, 0x00, 0xC0, 0x00, 0x10, 0x30, 0x60});
    // GDRAM row 0, word 8: the glass's row 32, columns 0-15.
    st7920(model, {0xF8, 0x80, 0x00, 0x80, 0x80});
    st7920(model, {0xFA, 0x80, 0x00, 0x00, 0x10});
    auto const picture = model.picture();
    EXPECT_TRUE(picture.pixel(0, 32));
    EXPECT_TRUE(picture.pixel(15, 32));
    EXPECT_FALSE(picture.pixel(0, 0));
}

}  // namespace
