#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace yxfrontpanel::runtime::detail {

/** What a client's WebSocket bytes amount to, one event at a time. */
struct WebSocketEvent {
    enum class Kind {
        None,   ///< more bytes are needed
        Text,   ///< a complete text message (`payload`)
        Ping,   ///< answer with a pong carrying `payload`
        Close,  ///< the client closes (`code`, 1000 when it gave none)
        Fail,   ///< a protocol error: send a close with `code` and drop the client (`reason`)
    };
    Kind kind = Kind::None;
    std::string payload;
    std::uint16_t code = 0;
    std::string reason;
};

/** Reads the frames a client sends on a WebSocket (RFC 6455, server side): unmasked frames,
 *  reserved bits, unknown opcodes, fragmented or long control frames and messages longer than
 *  `maxMessage` fail the connection; fragments are joined; binary messages are refused. Holds
 *  at most one frame's worth of unread bytes. */
class WebSocketReader {
public:
    /** A reader for messages of up to `maxMessage` bytes. */
    explicit WebSocketReader(std::size_t maxMessage) : maxMessage_(maxMessage) {}

    /** Adds bytes from the client. */
    void feed(std::string_view bytes) { buffer_.append(bytes); }
    /** The next event from what was fed; `Kind::None` when more bytes are needed. After a
     *  `Close` or `Fail` it keeps returning that event. */
    WebSocketEvent next();

private:
    WebSocketEvent fail(std::uint16_t code, std::string reason);

    std::size_t maxMessage_;
    std::string buffer_;
    std::string message_;
    bool inMessage_ = false;
    WebSocketEvent end_;
};

/** One unmasked server frame, final, with `opcode` (1 text, 8 close, 10 pong) and `payload`. */
std::string serverFrame(unsigned opcode, std::string_view payload);

/** The payload of a close frame with `code`. */
std::string closePayload(std::uint16_t code);

}  // namespace yxfrontpanel::runtime::detail
