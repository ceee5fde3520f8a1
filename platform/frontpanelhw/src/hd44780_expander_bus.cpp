#include <frontpanelhw/hd44780_i2c.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace frontpanelhw {

namespace {

constexpr unsigned kBitsPerByte = 9;  // eight data bits and the acknowledge
constexpr unsigned kBytesPerNibble = 2;

std::uint8_t bit(unsigned pin) { return static_cast<std::uint8_t>(1U << pin); }

void checkPins(ExpanderPinMap const& pins) {
    std::array<unsigned, 8> const all = {pins.rs, pins.rw, pins.enable, pins.backlight,
                                         pins.d4, pins.d5, pins.d6,     pins.d7};
    unsigned used = 0;
    for (unsigned const pin : all) {
        if (pin > 7) {
            throw std::invalid_argument("expander pin map: P" + std::to_string(pin) +
                                        " does not exist (P0-P7)");
        }
        if ((used & (1U << pin)) != 0) {
            throw std::invalid_argument("expander pin map: P" + std::to_string(pin) +
                                        " is given to two module pins");
        }
        used |= 1U << pin;
    }
}

}  // namespace

IExpanderPort::~IExpanderPort() = default;

ExpanderHd44780Bus::ExpanderHd44780Bus(std::unique_ptr<IExpanderPort> port,
                                       ExpanderBusOptions const& options)
    : port_(std::move(port)), options_(options) {
    if (!port_) {
        throw std::invalid_argument("expander transport: no port");
    }
    checkPins(options_.pins);
    if (options_.maxBusHz == 0) {
        throw std::invalid_argument("expander transport: the bus speed must be above 0 Hz");
    }
    if (options_.maxTransferBytes < kBytesPerNibble) {
        throw std::invalid_argument("expander transport: a transfer must hold at least 2 bytes");
    }
    queue_.reserve(options_.maxTransferBytes);
}

ExpanderHd44780Bus::~ExpanderHd44780Bus() = default;

std::uint8_t ExpanderHd44780Bus::expanderByte(bool data, bool enable, std::uint8_t nibble) const {
    auto const& pins = options_.pins;
    unsigned byte = 0;
    if (data) {
        byte |= bit(pins.rs);
    }
    if (enable) {
        byte |= bit(pins.enable);
    }
    if (options_.backlightOn == pins.backlightActiveHigh) {
        byte |= bit(pins.backlight);
    }
    std::array<unsigned, 4> const dataPins = {pins.d4, pins.d5, pins.d6, pins.d7};
    for (unsigned i = 0; i < dataPins.size(); ++i) {
        if ((nibble & (1U << i)) != 0) {
            byte |= bit(dataPins[i]);
        }
    }
    return static_cast<std::uint8_t>(byte);
}

void ExpanderHd44780Bus::writeNibble(bool data, std::uint8_t nibble) {
    if (queue_.size() + kBytesPerNibble > options_.maxTransferBytes) {
        flush();
    }
    // The controller latches on the falling edge of E, so the data stands with E high first.
    queue_.push_back(expanderByte(data, true, nibble));
    queue_.push_back(expanderByte(data, false, nibble));
}

void ExpanderHd44780Bus::flush() {
    if (queue_.empty()) {
        return;
    }
    // The queue is empty afterwards even when the port throws: what it held is lost either way.
    struct ClearOnExit {
        std::vector<std::uint8_t>& queue;
        ClearOnExit(ClearOnExit const&) = delete;
        ClearOnExit& operator=(ClearOnExit const&) = delete;
        ~ClearOnExit() { queue.clear(); }
    } const clearOnExit{queue_};
    port_->write(queue_.data(), queue_.size());
}

std::chrono::nanoseconds ExpanderHd44780Bus::nibbleInterval() const {
    constexpr std::chrono::nanoseconds::rep kNanosecondsPerSecond = 1000000000;
    return std::chrono::nanoseconds(kNanosecondsPerSecond * kBytesPerNibble * kBitsPerByte /
                                    options_.maxBusHz);
}

bool ExpanderHd44780Bus::delayNextNibble(std::chrono::nanoseconds duration) {
    // Short waits (a slow oscillator's instruction time) become bytes that change nothing on
    // the module, so that a frame stays one transfer; longer ones are the driver's to sleep.
    constexpr std::chrono::nanoseconds::rep kMaxIdleNibbles = 4;
    auto const interval = nibbleInterval();
    auto const idleNibbles = (duration.count() + interval.count() - 1) / interval.count();
    if (idleNibbles > kMaxIdleNibbles) {
        return false;
    }
    for (std::chrono::nanoseconds::rep i = 0; i < idleNibbles; ++i) {
        if (queue_.size() + kBytesPerNibble > options_.maxTransferBytes) {
            flush();
        }
        queue_.push_back(expanderByte(false, false, 0));
        queue_.push_back(expanderByte(false, false, 0));
    }
    return true;
}

bool ExpanderHd44780Bus::setBacklight(bool on) {
    options_.backlightOn = on;
    if (queue_.size() + 1 > options_.maxTransferBytes) {
        flush();
    }
    queue_.push_back(expanderByte(false, false, 0));
    flush();
    return true;
}

}  // namespace frontpanelhw
