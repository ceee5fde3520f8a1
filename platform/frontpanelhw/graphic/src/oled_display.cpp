#include <frontpanelhw/graphic/oled_display.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

namespace frontpanelhw::graphic {

namespace {

constexpr unsigned kWidth = 128;
constexpr unsigned kPageRows = 8;
// SH1106 RAM has 132 columns; the glass shows columns 2-129 in either scan direction.
constexpr unsigned kSh1106ColumnOffset = 2;
// Two spans of a page closer than this many columns are sent as one: a new span costs its
// address commands and a second transfer (control and address bytes) anyway.
constexpr unsigned kSpanMergeGap = 10;

namespace cmd {  // SSD1306 / SH1106 commands as the datasheets name them
constexpr std::uint8_t kDisplayOff = 0xAE;
constexpr std::uint8_t kDisplayOn = 0xAF;
constexpr std::uint8_t kClockDivide = 0xD5;
constexpr std::uint8_t kMultiplexRatio = 0xA8;
constexpr std::uint8_t kDisplayOffset = 0xD3;
constexpr std::uint8_t kStartLine0 = 0x40;
constexpr std::uint8_t kChargePump = 0x8D;      // SSD1306
constexpr std::uint8_t kDcDcControl = 0xAD;     // SH1106
constexpr std::uint8_t kPumpVoltage8V = 0x32;   // SH1106
constexpr std::uint8_t kAddressingMode = 0x20;  // SSD1306
constexpr std::uint8_t kColumnRange = 0x21;     // SSD1306, horizontal addressing
constexpr std::uint8_t kPageRange = 0x22;       // SSD1306, horizontal addressing
constexpr std::uint8_t kSegmentNormal = 0xA0;   // column 0 drives SEG0
constexpr std::uint8_t kSegmentRemap = 0xA1;    // the last column drives SEG0
constexpr std::uint8_t kScanUp = 0xC0;          // COM0 first
constexpr std::uint8_t kScanDown = 0xC8;        // COM[N-1] first
constexpr std::uint8_t kComPins = 0xDA;
constexpr std::uint8_t kContrast = 0x81;
constexpr std::uint8_t kPrecharge = 0xD9;
constexpr std::uint8_t kVcomDeselect = 0xDB;
constexpr std::uint8_t kStopScroll = 0x2E;  // SSD1306
constexpr std::uint8_t kFollowRam = 0xA4;
constexpr std::uint8_t kNotInverted = 0xA6;
constexpr std::uint8_t kPageStart = 0xB0;   // page addressing: | page
constexpr std::uint8_t kLowColumn = 0x00;   // page addressing: | low nibble
constexpr std::uint8_t kHighColumn = 0x10;  // page addressing: | high nibble
}  // namespace cmd

void sleepFor(std::chrono::nanoseconds duration) { std::this_thread::sleep_for(duration); }

}  // namespace

OledDisplay::OledDisplay(std::unique_ptr<IPanelBus> bus, OledOptions options, Font font,
                         unsigned chars, unsigned lines)
    : GraphicDisplay(kWidth, options.height, std::move(font), chars, lines),
      bus_(std::move(bus)),
      options_(std::move(options)),
      pages_(options_.height / kPageRows) {
    if (!bus_) {
        throw std::invalid_argument("OLED display: no bus");
    }
    if (options_.height != 64 && options_.height != 32) {
        throw std::invalid_argument("OLED display: the glass is 128x64 or 128x32, not 128x" +
                                    std::to_string(options_.height));
    }
    if (!options_.wait) {
        options_.wait = sleepFor;
    }
    shown_.assign(std::size_t{pages_} * kWidth, 0);
    next_.assign(shown_.size(), 0);
}

OledDisplay::~OledDisplay() = default;

bool OledDisplay::powerSave() const { return dark_; }

void OledDisplay::wait(std::chrono::nanoseconds duration) const { options_.wait(duration); }

void OledDisplay::sendCommands(std::initializer_list<std::uint8_t> commands) {
    bus_->write(false, commands.begin(), commands.size());
}

void OledDisplay::setPowerSave(bool dark) {
    dark_ = dark;
    if (!initialised_) {
        return;
    }
    try {
        sendCommands({dark ? cmd::kDisplayOff : cmd::kDisplayOn});
    } catch (PanelBusError const&) {
        initialised_ = false;
        throw;
    }
}

void OledDisplay::setContrast(std::uint8_t contrast) {
    options_.contrast = contrast;
    if (!initialised_) {
        return;
    }
    try {
        sendCommands({cmd::kContrast, contrast});
    } catch (PanelBusError const&) {
        initialised_ = false;
        throw;
    }
}

void OledDisplay::initialise() {
    if (bus_->setReset(true)) {
        // RES# low for at least 3 us (SSD1306) or 10 us (SH1106), then time to come up.
        wait(std::chrono::microseconds(10));
        bus_->setReset(false);
        wait(std::chrono::microseconds(10));
    }
    bool const ssd1306 = options_.controller == OledController::Ssd1306;
    bool const tall = options_.height == 64;
    std::vector<std::uint8_t> commands = {
        cmd::kDisplayOff,
        cmd::kClockDivide,
        0x80,  // reset divide ratio and oscillator frequency
        cmd::kMultiplexRatio,
        static_cast<std::uint8_t>(options_.height - 1),
        cmd::kDisplayOffset,
        0x00,
        cmd::kStartLine0,
    };
    if (ssd1306) {
        // Charge pump on; horizontal addressing, so that a span is one window and one transfer.
        commands.insert(commands.end(),
                        {cmd::kChargePump, 0x14, cmd::kAddressingMode, 0x00, cmd::kStopScroll});
    } else {
        commands.insert(commands.end(), {cmd::kDcDcControl, 0x8B, cmd::kPumpVoltage8V});
    }
    // The modules' glass is wired so that the remapped columns and the downward COM scan show
    // the RAM upright; a module mounted upside down scans the other way.
    commands.push_back(options_.flipped ? cmd::kSegmentNormal : cmd::kSegmentRemap);
    commands.push_back(options_.flipped ? cmd::kScanUp : cmd::kScanDown);
    commands.insert(
        commands.end(),
        {cmd::kComPins, static_cast<std::uint8_t>(tall ? 0x12 : 0x02), cmd::kContrast,
         options_.contrast, cmd::kPrecharge, static_cast<std::uint8_t>(ssd1306 ? 0xF1 : 0x22),
         cmd::kVcomDeselect, static_cast<std::uint8_t>(ssd1306 ? 0x20 : 0x35), cmd::kFollowRam,
         cmd::kNotInverted});
    bus_->write(false, commands.data(), commands.size());
    initialised_ = true;
}

void OledDisplay::sendPageSpan(unsigned page, unsigned first, unsigned last) {
    if (options_.controller == OledController::Ssd1306) {
        sendCommands({cmd::kColumnRange, static_cast<std::uint8_t>(first),
                      static_cast<std::uint8_t>(last), cmd::kPageRange,
                      static_cast<std::uint8_t>(page), static_cast<std::uint8_t>(page)});
    } else {
        unsigned const column = first + kSh1106ColumnOffset;
        sendCommands({static_cast<std::uint8_t>(cmd::kPageStart | page),
                      static_cast<std::uint8_t>(cmd::kLowColumn | (column & 0x0FU)),
                      static_cast<std::uint8_t>(cmd::kHighColumn | (column >> 4U))});
    }
    std::uint8_t const* const bytes = next_.data() + std::size_t{page} * kWidth;
    bus_->write(true, bytes + first, last - first + 1);
    std::copy(bytes + first, bytes + last + 1, shown_.data() + std::size_t{page} * kWidth + first);
}

bool OledDisplay::flush(MonoBitmap const& bitmap, PixelRect changed) {
    bool const everything = !initialised_;
    if (everything) {
        changed = PixelRect{0, 0, kWidth, options_.height};
    }
    unsigned const firstPage = changed.y / kPageRows;
    unsigned const lastPage = (changed.y + changed.height - 1) / kPageRows;
    unsigned const firstColumn = changed.x;
    unsigned const lastColumn = changed.x + changed.width - 1;
    // The changed pixels as RAM bytes: bit k of column x in page p is pixel (x, 8p + k).
    for (unsigned page = firstPage; page <= lastPage; ++page) {
        for (unsigned x = firstColumn; x <= lastColumn; ++x) {
            unsigned byte = 0;
            for (unsigned bit = 0; bit < kPageRows; ++bit) {
                if (bitmap.pixel(x, page * kPageRows + bit)) {
                    byte |= 1U << bit;
                }
            }
            next_[page * kWidth + x] = static_cast<std::uint8_t>(byte);
        }
    }
    try {
        if (everything) {
            initialise();
        }
        for (unsigned page = firstPage; page <= lastPage; ++page) {
            std::size_t const row = std::size_t{page} * kWidth;
            unsigned x = firstColumn;
            while (x <= lastColumn) {
                if (!everything && next_[row + x] == shown_[row + x]) {
                    ++x;
                    continue;
                }
                unsigned const first = x;
                unsigned last = x;
                unsigned gap = 0;
                for (++x; x <= lastColumn && gap <= kSpanMergeGap; ++x) {
                    if (everything || next_[row + x] != shown_[row + x]) {
                        last = x;
                        gap = 0;
                    } else {
                        ++gap;
                    }
                }
                sendPageSpan(page, first, last);
                x = last + 1;
            }
        }
        if (everything && !dark_) {
            sendCommands({cmd::kDisplayOn});
        }
    } catch (PanelBusError const&) {
        initialised_ = false;
        return false;
    }
    return true;
}

}  // namespace frontpanelhw::graphic
