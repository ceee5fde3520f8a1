#include <frontpanelhw/hd44780_display.h>
#include <yxbase2/log.h>
#include <yxbase2/this_thread.h>

#include <algorithm>
#include <exception>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace frontpanelhw {

namespace {

// Instructions of the HD44780U (datasheet Table 6).
constexpr std::uint8_t kClearDisplay = 0x01;
constexpr std::uint8_t kEntryModeIncrement = 0x06;
constexpr std::uint8_t kDisplayControl = 0x08;
constexpr std::uint8_t kDisplayOn = 0x04;
constexpr std::uint8_t kCursorOn = 0x02;
constexpr std::uint8_t kBlinkOn = 0x01;
constexpr std::uint8_t kFunctionSet4Bit = 0x20;
constexpr std::uint8_t kTwoLines = 0x08;
constexpr std::uint8_t kSetCgramAddress = 0x40;
constexpr std::uint8_t kSetDdramAddress = 0x80;
// The nibbles of the initialisation by instruction (datasheet Figure 24).
constexpr std::uint8_t kEightBitNibble = 0x3;
constexpr std::uint8_t kFourBitNibble = 0x2;

constexpr std::uint8_t kBlankCode = 0x20;
constexpr unsigned kDdramSize = 0x68;
constexpr char const* kLogCategory = "libYxFrontPanelHW";
namespace log = yxbase2::system::log;

void checkGeometry(Hd44780Geometry const& geometry) {
    if (geometry.chars == 0 || geometry.lines == 0 || geometry.lines > 4) {
        throw std::invalid_argument("HD44780 geometry: 1 to 4 lines of at least one cell");
    }
    for (unsigned line = 0; line < geometry.lines; ++line) {
        if (geometry.lineAddresses[line] + geometry.chars > kDdramSize) {
            throw std::invalid_argument("HD44780 geometry: line " + std::to_string(line) +
                                        " runs past the display RAM");
        }
    }
}

}  // namespace

struct Hd44780Display::Plan {
    std::vector<std::uint8_t> codes;  // the module code of every cell
    std::array<Slot, 8> slots{};      // the CGRAM slots after this frame
    std::vector<unsigned> uploads;    // slots whose glyph must be loaded
    std::optional<unsigned> cursorCell;
};

Hd44780Display::Hd44780Display(std::unique_ptr<IHd44780Bus> bus, Hd44780Geometry const& geometry,
                               Hd44780Options options)
    : bus_(std::move(bus)), geometry_(geometry), options_(std::move(options)) {
    if (!bus_) {
        throw std::invalid_argument("Hd44780Display: no transport");
    }
    checkGeometry(geometry_);
    if (!options_.clock) {
        options_.clock = [] { return std::chrono::steady_clock::now(); };
    }
    retryAfter_ = options_.recovery.firstRetry;
    if (!options_.wait) {
        options_.wait = [](std::chrono::nanoseconds duration) {
            yxbase2::system::this_thread::sleep_for(duration);
        };
    }
}

Hd44780Display::~Hd44780Display() = default;

unsigned Hd44780Display::getLines() const { return geometry_.lines; }

unsigned Hd44780Display::getChars() const { return geometry_.chars; }

Hd44780Geometry const& Hd44780Display::geometry() const { return geometry_; }

void Hd44780Display::requestRedraw() {
    std::lock_guard<std::mutex> const lock(mutex_);
    fullRedraw_ = true;
}

bool Hd44780Display::setBacklight(bool on) {
    std::lock_guard<std::mutex> const lock(mutex_);
    try {
        return bus_->setBacklight(on);
    } catch (std::exception const& error) {
        log::write(log::Level::Error, kLogCategory, "HD44780 backlight: ", error.what());
        fullRedraw_ = true;
        return false;
    }
}

bool Hd44780Display::draw(drawing::DisplayBuffer const& buffer) {
    std::lock_guard<std::mutex> const lock(mutex_);
    auto const now = options_.clock();
    if (failing_ && now < nextTry_) {
        return false;  // a missing module must not cost the panel thread a try on every draw
    }
    auto const resync = options_.recovery.resyncInterval;
    if (resync.count() > 0 && poweredOn_ && now - lastInitialise_ >= resync) {
        fullRedraw_ = true;
    }
    try {
        Plan const next = plan(buffer);
        send(next);
        slots_ = next.slots;
        fullRedraw_ = false;
        if (failing_) {
            log::write(log::Level::Info, kLogCategory,
                       "HD44780 display: drawing again after the transport recovered");
        }
        failing_ = false;
        retryAfter_ = options_.recovery.firstRetry;
        return true;
    } catch (std::exception const& error) {
        // The controller may have taken half a byte; only a new initialisation is sure to
        // bring its four-bit phase, its RAM and our shadow of it together again.
        fullRedraw_ = true;
        addressCounter_.reset();
        log::write(failing_ ? log::Level::Debug : log::Level::Error, kLogCategory,
                   "HD44780 display: ", error.what(), "; the next draw starts over");
        failing_ = true;
        nextTry_ = now + retryAfter_;
        retryAfter_ = std::min(retryAfter_ * 2, options_.recovery.longestRetry);
        return false;
    }
}

std::uint8_t Hd44780Display::romCodeOf(char character) const {
    auto const mapping = mapHd44780Character(static_cast<unsigned char>(character), options_.rom);
    return mapping.kind == Hd44780Mapping::Kind::Rom ? mapping.romCode : std::uint8_t{'?'};
}

Hd44780Display::Plan Hd44780Display::plan(drawing::DisplayBuffer const& buffer) {
    ++frameNumber_;
    Plan next;
    unsigned const cells = geometry_.chars * geometry_.lines;
    next.codes.resize(cells);
    if (!fullRedraw_) {
        next.slots = slots_;  // a new initialisation may leave anything in CGRAM
    }

    std::vector<Hd44780Mapping> mappings;
    mappings.reserve(cells);
    std::vector<Hd44780CustomGlyph const*> needed;  // distinct, in reading order
    for (unsigned line = 0; line < geometry_.lines; ++line) {
        for (unsigned column = 0; column < geometry_.chars; ++column) {
            bool const inside = line < buffer.getLineCount() && column < buffer.getChars();
            auto const& cell =
                inside ? buffer.getCell(column, line) : drawing::DisplayChar{u' ', false};
            if (cell.inverted && !next.cursorCell &&
                options_.invertedMarker != InvertedCellMarker::None) {
                next.cursorCell = line * geometry_.chars + column;
            }
            mappings.push_back(mapHd44780Character(cell.character, options_.rom));
            auto const* custom = mappings.back().custom;
            if (custom != nullptr &&
                std::find(needed.begin(), needed.end(), custom) == needed.end()) {
                needed.push_back(custom);
            }
        }
    }

    // Glyphs already in a slot stay there; the others take the free slot used longest ago.
    std::array<bool, 8> taken{};
    auto const slotOf = [&next](Hd44780CustomGlyph const* glyph) {
        for (unsigned slot = 0; slot < next.slots.size(); ++slot) {
            if (next.slots[slot].glyph == glyph) {
                return static_cast<int>(slot);
            }
        }
        return -1;
    };
    for (auto const* glyph : needed) {
        int const slot = slotOf(glyph);
        if (slot >= 0) {
            taken[static_cast<unsigned>(slot)] = true;
            next.slots[static_cast<unsigned>(slot)].lastUsed = frameNumber_;
        }
    }
    unsigned withoutSlot = 0;
    for (auto const* glyph : needed) {
        if (slotOf(glyph) >= 0) {
            continue;
        }
        int oldest = -1;
        for (unsigned slot = 0; slot < next.slots.size(); ++slot) {
            if (!taken[slot] &&
                (oldest < 0 ||
                 next.slots[slot].lastUsed < next.slots[static_cast<unsigned>(oldest)].lastUsed)) {
                oldest = static_cast<int>(slot);
            }
        }
        if (oldest < 0) {
            ++withoutSlot;
            continue;
        }
        auto const slot = static_cast<unsigned>(oldest);
        taken[slot] = true;
        next.slots[slot] = Slot{glyph, frameNumber_};
        next.uploads.push_back(slot);
    }
    if (withoutSlot > 0) {
        log::write(log::Level::Debug, kLogCategory, "HD44780 display: the frame needs ",
                   needed.size(), " custom glyphs, ", withoutSlot,
                   " of them show their fallback character");
    }

    for (unsigned cell = 0; cell < cells; ++cell) {
        auto const& mapping = mappings[cell];
        switch (mapping.kind) {
            case Hd44780Mapping::Kind::Rom:
                next.codes[cell] = mapping.romCode;
                break;
            case Hd44780Mapping::Kind::Custom: {
                int const slot = slotOf(mapping.custom);
                next.codes[cell] = slot >= 0 ? static_cast<std::uint8_t>(slot)
                                             : romCodeOf(mapping.custom->fallback);
                break;
            }
            case Hd44780Mapping::Kind::Replacement:
                next.codes[cell] = romCodeOf(options_.replacement);
                break;
        }
    }
    return next;
}

void Hd44780Display::send(Plan const& next) {
    if (fullRedraw_) {
        initialise();
    }
    std::uint8_t control = kDisplayControl | kDisplayOn;
    if (next.cursorCell) {
        control |=
            options_.invertedMarker == InvertedCellMarker::BlinkingCursor ? kBlinkOn : kCursorOn;
    }
    // A cursor that goes away goes first, so that it does not run along the cells written.
    bool const hidesCursor = (control & (kCursorOn | kBlinkOn)) == 0;
    if (hidesCursor && control != displayControl_) {
        instruction(control, options_.timings.instruction);
        displayControl_ = control;
    }

    for (unsigned const slot : next.uploads) {
        instruction(static_cast<std::uint8_t>(kSetCgramAddress | (slot << 3)),
                    options_.timings.instruction);
        for (std::uint8_t const row : next.slots[slot].glyph->rows) {
            data(row);
        }
        addressCounter_.reset();  // it now points into CGRAM
    }

    // Cells in DDRAM address order, so that adjacent lines (0x13 then 0x14 on a 20x4) need no
    // address jump between them.
    std::vector<unsigned> lineOrder(geometry_.lines);
    std::iota(lineOrder.begin(), lineOrder.end(), 0U);
    std::stable_sort(lineOrder.begin(), lineOrder.end(), [this](unsigned lhs, unsigned rhs) {
        return geometry_.lineAddresses[lhs] < geometry_.lineAddresses[rhs];
    });
    for (unsigned const line : lineOrder) {
        for (unsigned column = 0; column < geometry_.chars; ++column) {
            unsigned const cell = line * geometry_.chars + column;
            if (next.codes[cell] == shown_[cell]) {
                continue;
            }
            std::uint8_t const address = geometry_.address(column, line);
            if (addressCounter_ != address) {
                setDdramAddress(address);
            }
            data(next.codes[cell]);
            addressCounter_ = geometry_.nextAddress(address);
            shown_[cell] = next.codes[cell];
        }
    }

    if (next.cursorCell) {
        std::uint8_t const address = geometry_.address(*next.cursorCell % geometry_.chars,
                                                       *next.cursorCell / geometry_.chars);
        if (addressCounter_ != address) {
            setDdramAddress(address);
        }
    }
    if (control != displayControl_) {
        instruction(control, options_.timings.instruction);
        displayControl_ = control;
    }
    bus_->flush();
}

void Hd44780Display::initialise() {
    auto const& timings = options_.timings;
    if (!poweredOn_) {
        pendingWait_ = std::max(pendingWait_, timings.powerOn);
        poweredOn_ = true;
    }
    lastInitialise_ = options_.clock();
    // Three times "eight-bit interface" and then "four-bit interface" bring the controller into
    // four-bit mode from any state, also from the middle of a byte after a failed transfer.
    std::pair<std::uint8_t, std::chrono::nanoseconds> const steps[] = {
        {kEightBitNibble, timings.firstInit},
        {kEightBitNibble, timings.secondInit},
        {kEightBitNibble, timings.instruction},
        {kFourBitNibble, timings.instruction},
    };
    for (auto const& [nibble, executionTime] : steps) {
        awaitController();
        bus_->writeNibble(false, nibble);
        pendingWait_ = executionTime;
    }
    instruction(geometry_.twoLineMode ? kFunctionSet4Bit | kTwoLines : kFunctionSet4Bit,
                timings.instruction);
    instruction(kDisplayControl, timings.instruction);
    instruction(kClearDisplay, timings.clearOrHome);
    instruction(kEntryModeIncrement, timings.instruction);
    displayControl_ = kDisplayControl;
    addressCounter_ = 0x00;
    shown_.assign(std::size_t{geometry_.chars} * geometry_.lines, kBlankCode);
}

void Hd44780Display::instruction(std::uint8_t code, std::chrono::nanoseconds executionTime) {
    writeByte(false, code, executionTime);
}

void Hd44780Display::data(std::uint8_t code) {
    writeByte(true, code, options_.timings.instruction);
}

void Hd44780Display::setDdramAddress(std::uint8_t address) {
    instruction(static_cast<std::uint8_t>(kSetDdramAddress | address),
                options_.timings.instruction);
    addressCounter_ = address;
}

void Hd44780Display::awaitController() {
    // The controller must have finished the previous instruction before the next nibble is
    // latched; where the bus itself is not slow enough, send what is queued and wait.
    auto const interval = bus_->nibbleInterval();
    if (pendingWait_ > interval && !bus_->delayNextNibble(pendingWait_ - interval)) {
        bus_->flush();
        options_.wait(pendingWait_);
    }
    pendingWait_ = std::chrono::nanoseconds{0};
}

void Hd44780Display::writeByte(bool isData, std::uint8_t code,
                               std::chrono::nanoseconds executionTime) {
    awaitController();
    bus_->writeNibble(isData, static_cast<std::uint8_t>(code >> 4));
    bus_->writeNibble(isData, static_cast<std::uint8_t>(code & 0x0F));
    pendingWait_ = executionTime;
}

}  // namespace frontpanelhw
