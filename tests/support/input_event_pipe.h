#pragma once

// A pipe that a test writes Linux input event records into, as a device would deliver them.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>

namespace yxfp_test {

/** One `struct input_event` at `milliseconds` after the epoch of the stamps. */
inline input_event inputRecord(std::uint16_t type, std::uint16_t code, std::int32_t value,
                               long milliseconds = 0) {
    input_event record{};
    record.input_event_sec = milliseconds / 1000;
    record.input_event_usec = (milliseconds % 1000) * 1000;
    record.type = type;
    record.code = code;
    record.value = value;
    return record;
}

/** The read end goes to the key source (readEnd(), then released), the test writes records and
 *  raw bytes into the write end and closes it to end the input. */
class InputEventPipe {
public:
    InputEventPipe() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        read_ = ends[0];
        write_ = ends[1];
    }
    ~InputEventPipe() {
        closeWriteEnd();
        if (read_ >= 0) {
            ::close(read_);
        }
    }
    InputEventPipe(InputEventPipe const&) = delete;
    InputEventPipe& operator=(InputEventPipe const&) = delete;

    /** Hands the read end over to its new owner. */
    int releaseReadEnd() {
        int const descriptor = read_;
        read_ = -1;
        return descriptor;
    }

    void writeBytes(void const* data, std::size_t size) {
        ASSERT_EQ(::write(write_, data, size), static_cast<ssize_t>(size));
    }
    void write(input_event const& record) { writeBytes(&record, sizeof record); }
    void key(std::uint16_t code, std::int32_t value, long milliseconds = 0) {
        write(inputRecord(EV_KEY, code, value, milliseconds));
        report(milliseconds);
    }
    void report(long milliseconds = 0) { write(inputRecord(EV_SYN, SYN_REPORT, 0, milliseconds)); }
    void closeWriteEnd() {
        if (write_ >= 0) {
            ::close(write_);
            write_ = -1;
        }
    }

private:
    int read_ = -1;
    int write_ = -1;
};

}  // namespace yxfp_test
