// A bus that fails: the draw says so, and the next one initialises the controller again and
// sends the whole picture. A reset line is pulsed before the initialisation.
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/graphic/oled_display.h>
#include <frontpanelhw/graphic/panel_bus.h>
#include <frontpanelhw/graphic/st7920_display.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "oled_model.h"
#include "st7920_model.h"

namespace {

using frontpanelhw::drawing::DisplayBuffer;
using frontpanelhw::graphic::PanelBusError;

/** What a test controls of a ModelBus and reads back. */
struct BusControl {
    bool failing = false;
    std::string log;
};

/** An SPI bus straight into a model, which can be made to fail, and which logs its reset line
 *  and the waits between the transfers. */
class ModelBus : public frontpanelhw::graphic::IPanelBus {
public:
    ModelBus(yxfp_models::OledModel* oled, yxfp_models::St7920Model* st7920, BusControl& control)
        : oled_(oled), st7920_(st7920), control_(control) {}

    void write(bool data, std::uint8_t const* bytes, std::size_t size) override {
        if (control_.failing) {
            throw PanelBusError("the test bus fails");
        }
        control_.log += data ? 'D' : 'C';
        if (oled_ != nullptr) {
            oled_->spiTransfer(data, bytes, size);
        } else {
            st7920_->spiTransfer(bytes, size);
        }
    }
    bool setReset(bool active) override {
        control_.log += active ? "R" : "r";
        return true;
    }
    std::size_t maxTransferBytes() const override { return 4096; }

private:
    yxfp_models::OledModel* oled_;
    yxfp_models::St7920Model* st7920_;
    BusControl& control_;
};

DisplayBuffer frame(char16_t const* text) {
    DisplayBuffer buffer(21, 8);
    buffer.setLineContent(3, 2, text);
    return buffer;
}

TEST(OledDisplayTest, FailedDrawIsReportedAndTheNextOneStartsOver) {
    yxfp_models::OledModel model(yxfp_models::OledChip::Ssd1306, 64);
    BusControl control;
    frontpanelhw::graphic::OledOptions options;
    options.wait = [&control](std::chrono::nanoseconds) { control.log += 'w'; };
    frontpanelhw::graphic::OledDisplay display(std::make_unique<ModelBus>(&model, nullptr, control),
                                               options, frontpanelhw::graphic::Font::builtin6x8());
    ASSERT_TRUE(display.draw(frame(u"first")));
    EXPECT_EQ(control.log.substr(0, 5), "RwrwC") << "reset pulse, then the first commands";
    control.failing = true;
    EXPECT_FALSE(display.draw(frame(u"second")));
    control.failing = false;
    control.log.clear();
    ASSERT_TRUE(display.draw(frame(u"second")));
    EXPECT_EQ(control.log.substr(0, 5), "RwrwC") << "initialised again";
    EXPECT_EQ(model.picture(), display.bitmap());
    EXPECT_TRUE(model.lit());
}

TEST(St7920DisplayTest, FailedDrawIsReportedAndTheNextOneStartsOver) {
    yxfp_models::St7920Model model;
    BusControl control;
    frontpanelhw::graphic::St7920Options options;
    options.wait = [](std::chrono::nanoseconds) {};
    frontpanelhw::graphic::St7920Display display(
        std::make_unique<ModelBus>(nullptr, &model, control), options,
        frontpanelhw::graphic::Font::builtin6x8());
    ASSERT_TRUE(display.draw(frame(u"first")));
    control.failing = true;
    EXPECT_FALSE(display.draw(frame(u"second")));
    control.failing = false;
    ASSERT_TRUE(display.draw(frame(u"second")));
    EXPECT_EQ(model.picture(), display.bitmap());
}

}  // namespace
