#include "replay_layout.h"

#include <frontpanelhw/input_errors.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

namespace frontpanelhw::detail {

namespace {

// The two layouts of `struct input_event` on Linux: seconds and microseconds as 32-bit or as
// 64-bit words, then type, code and value. Both in the machine's own byte order.
constexpr std::size_t kNarrowRecord = 16;
constexpr std::size_t kWideRecord = 24;
// Enough records to tell the layouts apart; a file is read this far at most.
constexpr std::size_t kRecordsLookedAt = 64;
constexpr std::uint64_t kMicrosPerSecond = 1000000;

template <typename Word>
Word wordAt(unsigned char const* bytes) {
    Word word{};
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/** Whether `bytes` read as records of `recordSize` bytes have sensible microseconds and types.
 */
bool fitsLayout(std::vector<unsigned char> const& bytes, std::size_t fileSize,
                std::size_t recordSize) {
    if (fileSize % recordSize != 0) {
        return false;
    }
    std::size_t const timeWord = recordSize == kWideRecord ? 8 : 4;
    for (std::size_t offset = 0; offset + recordSize <= bytes.size(); offset += recordSize) {
        unsigned char const* const record = bytes.data() + offset;
        std::uint64_t const micros =
            timeWord == 8 ? wordAt<std::uint64_t>(record + 8) : wordAt<std::uint32_t>(record + 4);
        std::uint16_t const type = wordAt<std::uint16_t>(record + 2 * timeWord);
        if (micros >= kMicrosPerSecond || type > EV_MAX) {
            return false;
        }
    }
    return true;
}

}  // namespace

void checkReplayLayout(int descriptor, std::string const& name) {
    static_assert(sizeof(input_event) == kNarrowRecord || sizeof(input_event) == kWideRecord,
                  "struct input_event has one of the two Linux layouts");
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) {
        return;
    }
    auto const fileSize = static_cast<std::size_t>(status.st_size);
    std::vector<unsigned char> bytes(std::min(fileSize, kRecordsLookedAt * kWideRecord));
    ssize_t const got = ::pread(descriptor, bytes.data(), bytes.size(), 0);
    if (got <= 0) {
        return;  // the read that follows reports the problem
    }
    bytes.resize(static_cast<std::size_t>(got));
    std::size_t const own = sizeof(input_event);
    std::size_t const other = own == kWideRecord ? kNarrowRecord : kWideRecord;
    if (fitsLayout(bytes, fileSize, own) || !fitsLayout(bytes, fileSize, other)) {
        return;
    }
    throw InputDeviceError(
        name + " holds " + std::to_string(other) + "-byte input event records (the layout of " +
        (other == kWideRecord ? "64-bit" : "32-bit") + " systems), but this build reads its " +
        "kernel's " + std::to_string(own) +
        "-byte records: record the replay on the target (cat /dev/input/eventN > FILE) or "
        "convert it (docs/input.md)");
}

}  // namespace frontpanelhw::detail
