#pragma once

#include <frontpanelhw/graphic/export.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/panel_bus.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

namespace frontpanelhw::graphic {

/** The SPI clock an ST7920 is driven with: each byte takes 16 clocks after the start byte, and
 *  the controller needs 72 us per byte, which 200 kHz leaves it. */
inline constexpr std::uint32_t kSt7920SpiHz = 200000;

/** How an ST7920 module is mounted. */
struct FRONTPANELHW_GRAPHIC_EXPORT St7920Options {
    /** The module is mounted upside down: the driver turns the picture (the controller cannot). */
    bool flipped = false;
    /** Waits the driver makes (power-up, reset, clearing); the default sleeps. */
    std::function<void(std::chrono::nanoseconds)> wait;
};

/** A 128x64 ST7920 LCD module in graphic mode (the extended instruction set) over its serial
 *  interface on SPI (PSB low; SPI mode 0, chip select active high, at most kSt7920SpiHz), showing
 *  the panel's character cells drawn with a font. Every transfer is a start byte (five ones, RW,
 *  RS) followed by each byte as two bytes, high nibble then low nibble. The first draw (and the
 *  one after a failure) initialises the controller; then only the changed 16-pixel words of each
 *  row are sent. One thread at a time. */
class FRONTPANELHW_GRAPHIC_EXPORT St7920Display : public GraphicDisplay {
public:
    /** A module on `bus` (a D/C line is not used), cells of `font` (`chars` x `lines`, 0: as many
     *  as fit). Sends nothing yet.
     *  @throws std::invalid_argument when `bus` is null or the cells do not fit. */
    St7920Display(std::unique_ptr<IPanelBus> bus, St7920Options options, Font font,
                  unsigned chars = 0, unsigned lines = 0);
    ~St7920Display() override;

    /** Switches the graphic display off (`dark`; the text layer is empty, so the glass shows
     *  nothing) or on again. Before the first draw it takes effect with the initialisation.
     *  @throws PanelBusError when sending fails; the next draw then initialises again. */
    void setPowerSave(bool dark) override;
    /** Whether setPowerSave(true) holds. */
    bool powerSave() const;

protected:
    bool flush(MonoBitmap const& bitmap, PixelRect changed) override;

private:
    void initialise();
    void send(bool data, std::uint8_t const* bytes, std::size_t size);
    void send(bool data, std::initializer_list<std::uint8_t> bytes);
    void sendRowSpan(unsigned row, unsigned firstWord, unsigned lastWord);
    void wait(std::chrono::nanoseconds duration) const;

    std::unique_ptr<IPanelBus> bus_;
    St7920Options options_;
    bool initialised_ = false;
    bool dark_ = false;
    std::vector<std::uint8_t> shown_;  // what GDRAM holds, 16 bytes per glass row
    std::vector<std::uint8_t> next_;
    std::vector<std::uint8_t> wire_;
};

}  // namespace frontpanelhw::graphic
