#pragma once

// Shared pieces of the fuzz targets: an invariant check that stops the run with a message, and
// a reader that takes typed values off the front of the fuzzer's input.

#include <frontpanelhw/display.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace yxfp_fuzz {

/** Stops the run (a crash the fuzzer records) when an invariant does not hold. */
inline void check(bool condition, char const* what) {
    if (!condition) {
        std::fprintf(stderr, "invariant violated: %s\n", what);
        __builtin_trap();
    }
}

/** Hands out the input's bytes front to back; once they run out, every value is zero. */
class InputReader {
public:
    InputReader(uint8_t const* data, size_t size) : data_(data), size_(size) {}

    bool empty() const { return position_ >= size_; }

    uint8_t byte() { return empty() ? 0u : data_[position_++]; }

    /** The next eight bytes as the bits of a double (NaN, infinities and subnormals included).
     */
    double rawDouble() {
        uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) {
            bits = (bits << 8u) | byte();
        }
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    /** Everything not read yet. */
    std::string rest() {
        std::string text;
        if (!empty()) {
            text.assign(reinterpret_cast<char const*>(data_ + position_), size_ - position_);
            position_ = size_;
        }
        return text;
    }

private:
    uint8_t const* data_;
    size_t size_;
    size_t position_ = 0;
};

/** A memory display that checks every frame it is shown against its own size. */
class SizeCheckingDisplay : public frontpanelhw::MemoryDisplay {
public:
    SizeCheckingDisplay(unsigned chars, unsigned lines) : MemoryDisplay(chars, lines) {}

    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override {
        check(buffer.getChars() == getChars() && buffer.getLineCount() == getLines(),
              "frame size differs from the panel");
        return MemoryDisplay::draw(buffer);
    }
};

}  // namespace yxfp_fuzz
