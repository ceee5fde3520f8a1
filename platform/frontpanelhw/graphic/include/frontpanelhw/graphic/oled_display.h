#pragma once

#include <frontpanelhw/graphic/export.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

namespace frontpanelhw::graphic {

/** The OLED controllers OledDisplay drives. */
enum class OledController {
    Ssd1306,  ///< 128 columns of RAM, page, horizontal and vertical addressing, charge pump 0x8D
    Sh1106    ///< 132 columns of RAM (the 128 visible ones from column 2), page addressing only
};

/** An SPI clock within the SSD1306's limit (a 100 ns clock cycle). */
inline constexpr std::uint32_t kSsd1306SpiHz = 8000000;
/** An SPI clock within the SH1106's limit (2 MHz). */
inline constexpr std::uint32_t kSh1106SpiHz = 2000000;

/** How an OLED module is built and mounted. */
struct FRONTPANELHW_GRAPHIC_EXPORT OledOptions {
    /** The controller on the module. */
    OledController controller = OledController::Ssd1306;
    /** Rows of the glass: 64 or 32 (the width is always 128). */
    unsigned height = 64;
    /** The contrast (segment current) 0-255 set at initialisation; setContrast() changes it. */
    std::uint8_t contrast = 0x7F;
    /** The module is mounted upside down: the controller scans columns and rows the other way. */
    bool flipped = false;
    /** Waits the driver makes (after a reset pulse, after switching the panel on); the default
     *  sleeps. Tests pass one that only adds up. */
    std::function<void(std::chrono::nanoseconds)> wait;
};

/** An SSD1306 or SH1106 OLED module of 128x64 or 128x32 pixels, over I2C or SPI (IPanelBus),
 *  showing the panel's character cells drawn with a font. The controller is initialised by the
 *  first draw (and again after a failed one): a reset pulse when the bus has a reset line, then
 *  the datasheet's power-up sequence. After that each draw sends only the byte spans of each
 *  page that differ from what the controller holds. One thread at a time. */
class FRONTPANELHW_GRAPHIC_EXPORT OledDisplay : public GraphicDisplay {
public:
    /** A module on `bus` with `options`, cells of `font` (`chars` x `lines`, 0: as many as fit).
     *  Sends nothing yet.
     *  @throws std::invalid_argument when `bus` is null, the height is not 64 or 32, or the
     *  cells do not fit. */
    OledDisplay(std::unique_ptr<IPanelBus> bus, OledOptions options, Font font, unsigned chars = 0,
                unsigned lines = 0);
    ~OledDisplay() override;

    /** Switches the panel off (`dark`, its RAM is kept) or on again: burn-in protection while
     *  the panel is idle. Before the first draw it only takes effect with the initialisation.
     *  @throws PanelBusError when sending fails; the next draw then initialises again. */
    void setPowerSave(bool dark) override;
    /** Sets the contrast 0-255 (at once when the controller is initialised, else with the
     *  initialisation). @throws PanelBusError when sending fails. */
    void setContrast(std::uint8_t contrast);
    /** Whether setPowerSave(true) holds. */
    bool powerSave() const;

protected:
    bool flush(MonoBitmap const& bitmap, PixelRect changed) override;

private:
    void initialise();
    void sendCommands(std::initializer_list<std::uint8_t> commands);
    void sendPageSpan(unsigned page, unsigned first, unsigned last);
    void wait(std::chrono::nanoseconds duration) const;

    std::unique_ptr<IPanelBus> bus_;
    OledOptions options_;
    unsigned pages_;
    bool initialised_ = false;
    bool dark_ = false;
    std::vector<std::uint8_t> shown_;  // what the controller's RAM holds, page by page
    std::vector<std::uint8_t> next_;   // the bitmap as page bytes, page by page
};

}  // namespace frontpanelhw::graphic
