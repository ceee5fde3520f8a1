#include "bus_transfer.h"

#include <algorithm>
#include <string>

namespace frontpanelhw::graphic {

namespace {
constexpr std::size_t kLengthBytes = 2;
constexpr std::size_t kLeadBytes = 1;
}  // namespace

PanelBusError::~PanelBusError() = default;
IPanelLine::~IPanelLine() = default;
IPanelBus::~IPanelBus() = default;

TransferBuffer::TransferBuffer() : buffer_(kLengthBytes + kLeadBytes + kMaxPanelTransfer) {}

void TransferBuffer::assemble(std::uint8_t lead, std::uint8_t const* bytes, std::size_t size) {
    if (size == 0 || size > kMaxPanelTransfer) {
        throw PanelBusError("a panel transfer holds 1 to " + std::to_string(kMaxPanelTransfer) +
                            " bytes, not " + std::to_string(size));
    }
    size_ = kLeadBytes + size;
    buffer_[0] = static_cast<std::uint8_t>(size_ & 0xFFU);
    buffer_[1] = static_cast<std::uint8_t>(size_ >> 8U);
    buffer_[kLengthBytes] = lead;
    std::copy(bytes, bytes + size, buffer_.begin() + kLengthBytes + kLeadBytes);
}

std::uint8_t const* TransferBuffer::transfer() const { return buffer_.data() + kLengthBytes; }

std::size_t TransferBuffer::transferSize() const { return size_; }

std::uint8_t const* TransferBuffer::record() const { return buffer_.data(); }

std::size_t TransferBuffer::recordSize() const { return kLengthBytes + size_; }

}  // namespace frontpanelhw::graphic
