#include "capture_records.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace yxfp_models {

void CaptureReader::append(std::uint8_t const* bytes, std::size_t size) {
    if (read_ > 0) {
        bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(read_));
        read_ = 0;
    }
    bytes_.insert(bytes_.end(), bytes, bytes + size);
}

bool CaptureReader::next(std::vector<std::uint8_t>& record) {
    if (bytes_.size() - read_ < 2) {
        return false;
    }
    std::size_t const length = bytes_[read_] | (std::size_t{bytes_[read_ + 1]} << 8U);
    if (length == 0) {
        throw ModelError("capture: a record of length 0");
    }
    if (bytes_.size() - read_ - 2 < length) {
        return false;
    }
    auto const first = bytes_.begin() + static_cast<std::ptrdiff_t>(read_ + 2);
    record.assign(first, first + static_cast<std::ptrdiff_t>(length));
    read_ += 2 + length;
    return true;
}

std::size_t CaptureReader::pending() const { return bytes_.size() - read_; }

std::vector<std::uint8_t> readFileFrom(std::string const& path, std::size_t offset) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw ModelError("capture: cannot read " + path);
    }
    file.seekg(static_cast<std::streamoff>(offset));
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file),
                                     std::istreambuf_iterator<char>());
}

std::vector<std::vector<std::uint8_t>> readCaptureFile(std::string const& path) {
    std::vector<std::uint8_t> const bytes = readFileFrom(path, 0);
    CaptureReader reader;
    reader.append(bytes.data(), bytes.size());
    std::vector<std::vector<std::uint8_t>> records;
    std::vector<std::uint8_t> record;
    while (reader.next(record)) {
        records.push_back(record);
    }
    if (reader.pending() != 0) {
        throw ModelError("capture " + path + " ends inside a record (" +
                         std::to_string(reader.pending()) + " bytes left over)");
    }
    return records;
}

std::string hexByte(unsigned value) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", value);
    return text;
}

}  // namespace yxfp_models
