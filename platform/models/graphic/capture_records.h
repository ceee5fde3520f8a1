#pragma once

// Reading the capture a panel bus writes: records of a 16-bit little-endian length and that
// many bytes. Written from the capture format, not from the bus code.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace yxfp_models {

/** A capture or a controller command a model cannot accept; the message says which and why. */
class ModelError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Splits a growing capture into records: append what was read, take whole records out. */
class CaptureReader {
public:
    /** Adds bytes read from the capture. */
    void append(std::uint8_t const* bytes, std::size_t size);
    /** Takes the next whole record into `record`; false when none is complete yet. */
    bool next(std::vector<std::uint8_t>& record);
    /** Bytes of an incomplete record still waiting for the rest. */
    std::size_t pending() const;

private:
    std::vector<std::uint8_t> bytes_;
    std::size_t read_ = 0;
};

/** Every record of a whole capture file. @throws ModelError when it cannot be read or ends in
 *  the middle of a record, or a record is empty. */
std::vector<std::vector<std::uint8_t>> readCaptureFile(std::string const& path);

/** `value` as the models' messages show bytes: "0x3C". */
std::string hexByte(unsigned value);

/** The bytes of `path` from `offset` on (for decoding a capture as it grows).
 *  @throws ModelError when it cannot be read. */
std::vector<std::uint8_t> readFileFrom(std::string const& path, std::size_t offset);

}  // namespace yxfp_models
