#include <yxfrontpanel/runtime/vxi11_protocol.h>

#include <array>
#include <cstdint>

namespace yxfrontpanel::runtime {

namespace {

constexpr std::uint32_t kLastFragment = 0x80000000U;

}  // namespace

RpcRecordReader::RpcRecordReader(std::size_t maxRecordBytes) : maxRecordBytes_(maxRecordBytes) {}

bool RpcRecordReader::feed(std::string_view bytes) {
    // Records that arrive whole are taken straight from `bytes`; only a partial one waits in
    // the buffer for the rest.
    bool const buffered = !buffer_.empty();
    std::string_view data = bytes;
    if (buffered) {
        buffer_.append(bytes);
        data = buffer_;
    }
    std::size_t offset = 0;
    while (data.size() - offset >= 4) {
        auto const* p = reinterpret_cast<unsigned char const*>(data.data() + offset);
        std::uint32_t const header = (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) |
                                     (std::uint32_t{p[2]} << 8) | std::uint32_t{p[3]};
        std::size_t const length = header & ~kLastFragment;
        if (record_.size() + length > maxRecordBytes_) {
            return false;
        }
        if (data.size() - offset - 4 < length) {
            break;
        }
        std::string_view const fragment = data.substr(offset + 4, length);
        offset += 4 + length;
        if ((header & kLastFragment) == 0) {
            record_.append(fragment);
        } else if (record_.empty()) {
            ready_.emplace_back(fragment);
        } else {
            record_.append(fragment);
            ready_.push_back(std::move(record_));
            record_.clear();
        }
    }
    if (buffered) {
        buffer_.erase(0, offset);
    } else {
        buffer_.assign(bytes.substr(offset));
    }
    return true;
}

std::optional<std::string> RpcRecordReader::next() {
    if (ready_.empty()) {
        return std::nullopt;
    }
    std::string record = std::move(ready_.front());
    ready_.erase(ready_.begin());
    return record;
}

std::array<char, 4> rpcRecordMark(std::size_t recordBytes) {
    std::uint32_t const header = kLastFragment | static_cast<std::uint32_t>(recordBytes);
    return {static_cast<char>(header >> 24), static_cast<char>((header >> 16) & 0xFF),
            static_cast<char>((header >> 8) & 0xFF), static_cast<char>(header & 0xFF)};
}

std::string rpcFrame(std::string_view record) {
    std::array<char, 4> const mark = rpcRecordMark(record.size());
    std::string framed;
    framed.reserve(mark.size() + record.size());
    framed.append(mark.data(), mark.size());
    framed.append(record);
    return framed;
}

}  // namespace yxfrontpanel::runtime
