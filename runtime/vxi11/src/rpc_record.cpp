#include <yxfrontpanel/runtime/vxi11_protocol.h>

#include <cstdint>

namespace yxfrontpanel::runtime {

namespace {

constexpr std::uint32_t kLastFragment = 0x80000000U;

}  // namespace

RpcRecordReader::RpcRecordReader(std::size_t maxRecordBytes) : maxRecordBytes_(maxRecordBytes) {}

bool RpcRecordReader::feed(std::string_view bytes) {
    buffer_.append(bytes);
    std::size_t offset = 0;
    while (buffer_.size() - offset >= 4) {
        auto const* p = reinterpret_cast<unsigned char const*>(buffer_.data() + offset);
        std::uint32_t const header = (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) |
                                     (std::uint32_t{p[2]} << 8) | std::uint32_t{p[3]};
        std::size_t const length = header & ~kLastFragment;
        if (record_.size() + length > maxRecordBytes_) {
            return false;
        }
        if (buffer_.size() - offset - 4 < length) {
            break;
        }
        record_.append(buffer_, offset + 4, length);
        offset += 4 + length;
        if ((header & kLastFragment) != 0) {
            ready_.push_back(std::move(record_));
            record_.clear();
        }
    }
    buffer_.erase(0, offset);
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

std::string rpcFrame(std::string_view record) {
    std::uint32_t const header = kLastFragment | static_cast<std::uint32_t>(record.size());
    std::string framed;
    framed += static_cast<char>(header >> 24);
    framed += static_cast<char>((header >> 16) & 0xFF);
    framed += static_cast<char>((header >> 8) & 0xFF);
    framed += static_cast<char>(header & 0xFF);
    framed.append(record);
    return framed;
}

}  // namespace yxfrontpanel::runtime
