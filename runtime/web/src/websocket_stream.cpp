#include "websocket_stream.h"

namespace yxfrontpanel::runtime::detail {

namespace {

constexpr unsigned kContinuation = 0x0;
constexpr unsigned kText = 0x1;
constexpr unsigned kBinary = 0x2;
constexpr unsigned kClose = 0x8;
constexpr unsigned kPing = 0x9;
constexpr unsigned kPong = 0xA;

constexpr std::uint16_t kProtocolError = 1002;
constexpr std::uint16_t kUnsupportedData = 1003;
constexpr std::uint16_t kTooBig = 1009;

}  // namespace

WebSocketEvent WebSocketReader::fail(std::uint16_t code, std::string reason) {
    end_.kind = WebSocketEvent::Kind::Fail;
    end_.code = code;
    end_.reason = std::move(reason);
    buffer_.clear();
    message_.clear();
    return end_;
}

WebSocketEvent WebSocketReader::next() {
    while (end_.kind == WebSocketEvent::Kind::None) {
        if (buffer_.size() < 2) {
            return {};
        }
        auto const byte = [this](std::size_t index) {
            return static_cast<unsigned char>(buffer_[index]);
        };
        bool const final = (byte(0) & 0x80) != 0;
        unsigned const opcode = byte(0) & 0x0F;
        if ((byte(0) & 0x70) != 0) {
            return fail(kProtocolError, "reserved bits set");
        }
        if ((byte(1) & 0x80) == 0) {
            return fail(kProtocolError, "unmasked frame");
        }
        std::uint64_t length = byte(1) & 0x7F;
        std::size_t header = 2;
        if (length == 126) {
            header = 4;
        } else if (length == 127) {
            header = 10;
        }
        if (buffer_.size() < header) {
            return {};
        }
        if (length == 126) {
            length = (std::uint64_t{byte(2)} << 8) | byte(3);
        } else if (length == 127) {
            length = 0;
            for (std::size_t index = 2; index < 10; ++index) {
                length = (length << 8) | byte(index);
            }
        }
        bool const control = (opcode & 0x8) != 0;
        if (control && (!final || length > 125)) {
            return fail(kProtocolError, "fragmented or long control frame");
        }
        if (opcode != kContinuation && opcode != kText && opcode != kBinary && opcode != kClose &&
            opcode != kPing && opcode != kPong) {
            return fail(kProtocolError, "unknown opcode " + std::to_string(opcode));
        }
        if (opcode == kBinary) {
            return fail(kUnsupportedData, "binary message");
        }
        if (!control && length > maxMessage_ - message_.size()) {
            return fail(kTooBig, "message longer than " + std::to_string(maxMessage_) + " bytes");
        }
        if ((opcode == kContinuation) != inMessage_ && !control) {
            return fail(kProtocolError, inMessage_ ? "new message inside a fragmented one"
                                                   : "continuation without a message");
        }
        header += 4;  // the masking key
        if (buffer_.size() < header + length) {
            return {};
        }
        std::string payload = buffer_.substr(header, static_cast<std::size_t>(length));
        for (std::size_t index = 0; index < payload.size(); ++index) {
            payload[index] = static_cast<char>(payload[index] ^ buffer_[header - 4 + index % 4]);
        }
        buffer_.erase(0, header + static_cast<std::size_t>(length));

        WebSocketEvent event;
        switch (opcode) {
            case kClose:
                end_.kind = WebSocketEvent::Kind::Close;
                end_.code =
                    payload.size() >= 2
                        ? static_cast<std::uint16_t>((static_cast<unsigned char>(payload[0]) << 8) |
                                                     static_cast<unsigned char>(payload[1]))
                        : 1000;
                buffer_.clear();
                return end_;
            case kPing:
                event.kind = WebSocketEvent::Kind::Ping;
                event.payload = std::move(payload);
                return event;
            case kPong:
                continue;
            default:
                message_ += payload;
                inMessage_ = !final;
                if (final) {
                    event.kind = WebSocketEvent::Kind::Text;
                    event.payload.swap(message_);
                    return event;
                }
        }
    }
    return end_;
}

std::string serverFrame(unsigned opcode, std::string_view payload) {
    std::string frame(1, static_cast<char>(0x80 | (opcode & 0x0F)));
    if (payload.size() < 126) {
        frame += static_cast<char>(payload.size());
    } else if (payload.size() <= 0xFFFF) {
        frame += static_cast<char>(126);
        frame += static_cast<char>((payload.size() >> 8) & 0xFF);
        frame += static_cast<char>(payload.size() & 0xFF);
    } else {
        frame += static_cast<char>(127);
        for (int shift = 56; shift >= 0; shift -= 8) {
            frame +=
                static_cast<char>((static_cast<std::uint64_t>(payload.size()) >> shift) & 0xFF);
        }
    }
    frame += payload;
    return frame;
}

std::string closePayload(std::uint16_t code) {
    return std::string{static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
}

}  // namespace yxfrontpanel::runtime::detail
