#include <frontpanelhw/graphic/st7920_display.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

namespace frontpanelhw::graphic {

namespace {

constexpr unsigned kWidth = 128;
constexpr unsigned kHeight = 64;
constexpr unsigned kRowBytes = kWidth / 8;
constexpr unsigned kHalfHeight = 32;   // GDRAM is 256x32: rows 32-63 lie right of rows 0-31
constexpr unsigned kWordsPerHalf = 8;  // 16-pixel words per glass row
constexpr unsigned kSpanMergeGap =
    2;  // words; a new span costs its address (5 bytes) and a start byte

constexpr std::uint8_t kStartCommand = 0xF8;  // 11111, RW = 0, RS = 0, 0
constexpr std::uint8_t kStartData = 0xFA;     // 11111, RW = 0, RS = 1, 0

namespace cmd {
constexpr std::uint8_t kBasic8Bit = 0x30;        // function set: 8-bit, basic instructions
constexpr std::uint8_t kDisplayOn = 0x0C;        // display on, cursor and blink off
constexpr std::uint8_t kClear = 0x01;            // fills DDRAM with spaces
constexpr std::uint8_t kEntryIncrement = 0x06;   // address counter counts up
constexpr std::uint8_t kExtended = 0x34;         // function set: extended, graphic display off
constexpr std::uint8_t kExtendedGraphic = 0x36;  // function set: extended, graphic display on
constexpr std::uint8_t kGdramAddress = 0x80;     // | vertical, then | horizontal
}  // namespace cmd

void sleepFor(std::chrono::nanoseconds duration) { std::this_thread::sleep_for(duration); }

}  // namespace

St7920Display::St7920Display(std::unique_ptr<IPanelBus> bus, St7920Options options, Font font,
                             unsigned chars, unsigned lines)
    : GraphicDisplay(kWidth, kHeight, std::move(font), chars, lines),
      bus_(std::move(bus)),
      options_(std::move(options)),
      shown_(std::size_t{kRowBytes} * kHeight, 0),
      next_(std::size_t{kRowBytes} * kHeight, 0) {
    if (!bus_) {
        throw std::invalid_argument("ST7920 display: no bus");
    }
    if (!options_.wait) {
        options_.wait = sleepFor;
    }
    wire_.reserve(1 + 2 * 2 * kRowBytes);
}

St7920Display::~St7920Display() = default;

bool St7920Display::powerSave() const { return dark_; }

void St7920Display::send(bool data, std::initializer_list<std::uint8_t> bytes) {
    send(data, bytes.begin(), bytes.size());
}

void St7920Display::send(bool data, std::uint8_t const* bytes, std::size_t size) {
    wire_.clear();
    wire_.push_back(data ? kStartData : kStartCommand);
    for (std::size_t i = 0; i < size; ++i) {
        std::uint8_t const byte = bytes[i];
        wire_.push_back(static_cast<std::uint8_t>(byte & 0xF0U));
        wire_.push_back(static_cast<std::uint8_t>((byte & 0x0FU) << 4U));
    }
    // No D/C line: the start byte tells commands from data.
    bus_->write(false, wire_.data(), wire_.size());
}

void St7920Display::setPowerSave(bool dark) {
    dark_ = dark;
    if (!initialised_) {
        return;
    }
    try {
        send(false, {dark ? cmd::kExtended : cmd::kExtendedGraphic});
    } catch (PanelBusError const&) {
        initialised_ = false;
        throw;
    }
}

void St7920Display::initialise() {
    if (bus_->setReset(true)) {
        wait(std::chrono::microseconds(10));
        bus_->setReset(false);
    }
    options_.wait(std::chrono::milliseconds(40));  // power-on (or reset) to the first command
    send(false, {cmd::kBasic8Bit});
    options_.wait(std::chrono::microseconds(100));  // the first function set takes longest
    send(false, {cmd::kBasic8Bit, cmd::kDisplayOn});
    send(false, {cmd::kClear});
    options_.wait(std::chrono::microseconds(1600));  // clearing takes 1.6 ms
    // Two function sets: the datasheet changes the interface width and RE in separate ones.
    send(false, {cmd::kEntryIncrement, cmd::kExtended});
    initialised_ = true;
}

void St7920Display::sendRowSpan(unsigned row, unsigned firstWord, unsigned lastWord) {
    unsigned const vertical = row % kHalfHeight;
    unsigned const horizontal = firstWord + (row >= kHalfHeight ? kWordsPerHalf : 0);
    send(false, {static_cast<std::uint8_t>(cmd::kGdramAddress | vertical),
                 static_cast<std::uint8_t>(cmd::kGdramAddress | horizontal)});
    std::size_t const first = std::size_t{row} * kRowBytes + std::size_t{firstWord} * 2;
    std::size_t const size = std::size_t{lastWord - firstWord + 1} * 2;
    send(true, next_.data() + first, size);
    std::copy_n(next_.begin() + static_cast<std::ptrdiff_t>(first), size,
                shown_.begin() + static_cast<std::ptrdiff_t>(first));
}

void St7920Display::wait(std::chrono::nanoseconds duration) const { options_.wait(duration); }

bool St7920Display::flush(MonoBitmap const& bitmap, PixelRect changed) {
    bool const everything = !initialised_;
    if (everything || options_.flipped) {
        // Turned by software, the changed rectangle lands elsewhere; the row spans below still
        // send only what differs.
        changed = PixelRect{0, 0, kWidth, kHeight};
    }
    for (unsigned y = changed.y; y < changed.y + changed.height; ++y) {
        for (unsigned x = changed.x; x < changed.x + changed.width; ++x) {
            bool const ink = options_.flipped ? bitmap.pixel(kWidth - 1 - x, kHeight - 1 - y)
                                              : bitmap.pixel(x, y);
            auto& byte = next_[y * kRowBytes + x / 8];
            auto const mask = static_cast<std::uint8_t>(0x80U >> (x % 8));
            byte = static_cast<std::uint8_t>(ink ? (byte | mask) : (byte & ~mask));
        }
    }
    try {
        if (everything) {
            initialise();
        }
        unsigned const firstWord = changed.x / 16;
        unsigned const lastWord = (changed.x + changed.width - 1) / 16;
        for (unsigned y = changed.y; y < changed.y + changed.height; ++y) {
            auto differs = [&](unsigned word) {
                std::size_t const at = y * kRowBytes + word * 2;
                return everything || next_[at] != shown_[at] || next_[at + 1] != shown_[at + 1];
            };
            unsigned word = firstWord;
            while (word <= lastWord) {
                if (!differs(word)) {
                    ++word;
                    continue;
                }
                unsigned const first = word;
                unsigned last = word;
                unsigned gap = 0;
                for (++word; word <= lastWord && gap <= kSpanMergeGap; ++word) {
                    if (differs(word)) {
                        last = word;
                        gap = 0;
                    } else {
                        ++gap;
                    }
                }
                sendRowSpan(y, first, last);
                word = last + 1;
            }
        }
        if (everything && !dark_) {
            send(false, {cmd::kExtendedGraphic});
        }
    } catch (PanelBusError const&) {
        initialised_ = false;
        return false;
    }
    return true;
}

}  // namespace frontpanelhw::graphic
