#include <frontpanelhw/hd44780_gpio.h>

#include <stdexcept>
#include <utility>

namespace frontpanelhw {

IHd44780LineOutput::~IHd44780LineOutput() = default;

GpioHd44780Bus::GpioHd44780Bus(std::unique_ptr<IHd44780LineOutput> lines)
    : lines_(std::move(lines)) {
    if (!lines_) {
        throw std::invalid_argument("GPIO transport: no lines");
    }
}

GpioHd44780Bus::~GpioHd44780Bus() = default;

void GpioHd44780Bus::writeNibble(bool data, std::uint8_t nibble) {
    using namespace hd44780_lines;
    auto const levels =
        static_cast<std::uint8_t>((data ? kRs : 0U) | ((nibble & 0x0FU) << kDataShift));
    // RS and the data settle before E rises (address set-up time), and stay while E falls.
    lines_->setLevels(levels);
    lines_->setLevels(static_cast<std::uint8_t>(levels | kEnable));
    lines_->setLevels(levels);
}

void GpioHd44780Bus::flush() {}

std::chrono::nanoseconds GpioHd44780Bus::nibbleInterval() const {
    return std::chrono::nanoseconds{0};
}

bool GpioHd44780Bus::setBacklight(bool /*on*/) { return false; }

}  // namespace frontpanelhw
