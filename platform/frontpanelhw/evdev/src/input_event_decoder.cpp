#include "input_event_decoder.h"

#include <yxbase2/log.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace frontpanelhw::detail {

namespace {

namespace log = yxbase2::system::log;

// A garbage stream gets this many log lines, then one saying that the rest is not logged.
constexpr unsigned kMostSkipLogLines = 8;

std::chrono::microseconds timeOf(input_event const& record) {
    // Clamped so that a garbage stamp cannot overflow the conversion; real stamps are far
    // inside (2^40 seconds are some 35,000 years).
    constexpr long long kLargest = 1LL << 40;
    long long const seconds = std::clamp<long long>(record.input_event_sec, -kLargest, kLargest);
    long long const micros = std::clamp<long long>(record.input_event_usec, -kLargest, kLargest);
    return std::chrono::seconds(seconds) + std::chrono::microseconds(micros);
}

}  // namespace

InputEventDecoder::InputEventDecoder(InputKeyMap keys, EncoderOptions encoder, std::string name)
    : keys_(std::move(keys)), encoder_(std::move(encoder)), name_(std::move(name)) {}

void InputEventDecoder::feed(char const* data, std::size_t size, std::deque<KeyEvent>& out) {
    partial_.insert(partial_.end(), data, data + size);
    std::size_t offset = 0;
    while (partial_.size() - offset >= sizeof(input_event)) {
        input_event record{};
        std::memcpy(&record, partial_.data() + offset, sizeof record);
        offset += sizeof record;
        handle(record, out);
    }
    partial_.erase(partial_.begin(), partial_.begin() + static_cast<std::ptrdiff_t>(offset));
}

void InputEventDecoder::finish(std::deque<KeyEvent>& out) {
    if (!partial_.empty()) {
        log::write(log::Level::Warning, "evdev", name_, ": ", partial_.size(),
                   " bytes at the end are not a whole input event record (", sizeof(input_event),
                   " bytes); skipped");
        partial_.clear();
    }
    for (int const code : std::set<int>(heldCodes_)) {
        setHeld(code, false, out);
    }
    dropping_ = false;
    skippedRecords_ = 0;
    encoder_.reset();
}

void InputEventDecoder::skipped(input_event const& record, char const* why) {
    ++skippedRecords_;
    if (skippedRecords_ > kMostSkipLogLines + 1) {
        return;
    }
    if (skippedRecords_ == kMostSkipLogLines + 1) {
        log::write(log::Level::Warning, "evdev", name_, ": more records skipped; not logging them");
    } else {
        log::write(log::Level::Warning, "evdev", name_, ": skipped an input event record (", why,
                   "): type ", record.type, ", code ", record.code, ", value ", record.value);
    }
}

void InputEventDecoder::handle(input_event const& record, std::deque<KeyEvent>& out) {
    if (record.type > EV_MAX) {
        skipped(record, "unknown type");
        return;
    }
    if (record.type == EV_SYN) {
        if (record.code == SYN_DROPPED) {
            dropping_ = true;
        } else if (record.code == SYN_REPORT && dropping_) {
            dropping_ = false;
            resynchronise(out);
        } else if (record.code > SYN_MAX) {
            skipped(record, "unknown synchronisation code");
        }
        return;
    }
    if (dropping_) {
        // The kernel lost events before these: they describe changes from an unknown state.
        return;
    }
    switch (record.type) {
        case EV_KEY:
            if (record.code > KEY_MAX || record.value < 0 || record.value > 2) {
                skipped(record, "key code or value out of range");
                return;
            }
            handleKey(record.code, record.value, out);
            return;
        case EV_REL:
            if (encoder_.isRelativeAxis(record.code)) {
                addSteps(encoder_.addCounts(record.value, timeOf(record)), out);
            }
            return;
        case EV_ABS:
            if (encoder_.isAbsoluteAxis(record.code)) {
                addSteps(encoder_.addPosition(record.code, record.value, timeOf(record)), out);
            }
            return;
        default:
            return;  // scan codes, LEDs, switches: nothing for the panel
    }
}

void InputEventDecoder::handleKey(int code, int value, std::deque<KeyEvent>& out) {
    if (value == 2) {
        auto const key = keys_.find(code);
        if (key && forwardRepeats_ && heldCodes_.count(code) != 0) {
            out.push_back(KeyEvent::repeat(*key));
            sawRepeats_ = true;
        }
        return;
    }
    setHeld(code, value == 1, out);
}

void InputEventDecoder::addSteps(EncoderStep step, std::deque<KeyEvent>& out) {
    auto const holders = heldCodesPerKey_.find(step.key);
    if (holders != heldCodesPerKey_.end() && holders->second > 0) {
        return;  // the key is held: a step would release it while it is still down
    }
    for (unsigned i = 0; i < step.count; ++i) {
        out.push_back(KeyEvent::panel(step.key));
        out.push_back(KeyEvent::release(step.key));
    }
}

void InputEventDecoder::setHeld(int code, bool down, std::deque<KeyEvent>& out) {
    auto const key = keys_.find(code);
    if (!key) {
        return;
    }
    bool const wasDown = heldCodes_.count(code) != 0;
    if (down == wasDown) {
        return;  // a repeated press or a release of a key never seen pressed
    }
    // Several codes may give one panel key: it is held while any of them is.
    unsigned& holders = heldCodesPerKey_[*key];
    if (down) {
        heldCodes_.insert(code);
        if (holders++ == 0) {
            out.push_back(KeyEvent::panel(*key));
        }
    } else {
        heldCodes_.erase(code);
        if (--holders == 0) {
            out.push_back(KeyEvent::release(*key));
        }
    }
}

void InputEventDecoder::resynchronise(std::deque<KeyEvent>& out) {
    encoder_.reset();
    std::vector<unsigned char> bits((KEY_MAX + 1 + 7) / 8, 0);
    bool const known = keyStateQuery_ && keyStateQuery_(bits);
    auto const isDown = [&](int code) {
        return known && (bits[static_cast<std::size_t>(code) / 8] & (1U << (code % 8))) != 0;
    };
    for (auto const& entry : keys_.entries()) {
        setHeld(entry.first, isDown(entry.first), out);
    }
}

}  // namespace frontpanelhw::detail
